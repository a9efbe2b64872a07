#!/usr/bin/env python3
"""Every installed file is in exactly one Debian package, and the packages name nothing else."""

import pathlib
import sys
import unittest

from installed import complaints, installed_files

SOURCE = pathlib.Path(__file__).resolve().parents[2]
DEBIAN = SOURCE / "packaging/debian"
# Where the package's build puts what the lists have in CMake's own places.
PLACES = {"lib/": "usr/lib/${DEB_HOST_MULTIARCH}/", "share/zsh/site-functions/": "usr/share/zsh/vendor-completions/"}


def placed(file):
    for ours, theirs in PLACES.items():
        if file.startswith(ours):
            return theirs + file[len(ours):]
    return "usr/" + file


def entries(file):
    """The first words of a debhelper list: what is to be packaged."""
    lines = (line.split("#")[0].split() for line in file.read_text().splitlines())
    return [words[0] for words in lines if words]


def packages():
    lists = {file.stem: entries(file) for file in sorted(DEBIAN.glob("*.install"))}
    lists["not-installed"] = entries(DEBIAN / "not-installed")
    return lists


class DebianFiles(unittest.TestCase):
    def test_everyInstalledFileIsInOnePackage(self):
        from_installation = {name: [each for each in found if each.startswith("usr/")]
                             for name, found in packages().items()}
        files = [placed(file) for file in installed_files(SOURCE)]
        self.assertEqual(complaints(files, from_installation), [])

    def test_whatIsTakenFromTheTreeIsThere(self):
        for name, found in packages().items():
            for each in found:
                with self.subTest(package=name, file=each):
                    self.assertTrue(each.startswith("usr/") or (SOURCE / each).exists())

    def test_eachListBelongsToAPackage(self):
        control = (DEBIAN / "control").read_text().splitlines()
        declared = {line.split()[1] for line in control if line.startswith("Package: ")}
        self.assertEqual(set(packages()) - {"not-installed"}, declared)


class Complaints(unittest.TestCase):
    """The check itself finds what is wrong."""

    def test_aFileInNoPackage(self):
        self.assertEqual(complaints(["bin/a", "bin/b"], {"one": ["bin/a"]}), ["bin/b is in no package"])

    def test_aFileInTwoPackages(self):
        self.assertEqual(complaints(["lib/x/a"], {"one": ["lib/x"], "two": ["lib/x/*"]}), ["lib/x/a is in one and two"])

    def test_anEntryWithoutAFile(self):
        self.assertEqual(complaints(["bin/a"], {"one": ["bin/a", "bin/b"]}),
                         ["one names bin/b, which is not installed"])


if __name__ == "__main__":
    sys.exit(unittest.main())
