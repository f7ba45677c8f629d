"""The environment for tests of whole programs: a private /dev/shm and session bus, and bounded waiting."""
import io
import os
import select
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest

SKIPPED = 77
# Seconds; generous for an emulator on a busy machine.
LIMIT = 60
LIMIT_OF_A_TEST = 240
# Seconds that a terminated process may take to end.
PATIENCE = 2
PRIVATE = "IPOD_PRIVATE_SHM"
SEGMENTS = ("ListVectorSharedMemory", "BufferVectorSharedMemory")
needs_private_mount = unittest.skipUnless(os.environ.get(PRIVATE) == "mount", "this machine's own /dev/shm is used")


def enter_private_namespace(interpreter=sys.executable):
    """Restarts this script with a private /dev/shm: the names of segments are global to a machine."""
    if PRIVATE in os.environ:
        return
    command = os.path.join(os.path.dirname(os.path.abspath(__file__)), "with-private-shm")
    os.execv(command, [command, interpreter] + sys.argv)


def segments():
    """Removes the segments and other objects that a test created."""
    return [name for name in os.listdir("/dev/shm") if any(segment in name for segment in SEGMENTS)]


def clear_shared_memory():
    for name in segments():
        os.remove(f"/dev/shm/{name}")


def line_within(stream, seconds):
    """Returns the next line, or what there is of it. Leaves all that follows in the pipe, where select() sees it."""
    end, line = time.monotonic() + seconds, b""
    while not line.endswith(b"\n") and select.select([stream], [], [], max(0, end - time.monotonic()))[0]:
        byte = os.read(stream.fileno(), 1)
        if not byte:
            break
        line += byte
    return line.decode() if isinstance(stream, io.TextIOBase) else line


def within(seconds, condition):
    end = time.monotonic() + seconds
    while not (holds := condition()) and time.monotonic() < end:
        time.sleep(0.02)
    return holds


def end_in_time(test):
    """Makes a test that hangs fail with the place where it hung."""
    def fail(*_):
        raise TimeoutError(f"timed out after {LIMIT_OF_A_TEST} seconds")
    signal.signal(signal.SIGALRM, fail)
    signal.alarm(LIMIT_OF_A_TEST)
    test.addCleanup(signal.alarm, 0)


class Bus:
    """A session bus, and an environment that points to it."""

    def __init__(self, **environment):
        command = ["dbus-daemon", "--session", "--nofork", "--nopidfile", "--print-address=1"]
        self.daemon = subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
        address = line_within(self.daemon.stdout, LIMIT).strip()
        self.environment = dict(os.environ, DBUS_SESSION_BUS_ADDRESS=address, **environment)
        for name in ("QBX_LOG", "QBX_SOURCE_REFUSE", "NO_COLOR"):
            self.environment.pop(name, None)

    def stop(self):
        self.daemon.kill()
        self.daemon.wait()
        self.daemon.stdout.close()


def stop(process):
    """Terminates a process that still runs, or kills it if it does not end, and closes its streams."""
    process.terminate()
    process.send_signal(signal.SIGCONT)
    try:
        process.wait(PATIENCE)
    except subprocess.TimeoutExpired:
        process.kill()
        process.wait()
    for stream in (process.stdin, process.stdout, process.stderr):
        if stream:
            stream.close()


class OnAPrivateBus(unittest.TestCase):
    """Programs on a private bus. Their processes, segments, and files are removed after each test."""

    def setUp(self):
        end_in_time(self)
        self.addCleanup(clear_shared_memory)
        self.folder = tempfile.mkdtemp()
        self.addCleanup(shutil.rmtree, self.folder)
        self.bus = Bus()
        self.addCleanup(self.bus.stop)

    def launch(self, *words, **options):
        """Starts a program."""
        process = subprocess.Popen(words, env=self.bus.environment, **options)
        self.addCleanup(stop, process)
        return process

    def launch_simulator(self, *words, **options):
        """Starts a simulator, and waits until it is ready."""
        process = self.launch(*words, stdout=subprocess.PIPE, text=True, **options)
        self.assertIn("ready: ", line_within(process.stdout, LIMIT))
        return process

    def complete(self, *words, **options):
        """Runs a program until it exits."""
        return subprocess.run(words, env=self.bus.environment, capture_output=True, text=True, timeout=LIMIT,
                              check=False, **options)
