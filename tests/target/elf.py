"""What the tests of the built library read out of an ELF file, whatever machine it is for: binutils' readelf tells."""
import re
import subprocess
from typing import NamedTuple


class Section(NamedTuple):
    name: str
    size: int
    flags: str


class Symbol(NamedTuple):
    name: str
    version: str
    kind: str
    size: int
    defined: bool


def _readelf(*arguments):
    return subprocess.run(["readelf", "-W", *arguments], check=True, capture_output=True, text=True).stdout


def sections(path):
    row = re.compile(r"\s*\[ *\d+\] (\S*) +\S+ +[0-9a-f]+ [0-9a-f]+ ([0-9a-f]+) [0-9a-f]+ +([A-Zop]*) +\d+ +\d+ +\d+$")
    found = (row.match(line) for line in _readelf("--section-headers", path).splitlines())
    return [Section(match[1], int(match[2], 16), match[3]) for match in found if match]


def dynamic(path, tag):
    """The values of a tag of the dynamic section that names something: NEEDED, SONAME."""
    return re.findall(rf"\({tag}\).*\[(.*)\]", _readelf("--dynamic", path))


def dynamic_symbols(path):
    row = re.compile(r"\s*\d+: [0-9a-f]+ +(\S+) (\S+) +(?:GLOBAL|WEAK) +\S+ +(?:\[.*\] +)?(\S+) (\S+?)(?:@@?(\S+))?(?: \(\d+\))?$")
    found = (row.match(line) for line in _readelf("--dyn-syms", path).splitlines())
    return [Symbol(match[4], match[5] or "", match[2], int(match[1], 0), match[3] != "UND") for match in found if match]
