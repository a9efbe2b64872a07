"""The form that the documents share: how they begin, and how they show what is copied."""

import re

_OPENING = re.compile(r"\bFor\s+(people\s+)?who\b")
_LIST = re.compile(r"^\s*([-*+]|\d+\.)\s")


def check(documents):
    """Where a document leaves the common form."""
    findings = []
    for document in documents:
        for block in document.blocks:
            if not block.language:
                findings.append(f"{document.name}:{block.line - 1}: a block without a language, sh or text for example")
            if block.language == "sh" and re.search(r"^\s*\$ ", block.text, re.MULTILINE):
                findings.append(f"{document.name}:{block.line}: a command is shown without a prompt")
        findings += [f"{document.name}:{line}: a block is fenced, not indented" for line in _indented(document.prose)]
        if document.name.startswith("docs/") and document.name.count("/") == 1:
            findings += _opening(document)
    return findings


def _indented(lines):
    in_list = False
    for number, line in enumerate(lines, 1):
        if line.strip() and not line.startswith(" "):
            in_list = False
        in_list = in_list or _LIST.match(line) is not None
        if line.startswith("    ") and not in_list and number > 1 and not lines[number - 2].strip():
            yield number


def _opening(document):
    paragraphs = "\n".join(document.prose).split("\n\n")
    if not paragraphs[0].startswith("# "):
        yield f"{document.name}:1: begins with its title"
    if len(paragraphs) < 2 or not _OPENING.search(paragraphs[1]):
        yield f"{document.name}:3: says first what it is and for whom"
