"""Runs a program in a pseudo-terminal whose screen can be inspected."""
import fcntl
import os
import pty
import select
import signal
import struct
import subprocess
import termios
import time

from terminal_screen import TerminalScreen


class TerminalSession:
    def __init__(self, command, rows, columns, environment, folder=None):
        self.screen = TerminalScreen(rows, columns)
        self.received = b""
        self.main, self.terminal = pty.openpty()
        self.set_size(rows, columns)
        self.modes_before = termios.tcgetattr(self.terminal)
        # It becomes the controlling terminal, so that keys generate signals.
        self.process = subprocess.Popen(command, stdin=self.terminal, stdout=self.terminal, stderr=self.terminal,
                                        env=environment, cwd=folder, start_new_session=True, preexec_fn=self._take_control)

    def _take_control(self):
        fcntl.ioctl(0, termios.TIOCSCTTY, 0)

    def set_size(self, rows, columns):
        fcntl.ioctl(self.terminal, termios.TIOCSWINSZ, struct.pack("HHHH", rows, columns, 0, 0))

    def resize(self, rows, columns):
        self.screen.resize(rows, columns)
        self.set_size(rows, columns)

    def modes(self):
        return termios.tcgetattr(self.terminal)

    def type(self, text):
        os.write(self.main, text.encode() if isinstance(text, str) else text)

    def read(self, seconds):
        """Reads the program's output; False if there was none for that long."""
        if not select.select([self.main], [], [], seconds)[0]:
            return False
        data = os.read(self.main, 65536)
        self.received += data
        self.screen.feed(data)
        return True

    def settle(self, quiet=0.05, limit=5):
        """Waits until there has been no output for a while."""
        end = time.monotonic() + limit
        while time.monotonic() < end and self.read(quiet):
            pass

    def wait_for(self, holds, seconds):
        """Reads until the screen satisfies a condition; returns whether it did."""
        end = time.monotonic() + seconds
        while not holds(self.screen):
            left = end - time.monotonic()
            if left <= 0:
                return False
            self.read(min(left, 0.1))
        return True

    def wait(self, seconds):
        """Reads the remaining output and returns the exit code."""
        end = time.monotonic() + seconds
        while self.process.poll() is None and time.monotonic() < end:
            self.read(0.05)
        while self.read(0.05):
            pass
        return self.process.poll()

    def close(self):
        if self.process.poll() is None:
            self.process.send_signal(signal.SIGKILL)
        self.process.wait()
        os.close(self.main)
        os.close(self.terminal)
