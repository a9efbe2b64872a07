#!/usr/bin/env python3
"""Writes the seed corpora into the folders of fuzz/corpus: frames, recordings and scenarios by hand, in the
form that each target reads. Run it after a change here, and commit what it writes."""

import pathlib
import struct

CORPUS = pathlib.Path(__file__).resolve().parent / "corpus"


def b(text):
    return bytes.fromhex(text)


FRAMES = {
    "connect-request": b("9f02 21 01 00 0000 20 9f03"),
    "ready": b("9f02 40 01 00 0001 40 9f03"),
    "not-ready": b("9f02 41 01 00 0000 40 9f03"),
    "ack": b("9f06 40 40 9f03"),
    "nack": b("9f15 50 50 9f03"),
    "ack-of-9f": b("9f06 9f9f 9f9f 9f03"),
    "screens": b("9f02 48 02 00 1f 55 9f03"),
    "climate": b("9f02 50 03 02 00d700cd54402001805534000114 16 9c 9f03"),
    "climate-labels": b("9f02 52 03 01 4f6e004f666600 3e 9f03"),
    "gauges": b("9f02 58 04 05 809e4305002000400060007f393500 72 9f03"),
    "vehicle": b("9f02 60 05 02 210416 54 9f03"),
    "parking-with-9f": b("9f02 68 06 02 10209f9f4001020408 0000000000000000 31 bd 9f03"),
    "transition": b("9f02 70 07 00 02 75 9f03"),
    "text-screen": b("9f02 78 11 00 010203040341004200 6d 9f03"),
    "check-is-9f": b("9f02 50 93 00 1b0146 9f9f 9f03"),
    "unknown-category": b("9f02 50 7e 00 01 2f 9f03"),
    "wrong-check": b("9f02 48 02 00 1f 54 9f03"),
    "9f-before-03": b("9f02 48 02 00 9f9f03 d6 9f03"),
    "only-marks": b("9f02 9f03"),
    "only-an-id": b("9f02 00 9f03"),
    "no-id": b("9f15 9f03"),
}


def write(target, name, content):
    folder = CORPUS / target
    folder.mkdir(parents=True, exist_ok=True)
    (folder / name).write_bytes(content)


def stream():
    # Chunks of one byte, of all, of four and nine bytes by turns.
    for index, (name, frame) in enumerate(FRAMES.items()):
        write("stream", name, bytes([(0x00, 0xFF, 0x21)[index % 3], 0]) + frame)
    write("stream", "noise-before", b("ff00 55aa9f9f00") + FRAMES["ready"])
    write("stream", "escape-waits", b("ff00") + FRAMES["screens"][:-1])
    write("stream", "two-frames", b("ff00") + FRAMES["parking-with-9f"] + FRAMES["ready"])
    write("stream", "at-the-limit", b("ff7f") + FRAMES["ready"])
    write("stream", "over-the-limit", b("ffff") + FRAMES["ready"])


def frames():
    for index, (name, frame) in enumerate(FRAMES.items()):
        write("frames", name, bytes([5, len(frame) + 3 - index % 2]) + frame)
    for name, content in {
        "content": b("50 93 00 1b0146"),
        "content-all-9f": b("9f 9f 9f 9f9f9f"),
        "content-with-marks": b("02 03 06 15029f06"),
        "empty": b(""),
    }.items():
        write("frames", "built-" + name, b("0000") + content)


def arrives(data):
    return bytes([len(data)]) + data


def protocol():
    for name, frame in FRAMES.items():
        write("protocol", name, arrives(frame))
    command = b("9f02 50 92 00 00 c2 9f03")
    sent = bytes([0xD0 + len(command)]) + command
    write("protocol", "handshake", b("e0") + arrives(b("9f0621219f03")) + arrives(FRAMES["ready"]))
    write("protocol", "checked", arrives(FRAMES["ready"]) + arrives(FRAMES["ack"]))
    write("protocol", "command-acknowledged", sent + arrives(b("9f0650509f03")))
    write("protocol", "command-refused", sent + arrives(FRAMES["nack"]))
    write("protocol", "command-given-up", sent + b("c0c0c0c0"))
    write("protocol", "full", sent * 70)
    write("protocol", "many-requests", b("e0" * 70 + "f0" + "c0" * 9) + sent)
    # Longer than the fuzzer takes it: this one is for the replay.
    write("protocol", "overfull", b("e0" * 1030 + "f0f0" + "c0" * 9 + "e0") + arrives(FRAMES["not-ready"]))
    write("protocol", "in-pieces", arrives(FRAMES["screens"][:5]) + arrives(FRAMES["screens"][5:]))
    write("protocol", "end-awaited", arrives(FRAMES["screens"][:-1]) + b("0000") + arrives(b("03")))
    write("protocol", "too-much", b("bf"))


