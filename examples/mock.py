"""A device for tests without one: a template of python-dbusmock with both interfaces.

    python3 -m dbusmock --session --template examples/mock.py \\
        -p '{"gain": {"value": "10", "default": "0", "spans": [[0, 20]]}}'

It has no rules: it says what a test has told it, of each instance by its full name, with -p or with
SetInstance(name, {key: value}) of org.freedesktop.DBus.Mock:

    value, default   texts; an instance without a value has never been set
    spans, texts     what is allowed; everything is if there is neither
    reasons          what Explain answers
    uses             what GetUses answers
    refused          why a commit passes it over; without this, or with an empty text, it does not
    definition       what GetDefinition answers, and List; its "used-by" are announced by LimitsChanged

What is staged is seen in its transaction, shown by Preview, and stored by a commit, with the signals of both
interfaces. It is ready from its start. Of the properties, Commits alone moves. Fail(method, error, text) lets the next call of a method fail.
What was called is in GetCalls().
"""
import fnmatch
import os
import time

import dbus
import dbus.service
from dbusmock import get_object
from gi.repository import GLib

BUS_NAME = "org.tavrel.transaction"
MAIN_OBJ = "/parameters"
MAIN_IFACE = "org.tavrel.parameters1"
SYSTEM_BUS = False
FIRST = "org.tavrel.transaction"
MOCK = "org.freedesktop.DBus.Mock"

COMMITTED = 0xFFFFFFFF
KNOWN, EXISTS, WRITABLE, STAGED, LIMITED, HAS_VALUE = 1, 2, 4, 8, 16, 64
MOST_OWN = 1000  # transactions of a client
LONGEST_REPLY = 32 << 20

objects = {}  # the two objects, by path
instances = {}
transactions = {}  # id -> (owner or "", what is staged, when it was opened)
watchers = {}  # client -> (changes, limits)
commits = []
failures = {}  # method -> error
started = 0


def named(error, text):
    return dbus.exceptions.DBusException(text, name=f"{MAIN_IFACE}.Error.{error}")


def unnamed(text):
    """Of the first interface, whose errors have one name."""
    return dbus.exceptions.DBusException(f"dbus_tavrel_transaction: {text}",
                                         name="org.freedesktop.DBus.GLib.UnmappedError.DbusTavrelTransaction.Code0")


def expose(interface, method, takes, gives, answer):
    """Puts a method on the bus: `answer` is called with the caller and the arguments."""
    def answer_call(caller, *arguments):
        if method in failures:
            raise failures.pop(method)
        return answer(caller, *arguments)
    # The bus library counts the arguments of what it is given.
    function = [lambda self, caller=None: answer_call(caller),
                lambda self, a, caller=None: answer_call(caller, a),
                lambda self, a, b, caller=None: answer_call(caller, a, b),
                lambda self, a, b, c, caller=None: answer_call(caller, a, b, c)][len(list(dbus.Signature(takes)))]
    function.__name__ = method
    globals()[method] = dbus.service.method(interface, takes, gives, sender_keyword="caller")(function)


# ---- What is staged, and what becomes of it ----


def open_transaction(owner):
    global started
    started += 1
    transactions[started - 1] = (owner, {}, time.monotonic())
    return started - 1


def staged_in(caller, number, error):
    owner, staged, _ = transactions.get(number, (None, None, None))
    if owner not in ("", caller):
        raise error
    return staged


def view(caller, number):
    """What is staged in a transaction that the second interface is asked about."""
    error = named("UnknownTransaction", f"No transaction {number} is open that this client may use")
    return {} if number == COMMITTED else staged_in(caller, number, error)


def value_of(staged, name):
    return staged.get(name, instances.get(name, {}).get("value", ""))


def allows(name, value):
    if name not in instances:
        return False
    spans, texts = instances[name].get("spans", []), instances[name].get("texts", [])
    is_number = value.removeprefix("-").isdecimal()
    return (not spans and not texts or value in texts
            or is_number and any(low <= int(value) <= high for low, high in spans))


def stage(staged, name, value):
    if name not in instances:
        raise unnamed("Set failed because parameter name is invalid")
    if not allows(name, value):
        raise unnamed("Set failed because parameter value is invalid")
    staged[name] = value


def stage_default(staged, name):
    if name not in instances:
        raise unnamed("Reset failed because parameter name is invalid")
    staged[name] = instances[name].get("default", value_of({}, name))


def outcome(staged):
    refused = [(name, instances[name]["refused"]) for name in sorted(staged) if instances[name].get("refused")]
    changes = [(name, value_of({}, name), staged[name]) for name in sorted(staged)
               if name not in dict(refused) and value_of({}, name) != staged[name]]
    return changes, refused


def tell(path, interface, signal, signature, arguments, client=None):
    objects[path].EmitSignalDetailed(interface, signal, signature, arguments,
                                     {"destination": client} if client else {})


