"""Mutation testing: changes the program in one place at a time and reports the changes that no test notices.

All mutants are compiled in at once, in a copy of the tree, where each place asks the environment whether its
mutant is the chosen one. Which test cases reach a mutant is measured first; it is then tried against these
alone, the quickest first, until one fails. Of a sample, only as many mutants are compiled in as it may take.
"""

import argparse
import ctypes
import fnmatch
import hashlib
import json
import multiprocessing
import os
import pickle
import random
import re
import resource
import shutil
import signal
import subprocess
import sys
import tempfile
import time
from collections import Counter
from dataclasses import dataclass, field

from clang import cindex

import places

TOP = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
WORK = os.path.join(TOP, "build", "mutation")
TREE, BUILD = os.path.join(WORK, "tree"), os.path.join(WORK, "build")
EQUIVALENT = os.path.join(TOP, "tests", "mutation", "equivalent.txt")
NO_PRODUCT = ("tests/", "fuzz/", "bench/", "examples/")
TEST_SOURCE = re.compile(r".*_test\.cpp$")
FILE_SHARE = 4000  # numbers that each file has for its mutants
GENERATED = ("generated/commit_id.h", "generated/page_files.h",
             "generated/evaluator_files.h", "generated/parameters_interface.h",
             "sw/dbus/generated/transaction_binding.h")
# What the sanitizers would notice of a place beyond an end ends the program here too.
FLAGS = ("-std=gnu++20 -O1 -w -D_GLIBCXX_ASSERTIONS -fsanitize=signed-integer-overflow,bounds"
         " -fsanitize-undefined-trap-on-error")
MEMORY_LIMIT = 4 << 30
DRAWN = 2  # mutants are compiled in for each one of a sample: some do not compile, or no test reaches them
MOST_SECONDS = 40  # for the tests of one mutant, as long as they take without it


def is_product(path):
    return (path.endswith((".cpp", ".h")) and not path.startswith(NO_PRODUCT) and
            not TEST_SOURCE.match(os.path.basename(path)))


def read(path):
    with open(path, encoding="latin-1") as file:  # offsets are in bytes
        return file.read()


def write_changed(path, text):
    """What is written again as it is would be compiled again."""
    if os.path.exists(path) and read(path) == text:
        return
    os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(path, "w", encoding="latin-1") as file:
        file.write(text)


def load(name, otherwise):
    path = os.path.join(WORK, name)
    if not os.path.exists(path):
        return otherwise
    with open(path, "rb") as file:
        return pickle.load(file)


def save(name, value):
    with open(os.path.join(WORK, name), "wb") as file:
        pickle.dump(value, file)


def run_or_die(command):
    done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, errors="replace")
    if done.returncode != 0:
        sys.exit(done.stdout + "failed: " + " ".join(command))


# The mutated tree.


def tracked_files():
    listed = subprocess.run(["git", "-C", TOP, "ls-files", "-co", "--exclude-standard"], capture_output=True, text=True)
    return sorted(path for path in listed.stdout.splitlines() if os.path.isfile(os.path.join(TOP, path)))


def copy_tree(files):
    for path in files:
        target = os.path.join(TREE, path)
        source = os.path.join(TOP, path)
        if is_product(path):
            continue
        os.makedirs(os.path.dirname(target), exist_ok=True)
        if not os.path.exists(target) or read(source) != read(target):
            shutil.copy2(source, target)
            os.utime(target)


def remove_strangers(files):
    """What is in the mutated tree and no longer in this one."""
    known = set(files)
    for folder, _, names in os.walk(TREE):
        for name in names:
            path = os.path.join(folder, name)
            if os.path.relpath(path, TREE) not in known:
                os.remove(path)


