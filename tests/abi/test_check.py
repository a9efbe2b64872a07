"""packaging/abi/check.sh refuses what breaks a program, tells of what is new, and passes what is as it was.

Headers are changed in a copy of the installed ones, or of a small one, which compiles in no time; a library of one
file stands for the real one, which would take half a minute to build each time.
"""

from __future__ import annotations

import os
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
ABI = ROOT / "packaging" / "abi"
BUILD = Path(os.environ.get("CANBUS_BUILD_DIR", ROOT / "build" / "dev"))

LIBRARY = """
namespace canbus {
class __attribute__((visibility("default"))) Port {
public:
    bool open(int rate);
    void close();
    int rate = 0;
};
bool Port::open(int newRate) { rate = newRate; return rate > 0; }
void Port::close() { rate = 0; }
}
"""

SCREEN = """
namespace canbus {
struct Screen {
    int width;
    int height;
};
}
"""

MORE_TYPES = """
#define CANBUS_EXPORT __attribute__((visibility("default")))
namespace canbus {
class CANBUS_EXPORT Exported {
    int m_value;
};
struct Plain {
    int value;
};
enum class Kind { One, Two };
}
"""

INTERFACE = """
#include <screen.h>
namespace canbus {
// Of Plain, Kind and Exported a comment alone is no use.
void screen(Screen *) {}
}
"""


class Case(unittest.TestCase):
    """A library, a header of any name, and the baseline of both."""

    def setUp(self) -> None:
        self.folder = Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.folder)
        self.headers = self.folder / "include"
        self.baseline = self.folder / "baseline"
        self.abi = self.folder / "abi"
        for name in ("include", "baseline", "abi"):
            shutil.copytree(Case.common / name, self.folder / name)
        self.library = Case.common / "libport.so"

    @classmethod
    def setUpClass(cls) -> None:
        if hasattr(Case, "common"):
            return
        common = tempfile.TemporaryDirectory()
        unittest.addModuleCleanup(common.cleanup)
        Case.common = folder = Path(common.name)
        library = compile_library(folder, LIBRARY)
        shutil.copytree(ABI, folder / "abi")
        (folder / "abi/interface.cpp").write_text(INTERFACE)
        for name in ("include", "baseline"):
            (folder / name).mkdir()
        (folder / "include/screen.h").write_text(SCREEN)
        run_check(folder / "abi", folder / "baseline", library, folder / "include", "--update")

    def check(self, *options: str) -> tuple[int, str]:
        return run_check(self.abi, self.baseline, self.library, self.headers, *options)

    def change_header(self, name: str, old: str, new: str) -> None:
        header = self.headers / name
        text = header.read_text()
        self.assertEqual(text.count(old), 1, f"{old!r} is to stand in {name} once")
        header.write_text(text.replace(old, new))

    def change_library(self, old: str, new: str, more: str = "") -> None:
        self.assertIn(old, LIBRARY)
        self.library = compile_library(self.folder, LIBRARY.replace(old, new) + more)

    def assert_broken(self, *told: str) -> None:
        status, output = self.check()
        self.assertEqual(status, 1, output)
        self.assertIn("THE INTERFACE IS BROKEN", output)
        for text in told:
            self.assertIn(text, output)


def compile_library(folder: Path, source: str) -> Path:
    library = folder / "libport.so"
    command = ["c++", "-g", "-fPIC", "-shared", "-x", "c++", "-", "-Wl,-soname,libport.so.1", "-o", str(library)]
    subprocess.run(command, input=source, text=True, check=True)
    return library


def run_check(abi: Path, baseline: Path, library: Path, headers: Path, *options: str) -> tuple[int, str]:
    command = [str(abi / "check.sh"), "--baseline", str(baseline), "--library", str(library)]
    command += ["--headers", str(headers), *options]
    done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
    return done.returncode, done.stdout


class Functions(Case):
    def test_an_unchanged_interface_passes(self) -> None:
        status, output = self.check()
        self.assertEqual((status, "the interface is the committed one" in output), (0, True), output)

    def test_a_function_that_is_gone(self) -> None:
        self.change_library("void Port::close() { rate = 0; }", "")
        self.assert_broken("void canbus::Port::close()")

    def test_a_result_of_another_type(self) -> None:
        self.change_library("bool ", "int ")
        self.assert_broken("bool canbus::Port::open(int)", "int canbus::Port::open(int)")

    def test_an_argument_more(self) -> None:
        self.change_library("close()", "close(int)")
        self.assert_broken("void canbus::Port::close()")

    def test_a_function_more_is_told_as_growth_and_passes_once_it_is_written_down(self) -> None:
        self.change_library("void close();", "void close(); void flush();", "void canbus::Port::flush() {}")
        status, output = self.check()
        self.assertEqual(status, 1, output)
        self.assertIn("void canbus::Port::flush()", output)
        self.assertIn("The interface has grown", output)
        self.assertNotIn("BROKEN", output)
        self.check("--update")
        self.assertEqual(self.check()[0], 0)

    def test_another_name_of_the_library(self) -> None:
        functions = self.baseline / "functions.txt"
        functions.write_text(functions.read_text().replace("libport.so.1", "libport.so.0"))
        self.assert_broken("SONAME libport.so.0")


