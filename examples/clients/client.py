#!/usr/bin/python3
"""A small control panel: what there is, why it is as it is, what a change would do, what happens.

    examples/clients/client.py PATTERN CONTROL NAME=VALUE...
"""
import sys

from gi.repository import Gio, GLib

NAME = "org.tavrel.transaction"
COMMITTED = 0xFFFFFFFF  # in place of a transaction: what everybody sees
NOBODYS = 0xFFFFFFFE  # a transaction that is not open
WRITABLE, HAS_VALUE = 4, 64  # flags of GetState
# What to do about an error. The second interface has a name for each; the first has one for all,
# and only its text tells the cause.
REMEDIES = {"Error.UnknownTransaction:": "begin anew", "Error.UnknownParameter:": "list them",
            "Error.InvalidPattern:": "mend it", "Error.TooLarge:": "ask for less",
            "invalid transaction id": "begin anew", "": "tell the user"}


class Panel:
    def __init__(self, pattern, control, *wishes):
        self.pattern, self.control = pattern, control
        self.wishes = [wish.partition("=")[::2] for wish in wishes]
        self.bus = Gio.bus_get_sync(Gio.BusType.SESSION)
        self.loop = GLib.MainLoop()
        self.was_there = False
        self.bus.signal_subscribe(NAME, None, None, "/parameters", None, 0, self.on_signal)
        # The daemon may come after its clients, and it may be restarted.
        Gio.bus_watch_name_on_connection(self.bus, NAME, 0, self.on_service,
                                         lambda *_: print("service: none"))

    def first(self, method, signature, *arguments):
        return self.call("/transaction", "org.tavrel.transaction", method, signature, arguments)

    def second(self, method, signature, *arguments):
        return self.call("/parameters", "org.tavrel.parameters1", method, signature, arguments)

    def call(self, path, interface, method, signature, arguments):
        return self.bus.call_sync(NAME, path, interface, method, GLib.Variant(signature, arguments),
                                  None, 0, -1).unpack()

    def on_service(self, *_):
        print("service: there")
        self.second("WaitReady", "()")  # until then, values may be empty
        # Transactions and watches end with the daemon, so each run of it is begun anew.
        self.transaction, = self.second("Begin", "()")
        self.second("Watch", "(bb)", True, True)
        if self.was_there:
            self.show(self.transaction)
            self.loop.quit()
            return
        self.was_there = True
        self.discover()
        self.show(COMMITTED)
        self.go_wrong()
        self.try_out()
        self.show(self.transaction)
        # A commit cuts values, and passes over others, without an error: the signals tell.
        self.first("commit", "(u)", self.transaction)

    def on_signal(self, _bus, _sender, _path, _interface, signal, arguments):
        serial, *rest = arguments.unpack()
        if signal == "Changed":
            for name, old, new in rest[1]:
                print(f"commit {serial} changed {name}: {old} -> {new}")
        elif signal == "LimitsChanged":
            print(f"commit {serial} touched the limits of {', '.join(rest[0])}")

    def discover(self):
        for name, access, indices, line, level in self.second("List", "(s)", self.pattern)[0]:
            print(f"{name} {access}, line {line}, level {level}, indices: {', '.join(indices)}")

    def show(self, transaction):
        states, = self.second("GetState", "(uas)", transaction, [self.control])
        for name, flags, value, *_ranges in states:
            can = "writable" if flags & WRITABLE else "not writable"
            print(f"{name} = {value if flags & HAS_VALUE else '(none)'}, {can}")
        reasons, = self.second("Explain", "(us)", transaction, self.control)
        for question, answer, line, statement, used in reasons:
            because = f", line {line}: {statement}" if line else ""
            values = "".join(f"; {name} is {value}" for name, value in used.items())
            print(f"  {question}: {answer}{because}{values}")

    def go_wrong(self):
        """Each error once, and what a client does about it."""
        for call, *arguments in [
                (self.second, "List", "(s)", "["),
                (self.second, "Explain", "(us)", COMMITTED, "nonsense"),
                (self.second, "Preview", "(u)", NOBODYS),
                (self.first, "commit", "(u)", NOBODYS),
                (self.first, "set", "(uss)", self.transaction, "input_select[1]", "radio"),
                (self.first, "set", "(uss)", self.transaction, "input_name[1]", "x" * 100000),
                (self.second, "GetState", "(uas)", self.transaction, ["input_name[1]"] * 400)]:
            try:
                call(*arguments)
            except GLib.Error as error:
                remedy = next(do for part, do in REMEDIES.items() if part in error.message)
                text = error.message.partition(": ")[2]  # behind "GDBus.Error:" and the name
                print(f"error: {text}; {remedy}")
        # Nothing of this is to be committed.
        self.first("end", "(u)", self.transaction)
        self.transaction, = self.second("Begin", "()")

    def try_out(self):
        """What if? Only this transaction sees what is staged in it."""
        for name, value in self.wishes:
            self.first("set", "(uss)", self.transaction, name, value)
        changes, refused = self.second("Preview", "(u)", self.transaction)
        for name, old, new, causes in changes:
            print(f"would change {name}: {old} -> {new}, because of {', '.join(causes)}")
        for name, why in refused:
            print(f"would refuse {name}: {why}")


sys.stdout.reconfigure(line_buffering=True)
Panel(*sys.argv[1:]).loop.run()