def store(caller, staged):
    changes, _ = outcome(staged)
    staged.clear()
    if not changes:
        return
    for name, _, value in changes:
        instances[name]["value"] = value
    serial = len(commits) + 1
    commits.append((serial, time.time_ns() // 1000, caller, changes))
    objects["/parameters"].props[MAIN_IFACE]["Commits"] = dbus.UInt64(serial)
    tell("/transaction", FIRST, "transaction", "as", [[f"{name}={value}" for name, _, value in changes]])
    users = sorted({user for name, *_ in changes for user in definition(name)["used-by"]})
    for client, (wants_changes, wants_limits) in watchers.items():
        if wants_changes:
            tell("/parameters", MAIN_IFACE, "Changed", "usa(sss)", [serial, caller, changes], client)
        if wants_limits and users:
            tell("/parameters", MAIN_IFACE, "LimitsChanged", "uas", [serial, users], client)


# ---- org.tavrel.parameters1 ----


def definition(name):
    base = name.partition("[")[0]
    same = [instance for other, instance in instances.items() if other.partition("[")[0] == base]
    if not same:
        raise named("UnknownParameter", f'No definition has the name "{base}"')
    told = {}
    for instance in same:
        told.update(instance.get("definition", {}))
    numbers = {key: dbus.UInt32(told.get(key, 0)) for key in ("line", "level")}
    lists = {key: dbus.Array(told.get(key, []), signature) for key, signature in [
        ("indices", "s"), ("uses", "s"), ("used-by", "s"), ("statements", "(us)"), ("translations", "(ss)")]}
    return {"access": told.get("access", "rw"), "description": told.get("description", ""), **numbers, **lists}


def definitions(pattern):
    if "[" in pattern and "]" not in pattern:
        raise named("InvalidPattern", f'The pattern "{pattern}" is wrong: a "[" has no "]"')
    names = sorted({name.partition("[")[0] for name in instances})
    return [(name, definition(name)) for name in names if fnmatch.fnmatchcase(name, pattern or "*")]


def list_definitions(_caller, pattern):
    return [(name, it["access"], it["indices"], it["line"], it["level"]) for name, it in definitions(pattern)]


def list_names(_caller, pattern, access):
    return [name for name, it in definitions(pattern) if not access or it["access"] in access]


def state_of(staged, name):
    if name not in instances:
        return (name, 0, "", [], [])
    instance = instances[name]
    spans, texts = instance.get("spans", []), instance.get("texts", [])
    flags = sum([KNOWN, EXISTS, WRITABLE * (not instance.get("refused")), STAGED * (name in staged),
                 LIMITED * bool(spans or texts), HAS_VALUE * (name in staged or "value" in instance)])
    return (name, flags, value_of(staged, name), spans, texts)


def get_state(caller, number, names):
    states = [state_of(view(caller, number), name) for name in names] or view(caller, number) and []
    if sum(len(text) for name, _, value, _, texts in states for text in [name, value, *texts]) > LONGEST_REPLY:
        raise named("TooLarge", "The reply of GetState is too long for a message")
    return states


def explain(caller, number, name):
    view(caller, number)
    if name not in instances:
        raise named("UnknownParameter", f'No parameter has the name "{name}" with so many index values')
    return instances[name].get("reasons", [])


def preview(caller, number):
    staged = view(caller, number)
    changes, refused = outcome(staged)
    return [(*change, [change[0]]) for change in changes], refused


def begin(caller):
    if sum(owner == caller for owner, *_ in transactions.values()) >= MOST_OWN:
        raise named("TooLarge", f"A client has {MOST_OWN} transactions of its own at most; end one")
    return open_transaction(caller)


def list_transactions(_caller):
    return [(number, owner, len(staged), int(time.monotonic() - opened))
            for number, (owner, staged, opened) in transactions.items()]


def watch(caller, changes, limits):
    watchers[caller] = (changes, limits)


expose(MAIN_IFACE, "List", "s", "a(ssasuu)", list_definitions)
expose(MAIN_IFACE, "ListNames", "sas", "as", list_names)
expose(MAIN_IFACE, "ListInstances", "uas", "as", lambda caller, number, names: view(caller, number) and [] or [
    name for name in sorted(instances) if not names or name.partition("[")[0] in names])
expose(MAIN_IFACE, "GetDefinition", "s", "a{sv}", lambda _, name: definition(name))
expose(MAIN_IFACE, "GetUses", "as", "aas", lambda _, names: [
    dbus.Array(instances.get(name, {}).get("uses", []), "s") for name in names])
expose(MAIN_IFACE, "GetState", "uas", "a(susa(ii)as)", get_state)
expose(MAIN_IFACE, "Explain", "us", "a(ssusa{ss})", explain)
expose(MAIN_IFACE, "Preview", "u", "a(sssas)a(ss)", preview)
expose(MAIN_IFACE, "Begin", "", "u", begin)
expose(MAIN_IFACE, "ListTransactions", "", "a(usuu)", list_transactions)
expose(MAIN_IFACE, "Watch", "bb", "", watch)
expose(MAIN_IFACE, "History", "u", "a(utsa(sss))", lambda _, last: commits[-last:])
expose(MAIN_IFACE, "WaitReady", "", "", lambda _: None)
expose(MAIN_IFACE, "SetReady", "", "", lambda _: None)


# ---- org.tavrel.transaction ----


def with_staged(what, change):
    """A method on a transaction."""
    return lambda caller, number, *arguments: change(
        staged_in(caller, number, unnamed(f"{what} failed because of invalid transaction id")), *arguments)


def at_once(change):
    """A method that opens a transaction for its one call, and commits."""
    def run(caller, *arguments):
        staged = {}
        change(staged, *arguments)
        store(caller, staged)
    return run


def each(change):
    """A method on several names, with their values if it takes some."""
    def run(staged, *lists):
        for arguments in zip(*lists):
            change(staged, *arguments)
    return run


def check_and_stage(staged, name, value):
    if allows(name, value):
        staged[name] = value
    return allows(name, value)


def ranges(names):
    states = {name: state_of({}, name) for name in names}
    return ([(name, text) for name in sorted(states) for text in states[name][4]],
            [(name, *span) for name in sorted(states) for span in states[name][3]])


def die(_caller):
    # Behind the reply, as the daemon.
    GLib.timeout_add(50, os._exit, 1)


for status in "", "_status":
    for verb, what, signature, change in ("set", "Set", "s", stage), ("reset", "Reset", "", stage_default):
        lists = "as" * (1 + len(signature))
        expose(FIRST, f"{verb}{status}", "us" + signature, "", with_staged(what, change))
        expose(FIRST, f"{verb}{status}_bulk", "u" + lists, "", with_staged(what, each(change)))
        expose(FIRST, f"single_{verb}{status}", "s" + signature, "", at_once(change))
        expose(FIRST, f"single_{verb}{status}_bulk", lists, "", at_once(each(change)))
expose(FIRST, "die", "", "", die)
expose(FIRST, "start", "", "u", lambda _: open_transaction(""))
expose(FIRST, "end", "u", "", lambda caller, number: with_staged(
    "End", lambda _: transactions.pop(number))(caller, number) and None)
expose(FIRST, "commit", "u", "", lambda caller, number: with_staged(
    "Commit", lambda staged: store(caller, staged))(caller, number))
expose(FIRST, "get", "us", "s", with_staged("Get", value_of))
expose(FIRST, "get_bulk", "uuas", "as", with_staged(
    "Get bulk", lambda staged, count, names: [value_of(staged, name) for name in names[:count]]))
expose(FIRST, "single_get", "s", "s", lambda _, name: value_of({}, name))
expose(FIRST, "single_get_bulk", "uas", "as", lambda _, count, names: [value_of({}, name) for name in names[:count]])
expose(FIRST, "is_valid", "uss", "b", with_staged("Validate", lambda _, name, value: allows(name, value)))
expose(FIRST, "check_set", "uss", "b", with_staged("Validate", check_and_stage))
expose(FIRST, "single_is_valid", "ss", "b", lambda _, name, value: allows(name, value))
expose(FIRST, "single_check_set", "ss", "b", lambda _, name, value: allows(name, value))
expose(FIRST, "get_deps", "s", "as", lambda _, name: definition(name)["uses"])
expose(FIRST, "get_range", "us", "asa(ii)", with_staged(
    "Get range", lambda _, name: (state_of({}, name)[4], state_of({}, name)[3])))
expose(FIRST, "get_range_bulk", "uas", "a(ss)a(sii)", with_staged("Get range", lambda _, names: ranges(names)))
expose(FIRST, "get_parm_idx", "us", "as", with_staged("Get parm index", lambda _, name: definition(name)["indices"]))
expose(FIRST, "get_idx_range", "us", "asa(ii)", with_staged("Get index range", lambda *_: ([], [])))


# ---- For the test ----


def fail(_caller, method, error, text):
    failures[method] = dbus.exceptions.DBusException(text, name=error)


def set_instance(_caller, name, properties):
    instances.setdefault(name, {}).update(properties)


expose(MOCK, "Fail", "sss", "", fail)
expose(MOCK, "SetInstance", "sa{sv}", "", set_instance)


def on_owner(name, _old, new):
    if new:
        return
    watchers.pop(name, None)
    for number in [number for number, (owner, *_) in transactions.items() if owner == name]:
        del transactions[number]


def load(mock, parameters):
    instances.update(parameters)
    mock.AddObject("/transaction", FIRST, {}, [])
    objects.update({"/parameters": mock, "/transaction": get_object("/transaction")})
    # The template's methods work on both objects; each shows those of its own interface.
    objects["/transaction"].methods[FIRST] = mock.methods.pop(FIRST)
    mock.AddProperties(MAIN_IFACE, {"Version": "mock", "Definitions": dbus.UInt32(len(instances)),
                                    "Commits": dbus.UInt64(0), "OpenTransactions": dbus.UInt32(0),
                                    "Watchers": dbus.UInt32(0), "Started": dbus.UInt64(time.time_ns() // 1000),
                                    "Ready": dbus.Boolean(True)})
    mock.connection.add_signal_receiver(on_owner, "NameOwnerChanged", "org.freedesktop.DBus")