class Types(Case):
    """In the headers that are installed, with the committed baseline."""

    def setUp(self) -> None:
        super().setUp()
        shutil.rmtree(self.headers)
        shutil.copytree(Types.installed, self.headers)
        self.abi = ABI
        shutil.copy(ABI / "types.xml", self.baseline)

    @classmethod
    def setUpClass(cls) -> None:
        super().setUpClass()
        installed = Case.common / "installed"
        install = ["cmake", "--install", str(BUILD), "--component", "Development", "--prefix", str(installed)]
        subprocess.run(install, check=True, capture_output=True)
        Types.installed = installed / "include" / "canbusservice"

    def test_a_member_more_in_an_exported_class(self) -> None:
        self.change_header("canbusplayer.h", "CanBusPlayerPrivate *d;", "CanBusPlayerPrivate *d;\n    int more = 0;")
        self.assert_broken("class canbus::CanBusPlayer", "type size changed from 256 to 320")

    def test_members_in_another_order(self) -> None:
        self.change_header("canbusplayer.h", "bool minus = false;", "bool turned = false;")
        self.change_header("canbusplayer.h", "bool plus = false;", "bool minus = false;")
        self.change_header("canbusplayer.h", "bool turned = false;", "bool plus = false;")
        self.assert_broken("canbus::CanBusPlayer::TextScreen", "offset changed")

    def test_a_member_with_another_name(self) -> None:
        self.change_header("linkhealth.h", "quint64 givenUp = 0;", "quint64 dropped = 0;")
        self.assert_broken("canbus::LinkFigures", "givenUp", "dropped")

    def test_a_virtual_operation_more(self) -> None:
        self.change_header("canbusprotocol.h", "virtual LinkHealth *linkHealth() const;",
                           "virtual void flush();\n    virtual LinkHealth *linkHealth() const;")
        self.assert_broken("canbus::CanbusProtocol::flush", "stand in other places")

    def test_an_enumerator_with_another_value(self) -> None:
        self.change_header("linkhealth.h", "GivenUp, ", "GivenUp = 7, ")
        self.assert_broken("canbus::LinkHealth::Fate", "from value '2' to '7'")

    def test_an_enumerator_more_at_the_end(self) -> None:
        self.change_header("linkhealth.h", "NotAccepted,  ", "NotAccepted,\n        Lost, ")
        self.assert_broken("Fate::Lost")

    def test_a_type_more_that_is_not_looked_at(self) -> None:
        self.change_header("linkhealth.h", "    enum class Fate {",
                           "    enum class Extra { One, Two };\n    enum class Fate {")
        status, output = self.check()
        self.assertEqual(status, 1, output)
        self.assertIn("interface.cpp does not use canbus::LinkHealth::Extra, which", output)


class Declarations(Case):
    def test_a_type_is_watched_whatever_the_name_of_its_header(self) -> None:
        self.assertIn("name='Screen'", (self.baseline / "types.xml").read_text())
        self.change_header("screen.h", "int width;", "long width;")
        self.assert_broken("canbus::Screen", "type size changed")

    def test_each_type_that_a_header_declares_has_to_be_used(self) -> None:
        with (self.headers / "screen.h").open("a") as header:
            header.write(MORE_TYPES)
        for option in ((), ("--update",)):
            status, output = self.check(*option)
            self.assertEqual(status, 1, output)
            wanted = "interface.cpp does not use canbus::Exported, canbus::Kind, canbus::Plain, which"
            self.assertIn(wanted, output)

    def test_a_type_that_is_refused_does_not_touch_the_baseline(self) -> None:
        before = [path.read_text() for path in sorted(self.baseline.iterdir())]
        (self.headers / "more.h").write_text("struct Plain { int value; };\n")
        self.check("--update")
        self.assertEqual([path.read_text() for path in sorted(self.baseline.iterdir())], before)

    def test_a_type_that_is_only_named_or_stands_in_a_function_is_none_to_use(self) -> None:
        (self.headers / "more.h").write_text(
            "class Elsewhere; enum class Later : int;\n"
            "using Two = int (Elsewhere *, Later);\n"
            "inline int two() { struct Pair { int a, b; }; return Pair {1, 1}.a * 2; }\n"
            "static const int kTwo = two();\n")
        status, output = self.check()
        self.assertEqual(status, 0, output)


class Arguments(unittest.TestCase):
    def test_wrong_ones_end_with_2(self) -> None:
        for arguments in (["--what"], ["--library"], ["--library", "/nowhere/lib.so"]):
            with self.subTest(arguments):
                done = subprocess.run([str(ABI / "check.sh"), *arguments], capture_output=True, text=True)
                self.assertEqual(done.returncode, 2, done.stderr)
                self.assertEqual(done.stderr.count("\n"), 1)

    def test_a_library_without_debug_information_is_refused(self) -> None:
        with tempfile.TemporaryDirectory() as folder:
            library = compile_library(Path(folder), LIBRARY)
            subprocess.run(["strip", "--strip-debug", str(library)], check=True)
            status, output = run_check(ABI, ABI, library, Path(folder))
        self.assertEqual(status, 1)
        self.assertIn("no debug information", output)


if __name__ == "__main__":
    unittest.main()
