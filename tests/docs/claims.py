"""What is claimed about commands without running them: that somebody else does, and that names and options exist."""

import functools
import pathlib
import re
import shlex
import subprocess

import names
import shell

# Never run by the test that runs commands: they install packages, and build in the folder in which it runs.
OWN_SCRIPTS = re.compile(r"^([A-Z]\w*=\S+ )*(\./dev|sudo|apt|apt-get|\.ci/run)\b")


class Tree:
    """What commands are looked up in: the sources, and what they have been built to."""

    def __init__(self, root, build=None):
        self.root = pathlib.Path(root).resolve()
        self.build = pathlib.Path(build).resolve() if build else None
        self.vocabulary = names.Vocabulary(root)

    def text(self, path):
        """A file of the tree; empty where there is none."""
        file = self.root / path
        return file.read_text(encoding="utf-8", errors="ignore") if file.is_file() else ""

    @functools.cached_property
    def tests(self):
        """The names of all tests, none without a build."""
        if self.build is None:
            return set()
        listed = subprocess.run(["ctest", "--test-dir", self.build, "-N"], capture_output=True, text=True, check=True)
        return set(re.findall(r"Test\s+#\d+: (\S+)", listed.stdout))

    @functools.lru_cache(maxsize=None)
    def help(self, program):
        """What a program says of itself."""
        path = self.build / "bin" / program if self.build and program.startswith("canbus-") else program
        return subprocess.run([path, "--help"], capture_output=True, text=True, check=True).stdout

    @functools.cached_property
    def dev(self):
        """{command: its lines in the help of ./dev}."""
        lines = subprocess.run([self.root / "dev", "help"], capture_output=True, text=True, check=True).stdout
        return {found[1]: found[0] for found in re.finditer(r"^  (\w+)(?: .*)?\n(?:    .*\n)*", lines, re.MULTILINE)}

    def stage(self, name):
        """The command of a stage of .ci/run, or the body of the function that it calls; empty for none."""
        script = self.text(".ci/run")
        found = re.search(rf"^\s*stage {re.escape(name)} (.+)$", script, re.MULTILINE)
        body = found and re.search(rf"^{re.escape(found[1])}\(\) {{(.*?)}}\s*$", script, re.MULTILINE | re.DOTALL)
        return (body or found)[1] if found else ""


def someone_else(command, how, tree):
    """What is wrong with the claim that a stage or a test runs the command."""
    kind, _, rest = how.partition(" ")
    if kind == "stage":
        said = tree.stage(rest).split()
        if not said:
            return f".ci/run has no stage {rest}"
        return None if set(command.split()) <= set(said) else f"stage {rest} runs something else: {' '.join(said)}"
    if kind == "ctest":
        name, _, file = rest.partition(" in ")
        if name not in tree.tests:
            return f"there is no test {name}"
        script = " ".join(shell.normal(tree.text(file)).split())
        return None if " ".join(command.split()) in script else f"{file} does not run it"
    return None


def _words(text):
    try:
        return shlex.split(text, comments=True)
    except ValueError:
        return text.split()


def _options(words):
    return [word.split("=")[0] for word in words if re.match(r"--[a-z]", word)]


def _has_word(text, word):
    return re.search(rf"(?<![\w-]){re.escape(word)}(?![\w-])", text) is not None


def _dev(words, tree):
    if len(words) < 2 or not re.fullmatch(r"[a-z]+", words[1]):
        return
    if words[1] not in tree.dev:
        yield f"./dev has no command {words[1]}"
        return
    script = re.search(rf"^run_{words[1]}\(\) {{(.*?)^}}", tree.text("dev"), re.MULTILINE | re.DOTALL)
    called = re.findall(r"\$root/([\w./-]+)", script[1] if script else "")
    known = tree.dev[words[1]] + "".join(_script_text(path, tree) for path in called)
    yield from (f"./dev {words[1]} has no option {option}" for option in _options(words) if not _has_word(known, option))
    chosen = [word for word in words[2:] if re.fullmatch(r"[a-z][a-z0-9]*", word)]
    yield from (f"./dev {words[1]} knows no {word}" for word in chosen if not _has_word(known, word))


def _script_text(path, tree):
    """A script, with the Python programs beside it, to which it may hand its options."""
    if not path.endswith((".sh", ".py", "run")):
        return ""
    folder = (tree.root / path).parent
    return tree.text(path) + "".join(file.read_text(encoding="utf-8") for file in sorted(folder.glob("*.py")))


