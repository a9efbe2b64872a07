"""What an installation holds, from the lists in tests/e2e/install, and a check that packages share it out."""

import fnmatch
import pathlib

LISTS = ("runtime", "development", "qml", "demo")


def installed_files(source, config="none"):
    """Every installed file of the tree `source`, below the prefix; for a build of that configuration."""
    files = []
    for name in LISTS:
        text = (pathlib.Path(source) / "tests/e2e/install" / f"{name}.txt").read_text()
        files += text.replace("@config@", config).split()
    return files


def covers(pattern, file):
    """Whether an entry of a package names the file: by a path, a folder above it, or a pattern for its name."""
    return file == pattern or file.startswith(pattern.rstrip("/") + "/") or (
        file.count("/") == pattern.count("/") and fnmatch.fnmatchcase(file, pattern))


def complaints(files, packages):
    """What is wrong, a line each: `packages` has the patterns of each package by its name."""
    wrong = []
    for file in files:
        owners = [name for name, patterns in packages.items() if any(covers(each, file) for each in patterns)]
        if len(owners) != 1:
            wrong.append(f"{file} is in {'no package' if not owners else ' and '.join(owners)}")
    for name, patterns in packages.items():
        for pattern in patterns:
            if not any(covers(pattern, file) for file in files):
                wrong.append(f"{name} names {pattern}, which is not installed")
    return wrong