def configure():
    flags = FLAGS + " -include " + os.path.join(TREE, "tests/mutation/mutant.h")
    run_or_die(["cmake", "-S", TREE, "-B", BUILD, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=None", "-DCMAKE_CXX_FLAGS=" + flags])


def generate(header):
    """Makes what is needed to read the sources, without the libraries that the build would make before it."""
    listed = subprocess.run(["ninja", "-C", BUILD, "-t", "commands", header], capture_output=True, text=True)
    subprocess.run(listed.stdout.splitlines()[-1], shell=True, cwd=BUILD, check=True)


def parse(job):
    path, number, arguments = job
    text = read(os.path.join(TOP, path))
    unit = cindex.Index.create().parse(os.path.join(TOP, path), args=arguments,
                                       options=cindex.TranslationUnit.PARSE_DETAILED_PROCESSING_RECORD)
    errors = [str(d) for d in unit.diagnostics if d.severity >= cindex.Diagnostic.Error]
    if errors:
        raise RuntimeError(f"{path} cannot be read: {errors[0]}")
    return places.Source(unit, path, text, number)


def parser_arguments(files):
    """The options of each source's compilation; a header has those of its own source, or of one beside it."""
    with open(os.path.join(BUILD, "compile_commands.json"), encoding="utf-8") as file:
        commands = json.load(file)
    result, of_folder = {}, {}
    for entry in commands:
        path = os.path.relpath(entry["file"], TREE)
        options = re.findall(r"-(?:[IDU]|std=|isystem )\S+", entry["command"].replace(TREE, TOP))
        words = [word for option in options for word in option.replace('\\"', '"').split()] + ["-w", "-xc++"]
        result[path] = words
        of_folder.setdefault(os.path.dirname(path), words)
    first = next(iter(result.values()))
    own = {os.path.splitext(path)[0] + ".h": words for path, words in result.items()}
    return {path: result.get(path) or own.get(path) or of_folder.get(os.path.dirname(path), first) for path in files}


def find_places(files, wanted, jobs):
    """The `wanted` ones of `files` with their places; read anew only where something has changed."""
    headers = hashlib.sha256("".join(read(os.path.join(TOP, p)) for p in files if p.endswith(".h")).encode())
    headers.update(read(places.__file__).encode())
    known = load("places.pickle", {})
    arguments = None
    sources, work = {}, []
    for index, path in enumerate(files):
        if path not in wanted:
            continue
        first = 1 + index * FILE_SHARE
        state = (headers.hexdigest(), hashlib.sha256(read(os.path.join(TOP, path)).encode()).hexdigest(), first)
        if path in known and known[path][0] == state:
            sources[path] = known[path]
        else:
            arguments = arguments or parser_arguments(files)
            work.append((state, (path, first, arguments[path])))
    with multiprocessing.Pool(jobs) as pool:
        for (state, job), source in zip(work, pool.imap(parse, [job for _, job in work])):
            sources[job[0]] = (state, source)
    save("places.pickle", known | sources)
    return {path: sources[path][1] for path in files if path in sources}


def count_repeated(mutants):
    seen = Counter()
    for mutant in mutants:
        seen[mutant.key()] += 1
        mutant.nth = seen[mutant.key()] if seen[mutant.key()] > 1 else 1


def unit_tests(sources):
    """The targets that are the test programs beside `sources`."""
    folders = {os.path.dirname(path) for path in sources}
    listed = subprocess.run(["ninja", "-C", BUILD, "-t", "targets", "all"], capture_output=True, text=True)
    programs = re.findall(r"^(\S+_test): \S*EXECUTABLE_LINKER", listed.stdout, re.M)
    beside = [program for program in programs if os.path.dirname(program) in folders]
    if not beside:
        sys.exit("There are no test programs beside such files.")
    return beside


def build(sources, places_drawn, targets, jobs):
    """Builds `targets` with the mutants of all drawn places but those that do not compile. Returns the places
    that are left."""
    command = ["ninja", "-C", BUILD, "-j", str(jobs), "-k", "0", *targets]
    dropped = load("dropped.pickle", set())
    known = {mutant.key(): mutant.place for source in sources.values() for mutant in source.mutants}
    while True:
        kept = places_drawn - {known[key] for key in dropped if key in known}
        for path, source in sources.items():
            write_changed(os.path.join(TREE, path), source.mutated(kept))
        done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, errors="replace")
        if done.returncode == 0:
            return kept
        found = uncompiled(done.stdout, sources, kept)
        if not found:
            sys.exit(done.stdout[-20000:] + "The mutated tree does not build.")
        dropped |= found
        save("dropped.pickle", dropped)
        print(f"{len(found)} mutants do not compile", flush=True)


def uncompiled(output, sources, kept):
    """The keys of the mutants of places in `kept` on the lines that the compiler complains of."""
    lines = set(re.findall(r"^\S*?tree/([^:\n]+):(\d+):(?:\d+:)? +(?:error:|required from)", output, re.M))
    result = set()
    for path, line in lines:
        if path in sources:
            numbers = sources[path].places_on(int(line)) & kept
            result |= {m.key() for m in sources[path].mutants if m.place in numbers}
    return result


# The tests.


@dataclass
class Test:
    name: str
    command: list
    folder: str
    environment: dict
    case: str = ""  # of a program of GoogleTest
    seconds: float = 0
    reached: frozenset = frozenset()

    def program(self):
        return self.command[0] if self.case else self.name

    def rank(self, path):
        """How soon a mutant of the source `path` is tried against the test."""
        folder = os.path.dirname(os.path.relpath(self.command[0], BUILD))
        if not self.case or folder == "tests":
            return 3 if self.name.startswith("fuzz_") else 4
        beside = os.path.join(BUILD, os.path.splitext(path)[0] + "_test")
        if self.command[0] == beside:
            return 0
        return 1 if folder == os.path.dirname(path) else 2


def all_tests():
    listed = subprocess.run(["ctest", "--test-dir", BUILD, "--show-only=json-v1"], capture_output=True, text=True)
    tests = []
    for entry in json.loads(listed.stdout)["tests"]:
        if "command" not in entry:  # a program that is not built
            continue
        properties = {p["name"]: p["value"] for p in entry.get("properties", ())}
        environment = dict(text.split("=", 1) for text in properties.get("ENVIRONMENT", ()))
        case = [word[len("--gtest_filter="):] for word in entry["command"] if word.startswith("--gtest_filter=")]
        tests.append(Test(entry["name"], entry["command"], properties.get("WORKING_DIRECTORY", BUILD), environment,
                          case[0] if case else ""))
    return tests


def become_reaper():
    """Orphans of the tests become children of this process, which ends them."""
    set_child_subreaper = 36
    ctypes.CDLL(None).prctl(set_child_subreaper, 1, 0, 0, 0)


def end_children():
    path = f"/proc/self/task/{os.getpid()}/children"
    while True:
        with open(path, encoding="ascii") as file:
            children = [int(word) for word in file.read().split()]
        if not children:
            return
        for child in children:
            try:
                os.kill(child, signal.SIGKILL)
            except ProcessLookupError:
                pass
            os.waitpid(child, 0)


def limit_itself():
    resource.setrlimit(resource.RLIMIT_AS, (MEMORY_LIMIT, MEMORY_LIMIT))
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))


