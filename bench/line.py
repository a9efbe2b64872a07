"""A host process at the end of a simulated line: what it costs, and whether it loses anything."""

import json
import os
import pathlib
import pty
import select
import subprocess
import termios
import threading
import time
import tty

BYTE_SECONDS = 10 / 57600  # eight bits between a start and a stop bit
FIFO_BYTES = 16  # what a UART hands over at a time
DLE, STX, ETX, ACK = 0x9F, 0x02, 0x03, 0x06
READY = bytes((DLE, STX, 0x41, 0x01, 0x00, 0x00, 0x01, 0x41, DLE, ETX))
CATEGORIES = ((1, 0), (2, 0), (3, 2), (4, 5), (5, 2), (6, 2), (7, 0), (0x11, 0), (3, 0), (3, 1), (4, 2), (6, 1))
FRAME_BYTES = 58
START = time.perf_counter


def frame(number):
    """The next of the frames that a busy box sends: 58 bytes, of every category in turn, each unlike the last."""
    tp, mod = CATEGORIES[number % len(CATEGORIES)]
    value = number // len(CATEGORIES) % 64
    payload = bytearray(value if index % 4 == 0 else 0x20 + index % 32 for index in range(FRAME_BYTES - 8))
    payload[1] = 2 if tp == 1 else payload[1]  # a readiness that changes nothing
    payload[0] = 1 if tp == 7 else payload[0]  # a move on the screen
    payload[-1] = 0
    content = bytearray((0x30, tp, mod)) + payload
    while xor(content) in (DLE, 0):
        content[-2] ^= 0x01
        content[-3] ^= 0x02
    return bytes((DLE, STX)) + bytes(content) + bytes((xor(content), DLE, ETX))


def xor(content):
    """The check byte."""
    check = 0
    for byte in content:
        check ^= byte
    return check


class Line:
    """The box's end. What it sends leaves at 57,600 baud, in blocks of so many bytes."""

    def __init__(self, block_bytes=FIFO_BYTES):
        self._block_bytes = block_bytes
        self._master, slave = pty.openpty()
        tty.setraw(self._master, termios.TCSANOW)
        self.name = os.ttyname(slave)
        self._slave = slave  # kept open: without another end the line would hang up
        self._free_at = START()
        self._waiting = bytearray()
        self._answers = []
        self._ends = False
        self.sent_frames = 0
        self._reader = threading.Thread(target=self._read)
        self._reader.start()

    def send(self, content):
        """Sends a data frame, and before it the answers that are due."""
        self.settle()
        self.sent_frames += 1
        self._write(content)

    def settle(self):
        """Sends the answers that are due."""
        answers, self._answers = self._answers, []
        for block in answers:
            self._write(block)

    def close(self):
        """Ends the line."""
        self._ends = True
        self._reader.join()
        os.close(self._master)
        os.close(self._slave)

    def _write(self, content):
        self._free_at = max(self._free_at, START())
        for at in range(0, len(content), self._block_bytes):
            block = content[at : at + self._block_bytes]
            self._free_at += len(block) * BYTE_SECONDS
            time.sleep(max(0, self._free_at - START()))
            os.write(self._master, block)

    def _read(self):
        while not self._ends:
            if not select.select([self._master], [], [], 0.1)[0]:
                continue
            self._waiting += os.read(self._master, 4096)
            self._take()

    def _take(self):
        """Answers each data frame; acknowledgements need none."""
        while (end := self._waiting.find(bytes((DLE, ETX)))) >= 0:
            received, self._waiting = bytes(self._waiting[: end + 2]), self._waiting[end + 2 :]
            begin = received.find(bytes((DLE, STX)))
            if begin >= 0:
                self._answers.append(bytes((DLE, ACK, received[begin + 2], received[begin + 2], DLE, ETX)))


class Host:
    """A process that runs the library, at the other end."""

    def __init__(self, program, *arguments):
        self._process = subprocess.Popen(
            [str(program), *arguments], stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True
        )
        self.pid = self._process.pid

    def read(self):
        """The next thing that it says."""
        line = self._process.stdout.readline()
        if not line:
            raise RuntimeError("the measured host has ended by itself")
        return json.loads(line)

    def tell(self, what):
        """Writes a line to it and reads what it says to that."""
        self._process.stdin.write(what + "\n")
        self._process.stdin.flush()
        return self.read()

    def resident_kb(self):
        """The memory that it occupies."""
        status = pathlib.Path(f"/proc/{self.pid}/status").read_text(encoding="ascii")
        return int(next(line.split()[1] for line in status.splitlines() if line.startswith("VmRSS")))

    def close(self):
        """Ends it."""
        self._process.stdin.close()
        self._process.stdout.close()
        self._process.wait(timeout=30)


def handshake(line):
    """Brings the link up."""
    line.send(READY)
    deadline = START() + 1
    while START() < deadline:
        line.settle()
        time.sleep(0.02)


def full_line(program, seconds, block_bytes):
    """Frames of 58 bytes, one right behind the other, for so long. What the host says of it."""
    line = Line(block_bytes)
    host = Host(program, line.name)
    try:
        host.read()
        handshake(line)
        host.tell("go")
        begin = START()
        while START() - begin < seconds:
            line.send(frame(line.sent_frames))
        time.sleep(0.3)
        found = host.tell("stop")
    finally:
        host.close()
        line.close()
    return {**found, "sent": line.sent_frames, "lost": line.sent_frames - found["frames"]}


def starts(program, times):
    """How long the start took, in microseconds, so many times."""
    found = []
    for _ in range(times):
        line = Line()
        host = Host(program, line.name)
        found.append(host.read()["start us"])
        host.close()
        line.close()
    return found


def resident(folder):
    """Kilobytes: a bare Qt Core program, one with the library in it, and one linked to the shared library."""
    found = {}
    for name in ("bench-bare", "bench-host", "bench-host-shared"):
        line = Line()
        host = Host(folder / name, *([] if name == "bench-bare" else [line.name]))
        time.sleep(1)
        found[name] = host.resident_kb()
        host.close()
        line.close()
    return found