def _program(words, tree):
    name = pathlib.PurePath(words[0]).name
    if tree.build and (tree.build / "bin" / name).exists():
        known = tree.help(name)
        yield from (f"{name} has no option {option}" for option in _options(words)
                    if not _has_word(known, option))
    elif tree.build:
        yield f"there is no program {name}"


def _cmake(words, tree):
    presets = tree.text("CMakePresets.json")
    for word, following in zip(words, words[1:] + [""]):
        if word == "--preset" and f'"name": "{following}"' not in presets:
            yield f"there is no preset {following}"
        option = re.match(r"-D(CANBUS_\w+)", word)
        if option and option[1] not in tree.vocabulary.words:
            yield f"there is no option {option[1]}"


def _ctest(words, tree):
    known = tree.help("ctest")
    yield from (f"ctest has no option {option}" for option in _options(words) if not _has_word(known, option))
    for word, following in zip(words, words[1:] + [""]):
        if word == "-R" and tree.tests and not any(re.search(following, name) for name in tree.tests):
            yield f"no test is called {following}"


def _script(words, tree):
    path = words[0].removeprefix("./")
    if path.startswith("build/"):
        name = pathlib.PurePath(path).name
        if name.startswith("tst_") and name not in tree.vocabulary.words:
            yield f"there is no test program {name}"
    elif not (tree.root / path).is_file():
        yield f"there is no script {path}"
    else:
        known = _script_text(path, tree)
        yield from (f"{path} has no option {option}" for option in _options(words) if not _has_word(known, option))


def _files(words, tree):
    """Arguments that begin with a folder of the tree, and are no file of it."""
    for word in words:
        path = re.sub(r"^(\./|-\w+=|--[\w-]+=)", "", word).rstrip("/")
        top = path.split("/")[0]
        if top and "/" in path and pathlib.Path(top) in tree.vocabulary.folders and not tree.vocabulary.has_path(path, "."):
            yield f"there is no {path}"


def unknown(text, tree):
    """What a command names that does not exist: a subcommand, an option, a preset, a test, a variable."""
    words = _words(text)
    while words and re.match(r"[A-Z][A-Z0-9_]*=", words[0]):
        variable = words.pop(0).split("=")[0]
        if variable.startswith("CANBUS_") and variable not in tree.vocabulary.words:
            yield f"nothing reads {variable}"
    if not words:
        return
    yield from _files(words[1:], tree)
    name = pathlib.PurePath(words[0]).name
    checks = {"./dev": _dev, "cmake": _cmake, "ctest": _ctest}
    if words[0] in checks:
        yield from checks[words[0]](words, tree)
    elif re.fullmatch(r"canbus-[a-z]+", name):
        yield from _program(words, tree)
    elif "/" in words[0] and not words[0].startswith(("/", "$", "~")) and re.search(r"\.(sh|py)$|^build/", words[0]):
        yield from _script(words, tree)


def _stages(documents, tree):
    """The stages of .ci/run that docs/testing.md does not list."""
    shown = {span.text for document in documents if document.name == "docs/testing.md" for span in document.code}
    for command in re.findall(r"^\s*stage \w+ ./dev (.+)$", tree.text(".ci/run"), re.MULTILINE):
        if shown and command not in shown:
            yield f"docs/testing.md: does not say that .ci/run runs `{command}`"


def check(documents, plan, tree):
    """What is wrong with the commands of the documents, and with the table of how they are run."""
    findings, used = list(_stages(documents, tree)), set()
    for document in documents:
        for command in shell.of_document(document):
            where = f"{command.document}:{command.line}: {command.text}"
            how = plan.of(command)
            used.add((command.document, command.text))
            if not how and OWN_SCRIPTS.match(command.text):
                findings.append(f"{where}: nobody runs it: commands.txt is to say who does")
            findings += [f"{where}: {wrong}" for wrong in [someone_else(command.text, how, tree)] if wrong]
            parts = re.split(r" && |\n", command.text)
            findings += [f"{where}: {wrong}" for part in parts for wrong in unknown(part, tree)]
        for span in document.code:
            if " " in span.text and names.COMMAND.match(span.text):
                where = f"{document.name}:{span.line}: `{span.text}`"
                findings += [f"{where}: {wrong}" for wrong in unknown(span.text, tree)]
    findings += [f"commands.txt: no document has this command any more: {document}: {text}"
                 for document, text in plan.how if (document, text) not in used]
    return findings
