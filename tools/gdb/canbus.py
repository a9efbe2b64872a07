"""Shows the link's state in gdb as the documents write it: bytes in hex, frames by their names, figures that are not 0.

In gdb: source tools/gdb/canbus.py. From then on print, backtrace and "info locals" show
  QByteArray           its size and bytes
  FrameDataFormat      the fields of a received frame, with the category's name
  SendQueue            the link's state, and each cached frame with the command's name
  LinkEffect           what a decision asks for
  LinkHealth           its figures, without those that are 0; LinkFigures likewise
"print/r" shows what lies behind.
"""
import gdb
import gdb.printing

MOST_BYTES = 64  # of an array that are printed
ESCAPE = 0x9F


def byte_list(array):
    """The bytes of a QByteArray, or None when its memory cannot be read."""
    try:
        data = array["d"].dereference()
        start = int(array["d"]) + int(data["offset"])
        return list(bytes(gdb.selected_inferior().read_memory(start, int(data["size"]))))
    except gdb.MemoryError:
        return None


def hexadecimal(values):
    """Bytes as the documents write them."""
    return " ".join(f"{value:02x}" for value in values)


def bytes_text(array):
    """A byte array in one line."""
    values = byte_list(array)
    if values is None:
        return "<unreadable bytes>"
    more = f" and {len(values) - MOST_BYTES} more" if len(values) > MOST_BYTES else ""
    return f"{len(values)} bytes: {hexadecimal(values[:MOST_BYTES])}{more}" if values else "no bytes"


def enumerator(type_name, value):
    """The name of a value, or None when the type has no such value."""
    for field in gdb.lookup_type(type_name).fields():
        if field.enumval == value:
            return field.name.rpartition("::")[2]
    return None


def short_name(value):
    """An enumerator without the scopes before it."""
    return str(value).rpartition("::")[2]


def of_type(type_name, values):
    """The name that the first of the bytes has in an enumeration, with the byte."""
    if not values:
        return "none"
    name = enumerator(type_name, values[0])
    return f"{name} ({values[0]:02x})" if name else f"{values[0]:02x}"


def command_text(frame):
    """A command's frame, complete as on the wire."""
    wire = byte_list(frame)
    if wire is None or len(wire) < 8:
        return bytes_text(frame)
    fields, at = [], 2
    while at < len(wire) - 2:
        fields.append(wire[at])
        at += 2 if wire[at] == ESCAPE else 1
    return f"{of_type('canbus::Command', fields[1:2])}, id {fields[0]:02x}: {hexadecimal(wire)}"


class Printer:
    """Something that is shown in one line."""

    def __init__(self, value):
        self.value = value

    def to_string(self):
        """What gdb prints."""
        raise NotImplementedError


class ByteArray(Printer):
    """QByteArray."""

    def to_string(self):
        return bytes_text(self.value)


class FrameDataFormat(Printer):
    """canbus::FrameDataFormat."""

    def to_string(self):
        def field(name):
            return hexadecimal(byte_list(self.value[name]) or []) or "none"

        category = of_type("canbus::Category", byte_list(self.value["TP"]))
        return (f"id {field('id')}, TP {category}, MOD {field('MOD')}, DATA {field('DATA')}, "
                f"CS {int(self.value['CS']):02x}")


class SendQueue(Printer):
    """canbus::SendQueue."""

    def frames(self):
        """The cached frames, in the order in which they are sent."""
        data = self.value["m_cache"]["p"]["d"].dereference()
        slots = data["array"].address.cast(gdb.lookup_type("QByteArray").pointer())
        return [slots[index] for index in range(int(data["begin"]), int(data["end"]))]

    def to_string(self):
        state = "handshaking" if self.value["m_handshaking"] else "connected"
        text = f"{state}, {len(self.frames())} cached"
        if int(self.value["m_currentId"]):
            text += f", id {int(self.value['m_currentId']):02x} under way, sent {self.value['m_transmissions']} times"
        return text

    def children(self):
        """The frames."""
        for index, frame in enumerate(self.frames()):
            yield f"[{index}]", command_text(frame)


class LinkEffect(Printer):
    """canbus::LinkEffect."""

    def to_string(self):
        kind = short_name(self.value["kind"])
        if kind in ("StartTimer", "StopTimer"):
            return f"{kind} {short_name(self.value['timer'])}"
        if kind == "Write":
            return f"Write {command_text(self.value['frame'])}"
        if kind == "Ended":
            return (f"Ended {short_name(self.value['fate'])} after {self.value['transmissions']} transmissions, "
                    f"{self.value['microseconds']} us: {command_text(self.value['frame'])}")
        return kind


class Counter(Printer):
    """canbus::Counter."""

    def to_string(self):
        return str(count(self.value))


def count(counter):
    """What a Counter stands at."""
    return int(counter["m_value"]["_M_i"])


class Figures(Printer):
    """The counters of canbus::LinkHealthPrivate; those that are 0 are left out."""

    def counted(self):
        """Each figure with its name."""
        for field in self.value.type.fields():
            if field.type.name == "canbus::Counter":
                yield field.name.replace("m_", "", 1), count(self.value[field.name])
        for name, direction in (("m_received", "frames of "), ("m_sent", "frames of command ")):
            table = self.value[name]["_M_elems"]
            first, last = table.type.strip_typedefs().range()
            for index in range(first, last + 1):
                yield direction + table[index]["name"].string(), count(table[index]["frames"])

    def to_string(self):
        return "figures that are not 0"

    def children(self):
        """Those that are not 0."""
        return ((name, value) for name, value in self.counted() if value)


class LinkHealth(Figures):
    """canbus::LinkHealth, by the counters that it shares."""

    def __init__(self, value):
        super().__init__(value["d"]["_M_ptr"].dereference())


class LinkFigures(Figures):
    """canbus::LinkFigures; its maps are left out."""

    def counted(self):
        for field in self.value.type.fields():
            if field.type.strip_typedefs().code == gdb.TYPE_CODE_INT and hasattr(field, "bitpos"):
                yield field.name, int(self.value[field.name])


def collection():
    """All printers, as gdb takes them."""
    printers = gdb.printing.RegexpCollectionPrettyPrinter("canbus")
    printers.add_printer("QByteArray", "^QByteArray$", ByteArray)
    for printer in (FrameDataFormat, SendQueue, LinkEffect, Counter, LinkHealth, LinkFigures):
        printers.add_printer(printer.__name__, f"^canbus::{printer.__name__}$", printer)
    printers.add_printer("LinkHealthPrivate", "^canbus::LinkHealthPrivate$", Figures)
    return printers


gdb.printing.register_pretty_printer(None, collection(), replace=True)
