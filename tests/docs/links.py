"""Links: a relative one resolves within the project, with its heading; an image is there and is described."""

import pathlib
import re
import urllib.parse

import names

_EXTERNAL = re.compile(r"^https?://[A-Za-z0-9.-]+\.[A-Za-z]{2,}(:\d+)?(/[^\s<>\"]*)?$")


def check(root, documents):
    """What is wrong with the links of the documents, a line each."""
    root = pathlib.Path(root).resolve()
    tree = {root / path for path in names.files(root)}
    tree |= {folder for path in tree for folder in path.parents}
    anchors = {document.path.resolve(): document.anchors() for document in documents}
    findings = []
    for document in documents:
        for link in document.links:
            problem = _problem(root, document, link, anchors, tree)
            if problem:
                findings.append(f"{document.name}:{link.line}: {link.text}: {problem}")
    return findings


def _problem(root, document, link, anchors, tree):
    if re.match(r"^[a-z][a-z0-9+.-]*:", link.text):
        return None if _EXTERNAL.match(link.text) else "is no well-formed address"
    target, _, anchor = urllib.parse.unquote(link.text).partition("#")
    path = (document.path.parent / target).resolve() if target else document.path.resolve()
    if target.startswith("/") or not path.is_relative_to(root):
        return "leads out of the project"
    if path not in tree:
        return "is not there"
    if link.image:
        is_told = path.is_file() and link.shown.strip()
        return None if is_told else "is an image without a text for those who do not see it"
    if anchor and anchor not in anchors.get(path, ()):
        return f"has no heading for #{anchor}"
    return None
