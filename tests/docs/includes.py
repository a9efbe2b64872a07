"""Which part of the tree includes which: read from the sources, as the compiler would find the headers."""

import pathlib
import re

# The parts of the structure, by their folders: the longest that matches counts.
PARTS = {
    "src/support": "support",
    "src/link": "link",
    "src/serial": "serial",
    "src/player": "player",
    "src/groups": "groups",
    "hostsdk/include": "hostsdk",
    "hostsdk/reference": "reference",
    "commandline": "commandline",
    "recording": "recording",
    "boxsim": "boxsim",
    "tools/monitor": "monitor",
    "qml": "qml",
    "demo": "demo",
}

_INCLUDE = re.compile(r'^\s*#\s*include\s+[<"]([^>"]+)[>"]', re.MULTILINE)


def sources(root, folder):
    """The C++ files of a part, those of folders within it too."""
    files = (pathlib.Path(root) / folder).rglob("*")
    return sorted(path for path in files if path.suffix in (".h", ".cpp"))


def headers(root):
    """The part of each header, by its name and by its name below src/ or the root, as sources write it."""
    parts = {}
    for folder, part in PARTS.items():
        for path in sources(root, folder):
            for base in (pathlib.Path(root), pathlib.Path(root) / "src"):
                if path.is_relative_to(base):
                    parts.setdefault(str(path.relative_to(base)), part)
            # An unqualified name outside its own folder is that of an installed header, or one of src.
            if folder.startswith(("src/", "hostsdk/")):
                parts.setdefault(path.name, part)
    return parts


def edges(root):
    """{(from, to): {"h", "cpp"}}: that one part includes another, and in which kind of file."""
    parts = headers(root)
    found = {}
    for folder, part in PARTS.items():
        for path in sources(root, folder):
            for name in _INCLUDE.findall(path.read_text(encoding="utf-8")):
                target = part if (path.parent / name).exists() else parts.get(name)
                if target is not None and target != part:
                    found.setdefault((part, target), set()).add(path.suffix[1:])
    return found


def products(root):
    """{folder of headers: parts}: which part includes headers of Qt's modules and of other libraries."""
    found = {}
    for folder, part in PARTS.items():
        for path in sources(root, folder):
            for name in _INCLUDE.findall(path.read_text(encoding="utf-8")):
                if re.match(r"Qt[A-Z]\w*/|rapidjson/", name):
                    found.setdefault(name.split("/")[0], set()).add(part)
    return found


def folders_included(root, folder):
    """The folders whose headers the files of a folder include by their whole names."""
    names = {name for path in sources(root, folder) for name in _INCLUDE.findall(path.read_text(encoding="utf-8"))}
    return {str(pathlib.PurePath(name).parent) for name in names if "/" in name}
