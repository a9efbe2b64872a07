"""The layer for Yocto: that it can be read, names what there is, and lays each installed file into one package."""

from __future__ import annotations

import re
import sys
import unittest
from pathlib import Path

import bitbake

SOURCES = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(SOURCES / "tests" / "packages"))
import installed
LAYER = SOURCES / "packaging" / "yocto"
RECIPES = sorted(LAYER.glob("recipes-*/*/*.bb"))

# What the build system sets, as it is on a machine whose libraries lie in /usr/lib.
KNOWN = {
    "LAYERDIR": "/layer",
    "THISDIR": "/layer/recipes-canbus/canbusservice",
    "PN": "canbusservice",
    "prefix": "/usr",
    "bindir": "/usr/bin",
    "datadir": "/usr/share",
    "includedir": "/usr/include",
    "libdir": "/usr/lib",
    "mandir": "/usr/share/man",
    "OE_QMAKE_PATH_QML": "/usr/lib/qml",
}
# Packages that the build system makes for each recipe, those that other recipes make, and other recipes.
OWN_ANYWAY = {"${PN}", "${PN}-dev", "${PN}-doc"}
FOREIGN_PACKAGES = {"qtdeclarative-qmlplugins"}
FOREIGN_RECIPES = {"qtbase", "qtserialport", "qtdeclarative", "rapidjson"}


def installed_files() -> list[str]:
    """As a build of the layer lays them out, from the root on."""
    files = installed.installed_files(SOURCES, "release")
    return [f"usr/{file}".replace("/lib/qt5/qml/", "/lib/qml/") for file in files]


def patterns_of(recipe: bitbake.Recipe) -> dict[str, list[str]]:
    """The entries of each package, from the root on too."""
    files = {name[len("FILES:") :]: text for name, text in recipe.values.items() if name.startswith("FILES:")}
    return {
        package: [pattern.lstrip("/") for pattern in bitbake.expanded(recipe, text, KNOWN).split()]
        for package, text in files.items()
    }


class Layer(unittest.TestCase):
    def setUp(self) -> None:
        self.assertEqual(len(RECIPES), 1)
        self.recipe = bitbake.read(RECIPES[0])
        self.layer = bitbake.read(LAYER / "conf" / "layer.conf")

    def test_uses_only_variables_that_there_are(self) -> None:
        for recipe in (self.recipe, self.layer):
            names = {name.split(":")[0] for name in recipe.values}
            self.assertLessEqual(bitbake.uses(recipe), names | set(KNOWN))

    def test_the_layer_finds_its_recipe(self) -> None:
        pattern = bitbake.expanded(self.layer, self.layer.values["BBFILES"], {"LAYERDIR": str(LAYER)}).strip()
        self.assertEqual(sorted(LAYER.glob(str(Path(pattern).relative_to(LAYER)))), RECIPES)
        self.assertEqual(self.layer.words("BBFILE_COLLECTIONS"), ["canbusservice"])
        self.assertIn("qt5-layer", self.layer.words("LAYERDEPENDS_canbusservice"))

    def test_builds_the_tree_that_it_lies_in(self) -> None:
        way = re.search(r"'((?:\.\./?)+)'", self.recipe.values["EXTERNALSRC"])
        self.assertIsNotNone(way)
        self.assertEqual((RECIPES[0].parent / way[1]).resolve(), SOURCES)
        self.assertIn("externalsrc", self.recipe.inherited)
        self.assertIn("cmake_qt5", self.recipe.inherited)

    def test_has_the_version_of_the_project(self) -> None:
        version = re.search(r"^  VERSION (\S+)$", (SOURCES / "CMakeLists.txt").read_text(encoding="utf-8"), re.M)
        self.assertEqual(RECIPES[0].stem, f"canbusservice_{version[1]}")

    def test_gives_options_that_the_project_has(self) -> None:
        texts = [path.read_text(encoding="utf-8") for path in (SOURCES / "CMakeLists.txt", SOURCES / "qml/CMakeLists.txt")]
        options = set(re.findall(r"\boption\((CANBUS_\w+)|set\((CANBUS_\w+)\s[^)]*?CACHE", "".join(texts)))
        known = {name for pair in options for name in pair if name}
        given = set(re.findall(r"-D(\w+)=", " ".join(self.recipe.values.values())))
        self.assertGreater(len(given), 3)
        self.assertLessEqual(given, known)

    def test_each_file_is_in_one_package_and_each_entry_finds_one(self) -> None:
        self.assertEqual(installed.complaints(installed_files(), patterns_of(self.recipe)), [])

    def test_each_package_is_listed_and_depends_on_such_as_there_are(self) -> None:
        listed = set(self.recipe.words("PACKAGES"))
        named = {name.split(":", 1)[1] for name in self.recipe.values if name.startswith(("FILES:", "RDEPENDS:"))}
        self.assertLessEqual(listed, named)
        self.assertLessEqual(named, listed | OWN_ANYWAY)
        for name in self.recipe.values:
            if name.startswith("RDEPENDS:"):
                self.assertLessEqual(set(self.recipe.words(name)), listed | FOREIGN_PACKAGES)
        switches = [text.split(",") for name, text in self.recipe.values.items() if name.startswith("PACKAGECONFIG[")]
        needed = " ".join([self.recipe.values["DEPENDS"], *(switch[2] for switch in switches)])
        self.assertLessEqual(set(needed.split()), FOREIGN_RECIPES)


class Parser(unittest.TestCase):
    """That a mistake would be found."""

    def test_what_cannot_be_read_is_refused(self) -> None:
        for what, text in {
            "a value without an end": 'A = "one',
            "a value without quotes": "A = one",
            "a quote within": 'A = "one" two"',
            "a space behind a backslash": 'A = "one \\ \n two"',
            "a comment within a value": 'A = "one \\\n# two\\\n"',
            "a file that ends within a value": 'A = "one \\',
            "a function without an end": 'do_install() {\n    true\n',
            "what is neither": "one two",
        }.items():
            with self.subTest(what), self.assertRaises(bitbake.Mistake):
                bitbake.parse(text)

    def test_an_expression_that_does_not_compile_is_refused(self) -> None:
        with self.assertRaises(SyntaxError):
            bitbake.uses(bitbake.parse('A = "${@one two}"'))
        with self.assertRaises(bitbake.Mistake):
            bitbake.uses(bitbake.parse('A = "${one"'))

    def test_values_are_joined_as_their_operators_say(self) -> None:
        recipe = bitbake.parse('A = "1"\nA += "2"\nA =+ "0"\nA .= "3"\nA ?= "4"\nB[c] = "5"\nA:d = "6 \\\n  7"')
        self.assertEqual(recipe.values, {"A": "0 1 23", "B[c]": "5", "A:d": "6   7"})

    def test_a_file_in_two_packages_and_one_in_none_are_found(self) -> None:
        recipe = bitbake.parse('FILES:a = "${libdir}/*.so.*"\nFILES:b = "${libdir}/x ${libdir}/y.so.1"')
        files = ["usr/lib/z.so.1", "usr/lib/x/file", "usr/lib/y.so.1", "usr/lib/z"]
        self.assertEqual(
            installed.complaints(files, patterns_of(recipe)),
            ["usr/lib/y.so.1 is in a and b", "usr/lib/z is in no package"],
        )


if __name__ == "__main__":
    unittest.main()
