"""Drives the daemon on a bus of its own and prints what each kind of call costs.

  load.py DAEMON [ROUNDS]

A figure is the daemon's own processor time for one call, as the kernel counts it, and its ratio to
that of org.freedesktop.DBus.Peer.Ping in the same round; the medians of the rounds are printed.
Compare ratios: they hold where the times depend on the machine.
"""

import os
import statistics
import subprocess
import sys
import time

from gi.repository import Gio, GLib

NAME = "org.tavrel.transaction"
COUNT = 10000  # parameters that follow "limit"
LIMIT = "limit rw { rangeValid { 1..1000000 } default { 100 } }\n"
FOLLOWER = "p%05u rw { rangeValid { (limit)..(limit + 10) } default { (limit) } }\n"
INDEXED = """channel index { rangeValid { 0..%u } }
p rw { index { channel } rangeValid { (limit)..(limit + 10) } default { (limit) } }
alone rw { rangeValid { 0..9 } }
"""


def names(count):
    return ["p%05u" % number for number in range(count)]


class Daemon:
    """The daemon with a definition text, and a connection to it."""

    def __init__(self, program, text):
        self.bus = Gio.bus_get_sync(Gio.BusType.SESSION)
        self.process = subprocess.Popen([program, "--debug"], stdin=subprocess.PIPE, stdout=subprocess.DEVNULL)
        self.process.stdin.write(text.encode())
        self.process.stdin.close()
        while not self.bus_call("NameHasOwner", GLib.Variant("(s)", (NAME,)))[0]:
            time.sleep(0.01)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.process.kill()
        self.process.wait()
        while self.bus_call("NameHasOwner", GLib.Variant("(s)", (NAME,)))[0]:
            time.sleep(0.01)

    def bus_call(self, method, arguments):
        return self.bus.call_sync("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", method,
                                  arguments, None, Gio.DBusCallFlags.NONE, -1, None)

    def call(self, method, arguments=None, interface=NAME):
        return self.bus.call_sync(NAME, "/transaction", interface, method, arguments, None, Gio.DBusCallFlags.NONE,
                                  -1, None)

    def time(self):
        """The processor time used so far, in microseconds."""
        with open(f"/proc/{self.process.pid}/schedstat") as file:
            return int(file.read().split()[0]) / 1000

    def memory(self):
        """What belongs to the process alone, in kB."""
        with open(f"/proc/{self.process.pid}/smaps_rollup") as file:
            return sum(int(line.split()[1]) for line in file if line.startswith("Private_"))

    def cost(self, calls, call):
        start = self.time()
        for turn in range(calls):
            call(turn)
        return (self.time() - start) / calls


def measure(daemon, rounds, cases):
    """`cases`: title, calls per round, function of the turn. Pings come first in every round."""
    costs = {title: [] for title, _, _ in cases}
    ratios = {title: [] for title, _, _ in cases}
    for _ in range(rounds):
        ping = daemon.cost(500, lambda turn: daemon.call("Ping", interface="org.freedesktop.DBus.Peer"))
        for title, calls, call in cases:
            cost = daemon.cost(calls, call)
            costs[title].append(cost)
            ratios[title].append(cost / ping)
    for title in costs:
        print("%-58s %10.1f us %9.2f x Ping" %
              (title, statistics.median(costs[title]), statistics.median(ratios[title])))


def requests(daemon, rounds):
    transaction = daemon.call("start").unpack()[0]
    one = GLib.Variant("(s)", ("p00000",))
    one_in = GLib.Variant("(us)", (transaction, "p00000"))
    many = GLib.Variant("(uas)", (COUNT, names(COUNT)))
    thousand = GLib.Variant("(uas)", (1000, names(1000)))
    thousand_in = GLib.Variant("(uas)", (transaction, names(1000)))
    values = [GLib.Variant("(asas)", (names(1000), [str(100 + turn)] * 1000)) for turn in range(2)]
    measure(daemon, rounds, [
        ("single_get", 500, lambda turn: daemon.call("single_get", one)),
        ("get", 500, lambda turn: daemon.call("get", one_in)),
        ("get_range", 500, lambda turn: daemon.call("get_range", one_in)),
        ("single_get_bulk of 1,000", 20, lambda turn: daemon.call("single_get_bulk", thousand)),
        ("single_get_bulk of 10,000", 5, lambda turn: daemon.call("single_get_bulk", many)),
        ("single_set_bulk of 1,000 in turn", 10, lambda turn: daemon.call("single_set_bulk", values[turn % 2])),
        ("get_range_bulk of 1,000", 5, lambda turn: daemon.call("get_range_bulk", thousand_in)),
    ])
    daemon.call("set", GLib.Variant("(uss)", (transaction, "limit", "50")))
    measure(daemon, rounds, [
        ("get_range_bulk of 1,000 behind a staged change", 5, lambda turn: daemon.call("get_range_bulk", thousand_in)),
    ])
    daemon.call("end", GLib.Variant("(u)", (transaction,)))


def memory_of_transactions(daemon):
    """What ten open transactions with 10,000 staged values each take, and what is left of that."""
    values = (names(COUNT), ["123"] * COUNT)
    before = daemon.memory()
    transactions = [daemon.call("start").unpack()[0] for _ in range(10)]
    for transaction in transactions:
        daemon.call("set_bulk", GLib.Variant("(uasas)", (transaction, *values)))
    during = daemon.memory()
    for transaction in transactions:
        daemon.call("end", GLib.Variant("(u)", (transaction,)))
    time.sleep(2.5)  # the daemon gives back what is spare within two seconds
    print(f"memory: {before} kB; with 100,000 staged values {during} kB; after the ends {daemon.memory()} kB")


def commits(daemon, rounds, title):
    limits = [GLib.Variant("(ss)", ("limit", limit)) for limit in ("1000", "2000")]
    measure(daemon, rounds, [(title, 4, lambda turn: daemon.call("single_set", limits[turn % 2]))])


def main():
    program = sys.argv[1]
    rounds = int(sys.argv[2]) if len(sys.argv) > 2 else 11
    with Daemon(program, LIMIT + "".join(FOLLOWER % number for number in range(COUNT))) as daemon:
        requests(daemon, rounds)
        commits(daemon, rounds, "commit that moves 10,000 parameters")
        memory_of_transactions(daemon)
    with Daemon(program, LIMIT + INDEXED % (COUNT - 1)) as daemon:
        commits(daemon, rounds, "commit that moves 10,000 instances of one parameter")
        alone = [GLib.Variant("(ss)", ("alone", value)) for value in ("1", "2")]
        measure(daemon, rounds,
                [("commit that moves nothing else", 500, lambda turn: daemon.call("single_set", alone[turn % 2]))])


main()