def decoders():
    payloads = {
        "climate-type": (0x01, b("02 54696c6500")),
        "climate-labels": (0x09, b("4f6e004f666600")),
        "climate-state": (0x11, b("00d700cd5440200180553400011416")),
        "gauges-type": (0x02, b("05 47c3a4756765")),
        "gauges-labels": (0x0A, b("410000")),
        "gauges-scale": (0x12, b("3020") + b("313030") * 10 + b("6b6d00c3bc00")),
        "gauges-top": (0x1A, b("4100")),
        "gauges-bottom": (0x22, b("ff00")),
        "gauges-state": (0x2A, b("809e4305002000400060007f393500")),
        "vehicle-title": (0x03, b("436172")),
        "vehicle-labels": (0x0B, b("00")),
        "vehicle-state": (0x13, b("210416 3200")),
        "parking-title": (0x04, b("50efbfbd50")),
        "parking-labels": (0x0C, b("4100")),
        "parking-state": (0x14, b("10209f4001020408000000000000000031")),
        "screens": (0x00, b("1f")),
        "transition": (0x05, b("02")),
        "text-screen": (0x06, b("010203040341004200")),
        "no-sub-type": (0x3A, b("0102")),
        "unknown-sub-type": (0x31, b("0102")),
    }
    for name, (selectors, payload) in payloads.items():
        write("decoders", name, bytes([selectors]) + arrives(payload) + b("07"))
    twice = bytes([0x2A]) + arrives(payloads["gauges-state"][1])
    write("decoders", "state-twice", twice + twice + b("07"))


def texts():
    for name, text in {
        "plain": b"Title\0behind",
        "list": b"On\0Off\0\0lost",
        "empty": b"",
        "zeros": bytes(4),
        "two-bytes": "Kühler\0".encode(),
        "three-bytes": "km\u2044h\0\ufffd\0".encode(),
        "four-bytes": "\U0001f697\0".encode(),
        "mark-in-front": b("efbbbf4100"),
        "broken": b("41ff42c3004180bf00"),
        "overlong": b("c08041e0808000"),
        "surrogates": b("eda080edb08000"),
        "too-large": b("f48fbfbff490808000"),
        "cut": b("41e28200f09f9a"),
    }.items():
        write("texts", name, b("9f03040506") + text)


def sendqueue():
    enqueue, resend, answer, request, ready, check = 0, 2, 3, 4, 5, 7
    ack_40, nack_40 = answer | 5 << 3, answer | 0x15 << 3
    for name, operations in {
        "one-acknowledged": [enqueue | 5 << 3, ack_40],
        "one-refused": [enqueue | 5 << 3, nack_40],
        "given-up": [enqueue | 5 << 3] + [resend] * 4,
        "handshake": [request, answer | 2 << 3, ready | 5 << 3, check, ack_40],
        "link-lost": [ready | 5 << 3, check] + [resend] * 4,
        "foreign-id": [enqueue, answer | 7 << 3],
        "full": [enqueue | 6 << 3] * 70,
        "many-requests": [request] * 70 + [check] * 3 + [resend] * 9 + [enqueue],
        # Longer than the fuzzer takes them: these are for the replay.
        "overfull": [request] * 1030 + [check] * 3 + [ready | 5 << 3, check, check] + [resend] * 9 + [request],
        "equal-frames": [enqueue | 1 << 3] * 3 + [resend] * 9,
        "without-id": [enqueue | 0x1C << 3, enqueue | 0x1D << 3, answer],
        "not-ready": [request, ready, 6, request],
    }.items():
        write("sendqueue", name, bytes(operations))


def option(order, code, value):
    return struct.pack(order + "HH", code, len(value)) + value + bytes(-len(value) % 4)


def block(order, kind, body):
    length = len(body) + 12
    return struct.pack(order + "II", kind, length) + body + struct.pack(order + "I", length)


def section(order, options=b""):
    return block(order, 0x0A0D0D0A, struct.pack(order + "IHHq", 0x1A2B3C4D, 1, 0, -1) + options)


