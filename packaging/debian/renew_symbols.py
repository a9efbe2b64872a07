#!/usr/bin/env python3
"""Writes a package's symbols file anew, with C++ names: renew_symbols.py PACKAGE VERSION FOLDER FILE.

FOLDER is the package as it was built. A symbol that FILE has keeps the version in which it came; a new one gets
VERSION. What the compiler makes of headers that are not ours is another on each machine: one optional pattern.
"""

import pathlib
import re
import subprocess
import sys
import tempfile

NOT_OURS = "^((typeinfo|typeinfo name|vtable|guard variable) for )?(std::|Q[A-Z][a-zA-Z]+(<.*>)?::|QtMetaTypePrivate::)"
LINE = re.compile(r'^ \(c\+\+\)"(.*)@Base" (\S+)$', re.MULTILINE)


def exported(package, version, folder):
    """The library's name and the C++ names of its own that it exports."""
    with tempfile.NamedTemporaryFile("r") as found:
        subprocess.run(["dpkg-gensymbols", "-c0", f"-p{package}", f"-v{version}", f"-P{folder}", f"-O{found.name}"],
                       check=True, capture_output=True, cwd=tempfile.gettempdir())
        lines = found.read().splitlines()
    symbols = [line.split("@")[0].strip() for line in lines if line.startswith(" ")]
    names = subprocess.run(["c++filt"], input="\n".join(symbols), check=True, capture_output=True, text=True).stdout
    return lines[0].split()[0], sorted({name for name in names.splitlines() if not re.match(NOT_OURS, name)})


def main():
    package, version, folder, file = sys.argv[1], sys.argv[2], *map(pathlib.Path, sys.argv[3:5])
    before = dict(LINE.findall(file.read_text()))
    library, names = exported(package, version, folder.resolve())
    text = f"{library} {package} #MINVER#\n* Build-Depends-Package: libcanbusservice-dev\n"
    text += "".join(f' (c++)"{name}@Base" {before.get(name, version)}\n' for name in names)
    text += f' (c++|regex|optional=inline)"{NOT_OURS}.*@Base$" {version}\n'
    file.write_text(text)
    for sign, some in (("+", set(names) - set(before)), ("-", set(before) - set(names))):
        print("".join(f"{sign} {name}\n" for name in sorted(some)), end="")


if __name__ == "__main__":
    main()
