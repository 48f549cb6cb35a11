"""The parts of definition texts and sessions that editors have to show as what they are."""
import pathlib
import re

EXAMPLES = pathlib.Path(__file__).resolve().parents[3] / "examples"
# In each row are the end of a file's name, what the part is, and where the part is: the last group.
PARTS = [
    (".ostrel", "access", r"^[^\s{}]+ +(index|ro|rostrict|rw|wo)\b"),
    (".ostrel", "statement", r"(?:^|[{}]) *(index|ctrlRO|ctrlValid|default|rangeDoc|rangeValid|valueChange)\b"),
    (".ostrel", "number", r"(?<![\w:\[.])([0-9]+)(?![\w\]])"),
    (".ostrel", "figure", r"(vidStd::[^\s(){},]+::\w+)"),
    (".session", "operation", r"^ *(?:\w+: )?(?!for\b|include\b)(index range|\w+)"),
    (".session", "loop", r"^ *(for|include)\b"),
    (".session", "variable", r"(\$\w+)"),
]
COMMENT = re.compile(r"^\s*#.*$|(?<=\s)#.*$", re.MULTILINE)
STRING = re.compile(r'"[^"]*"')


def examples():
    """The paths of all examples."""
    return sorted(path for path in EXAMPLES.iterdir() if path.suffix in (".ostrel", ".session"))


def parts(path):
    """The parts of a text, as (offset, text of the part, what it is)."""
    text = path.read_text()
    found = []

    def taken(kind):
        def blanks(match):
            found.append((match.start() + len(match[0]) - len(match[0].lstrip()), match[0].strip(), kind))
            return re.sub(r"[^\n]", " ", match[0])
        return blanks
    text = COMMENT.sub(taken("comment"), text)
    if path.suffix == ".ostrel":
        text = STRING.sub(taken("string"), text)
    for suffix, kind, pattern in PARTS:
        if suffix == path.suffix:
            found += ((match.start(1), match[1], kind) for match in re.finditer(pattern, text, re.MULTILINE))
    return found
