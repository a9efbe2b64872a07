"""Names in backticks: files and folders exist, and so does every class, operation, member, option and variable."""

import pathlib
import re
import subprocess

import classes
import dotted

# Kinds of files whose names may stand without a folder.
_EXTENSIONS = (".h .cpp .md .json .sh .py .qml .txt .lua .cmake .pcapng .dot .svg .html .qmltypes .yaml .xml "
               ".supp .bb .install .symbols .abi .ini .trace .pc").split()
# What a span begins with that the checker of commands looks at.
COMMAND = re.compile(
    r"^([A-Z][A-Z0-9_]*=\S* )*"
    r"(\./dev|canbus-[a-z]+|ctest|cmake|c\+\+|man|git|gdb|grep|valgrind|callgrind_annotate|tshark|wireshark|sudo|apt-get|"
    r"dpkg|lintian|bash|python3|\S+\.sh|\S+\.py|build/\S+)( |$)"
)
_TOKEN = re.compile(r"(?<![\w.\-/])~?[A-Za-z_]\w*(?:::~?\w+)*")
_IDENTIFIER = re.compile(r"[A-Za-z_]\w*")
_SKIPPED = {".git", "build", "__pycache__"}


def files(root):
    """Every file of the tree, relative to its root: what git knows or would add, or else all but what a build made."""
    listed = subprocess.run(["git", "-c", "safe.directory=*", "-C", root, "ls-files", "-z", "--cached", "--others",
                             "--exclude-standard"], capture_output=True, text=True, check=False)
    if (pathlib.Path(root) / ".git").exists() and listed.returncode == 0:
        names = (pathlib.Path(name) for name in listed.stdout.split("\0") if name)
        return [name for name in names if (pathlib.Path(root) / name).is_file()]
    found = []
    for path in pathlib.Path(root).rglob("*"):
        parts = path.relative_to(root).parts
        if not _SKIPPED.intersection(parts) and path.is_file():
            found.append(path.relative_to(root))
    return found


def _code(path):
    """A source without its comments: what stands in a comment alone is no name."""
    text = path.read_text(encoding="utf-8", errors="ignore")
    if path.suffix in (".h", ".cpp", ".qml"):
        text = re.sub(r"//[^\n]*|/\*.*?\*/", " ", text, flags=re.DOTALL)
    return text


class Vocabulary:
    """All names that the project's sources have, and where."""

    def __init__(self, root, further=()):
        self.root = pathlib.Path(root)
        self.files = files(root)
        self.names = {path.name for path in self.files}
        self.folders = {parent for path in self.files for parent in path.parents}
        self.words = set()
        self.scopes = classes.Scopes()
        self.dotted = dotted.Names(root)
        self.texts = []
        for path in self.files:
            is_own = path.parts[:2] == ("tests", "docs")
            if path.suffix in (".md", ".png", ".pcapng", ".dot", ".svg") or is_own or "corpus" in path.parts:
                continue
            text = _code(self.root / path)
            if path.suffix in (".h", ".cpp"):
                self.scopes.add(text)
            self.texts.append(text)
            self.words.update(_IDENTIFIER.findall(text))
            self.words.add(path.stem)
        self.words.update(further)

    def has_member(self, owner, member):
        """Whether the one declares the other, or a source writes them so."""
        if re.match(r"Q[A-Z]", owner):
            return True  # Qt's own: both words are used here, and what it declares is not in the tree
        return self.scopes.has(owner, member) or any(f"{owner}::{member}" in text for text in self.texts)

    def has(self, name):
        """Whether the sources have this name, A::b among them."""
        owners = [part.lstrip("~") for part in name.split("::")]
        if any(part not in self.words for part in owners):
            return False
        return all(self.has_member(a, b) for a, b in zip(owners, owners[1:]))

    def has_prefix(self, prefix):
        """Whether a name of the sources begins so."""
        return any(word.startswith(prefix) for word in self.words)

    def has_path(self, name, folder):
        """Whether a file or folder is there: from the root, from the document's folder, or by its bare name."""
        pattern = re.sub(r"(?<![A-Za-z])(NAME|TARGET|FOLDER|FILE|PRESET|ARCH)(?![A-Za-z])", "*", name.rstrip("/"))
        if name.endswith("/") and "/" not in pattern:
            return any(folder.name == pattern for folder in self.folders)
        if "/" not in pattern and "*" not in pattern:
            is_there = (self.root / folder / pattern).exists()
            return is_there or pattern in self.names or pathlib.Path(pattern) in self.folders
        if "/" not in pattern:
            return any(path.match(pattern) for path in self.files)
        candidates = {*self.files, *self.folders}
        return any(self._fits(path, pattern) for path in candidates) or (self.root / folder / pattern).exists()

    @staticmethod
    def _fits(path, pattern):
        # From the root, or the last parts of a path below src, as sources include it.
        return len(path.parts) in (pattern.count("/") + 1, pattern.count("/") + 2) and path.match(pattern)


