"""The simulator as a process of its own, for tests of the Python module."""
import json
import os
import signal
import subprocess

from gi.repository import Gio, GLib

from private_session import LIMIT, line_within


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
        """Returns when it has stopped: until then it may answer."""
        self.process.send_signal(signal.SIGSTOP)
        os.waitid(os.P_PID, self.process.pid, os.WSTOPPED)

    def go_on(self):
        self.process.send_signal(signal.SIGCONT)

    def end(self):
        self.process.kill()
        self.process.wait()
        self.process.stdout.close()
