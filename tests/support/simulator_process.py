"""Runs the simulator as a separate process, for tests of the Python module."""
import argparse
import atexit
import json
import os
import signal
import subprocess
import sys

from gi.repository import Gio, GLib

from private_session import LIMIT, Bus, enter_private_namespace, line_within


def begin(*options):
    """Continues with private shared memory and a private bus. Returns the command-line options, including --simulator
    and --interpreter, and leaves other arguments in sys.argv."""
    parser = argparse.ArgumentParser()
    for name in ("--simulator", *options):
        parser.add_argument(name, required=True)
    parser.add_argument("--interpreter", default=sys.executable, help="starts scripts of this architecture")
    parsed, rest = parser.parse_known_args()
    enter_private_namespace(parsed.interpreter)
    sys.argv[1:] = rest
    bus = Bus()
    atexit.register(bus.stop)
    os.environ["DBUS_SESSION_BUS_ADDRESS"] = bus.environment["DBUS_SESSION_BUS_ADDRESS"]
    return parsed


class Simulator:
    def __init__(self, program):
        self.process = subprocess.Popen([program], stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        line_within(self.process.stdout, LIMIT)

    @staticmethod
    def do(event, value):
        """Runs an action of the simulator."""
        action = GLib.Variant("(s)", (json.dumps({"event": event, "value": value}),))
        Gio.bus_get_sync(Gio.BusType.SESSION).call_sync(
            "com.zarn.linux.ipod.Simulator", "/com/zarn/linux/ipod/simulator", "com.zarn.linux.ipod.Simulator",
            "Do", action, None, Gio.DBusCallFlags.NONE, LIMIT * 1000)

    def battery(self, level):
        self.do("battery", level)

    def hang(self):
        """Waits until the process has stopped: until then it may answer."""
        self.process.send_signal(signal.SIGSTOP)
        os.waitid(os.P_PID, self.process.pid, os.WSTOPPED)

    def go_on(self):
        self.process.send_signal(signal.SIGCONT)

    def end(self):
        self.process.kill()
        self.process.wait()
        self.process.stdout.close()
