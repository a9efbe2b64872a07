#!/usr/bin/env python3
"""A document as a page of the reference: links to other documents, which are not part of it, become their text, and
pictures go by their names, as Doxygen finds them."""

import re
import sys

# Documents that the reference has.
HERE = ("qml.md",)


def page(text: str) -> str:
    def link(match: re.Match[str]) -> str:
        return match[0] if match[2].split("/")[-1] in HERE else match[1]

    text = re.sub(r"(!\[[^]\n]*\])\((?:[\w.-]+/)+([\w-]+\.(?:png|svg))\)", r"\1(\2)", text)
    return re.sub(r"(?<!!)\[([^]\n]*)\]\(([\w./-]*\.md)(?:#[\w-]*)?\)", link, text)


if __name__ == "__main__":
    with open(sys.argv[1], encoding="utf-8") as document:
        sys.stdout.write(page(document.read()))
