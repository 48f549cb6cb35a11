"""Finds the places of a C++ source where a mutant can be made, with libclang, and writes the source
with all of them: each place asks mutant.h whether its mutant is the chosen one."""

import bisect
import ctypes
import re
from dataclasses import dataclass

from clang import cindex
from clang.cindex import CursorKind as Kind
from clang.cindex import TypeKind

BINARY = {"==": ("equal", "!="), "!=": ("notEqual", "=="), "+": ("plus", "-"), "-": ("minus", "+"),
          "*": ("times", "+"), "/": ("over", "*"), "%": ("modulo", "*"), "<<": ("leftBy", ">>"),
          ">>": ("rightBy", "<<"), "&": ("bitAnd", "|"), "|": ("bitOr", "&"), "^": ("bitXor", "&")}
COMPARISONS = {"<": ("less", "<=", ">="), "<=": ("lessOrEqual", "<", ">"),
               ">": ("greater", ">=", "<="), ">=": ("greaterOrEqual", ">", "<")}
ASSIGNMENTS = {"+=": ("add", "-="), "-=": ("subtract", "+="), "*=": ("multiply", "+="),
               "/=": ("divide", "*="), "|=": ("setBits", "&="), "&=": ("clearBits", "|=")}
STEPS = {"++": ("increment", "--"), "--": ("decrement", "++")}
EXTREMES = {"max": ("larger", "min"), "min": ("smaller", "max")}

FUNCTIONS = {Kind.FUNCTION_DECL, Kind.CXX_METHOD, Kind.CONSTRUCTOR, Kind.DESTRUCTOR,
             Kind.CONVERSION_FUNCTION, Kind.FUNCTION_TEMPLATE}
LOOPS = {Kind.FOR_STMT, Kind.WHILE_STMT, Kind.DO_STMT, Kind.CXX_FOR_RANGE_STMT}
JUMPS = {Kind.BREAK_STMT, Kind.CONTINUE_STMT, Kind.CXX_THROW_EXPR}
LITERALS = {Kind.INTEGER_LITERAL, Kind.CHARACTER_LITERAL}
# What the compiler computes, or what is no code.
OPAQUE = {Kind.STATIC_ASSERT, Kind.TYPE_REF, Kind.TEMPLATE_REF,
          Kind.NAMESPACE_REF, Kind.CXX_UNARY_EXPR, Kind.PARM_DECL, Kind.FIELD_DECL,
          Kind.TYPE_ALIAS_DECL, Kind.TYPEDEF_DECL, Kind.ENUM_DECL}
INTEGERS = {TypeKind.CHAR_U, TypeKind.UCHAR, TypeKind.CHAR_S, TypeKind.SCHAR, TypeKind.USHORT,
            TypeKind.UINT, TypeKind.ULONG, TypeKind.ULONGLONG, TypeKind.SHORT, TypeKind.INT,
            TypeKind.LONG, TypeKind.LONGLONG}
REFERENCES = {TypeKind.LVALUEREFERENCE, TypeKind.RVALUEREFERENCE}
EMPTY_RESULTS = {"{}", "nullptr", "std::nullopt", '""', "FALSE", "false", "0"}


# Not among what the Python module offers, and asked for each declaration of each header.
is_from_main_file = cindex.conf.lib.clang_Location_isFromMainFile
is_from_main_file.argtypes = [cindex.SourceLocation]
is_from_main_file.restype = ctypes.c_int


@dataclass
class Mutant:
    file: str
    line: int
    function: str
    original: str
    mutated: str
    number: int  # in the program
    place: int  # the number of the first mutant of the same place
    note: str = ""  # for the report
    nth: int = 1  # of the mutants of this file with the same function, original and mutated text

    def key(self):
        nth = [f"#{self.nth}"] if self.nth > 1 else []
        return "\t".join([self.file, self.function, self.original, self.mutated] + nth)


def is_pointer(cursor):
    return cursor.type.get_canonical().kind == TypeKind.POINTER


def squeezed(text):
    """On one line, cut where it is a long block."""
    text = re.sub(r"\s+", " ", text).strip()
    return text if len(text) <= 160 else text[:157] + "..."


