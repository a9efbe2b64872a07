"""Which part of the tree includes which: read from the sources, as the compiler would find the headers."""

import pathlib
import re

# The parts of the structure, by what the paths of their files begin with: the longest counts.
PARTS = {
    "src/support/": "support",
    "src/link/": "link",
    "src/serial/": "serial",
    "src/player/": "player",
    "src/groups/": "groups",
    "hostsdk/include/": "hostsdk",
    "hostsdk/reference/": "reference",
    "commandline/": "commandline",
    "commandline/facade/": "facade",
    "recording/": "recording",
    "boxsim/": "boxsim",
    "tools/monitor/": "monitor",
    "qml/": "qml",
    "demo/": "demo",
}

_INCLUDE = re.compile(r'^\s*#\s*include\s+[<"]([^>"]+)[>"]', re.MULTILINE)


def sources(root, folder):
    """The C++ files of a folder, those of folders within it too."""
    files = (pathlib.Path(root) / folder).rglob("*")
    return sorted(path for path in files if path.suffix in (".h", ".cpp"))


def parts(root):
    """The files of the parts: (path, its name from the root, part)."""
    for folder in sorted({prefix.split("/")[0] for prefix in PARTS}):
        for path in sources(root, folder):
            name = str(path.relative_to(root))
            prefix = max((prefix for prefix in PARTS if name.startswith(prefix)), key=len, default=None)
            if prefix:
                yield path, name, PARTS[prefix]


def headers(root):
    """The part of each header, by its name and by its name below src or the root, as sources write it."""
    found = {}
    for path, name, part in parts(root):
        found.setdefault(name, part)
        # A name without its folder, outside of that, is that of an installed header, or one of src.
        if name.startswith(("src/", "hostsdk/")):
            found.setdefault(name.removeprefix("src/"), part)
            found.setdefault(path.name, part)
    return found


def included(path):
    """The names that a file includes."""
    return _INCLUDE.findall(path.read_text(encoding="utf-8"))


def edges(root):
    """{(from, to): {"h", "cpp"}}: that one part includes another, and in which kind of file."""
    of_header = headers(root)
    of_file = {path: part for path, _, part in parts(root)}
    found = {}
    for path, _, part in parts(root):
        for name in included(path):
            target = of_file.get(path.parent / name) or of_header.get(name)
            if target is not None and target != part:
                found.setdefault((part, target), set()).add(path.suffix[1:])
    return found


def products(root):
    """{folder of headers: parts}: which part includes headers of Qt's modules and of other libraries."""
    found = {}
    for path, _, part in parts(root):
        for name in included(path):
            if re.match(r"Qt[A-Z]\w*/|rapidjson/", name):
                found.setdefault(name.split("/")[0], set()).add(part)
    return found


def folders_included(root, folder):
    """The folders whose headers the files of a folder include by their whole names."""
    names = {name for path in sources(root, folder) for name in included(path)}
    return {str(pathlib.PurePath(name).parent) for name in names if "/" in name}