def passes(command, folder, environment, limit):
    """Runs a test. Returns whether it succeeds within `limit` seconds."""
    directory = tempfile.mkdtemp(prefix="mutate")
    environment = {**os.environ, **environment, "TMPDIR": directory}
    process = subprocess.Popen(command, cwd=folder, env=environment, stdin=subprocess.DEVNULL,
                               stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, start_new_session=True,
                               preexec_fn=limit_itself)
    try:
        result = process.wait(timeout=limit)
    except subprocess.TimeoutExpired:
        result = None
        process.kill()
        process.wait()
    end_children()
    shutil.rmtree(directory, ignore_errors=True)
    return result == 0


def measure_test(job):
    test, size = job
    with tempfile.NamedTemporaryFile() as file:
        file.truncate(size)
        start = time.monotonic()
        passed = passes(test.command, test.folder, {**test.environment, "MUTANTS_REACHED": file.name}, 300)
        seconds = time.monotonic() - start
        bytes_ = file.read()
    reached = frozenset(match.start() for match in re.finditer(b"\1", bytes_))
    return passed, seconds, reached


def hash_of(paths):
    result = hashlib.sha256()
    for path in sorted(paths):
        with open(path, "rb") as file:
            result.update(file.read())
    return result.hexdigest()


def measure(tests, size, jobs, files):
    """Runs each test once without a mutant, to see what it reaches; again only where something has changed."""
    known = load("reached.pickle", {})
    data = [os.path.join(TREE, path) for path in files if not path.endswith((".cpp", ".h", ".txt", ".py"))]
    programs = [os.path.join(BUILD, path) for path in ("startup/ostrel", "tools/ostrel-check", "tools/ostrel-vidstd")]
    rest = hash_of(data + [program for program in programs if os.path.exists(program)])
    state = {}
    for test in tests:
        program = test.command[0]
        own = hash_of([program]) if test.case else ""
        whole = test.case and not program.startswith(os.path.join(BUILD, "tests"))
        state[test.name] = (own, "" if whole else rest, size)
    stale = [test for test in tests if known.get(test.name, (None,))[0] != state[test.name]]
    with multiprocessing.Pool(jobs, initializer=become_reaper) as pool:
        results = pool.imap(measure_test, [(test, size) for test in stale], chunksize=1)
        for test, (passed, seconds, reached) in zip(stale, results):
            if not passed:
                print(f"left out, as it fails without a mutant: {test.name}", flush=True)
                reached = frozenset()
            known[test.name] = (state[test.name], seconds, reached)
    save("reached.pickle", known)
    for test in tests:
        _, test.seconds, test.reached = known[test.name]