class Source:
    """One source with its places. `first` is the number of its first mutant."""

    def __init__(self, unit, file, text, first):
        self.file, self.text, self.first = file, text, first
        self.mutants, self.edits = [], []
        self.function, self.result_type = "", None
        self.seen = set()
        extent = cindex.SourceRange.from_locations(
            cindex.SourceLocation.from_offset(unit, unit.get_file(unit.spelling), 0),
            cindex.SourceLocation.from_offset(unit, unit.get_file(unit.spelling), len(text)))
        self.tokens = [(token.extent.start.offset, token.spelling) for token in unit.get_tokens(extent=extent)
                       if token.kind != cindex.TokenKind.COMMENT]
        self.token_starts = [start for start, _ in self.tokens]
        own = [cursor for cursor in unit.cursor.get_children() if self.is_here(cursor)]
        self.macros = [self.span(c) for c in own if c.kind in (Kind.MACRO_INSTANTIATION, Kind.MACRO_DEFINITION)]
        for cursor in own:
            self.declaration(cursor, "")

    # Where a cursor is.

    @staticmethod
    def is_here(cursor):
        return is_from_main_file(cursor.location) != 0

    @staticmethod
    def span(cursor):
        return cursor.extent.start.offset, cursor.extent.end.offset

    def of(self, cursor):
        start, end = self.span(cursor)
        return self.text[start:end]

    def in_macro(self, start, end):
        return any(s <= start and end <= e for s, e in self.macros)

    def is_usable(self, cursor):
        start, end = self.span(cursor)
        return start < end and self.is_here(cursor) and not self.in_macro(start, end)

    def tokens_from(self, offset):
        return self.tokens[bisect.bisect_left(self.token_starts, offset):]

    # Making mutants.

    def add(self, start, end, texts):
        """Mutants with the text from `start` to `end` replaced by each of `texts`; returns the number of the
        first, or none where they are made already."""
        if (start, end, texts[0]) in self.seen:
            return None
        self.seen.add((start, end, texts[0]))
        line_start = self.text.rfind("\n", 0, start) + 1
        line_end = self.text.find("\n", end)
        original = squeezed(re.sub(r"//.*", "", self.text[line_start:line_end]))
        number = self.first + len(self.mutants)
        for text in texts:
            mutated = squeezed(re.sub(r"//.*", "", self.text[line_start:start] + text + self.text[end:line_end]))
            if mutated == original:  # differs beyond the cut
                mutated = squeezed(self.text[start:end]) + " -> " + squeezed(text)
            line = self.text.count("\n", 0, start) + 1
            self.mutants.append(Mutant(self.file, line, self.function, original, mutated,
                                       self.first + len(self.mutants), number))
        return number

    def edit(self, number, wraps, replacements=()):
        """How mutant `number` comes into the source: texts around spans, and texts in their place."""
        self.edits.append((number, wraps, replacements))

    def wrap(self, cursor, prefix, suffix, texts):
        start, end = self.span(cursor)
        number = self.add(start, end, texts)
        if number is not None:
            self.edit(number, [(start, end, prefix % number, suffix)])

    def binary(self, cursor, left, right, name, operators):
        """left op right becomes name(number, left, right)."""
        start, end = self.operator_span(left, right)
        number = self.add(start, end, operators)
        if number is not None:
            self.edit(number, [(*self.span(cursor), f"mutant::{name}({number}, ", ")")], [(start, end, ",")])

    def operator_span(self, left, right):
        gap_start, gap_end = self.span(left)[1], self.span(right)[0]
        for start, spelling in self.tokens_from(gap_start):
            return (start, start + len(spelling)) if start < gap_end else (gap_start, gap_start)
        return gap_start, gap_start

    def drop(self, cursor):
        if self.is_usable(cursor):
            self.wrap(cursor, "if (mutant::is(%d)) {} else ", "", ["/* dropped */"])

    # Walking.

    def declaration(self, cursor, scope):
        if cursor.kind in FUNCTIONS:
            self.body_of(cursor, scope)
        elif cursor.kind not in OPAQUE and not cursor.kind.is_expression() and cursor.kind != Kind.VAR_DECL:
            name = cursor.spelling if cursor.kind != Kind.NAMESPACE else ""
            inner = "::".join(part for part in (scope, name) if part)
            for child in cursor.get_children():
                self.declaration(child, inner)

    def body_of(self, function, scope):
        if not function.is_definition():
            return
        parent = function.semantic_parent
        if parent is not None and parent.kind in (Kind.CLASS_DECL, Kind.STRUCT_DECL, Kind.CLASS_TEMPLATE):
            scope = scope if scope.endswith(parent.spelling) else parent.spelling
        self.function = "::".join(part for part in (scope, function.spelling) if part)
        self.result_type = function.result_type.get_canonical().kind
        for child in function.get_children():
            # The other expressions are in types, or the members' initial values.
            if child.kind == Kind.COMPOUND_STMT or (function.kind == Kind.CONSTRUCTOR and child.kind.is_expression()):
                self.visit(child)

    def visit(self, cursor, condition=False):
        """`condition`: whether the expression serves as one."""
        if cursor.kind in OPAQUE:
            return
        start, end = self.span(cursor)
        if start < end and self.in_macro(start, end):
            return
        handler = getattr(self, "on_" + cursor.kind.name.lower(), None)
        if handler is not None:
            handler(cursor, condition)
            return
        children = list(cursor.get_children())
        # A conversion that is not written, or a temporary.
        if cursor.kind == Kind.UNEXPOSED_EXPR and len(children) == 1 and self.span(children[0]) == (start, end):
            self.visit(children[0], condition)
            return
        if condition:
            self.turn(cursor)
        for child in children:
            self.visit(child)

    def turn(self, cursor):
        if self.is_usable(cursor):
            self.wrap(cursor, "mutant::turned(%d, ", ")", ["!(" + self.of(cursor) + ")"])

    def on_paren_expr(self, cursor, condition):
        for child in cursor.get_children():
            self.visit(child, condition)

    def on_binary_operator(self, cursor, condition):
        children = list(cursor.get_children())
        if len(children) != 2 or not self.is_usable(cursor):
            return
        left, right = children
        start, end = self.operator_span(left, right)
        sign = self.text[start:end]
        is_logical = sign in ("&&", "||")
        if is_logical:
            self.logical(cursor, left, right, sign)
        elif sign in COMPARISONS:
            name, *wrong = COMPARISONS[sign]
            self.binary(cursor, left, right, name, wrong)
        elif sign in BINARY and not (sign == "-" and is_pointer(left) and is_pointer(right)):
            name, wrong = BINARY[sign]
            self.binary(cursor, left, right, name, [wrong])
        self.visit(left, is_logical)
        self.visit(right, is_logical)

    def logical(self, cursor, left, right, sign):
        """With every operand and the whole turned, "and" is "or"."""
        start, end = self.operator_span(left, right)
        number = self.add(start, end, ["||" if sign == "&&" else "&&"])
        if number is not None:
            self.edit(number, [(*self.span(part), f"mutant::turned({number}, ", ")") for part in (cursor, left, right)])

    def on_compound_assignment_operator(self, cursor, _):
        left, right = cursor.get_children()
        start, end = self.operator_span(left, right)
        if self.text[start:end] in ASSIGNMENTS and self.is_usable(cursor):
            name, wrong = ASSIGNMENTS[self.text[start:end]]
            self.binary(cursor, left, right, name, [wrong])
        self.visit(left)
        self.visit(right)

    def on_unary_operator(self, cursor, condition):
        operand = next(iter(cursor.get_children()))
        start, end = self.span(cursor)
        inner_start, inner_end = self.span(operand)
        before, after = self.text[start:inner_start].strip(), self.text[inner_end:end].strip()
        if before in STEPS or after in STEPS:
            name, wrong = STEPS[before or after]
            if self.is_usable(cursor):
                self.step(cursor, operand, name + ("After" if after else ""), before, after, wrong)
        elif before == "-" and operand.kind not in LITERALS and self.is_usable(cursor):
            number = self.add(start, inner_start, [""])
            if number is not None:
                self.edit(number, [(start, end, f"mutant::negative({number}, ", ")")], [(start, inner_start, "")])
        elif condition and before != "!":
            self.turn(cursor)
        self.visit(operand, before == "!")

    def step(self, cursor, operand, name, before, after, wrong):
        start, end = self.span(cursor)
        inner_start, inner_end = self.span(operand)
        sign = (start, inner_start) if before else (inner_end, end)
        number = self.add(*sign, [wrong])
        if number is not None:
            self.edit(number, [(start, end, f"mutant::{name}({number}, ", ")")], [(*sign, "")])

    def on_call_expr(self, cursor, condition):
        if condition:
            self.turn(cursor)
        arguments = list(cursor.get_arguments())
        callee = next(iter(cursor.get_children()), None)
        if callee is not None and len(arguments) == 2 and self.is_usable(cursor):
            start, end = self.span(callee)
            name = self.text[start:end]
            if name in ("std::max", "std::min") and self.text[end] == "(":
                ours, wrong = EXTREMES[name[5:]]
                number = self.add(start, end, ["std::" + wrong])
                if number is not None:
                    self.edit(number, [], [(start, end + 1, f"mutant::{ours}({number}, ")])
        for child in cursor.get_children():
            self.visit(child)

    def on_conditional_operator(self, cursor, condition):
        test, first, second = cursor.get_children()
        self.visit(test, True)
        self.visit(first, condition)
        self.visit(second, condition)

    def on_integer_literal(self, cursor, _):
        spelling = self.of(cursor)
        if self.is_usable(cursor) and spelling[:1].isdigit():
            self.constant(cursor, spelling)

    def on_character_literal(self, cursor, _):
        if self.is_usable(cursor):
            self.constant(cursor, self.of(cursor))

    def on_cxx_bool_literal_expr(self, cursor, _):
        if self.is_usable(cursor):
            other = "false" if self.of(cursor) == "true" else "true"
            self.wrap(cursor, "mutant::turned(%d, ", ")", [other])

    def on_decl_ref_expr(self, cursor, condition):
        target = cursor.referenced
        if condition:
            self.turn(cursor)
        elif (target is not None and target.kind == Kind.VAR_DECL and self.is_usable(cursor) and
              target.type.get_canonical().kind in INTEGERS and target.type.is_const_qualified() and
              re.fullmatch("[A-Z][A-Z0-9_]*", target.spelling)):
            self.constant(cursor, self.of(cursor))

    def constant(self, cursor, text):
        self.wrap(cursor, "mutant::constant(%d, ", ")", [f"({text} + 1)", f"({text} - 1)"])

    def on_var_decl(self, cursor, _):
        words = {spelling for start, spelling in self.tokens_from(self.span(cursor)[0])
                 if start < cursor.location.offset}
        if "constexpr" in words or "constinit" in words:
            return
        is_bool = cursor.type.get_canonical().kind == TypeKind.BOOL
        for child in cursor.get_children():
            if self.span(child)[0] > cursor.location.offset and child.kind.is_expression():
                self.visit(child, is_bool and self.text[:self.span(child)[0]].rstrip().endswith("="))

    def on_lambda_expr(self, cursor, _):
        outer = self.result_type
        self.result_type = None
        for child in cursor.get_children():
            if child.kind == Kind.COMPOUND_STMT:
                self.visit(child)
        self.result_type = outer

    def on_compound_stmt(self, cursor, _):
        for child in cursor.get_children():
            self.statement(child)

    def statement(self, cursor, guarded=False):
        """`guarded`: it is the branch of a condition, so a return may be dropped."""
        kind = cursor.kind
        if kind in LOOPS or kind in JUMPS or kind.is_expression() or (guarded and kind == Kind.RETURN_STMT):
            self.drop(cursor)
        self.visit(cursor)

    def branch(self, cursor):
        if cursor.kind == Kind.COMPOUND_STMT:
            for child in cursor.get_children():
                self.statement(child, True)
        else:
            self.statement(cursor, True)

    def header_end(self, cursor):
        """Where the parentheses of an if, while or for end, and where its semicolons are."""
        depth, semicolons = 0, []
        for start, spelling in self.tokens_from(self.span(cursor)[0]):
            depth += (spelling in "([{") - (spelling in ")]}")
            if spelling == ")" and depth == 0:
                return start, semicolons
            if spelling == ";" and depth == 1:
                semicolons.append(start)
        return len(self.text), semicolons

    def on_if_stmt(self, cursor, _):
        end, semicolons = self.header_end(cursor)
        is_static = [spelling for _, spelling in self.tokens_from(self.span(cursor)[0])[:2]] == ["if", "constexpr"]
        children = list(cursor.get_children())
        header = [c for c in children if self.span(c)[0] < end]
        declares = any(c.kind in (Kind.VAR_DECL, Kind.DECL_STMT) and
                       (not semicolons or self.span(c)[0] > semicolons[-1]) for c in header)
        for child in header:
            is_test = not semicolons or self.span(child)[0] > semicolons[-1]
            if not is_static and not (declares and child.kind.is_expression() and is_test):
                self.visit(child, is_test and child.kind.is_expression())
        for child in children:
            if self.span(child)[0] >= end:
                if child.kind == Kind.IF_STMT:
                    self.visit(child)
                else:
                    self.branch(child)

    def on_while_stmt(self, cursor, _):
        end, _ = self.header_end(cursor)
        for child in cursor.get_children():
            if self.span(child)[0] < end:
                self.visit(child, child.kind.is_expression())
            else:
                self.branch(child)

    def on_do_stmt(self, cursor, _):
        body, test = cursor.get_children()
        self.visit(body)
        self.visit(test, True)

    def on_for_stmt(self, cursor, _):
        end, semicolons = self.header_end(cursor)
        for child in cursor.get_children():
            start = self.span(child)[0]
            if start >= end:
                self.branch(child)
            else:
                self.visit(child, len(semicolons) == 2 and semicolons[0] < start < semicolons[1])

    def on_cxx_for_range_stmt(self, cursor, _):
        end, _ = self.header_end(cursor)
        for child in cursor.get_children():
            if self.span(child)[0] < end:
                if child.kind.is_expression():
                    self.visit(child)
            else:
                self.branch(child)

    def on_case_stmt(self, cursor, _):
        children = list(cursor.get_children())
        self.statement(children[-1])

    on_default_stmt = on_case_stmt

    def on_switch_stmt(self, cursor, _):
        for child in cursor.get_children():
            self.visit(child)

    def on_return_stmt(self, cursor, _):
        value = next(iter(cursor.get_children()), None)
        if value is None:
            return
        kind = self.result_type
        if kind is None:  # of a lambda: what its value is
            kind = value.type.get_canonical().kind
        if kind == TypeKind.BOOL:
            self.visit(value, True)
            return
        if self.is_usable(cursor) and self.of(value).strip() not in EMPTY_RESULTS:
            if kind in INTEGERS or kind == TypeKind.ENUM:
                if value.kind not in LITERALS and not self.is_constant(value):
                    self.wrap(value, "mutant::result(%d, ", ")", ["(" + self.of(value) + " == 0 ? 1 : 0)"])
            elif kind not in REFERENCES and kind != TypeKind.VOID and self.result_type is not None:
                self.wrap(cursor, "if (mutant::is(%d)) return {}; else ", "", ["return {}"])
        self.visit(value)

    @staticmethod
    def is_constant(cursor):
        children = list(cursor.get_children())
        while cursor.kind == Kind.UNEXPOSED_EXPR and len(children) == 1:
            cursor = children[0]
            children = list(cursor.get_children())
        target = cursor.referenced if cursor.kind == Kind.DECL_REF_EXPR else None
        return (cursor.kind in LITERALS or
                (target is not None and target.kind == Kind.VAR_DECL and target.type.is_const_qualified() and
                 target.spelling.isupper()))

    # Writing.

    def places_on(self, line):
        """The numbers of the places that begin on a line, or whose change is on it."""
        def is_on(offset):
            return self.text.count("\n", 0, offset) + 1 == line
        return {number for number, wraps, replacements in self.edits
                if any(is_on(span[0]) for span in [*wraps, *replacements])}

    def mutated(self, kept):
        """The source with the mutants of the places in `kept`. Lines stay where they are."""
        opening, closing, replaced = {}, {}, {}
        for order, (number, wraps, replacements) in enumerate(self.edits):
            if number not in kept:
                continue
            for start, end, prefix, suffix in wraps:
                opening.setdefault(start, []).append((-end, order, prefix))
                closing.setdefault(end, []).append((-start, -order, suffix))
            replaced.update((start, (end, text)) for start, end, text in replacements)
        pieces, position = [], 0
        for place in sorted({*opening, *closing, *replaced}):
            pieces.append(self.text[position:place])
            pieces.extend(suffix for _, _, suffix in sorted(closing.get(place, ())))
            pieces.extend(prefix for _, _, prefix in sorted(opening.get(place, ())))
            position = place
            if place in replaced:
                position, text = replaced[place]
                pieces.append(text)
        return "".join(pieces) + self.text[position:]