def is_path(text):
    """Whether a span is the name of a file or a folder."""
    if not re.fullmatch(r"[\w.*{}~$<>\-/+]+", text) or re.fullmatch(r"[\d./*+\-]+", text):
        return False
    return "/" in text.strip("/") or text.endswith("/") or any(
        text.endswith(extension) and len(text) > len(extension) for extension in _EXTENSIONS)


def _is_name(token, span):
    """Whether a token of a span is to be looked up: not a plain word, a byte or a value."""
    if token == span:
        return len(token) > 2 and not re.fullmatch(r"[0-9A-Fa-f]{2,4}|[A-Z]{1,8}", token)
    return ("::" in token or "_" in token or re.search(r"[a-z][A-Z]", token) is not None
            or re.search(re.escape(token) + r"\(", span) is not None) and len(token) > 2


def unknown(text, vocabulary, folder="."):
    """The names of a span that the project does not have."""
    if COMMAND.match(text) and not re.fullmatch(r"[\w.\-/]+", text):
        return []
    if is_path(text):
        if text.startswith(("/", "~", "build/", "$")):
            return []
        return [] if vocabulary.has_path(text, folder) else [text]
    if re.fullmatch(r"[\w:]+\*", text):
        return [] if vocabulary.has_prefix(text[:-1].split("::")[-1]) else [text]
    found = []
    for name in dotted.NAME.findall(text):
        if not vocabulary.dotted.has(name):
            found.append(name)
    for token in _TOKEN.findall(text):
        prefix = re.sub(r"(NAME|TARGET)$", "", token)
        if prefix != token and vocabulary.has_prefix(prefix):
            continue
        if _is_name(token, text.removesuffix("()")) and not vocabulary.has(token):
            found.append(token)
    return found


def exceptions(path):
    """The names that are let pass, each with its reason: "NAME | REASON"."""
    known = {}
    for number, line in enumerate(pathlib.Path(path).read_text(encoding="utf-8").splitlines(), 1):
        if line.strip() and not line.startswith("#"):
            name, separator, reason = (part.strip() for part in line.partition("|"))
            if not separator or not reason:
                raise ValueError(f"{path}:{number}: an exception is NAME | REASON")
            known[name] = reason
    return known


def labels(root):
    """The texts of the drawings, as spans of documents."""
    for path in sorted((pathlib.Path(root) / "docs/diagrams").glob("*.dot")):
        text = path.read_text(encoding="utf-8")
        for found in re.finditer(r'label="([^"]+)"', text):
            yield path.name, text.count("\n", 0, found.start()) + 1, found[1].replace("\\n", " ")


def check(root, documents, allowed, further=()):
    """What the documents name and the project does not have; and exceptions that nobody needs."""
    vocabulary = Vocabulary(root, further)
    findings, used = [], set()
    for document in documents:
        folder = pathlib.Path(document.name).parent
        for span in document.code:
            for name in unknown(span.text, vocabulary, folder):
                if name in allowed:
                    used.add(name)
                else:
                    findings.append(f"{document.name}:{span.line}: `{span.text}`: there is no {name}")
    for name, line, text in labels(root):
        named = [token for token in _TOKEN.findall(text) if "::" in token or token + "(" in text]
        findings += [f"{name}:{line}: {text}: there is no {token}" for token in named if not vocabulary.has(token)]
    findings += [f"exceptions.txt: no document names {name} any more" for name in allowed if name not in used]
    return findings
