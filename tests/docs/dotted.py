"""Names with dots: items and commands of scenarios, members of QML types, fields of the dissector."""

import json
import pathlib
import re

NAME = re.compile(r"(?<![\w.\-/:])[A-Za-z]\w*(?:\.(?:\w+|\*))+")
_WORD = re.compile(r"[A-Za-z_]\w*")
# The objects of the monitor, by the QML types of the same interface.
_OBJECTS = {"climate": "Climate", "gauges": "Gauges", "vehicle": "Vehicle", "parking": "Parking", "player": "CanBusPlayer"}


def _strings(value):
    """All keys and texts of a JSON document."""
    if isinstance(value, dict):
        for key, inner in value.items():
            yield key
            yield from _strings(inner)
    elif isinstance(value, list):
        for inner in value:
            yield from _strings(inner)
    elif isinstance(value, str):
        yield value


class Names:
    """What may stand behind a dot, by what stands before it."""

    def __init__(self, root):
        root = pathlib.Path(root)
        schema = self._text(root / "scenarios/scenario.schema.json")
        self.items = {text for text in _strings(json.loads(schema or "{}")) if re.fullmatch(r"\w+(\.\w+)+", text)}
        self.members = self._qml_types(self._text(root / "qml/plugins.qmltypes"))
        for path in sorted((root / "demo/qml").rglob("*.qml")):
            self.members.setdefault(path.stem, set(_WORD.findall(self._text(path))))
        for name, of_qml in _OBJECTS.items():
            if of_qml in self.members:
                self.members[name] = self.members[of_qml]
        self.members["host"] = set(_WORD.findall(self._text(root / "tools/monitor/hostcontrols.cpp")))
        self.fields = set(_WORD.findall(self._text(root / "tools/wireshark/canbus.lua")))

    @staticmethod
    def _text(path):
        return path.read_text(encoding="utf-8") if path.is_file() else ""

    @staticmethod
    def _qml_types(text):
        """{type as QML calls it: its properties, methods and signals}."""
        found = {}
        for block in re.split(r"^    Component \{", text, flags=re.MULTILINE)[1:]:
            exported = re.search(r'exports: \["\w+/(\w+) ', block)
            if exported:
                members = re.findall(r'(?:Property|Method|Signal) \{\s*name: "(\w+)"', block)
                found[exported[1]] = set(members) | {"valid", "stale"}
        return found

    def _is_item(self, name):
        plain = re.sub(r"\.(\d+|\*)$", "", name)
        return plain in self.items or name.endswith(".*") and any(item.startswith(plain + ".") for item in self.items)

    def has(self, name):
        """Whether there is such a name; also where nothing is known of what stands before the first dot."""
        first, _, rest = name.partition(".")
        if first == "canbus":
            return self._is_item(rest) or all(word in self.fields for word in _WORD.findall(rest))
        groups = {item.partition(".")[0] for item in self.items}
        if first not in groups and first not in self.members:
            return True
        return self._is_item(name) or rest.split(".")[0] in self.members.get(first, ())
