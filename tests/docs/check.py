#!/usr/bin/env python3
"""Checks one thing about the documents of a tree: check.py WHAT ROOT [BUILD]."""

import pathlib
import sys

import claims
import diagrams
import form
import links
import markdown
import names
import performance
import plan
import structure

HERE = pathlib.Path(__file__).parent


def check_links(tree):
    """Links, with their headings and images."""
    return links.check(tree.root, markdown.documents(tree.root))


def check_names(tree):
    """Files, folders and names of the sources."""
    return names.check(tree.root, markdown.documents(tree.root), names.exceptions(HERE / "exceptions.txt"), tree.tests)


def check_commands(tree):
    """Who runs each command, and what it names."""
    return claims.check(markdown.documents(tree.root), plan.read(HERE / "commands.txt"), tree)


CHECKS = {
    "links": check_links,
    "form": lambda tree: form.check(markdown.documents(tree.root)),
    "names": check_names,
    "commands": check_commands,
    "performance": lambda tree: performance.check(tree.root),
    "structure": lambda tree: structure.check(tree.root),
    "diagrams": lambda tree: diagrams.check(tree.root),
}


def main(arguments):
    """Prints what is wrong, and tells it by the status."""
    if len(arguments) not in (2, 3) or arguments[0] not in CHECKS:
        print(f"check.py {'|'.join(CHECKS)} ROOT [BUILD]", file=sys.stderr)
        return 2
    findings = CHECKS[arguments[0]](claims.Tree(*arguments[1:]))
    for finding in findings:
        print(finding)
    print(f"{arguments[0]}: {len(findings) or 'no'} findings")
    return 1 if findings else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
