"""What is declared within which class, enumeration or namespace of the C++ sources."""

import re

_SCOPE = re.compile(r"\b(?:class|struct|namespace|enum(?:\s+(?:class|struct))?)\s+(?:CANBUS_EXPORT\s+|HOSTSDK_EXPORT\s+)?"
                    r"([\w:]+)\s*(?:final\s*)?(:[^;{()]*)?\{")
_WORD = re.compile(r"[A-Za-z_]\w*")


def _body(text, start):
    """The text from an opening brace to its closing one."""
    depth = 0
    for brace in re.finditer(r"[{}]", text[start:]):
        depth += 1 if brace[0] == "{" else -1
        if depth == 0:
            return text[start : start + brace.end()]
    return text[start:]


def without_functions(body):
    """A body without what functions within it do: their calls declare nothing."""
    inner = body[1:-1]
    while True:
        shorter = re.sub(r"(\)\s*(?:const|noexcept|override|\s)*(?::[^;{}]*)?)\{[^{}]*\}", r"\1;", inner)
        if shorter == inner:
            return inner
        inner = shorter


class Scopes:
    """The words within each scope, those of its bases included."""

    def __init__(self):
        self._words = {}
        self._bases = {}

    def add(self, text):
        """The scopes of a source without comments."""
        for found in _SCOPE.finditer(text):
            name = found[1].split("::")[-1]
            body = without_functions(_body(text, found.end() - 1))
            self._words.setdefault(name, set()).update(_WORD.findall(body))
            bases = _WORD.findall(found[2] or "")
            self._bases.setdefault(name, set()).update(set(bases) - {"public", "private", "protected", "virtual", name})

    def has(self, owner, member):
        """Whether the scope, or one that it builds upon, declares the member; false for a scope that is not there."""
        return member in self._words.get(owner, ()) or any(self.has(base, member) for base in self._bases.get(owner, ()))
