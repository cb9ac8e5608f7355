#!/usr/bin/env python3
"""What the library and the server cost on a small machine, each figure beside its limit; fails beyond one.

Usage: private_namespace.sh footprint.py TARGET-BUILD NATIVE-BUILD [EMULATOR ...]

Sizes and memory are those of TARGET-BUILD, whose server runs behind EMULATOR. Processor time under an emulator says
nothing, so it is measured with the server of NATIVE-BUILD.
"""
import os
import re
import shutil
import socket
import struct
import subprocess
import sys
import time
from pathlib import Path

import elf

KIB = 1024
LIMITS = {
    "library: text and read-only data": (160 * KIB, "KiB"),
    "library: relocations and data, without the two blocks": (64 * KIB, "KiB"),
    "apconfd, idle: private memory": (3 * 1024 * KIB, "KiB"),
    "apconfd: processor time until it serves": (50, "ms"),
}
SOURCE = Path(__file__).resolve().parents[2]
SOCKET = "/tmp/config_cmd_sock"
REGISTER = struct.pack("=4B2I", 0, 1, 0, 0, 1, 10) + b"footprint\0"


def library_sizes(library):
    """Bytes of the parts of memory that are never written, and of those that are written, by the loader at least."""
    loaded = [section for section in elf.sections(library) if "A" in section.flags]
    relocations = [section for section in loaded if section.name.startswith((".rel.", ".rela.", ".relr."))]
    written = [section for section in loaded if "W" in section.flags]
    read_only = [section for section in loaded if section not in relocations and section not in written]
    blocks = [symbol.size for symbol in elf.dynamic_symbols(library) if symbol.name in ("root", "mirror_root")]
    assert len(blocks) == 2
    data = sum(section.size for section in relocations + written) - sum(blocks)
    return sum(section.size for section in read_only), data, read_only, relocations + written


def install_vocabulary():
    if os.environ.get("APCONF_PRIVATE_NAMESPACE") != "inside":
        sys.exit("footprint.py: run it through tests/support/private_namespace.sh")
    os.makedirs("/etc/config", exist_ok=True)
    for name in ("config_cmd_tree.xml", "cmd_tree_help.txt"):
        shutil.copy(SOURCE / "etc" / name, "/etc")
    shutil.copy(SOURCE / "etc/start_config.json", "/etc/config")


class Server:
    """apconfd on a fresh queue, up to its first answer to a client."""

    def __init__(self, command):
        shutil.rmtree("/tmp/cmessage_queue", ignore_errors=True)
        Path(SOCKET).unlink(missing_ok=True)
        self.process = subprocess.Popen([*command, "--foreground"], stdout=subprocess.DEVNULL,
                                        stderr=subprocess.DEVNULL)

    def __enter__(self):
        deadline = time.monotonic() + 60
        while not self.serves():
            if self.process.poll() is not None or time.monotonic() > deadline:
                self.process.kill()
                sys.exit("footprint.py: the server does not serve")
            time.sleep(0.01)
        return self

    def __exit__(self, *_):
        self.process.terminate()
        self.process.wait()

    @staticmethod
    def serves():
        with socket.socket(socket.AF_UNIX) as client:
            client.settimeout(60)
            try:
                client.connect(SOCKET)
                client.sendall(REGISTER)
                return len(client.recv(12)) == 12
            except OSError:
                return False

    def processor_ms(self):
        on_cpu = Path(f"/proc/{self.process.pid}/schedstat").read_text().split()[0]
        return int(on_cpu) / 1e6

    def private_bytes(self, emulated):
        """What the process wrote, and of what it only read the files that are its own: other libraries' code is there
        for every process. An emulator keeps the machine's memory below 4 GiB and its own above."""
        total, own_file, counts = 0, False, False
        for line in Path(f"/proc/{self.process.pid}/smaps").read_text().splitlines():
            mapping = re.match(r"([0-9a-f]+)-[0-9a-f]+ \S+ \S+ \S+ \S+ *(.*)", line)
            if mapping:
                counts = not emulated or int(mapping[1], 16) < 1 << 32
                own_file = Path(mapping[2]).name.startswith(("apconfd", "libapconf"))
                continue
            value = re.match(r"(Private_Dirty|Swap|Private_Clean): +(\d+) kB", line)
            if value and counts and (own_file or value[1] != "Private_Clean"):
                total += int(value[2]) * KIB
        return total


def main():
    if len(sys.argv) < 3:
        sys.exit(__doc__)
    target, native, emulator = Path(sys.argv[1]), Path(sys.argv[2]), sys.argv[3:]
    install_vocabulary()

    text, data, read_only, written = library_sizes(target / "libapconf.so")
    with Server([*emulator, target / "host/apconfd"]) as server:
        time.sleep(0.5)
        memory = server.private_bytes(emulated=bool(emulator))
    times = []
    for _ in range(3):
        with Server([native / "host/apconfd"]) as server:
            times.append(server.processor_ms())

    print("library, by section:")
    for title, sections in (("read only", read_only), ("relocations and data", written)):
        parts = (f"{section.name} {section.size}" for section in sorted(sections, key=lambda part: -part.size))
        print(f"  {title}: {', '.join(parts)}")
    exceeded = False
    for (name, (limit, unit)), value in zip(LIMITS.items(), (text, data, memory, min(times))):
        scale = KIB if unit == "KiB" else 1
        print(f"{name:<56} {value / scale:8.1f} of {limit / scale:5.0f} {unit}  {100 * value / limit:3.0f}%"
              f"{'  EXCEEDED' if value > limit else ''}")
        exceeded = exceeded or value > limit
    return 1 if exceeded else 0


if __name__ == "__main__":
    sys.exit(main())
