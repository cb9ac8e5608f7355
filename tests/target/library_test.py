#!/usr/bin/env python3
"""Looks at the library as it ships, from outside: what it needs, what it exports, what it runs before main.

Usage: library_test.py needs LIBRARY
       library_test.py exports LIBRARY COMPILER-COMMAND ...    (the C compiler with the flags that find the headers)
       library_test.py initialisers LIBRARY OBJECT ...
"""
import re
import subprocess
import sys

import elf

# The dynamic loader is part of the C library; some machines keep symbols in it.
ALLOWED_LIBRARIES = re.compile(r"(libjson-c|libxml2|libc|libgcc_s|ld-linux\S*|ld)\.so\.\d+")
CPP_RUNTIME = re.compile(r"(GLIBCXX|CXXABI)_\S+")
VERSION = "APCONF_1"
ATTRIBUTE = re.compile(r"__attribute__\s*\(\((?:[^()]|\([^()]*\))*\)\)")


def needs(library):
    for name in elf.dynamic(library, "NEEDED"):
        if not ALLOWED_LIBRARIES.fullmatch(name):
            yield f"needs {name}"
    for symbol in elf.dynamic_symbols(library):
        if symbol.defined:
            continue
        # __cxa_finalize is the C library's, for whoever registers something to run at exit.
        mangled = symbol.name.startswith(("_Z", "__cxa_", "__gxx_")) and symbol.name != "__cxa_finalize"
        if mangled or CPP_RUNTIME.fullmatch(symbol.version):
            yield f"needs {symbol.name} of the C++ runtime"
    soname = elf.dynamic(library, "SONAME")
    if soname != ["libapconf.so.1"]:
        yield f"is called {soname}, not libapconf.so.1"


def declarations(compiler):
    """The declarations at file level in the preprocessed public headers, with their braces' contents left out."""
    text = subprocess.run([*compiler, "-E", "-x", "c", "-"], input="#include <apconf/apconf.h>\n", check=True,
                          capture_output=True, text=True).stdout
    public, kept = False, []
    for line in text.splitlines():
        marker = re.match(r'# \d+ "([^"]*)"', line)
        if marker:
            public = "/apconf/" in marker[1] and marker[1].endswith(".h")
        elif public and not line.startswith("#"):
            kept.append(line)
    text = "\n".join(kept)
    while True:
        shorter = re.sub(r"\{[^{}]*\}", "", text)
        if shorter == text:
            break
        text = shorter
    return [" ".join(ATTRIBUTE.sub("", piece).split()) for piece in text.split(";")]


def declared(compiler):
    """Name and kind of everything that the public headers say exists: FUNC or OBJECT."""
    names = {}
    for declaration in declarations(compiler):
        if not declaration or declaration.startswith("typedef") or re.fullmatch(r"(struct|enum|union)( \w+)?", declaration):
            continue
        function = re.match(r"[^(]*?(\w+) ?\(", declaration)
        data = re.fullmatch(r"extern [^(]*?(\w+) ?(\[.*\])?", declaration)
        if function:
            names[function[1]] = "FUNC"
        elif data:
            names[data[1]] = "OBJECT"
        else:
            sys.exit(f"library_test.py: '{declaration}' in a public header is neither a function nor an extern datum")
    return names


def exports(library, *compiler):
    promised = declared(compiler)
    exported = {symbol.name: symbol for symbol in elf.dynamic_symbols(library) if symbol.defined}
    exported.pop(VERSION, None)
    if len(promised) < 300:
        yield f"only {len(promised)} names are declared"
    for name in sorted(promised.keys() - exported.keys()):
        yield f"{name} is declared and not exported"
    for name in sorted(exported.keys() - promised.keys()):
        yield f"{name} is exported and not declared in a public header"
    for name in sorted(promised.keys() & exported.keys()):
        symbol = exported[name]
        if symbol.kind != promised[name]:
            yield f"{name} is a {symbol.kind}, declared as a {promised[name]}"
        if symbol.version != VERSION:
            yield f"{name} has version '{symbol.version}', not {VERSION}"


def initialisers(library, *objects):
    start_up = re.compile(r"\.(init_array|preinit_array|ctors)(\..*)?")
    if len(objects) < 50:
        yield f"only {len(objects)} objects were looked at"
    for path in objects:
        for section in elf.sections(path):
            if start_up.fullmatch(section.name):
                yield f"{path} has {section.name}"
    # The one entry of the C run-time files (frame_dummy) remains.
    sizes = {section.name: section.size for section in elf.sections(library)}
    if sizes.get(".init_array") not in (4, 8) or ".preinit_array" in sizes or ".ctors" in sizes:
        yield f"has .init_array of {sizes.get('.init_array')} bytes"


def main():
    checks = {check.__name__: check for check in (needs, exports, initialisers)}
    if len(sys.argv) < 3 or sys.argv[1] not in checks:
        sys.exit(__doc__)
    faults = list(checks[sys.argv[1]](*sys.argv[2:]))
    for fault in faults:
        print(f"{sys.argv[2]}: {fault}", file=sys.stderr)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
