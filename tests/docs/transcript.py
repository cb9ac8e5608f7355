#!/usr/bin/env python3
"""Types the session in README.md anew and compares what appears on the terminal with what stands there.

Usage, inside tests/support/private_namespace.sh: transcript.py README.md APCONF APCONFD
APCONF and APCONFD are the commands that start the programs. With APCONF_UPDATE_GOLDEN=1 in the environment, README.md
gets the new text. What is typed is read from README.md: all that stands behind a prompt. A line of the apconf shell
that ends with "?" is typed without Enter, and the next one completes it.
"""
import difflib
import fcntl
import os
import pty
import re
import select
import shutil
import signal
import socket
import struct
import sys
import termios
import time
from pathlib import Path

SOURCE = Path(__file__).resolve().parents[2]
BLOCK = re.compile(r"(?<=^```console transcript\n).*?(?=^```$)", re.MULTILINE | re.DOTALL)
PROMPT = re.compile(r"(\$ |apconf(\([^)]*\))?\*?> )")
TIME = re.compile(r"\d{4}-\d\d-\d\d \d\d:\d\d:\d\d")
PATIENCE = 60  # seconds


class Screen:
    """What a terminal shows of the output, colours left out, without an end of the page."""

    def __init__(self):
        self.lines = [""]
        self.column = 0

    def feed(self, text):
        for part in re.findall(r"\x1b\[\d*[A-Za-z]|.", text, re.DOTALL):
            if part == "\n":
                self.lines.append("")
            elif part == "\r":
                self.column = 0
            elif part == "\b":
                self.column -= 1
            elif part in ("\x1b[K", "\x1b[J"):
                self.lines[-1] = self.lines[-1][: self.column]
            elif part.startswith("\x1b") and not part.endswith("m"):
                sys.exit(f"transcript.py: unknown control sequence {part!r}")
            elif part >= " ":
                line = self.lines[-1].ljust(self.column)
                self.lines[-1] = line[: self.column] + part + line[self.column + 1 :]
                self.column += 1


class Terminal:
    """A shell on a terminal of 100 columns, in a directory of its own."""

    def __init__(self, programs):
        home = Path("/tmp/session")
        for directory in (home, Path("/tmp/bin")):
            directory.mkdir()
        for name, command in programs.items():
            program = Path("/tmp/bin", name)
            program.write_text(f'#!/bin/sh\nexec {command} "$@"\n')
            program.chmod(0o755)
        self.screen = Screen()
        self.pid, self.fd = pty.fork()
        if self.pid == 0:
            os.chdir(home)
            environment = {"PATH": "/tmp/bin:/usr/bin:/bin", "HOME": str(home), "TERM": "vt100", "PS1": "$ "}
            os.execve("/bin/sh", ["sh", "-i"], environment)
        fcntl.ioctl(self.fd, termios.TIOCSWINSZ, struct.pack("HHHH", 50, 100, 0, 0))

    def wait(self, lines, pending=""):
        """Until a prompt, with what is typed behind it already, follows `lines` lines."""
        end = time.monotonic() + PATIENCE
        while True:
            last = self.screen.lines[-1]
            prompt = PROMPT.match(last)
            if len(self.screen.lines) > lines and prompt and last[prompt.end() :] == pending:
                return
            if not select.select([self.fd], [], [], max(0.0, end - time.monotonic()))[0]:
                sys.exit("transcript.py: no prompt came behind\n" + "\n".join(self.screen.lines))
            self.screen.feed(os.read(self.fd, 65536).decode())

    def type(self, keys, pending=""):
        lines = len(self.screen.lines)
        os.write(self.fd, keys.encode())
        self.wait(lines, pending)
        return lines


def server():
    """The process that serves the socket; none yet: None."""
    with socket.socket(socket.AF_UNIX) as client:
        try:
            client.connect("/tmp/config_cmd_sock")
        except OSError:
            return None
        credentials = client.getsockopt(socket.SOL_SOCKET, socket.SO_PEERCRED, struct.calcsize("3i"))
        return struct.unpack("3i", credentials)[0]


def children(parent):
    for process in Path("/proc").glob("[0-9]*"):
        try:
            fields = (process / "stat").read_text().rpartition(")")[2].split()
        except OSError:
            continue
        if int(fields[1]) == parent:
            yield int(process.name)
            yield from children(int(process.name))


def activity(pid):
    """How often the process has run; None while it does."""
    status = Path(f"/proc/{pid}/status").read_text()
    if not re.search(r"^State:\s+S", status, re.MULTILINE):
        return None
    return re.findall(r"ctxt_switches:\s+(\d+)", status)


def wait_for_rest(shell):
    """Until server and background jobs have done all that they were asked for: none of them runs or has anything to do."""
    processes = [pid for pid in (server(), *children(shell)) if pid]
    end = time.monotonic() + PATIENCE
    before = None
    while time.monotonic() < end:
        now = [activity(pid) for pid in processes]
        if now == before and None not in now:
            return
        before = now
        time.sleep(0.05)
    sys.exit("transcript.py: the programs do not come to rest")


def type_all(transcript, terminal):
    terminal.wait(0)
    pending = ""
    for line in transcript.splitlines():
        prompt = PROMPT.match(line)
        if not prompt:
            continue
        keys = line[prompt.end() :].removeprefix(pending)
        if keys.endswith("?") and line.startswith("apconf"):
            pending += keys[:-1]
            asked = terminal.type(keys, pending)
            terminal.screen.lines[asked - 1] += "?"
        else:
            pending = ""
            terminal.type(keys + "\n")
            wait_for_rest(terminal.pid)


def replay(transcript, programs):
    terminal = Terminal(programs)
    try:
        type_all(transcript, terminal)
    finally:
        for pid in (*children(terminal.pid), server()):
            if pid:
                os.kill(pid, signal.SIGTERM)
        os.close(terminal.fd)
    return TIME.sub("2026-03-02 09:14:07", "\n".join(line.rstrip() for line in terminal.screen.lines[:-1]) + "\n")


def install_vocabulary():
    Path("/etc/config").mkdir(exist_ok=True)
    for name, directory in {"config_cmd_tree.xml": "", "cmd_tree_help.txt": "", "start_config.json": "config"}.items():
        shutil.copy(SOURCE / "etc" / name, Path("/etc", directory, name))


def main():
    readme, apconf, apconfd = sys.argv[1:]
    if os.environ.get("APCONF_PRIVATE_NAMESPACE") != "inside":
        sys.exit("transcript.py: start it with tests/support/private_namespace.sh")
    install_vocabulary()
    text = Path(readme).read_text()
    written = BLOCK.search(text)
    if not written:
        sys.exit(f"transcript.py: {readme} has no block 'console transcript'")
    real = replay(written[0], {"apconf": apconf, "apconfd": apconfd})
    if real == written[0]:
        return
    sys.stdout.writelines(
        difflib.unified_diff(written[0].splitlines(True), real.splitlines(True), readme, "what appears now")
    )
    if os.environ.get("APCONF_UPDATE_GOLDEN"):
        Path(readme).write_text(text[: written.start()] + real + text[written.end() :])
        print(f"{readme} is written anew")
        return
    sys.exit("If the change is wanted, run this test again with APCONF_UPDATE_GOLDEN=1.")


main()