# The trial.


@dataclass
class Attempt:
    """One run of a program with all its cases that reach the mutant."""
    rank: int
    tests: list = field(default_factory=list)

    def seconds(self):
        return sum(test.seconds for test in self.tests)

    def passes(self, number):
        first = self.tests[0]
        command = first.command
        if first.case:
            cases = ":".join(test.case for test in self.tests)
            command = [command[0], "--gtest_filter=" + cases, "--gtest_fail_fast", "--gtest_brief=1"]
        patience = 2 + 5 * self.seconds() if self.rank < 3 else 8 + 4 * self.seconds()
        return passes(command, first.folder, {**first.environment, "MUTANT": str(number)}, patience)


def attempts_for(mutant, tests):
    programs = {}
    for test in tests:
        if mutant.number in test.reached:
            programs.setdefault(test.program(), Attempt(test.rank(mutant.file))).tests.append(test)
    return sorted(programs.values(), key=lambda attempt: (attempt.rank, attempt.seconds()))


def try_mutant(mutant):
    """Returns the mutant and what killed it; nothing where it survives."""
    attempts = attempts_for(mutant, TESTS)
    if not attempts:
        mutant.note = "  (reached by no test)"
    spent = 0
    for attempt in attempts:
        spent += attempt.seconds()
        if spent > MOST_SECONDS and attempt is not attempts[0]:
            mutant.note = "  (slow tests not tried)"
            break
        if not attempt.passes(mutant.number):
            return mutant, attempt.tests[0].program()
    return mutant, None


def read_equivalent():
    """Blocks of lines: the reason, and below it, indented, the mutants."""
    result = {}
    reason = ""
    with open(EQUIVALENT, encoding="utf-8") as file:
        for line in file.read().splitlines():
            if line.startswith("\t"):
                result[line[1:]] = reason
            elif line and not line.startswith("#"):
                reason = line
    return result


def matches(path, patterns):
    return not patterns or any(path.startswith(p) or fnmatch.fnmatch(path, p) for p in patterns)


