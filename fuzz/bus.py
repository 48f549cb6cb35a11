"""Calls every method of every object that the daemon shows on its bus with random arguments.

  bus.py DAEMON [SECONDS] [SEED]

The calls go out in batches without waiting. After each batch the daemon must answer a read, and its resident
memory must be below a bound. Now and then it is told to end, which it must do in order, and started again.
"""

import os
import random
import re
import subprocess
import sys
import tempfile
import time

from gi.repository import Gio, GLib

DEFINITIONS = "examples/frame-synchroniser.ostrel"
CONSTANTS = ["MODEL=pro", "CHANNELS=2", "AUDIO=1"]
NAME, PATH = "org.tavrel.transaction", "/transaction"
SECOND_NAME, SECOND_PATH = "org.tavrel.parameters1", "/parameters"
PROPERTIES = ["Version", "Definitions", "Commits", "OpenTransactions", "Watchers", "Started"]
BATCH = 100  # calls
TRANSACTIONS = 10  # open at the beginning of a batch; some of its calls end some
LIVES = 50  # batches from one start of the daemon to the next
PATIENCE = 60  # seconds for an answer, and for the end
# In kB. The sanitized daemon has 26 MB at rest; a call brings at most about 1 MiB, and a transaction lasts one
# batch.
MEMORY_BOUND = 256 * 1024
LONG = 1 << 20
RANGES = {"y": (0, 255), "n": (-2**15, 2**15 - 1), "q": (0, 2**16 - 1), "i": (-2**31, 2**31 - 1),
          "u": (0, 2**32 - 1), "x": (-2**63, 2**63 - 1), "t": (0, 2**64 - 1)}
BASIC = "ybnqiuxtdsog"
PIECES = ["", " ", "[", "]", "[[", "]]", "[]", "[0]", "[1]", "[2][1]", "%s", "%n%n", "%d", "%", "0", "-1", "0x", "0x7f",
          "2147483647", "2147483648", "-2147483648", "99999999999", "=", "\"", "#", "::", "vidStd::", "\\", "\t", "\n",
          "\u007f", "\u00e9", "\u20ac", "\U0001f4fa", "\ufffd", "/", ".", "(", ")", "{", "}", "..", "*", "?", "[a-m]",
          "[!x]*", "\\*"]


class Failure(Exception):
    """The daemon broke a promise."""


