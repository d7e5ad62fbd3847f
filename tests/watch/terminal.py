#!/usr/bin/python3
"""Runs a command on a terminal of its own, and prints what it shows.

usage: terminal.py COLUMNS COMMAND [ARGUMENT...] <SCRIPT

Each line of the script is done when the one before it is:

  wait TEXT     wait until TEXT stands on the screen
  shot          print the screen, when nothing comes any more
  type TEXT     type TEXT; "^C" is the key
  resize COLUMNS
  do COMMAND    run a command of the shell
  signal NAME   send a signal to the command
  close         close the terminal
  end           wait for the end of the command, and print the screen, how the command has ended, and
                what of the terminal is not as it was

TERMINAL_BYTES in the environment names a file that gets all that is sent to the terminal. The screen is that of a terminal emulator, which keeps to the standards of xterm. Nothing waits for more
than forty seconds.
"""

import codecs
import fcntl
import os
import select
import signal
import struct
import subprocess
import sys
import termios
import time

import pyte

LONGEST_WAIT = 40
ROWS = 12


class Terminal:
    def __init__(self, columns, command):
        self.screen = pyte.Screen(columns, ROWS)
        self.stream = pyte.Stream(self.screen)
        self.bytes = open(os.environ.get("TERMINAL_BYTES", os.devnull), "wb", buffering=0)
        self.decoder = codecs.getincrementaldecoder("utf-8")()
        self.master, self.slave = os.openpty()
        self.set_size(self.slave, columns)
        self.modes = termios.tcgetattr(self.slave)
        self.process = subprocess.Popen(
            command, stdin=self.slave, stdout=self.slave, stderr=self.slave,
            preexec_fn=self.take_terminal, start_new_session=True)

    @staticmethod
    def take_terminal():
        fcntl.ioctl(0, termios.TIOCSCTTY, 0)

    @staticmethod
    def set_size(descriptor, columns):
        fcntl.ioctl(descriptor, termios.TIOCSWINSZ, struct.pack("HHHH", ROWS, columns, 0, 0))

    def listen(self, seconds):
        """Takes what is shown within that time, until nothing more comes. Returns whether something came."""
        ready, _, _ = select.select([self.master], [], [], seconds)
        if ready:
            shown = os.read(self.master, 4096)
            self.bytes.write(shown)
            self.stream.feed(self.decoder.decode(shown))
        return bool(ready)

    def wait(self, text):
        end = time.monotonic() + LONGEST_WAIT
        while not any(text in line for line in self.screen.display):
            if time.monotonic() > end:
                sys.exit(f"never on the screen: {text}\n{self.text()}")
            self.listen(0.05)

    def text(self):
        return "\n".join(line.rstrip() for line in self.screen.display).rstrip()

    def shot(self, _):
        while self.listen(0.3):
            pass
        print(self.text())
        print("--")

    def type(self, text):
        os.write(self.master, text.replace("^C", "\x03").encode())

    def resize(self, columns):
        self.screen.resize(columns=int(columns))
        self.set_size(self.master, int(columns))

    def do(self, command):
        subprocess.run(command, shell=True, check=True)

    def signal(self, name):
        self.process.send_signal(signal.Signals["SIG" + name])

    def close(self, _):
        os.close(self.slave)
        os.close(self.master)
        self.master = None

    def wait_for_end(self):
        end = time.monotonic() + LONGEST_WAIT
        while self.process.poll() is None:
            if time.monotonic() > end:
                sys.exit("the command does not end")
            if self.master is None:
                time.sleep(0.05)
            else:
                self.listen(0.05)
        return self.process.returncode

    def end(self, _):
        status = self.wait_for_end()
        if self.master is not None:
            while self.listen(0.1):
                pass
            print(self.text())
            self.complain_of_changes()
        print(f"signal: {signal.Signals(-status).name}" if status < 0 else f"status: {status}")

    def complain_of_changes(self):
        if termios.tcgetattr(self.slave) != self.modes:
            print("the modes of the terminal have changed")
        if self.screen.cursor.hidden:
            print("the cursor is hidden")
        if self.screen.cursor.x != 0:
            print("the cursor is not at the beginning of a line")
        if self.screen.cursor.attrs != self.screen.default_char:
            print("the colours have changed")


def main():
    terminal = Terminal(int(sys.argv[1]), sys.argv[2:])
    for line in sys.stdin:
        action, _, argument = line.strip().partition(" ")
        getattr(terminal, action)(argument)
        sys.stdout.flush()


main()