def arguments():
    parser = argparse.ArgumentParser(description=__doc__, prog="scripts/mutate",
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("files", nargs="*", help="only mutants of files that begin so, or match such a pattern")
    parser.add_argument("--mutants", type=int, help="a sample of so many; all without this")
    parser.add_argument("--seed", type=int, default=1, help="of the sample and of the order")
    parser.add_argument("--minutes", type=float, help="begin no further mutant after so long")
    parser.add_argument("--jobs", type=int, default=os.cpu_count(), help="processes at once")
    parser.add_argument("--threshold", type=float, default=97, help="the share to be killed, in percent")
    parser.add_argument("--survivors", action="store_true", help="only those that survived the last run")
    parser.add_argument("--resume", action="store_true", help="go on with the last run, which was stopped")
    parser.add_argument("--unit", action="store_true",
                        help="only the tests in the folders of the files, and only mutants that these reach")
    parser.add_argument("--list", action="store_true", help="list the mutants and try none")
    parser.add_argument("--output", help="write the table of survivors there too")
    return parser.parse_args()


def prepare(options):
    os.makedirs(WORK, exist_ok=True)
    files = tracked_files()
    product = [path for path in files if is_product(path)]
    copy_tree(files)
    wanted = {path for path in product if not options.unit or matches(path, options.files)}
    for path in product:
        if path not in wanted or not os.path.exists(os.path.join(TREE, path)):
            write_changed(os.path.join(TREE, path), read(os.path.join(TOP, path)))
    remove_strangers(files)
    configure()
    for header in GENERATED:
        generate(header)
    sources = find_places(product, wanted, options.jobs)
    for source in sources.values():
        count_repeated(source.mutants)
    mutants = [mutant for source in sources.values() for mutant in source.mutants]
    drawn = draw(mutants, sources, options)
    targets = unit_tests(wanted) if options.unit else []
    kept = build(sources, {mutant.place for mutant in (drawn if options.mutants else mutants)}, targets, options.jobs)
    tests = [test for test in all_tests() if not options.unit or os.path.relpath(test.command[0], BUILD) in targets]
    measure(tests, 1 + len(product) * FILE_SHARE, options.jobs, files)
    chosen = [mutant for mutant in drawn if mutant.place in kept]
    if options.unit:
        reached = frozenset().union(*(test.reached for test in tests))
        chosen = [mutant for mutant in chosen if mutant.number in reached]
    return chosen, tests


def draw(mutants, sources, options):
    """The mutants to choose from, in the order in which they are tried."""
    equivalent = read_equivalent()
    listed = {key for key in equivalent if not options.unit or key.split("\t")[0] in sources}
    unknown = listed - {mutant.key() for mutant in mutants}
    if unknown:
        sys.exit("No such mutants, but in " + EQUIVALENT + ":\n" + "\n".join(sorted(unknown)))
    drawn = [m for m in mutants if matches(m.file, options.files) and m.key() not in equivalent]
    if options.survivors:
        last = load("verdicts.pickle", {})
        drawn = [mutant for mutant in drawn if last.get(mutant.key(), "") is None]
    random.Random(options.seed).shuffle(drawn)
    return drawn[:DRAWN * options.mutants] if options.mutants else drawn


def main():
    options = arguments()
    started = time.monotonic()
    chosen, tests = prepare(options)
    print(f"{len(chosen)} mutants, {len(tests)} tests, prepared in {time.monotonic() - started:.0f} s", flush=True)
    chosen = chosen[:options.mutants]
    if options.list:
        for mutant in chosen:
            print(row(mutant))
        return 0
    return report(try_all(chosen, tests, options), options)


def try_all(chosen, tests, options):
    """Pairs of each mutant that was tried and what killed it."""
    global TESTS
    TESTS = tests
    end = time.monotonic() + 60 * options.minutes if options.minutes else None
    known = load("verdicts.pickle", {}) if options.resume else {}
    verdicts = [(mutant, known[mutant.key()]) for mutant in chosen if mutant.key() in known]
    print(f"{len(chosen)} to be tried, {len(verdicts)} of them were already", flush=True)
    with multiprocessing.Pool(options.jobs, initializer=become_reaper) as pool:
        for mutant, killer in pool.imap_unordered(try_mutant, [m for m in chosen if m.key() not in known]):
            verdicts.append((mutant, killer))
            if killer is None:
                print("survives: " + row(mutant), flush=True)
            if len(verdicts) % 20 == 0:
                save_verdicts(verdicts)
            if end and time.monotonic() > end:
                pool.terminate()
                break
    save_verdicts(verdicts)
    return verdicts


def save_verdicts(verdicts):
    save("verdicts.pickle", {mutant.key(): killer for mutant, killer in verdicts})


def row(mutant):
    return f"{mutant.file}:{mutant.line}  {mutant.function}  {mutant.original} -> {mutant.mutated}{mutant.note}"


def report(verdicts, options):
    survivors = [mutant for mutant, killer in verdicts if killer is None]
    rooms = Counter(os.path.dirname(mutant.file) for mutant, _ in verdicts)
    alive = Counter(os.path.dirname(mutant.file) for mutant in survivors)
    lines = [row(mutant) for mutant in sorted(survivors, key=lambda m: (m.file, m.line, m.number))]
    lines += [f"{room:12} {count:6} tried {alive[room]:5} survived" for room, count in sorted(rooms.items())]
    share = 100 * (1 - len(survivors) / max(1, len(verdicts)))
    lines.append(f"{len(verdicts)} tried, {len(survivors)} survived, {share:.1f} % killed")
    text = "\n".join(lines)
    print(text)
    if options.output:
        write_changed(os.path.abspath(options.output), text + "\n")
    return 0 if verdicts and share >= options.threshold else 1


TESTS = []

if __name__ == "__main__":
    sys.exit(main())