class Daemon:
    """The daemon on the session bus, and a connection to it."""

    def __init__(self, program):
        self.errors = tempfile.TemporaryFile()
        options = os.environ.get("ASAN_OPTIONS", "")
        # What is freed is not kept for long, or it would hide what grows.
        environment = {**os.environ, "ASAN_OPTIONS": options + ":exitcode=99:quarantine_size_mb=16"}
        with open(DEFINITIONS, "rb") as text:
            self.process = subprocess.Popen([program, "--debug", *CONSTANTS], stdin=text, stdout=subprocess.DEVNULL,
                                            stderr=self.errors, env=environment)
        self.bus = Gio.bus_get_sync(Gio.BusType.SESSION)
        end = time.monotonic() + PATIENCE
        while not self.has_owner():
            if self.process.poll() is not None or time.monotonic() > end:
                raise Failure("does not start")
            time.sleep(0.01)

    def has_owner(self):
        return self.call("NameHasOwner", GLib.Variant("(s)", (NAME,)), "org.freedesktop.DBus",
                         "/org/freedesktop/DBus", "org.freedesktop.DBus")[0]

    def call(self, method, arguments=None, interface=NAME, path=PATH, name=NAME):
        return self.bus.call_sync(name, path, interface, method, arguments, None, Gio.DBusCallFlags.NONE,
                                  PATIENCE * 1000, None).unpack()

    def send(self, call):
        path, interface, method, arguments = call
        message = Gio.DBusMessage.new_method_call(NAME, path, interface, method)
        if arguments is not None:
            message.set_body(arguments)
        self.bus.send_message(message, Gio.DBusSendMessageFlags.NONE)

    def check(self, parameter):
        """Answers come in the order of the calls, so this one tells that all before it are served."""
        try:
            self.call("single_get", GLib.Variant("(s)", (parameter,)))
        except GLib.Error as error:
            raise Failure(f"gives no answer: {error.message}") from error
        if self.resident() > MEMORY_BOUND:
            raise Failure(f"has {self.resident()} kB of memory")

    def start_some(self):
        """Half of them are this client's alone, and end with it, too."""
        begun = [self.call("Begin", None, SECOND_NAME, SECOND_PATH)[0] for _ in range(TRANSACTIONS // 2)]
        return begun + [self.call("start")[0] for _ in range(TRANSACTIONS - len(begun))]

    def end_transactions(self, first):
        """All from `first` on, also those that the calls have started."""
        for transaction in range(first, self.call("start")[0] + 1):
            self.send((PATH, NAME, "end", GLib.Variant("(u)", (transaction,))))

    def resident(self):
        with open(f"/proc/{self.process.pid}/status", encoding="ascii") as file:
            return int(re.search(r"VmRSS:\s+(\d+)", file.read()).group(1))

    def end(self):
        """Ends it in order: also a sanitizer that finds a leak then is a failure."""
        self.send((PATH, NAME, "die", None))
        try:
            status = self.process.wait(PATIENCE)
        except subprocess.TimeoutExpired as error:
            raise Failure("does not end") from error
        if status != 1:
            raise Failure(f"ends with status {status}")

    def report(self):
        self.process.kill()
        self.process.wait()
        self.errors.seek(0)
        return self.errors.read().decode(errors="replace")


class Methods:
    """What introspection shows, below the root too."""

    def __init__(self, daemon):
        self.all = []
        self.daemon = daemon
        self.visit("/")
        # The bus library answers these for every object without showing them.
        for method in ("Ping", "GetMachineId"):
            self.all.append((PATH, "org.freedesktop.DBus.Peer", method, ""))

    def visit(self, path):
        try:
            text = self.daemon.call("Introspect", None, "org.freedesktop.DBus.Introspectable", path)[0]
        except GLib.Error:
            return
        node = Gio.DBusNodeInfo.new_for_xml(text)
        for interface in node.interfaces:
            for method in interface.methods:
                signature = "".join(argument.signature for argument in method.in_args)
                self.all.append((path, interface.name, method.name, signature))
        for child in node.nodes:
            self.visit(path.rstrip("/") + "/" + child.path)


class Generator:
    """Random calls, the same for the same seed."""

    def __init__(self, seed, methods):
        self.random = random.Random(seed)
        self.transactions = []  # that are open
        self.methods = [method for method in methods if method[2] != "die"]
        with open(DEFINITIONS, encoding="utf-8") as file:
            text = re.sub("#.*", "", file.read())
        self.names = re.findall(r"^([\w:]+) (?:rw|ro|rostrict|wo|index)\b", text, re.M)
        self.values = sorted(set(re.findall(r'"([^"]*)"|(?<!\w)(-?\d+)', text)))
        self.values = [quoted or number for quoted, number in self.values]

    def call(self):
        path, interface, method, signature = self.random.choice(self.methods)
        if self.random.random() < 0.15:
            signature = "".join(self.signature(3) for _ in range(self.random.randrange(5)))
        if self.random.random() < 0.02:
            path = self.random.choice(["/", "/transaction/x", "/a/b", PATH, SECOND_PATH])
            interface = self.random.choice([NAME, SECOND_NAME, "a.b", "org.freedesktop.DBus.Properties"])
        if signature == "":
            return path, interface, method, None
        return path, interface, method, GLib.Variant("(" + signature + ")", self.tuple(signature, LONG))

    def signature(self, depth):
        kinds = BASIC if depth == 0 else BASIC + "aaa(({v"
        kind = self.random.choice(kinds)
        if kind == "a":
            return "a" + self.signature(depth - 1)
        if kind == "(":
            return "(" + "".join(self.signature(depth - 1) for _ in range(self.random.randint(1, 3))) + ")"
        if kind == "{":
            return "a{" + self.random.choice(BASIC) + self.signature(depth - 1) + "}"
        return kind

    def tuple(self, signature, room):
        types = []
        while signature:
            length = self.length_of_first(signature)
            types.append(signature[:length])
            signature = signature[length:]
        return tuple(self.value(one, room // len(types)) for one in types)

    def length_of_first(self, signature):
        if signature[0] == "a":
            return 1 + self.length_of_first(signature[1:])
        depth = 0
        for place, sign in enumerate(signature):
            depth += (sign in "({") - (sign in ")}")
            if depth == 0:
                return place + 1
        raise ValueError(signature)

    def value(self, kind, room):
        """`room`: about how many bytes it may have."""
        if kind == "u" and self.transactions and self.random.random() < 0.7:
            return self.random.choice(self.transactions)
        if kind in RANGES:
            return self.integer(*RANGES[kind])
        if kind == "b":
            return self.random.random() < 0.5
        if kind == "d":
            return self.random.choice([0.0, -0.0, 1.5, -1e308, float("inf"), float("nan"), 5e-324])
        if kind == "s":
            return self.text(room)
        if kind == "o":
            return self.random.choice(["/", PATH, "/a/" + "b" * self.random.randrange(1, 300)])
        if kind == "g":
            return self.random.choice(["", "s", "a(ii)", "a" * 31 + "i", "(" * 32 + "y" + ")" * 32, "v"])
        if kind == "v":
            inner = self.signature(2)
            return GLib.Variant(inner, self.value(inner, room))
        if kind.startswith("a{"):
            pairs = [self.tuple(kind[2:-1], room // 10) for _ in range(self.random.randrange(10))]
            return dict(pairs)
        if kind[0] == "a":
            count = min(self.random.choice([0, 1, 1, 2, 3, 16, 17, 100, 1000, 5000]), room // 50)
            return [self.value(kind[1:], room // max(1, count)) for _ in range(count)]
        return self.tuple(kind[1:-1], room)

    def integer(self, low, high):
        near = self.random.choice([low, high, 0, self.random.randint(0, 20), 1])
        chosen = self.random.choice([near, near, near + self.random.randint(-2, 2), self.random.randint(low, high)])
        return min(max(chosen, low), high)

    def text(self, room):
        kind = self.random.random()
        if kind < 0.35:
            return self.name()
        if kind < 0.6:
            return self.random.choice(self.values)
        if kind < 0.62:
            return self.random.choice([SECOND_NAME, *PROPERTIES])
        if kind < 0.65 and room > 4:
            piece = self.random.choice(PIECES + self.names) or "a"
            return piece * (self.random.choice([room // 4, self.random.randrange(room // 4)]) // len(piece) + 1)
        if kind < 0.75:
            return str(self.integer(-2**33, 2**33))
        kinds = self.random.choices([PIECES, PIECES, self.names, self.values], k=self.random.randrange(8))
        return "".join(map(self.random.choice, kinds))

    def name(self):
        name = self.random.choice(self.names)
        for _ in range(self.random.choice([0, 0, 1, 1, 1, 2, 3])):
            name += "[" + self.random.choice([str(self.random.randint(-1, 5)), self.random.choice(self.values)]) + "]"
        return name


def shown(call):
    path, interface, method, arguments = call
    text = "" if arguments is None else arguments.print_(True)
    return f"{path} {interface}.{method} {text[:2000]}" + ("..." if len(text) > 2000 else "")


def culprit(start, calls, parameter, transactions):
    """The first call after which a new daemon with the same transactions fails, where one batch is enough."""
    daemon = start()
    while transactions and daemon.call("start")[0] < transactions[-1]:
        pass
    for call in calls:
        try:
            daemon.send(call)
            daemon.check(parameter)
        except (Failure, GLib.Error):
            return shown(call), daemon.report()
    errors = ""
    try:
        daemon.end()
    except Failure:
        errors = daemon.report()
    return "of this batch:\n" + "\n".join(map(shown, calls)), errors


def run(start, seconds, seed):
    daemon = start()
    methods = Methods(daemon).all
    generator = Generator(seed, methods)
    parameter = generator.names[-1]
    print(f"seed {seed}: {len(methods)} methods, {daemon.resident()} kB at the start", flush=True)
    end = time.monotonic() + seconds
    batches, largest = 0, 0
    while time.monotonic() < end:
        calls = []
        try:
            generator.transactions = daemon.start_some()
            calls = [generator.call() for _ in range(BATCH)]
            for call in calls:
                daemon.send(call)
            daemon.check(parameter)
            largest = max(largest, daemon.resident())
            daemon.end_transactions(generator.transactions[0])
            batches += 1
            if batches % LIVES == 0:
                daemon.end()
                daemon = start()
        except (Failure, GLib.Error) as failure:
            errors = daemon.report()
            call, again = culprit(start, calls, parameter, generator.transactions)
            print(f"seed {seed}, batch {batches}: the daemon {failure}\nstandard error of the daemon:\n{errors}\n"
                  f"call: {call}\nstandard error of the daemon, given this alone:\n{again}")
            return 1
    try:
        daemon.end()
    except Failure as failure:
        print(f"seed {seed}, the end: the daemon {failure}\nstandard error of the daemon:\n{daemon.report()}")
        return 1
    print(f"{batches * BATCH} calls in {batches} batches, at most {largest} kB of memory")
    return 0


def main():
    program = sys.argv[1]
    seconds = float(sys.argv[2]) if len(sys.argv) > 2 else 900
    seed = int(sys.argv[3]) if len(sys.argv) > 3 else random.randrange(2**32)
    return run(lambda: Daemon(program), seconds, seed)


sys.exit(main())