def interface(order, options=b"", captured=0):
    return block(order, 1, struct.pack(order + "HHI", 147, 0, captured) + options)


def packet(order, time, data, flags=None):
    options = b"" if flags is None else option(order, 2, struct.pack(order + "I", flags)) + bytes(4)
    head = struct.pack(order + "IIIII", 0, time >> 32, time & 0xFFFFFFFF, len(data), len(data))
    return block(order, 6, head + data + bytes(-len(data) % 4) + options)


def recording():
    now = 1700000000000000
    for name, order in {"little": "<", "big": ">"}.items():
        head = section(order) + interface(order)
        write("recording", name + "-empty", b("80") + head)
        write("recording", name + "-packets", b("80") + head + packet(order, now, FRAMES["ready"], 1)
              + packet(order, now + 5000, FRAMES["ack"], 2))
        comment = option(order, 1, b"a comment") + bytes(4)
        write("recording", name + "-comment", b("40") + section(order, comment) + interface(order))
        for resolution in (0, 9, 0x80 | 10, 0x80 | 63, 0xFF):
            options = option(order, 9, bytes([resolution])) + option(order, 14, struct.pack(order + "q", -5))
            write("recording", f"{name}-resolution-{resolution}",
                  b("c0") + section(order) + interface(order, options) + packet(order, 1 << 40, b("9f")))
        simple = block(order, 3, struct.pack(order + "I", 6) + b("9f0640400000"[:12]) + bytes(2))
        write("recording", name + "-simple", b("80") + section(order) + interface(order, captured=4) + simple)
        old = block(order, 2, struct.pack(order + "HHIIII", 0, 0, 0, 7, 2, 2) + b("9f030000"))
        write("recording", name + "-old-packet", b("80") + section(order) + interface(order) + old)
        write("recording", name + "-unknown-block", b("80") + head + block(order, 77, bytes(8)))
    write("recording", "two-orders", b("80") + section("<") + interface("<") + section(">") + interface(">")
          + packet(">", now, b("9f")))
    write("recording", "classic", b("00") + b("d4c3b2a1"))


def scenario():
    for name, text in {
        "nothing": "",
        "empty": "{}",
        "no-steps": '{"about": "x", "seed": 7}',
        "set": '{"steps": [{"after": 5, "set": {"climate.mainTemp": 215, "vehicle.door.1": "open"}}]}',
        "start": '{"start": {"gauges.value": [1, 2, 3, 4, 5], "climate.title": "A\\u00fc"}, "steps": []}',
        "ramp": '{"steps": [{"every": 250, "ramp": {"measured.speed": [[0, 0], [1000, 50], [3000, 7]]}}]}',
        "send": '{"steps": [{"at": 1, "send": {"id": "5A", "tp": "03", "mod": "02", "data": "00 9F"}},'
                '{"bytes": "9F 9F"}]}',
        "wait": '{"steps": [{"wait": {"link": "up", "timeout": 100}, "then": [{"after": 1}],'
                '"else": [{"fail": "no link"}]}]}',
        "command": '{"steps": [{"wait": {"command": "climate.manualTemp", "arguments": {"value": 20}}}]}',
        "branch": '{"steps": [{"branch": {"on": [{"link": "up", "steps": []}], "timeout": 9, "else": []}}]}',
        "repeat": '{"loop": true, "steps": [{"repeat": {"times": 3, "steps": [{"after": 1}]}}]}',
        "line": '{"steps": [{"hangUp": 50}, {"restart": true}, {"note": "n"}, {"end": true}]}',
        "faults": '{"start": {"fault.silence": true, "fault.loseBytes": 0.5}, "steps": [{"after": 1}]}',
        "wrong-type": '{"steps": [{"set": {"climate.mainTemp": "warm"}}]}',
        "wrong-name": '{"steps": [{"set": {"climate.mainTmp": 1}}]}',
        "twice": '{"seed": 1, "seed": 2, "steps": []}',
        "deep": "[" * 45,
        "mark-in-front": "\ufeff{}",
        "cut": '{"steps": [{"aft',
        "escapes": '{"about": "\\"\\\\\\/\\b\\f\\n\\r\\t\\u0000\\ud83d\\ude97"}',
        "numbers": '{"seed": -0, "steps": [{"at": 1e3}, {"after": 1.5}, {"at": 1e400}]}',
    }.items():
        write("scenario", name, text.encode())


for make in (stream, frames, protocol, decoders, texts, sendqueue, recording, scenario):
    make()
