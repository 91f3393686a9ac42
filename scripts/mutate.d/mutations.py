"""The changes that are tried: each is one place of a source with another text in it."""

import difflib
import re
from collections import Counter
from dataclasses import dataclass

_BINARY = {
    "<": ("<=", ">="), "<=": ("<", ">"), ">": (">=", "<="), ">=": (">", "<"), "==": ("!=",), "!=": ("==",),
    "&&": ("||",), "||": ("&&",), "+": ("-",), "-": ("+",), "*": ("/",), "/": ("*",), "%": ("*",), "&": ("|",),
    "|": ("&",), "<<": (">>",), ">>": ("<<",), "+=": ("-=",), "-=": ("+=",),
}
_NAMES = {
    "true": "false", "false": "true", "front": "back", "back": "front", "begin": "end", "min": "max", "max": "min",
    "FILE_TYPE_NONE": "FILE_TYPE_JPG", "FILE_TYPE_JPG": "FILE_TYPE_MP4", "FILE_TYPE_MP4": "FILE_TYPE_JPG",
    "FILE_TYPE_SRW": "FILE_TYPE_MPO", "FILE_TYPE_MPO": "FILE_TYPE_SRW", "FILE_TYPE_AVI": "FILE_TYPE_JPG",
}
_NOT_A_STATEMENT = {
    "return", "if", "for", "while", "do", "else", "switch", "case", "default", "try", "catch", "throw", "using",
    "namespace", "class", "struct", "enum", "template", "typedef", "friend", "static", "static_assert", "const",
    "constexpr", "auto", "char", "int", "bool", "long", "short", "unsigned", "void", "public", "private", "virtual",
}
_JUDGED_BY_THE_COMPILER = ("static_assert", "__attribute__")


@dataclass(frozen=True)
class Mutant:
    key: str  # file:line:column:kind:number
    file: str
    line: int
    start: int
    end: int
    new: str

    def apply(self, text):
        return text[:self.start] + self.new + text[self.end:]

    def context(self, text):
        """The line that begins the function, or whatever else stands at the margin."""
        lines = text[:self.start].splitlines()[:-1]
        return "  " + next((line for line in reversed(lines) if re.match(r"[A-Za-z]", line)), "")

    def change(self, text):
        """The lines before and behind the change, without their indentation."""
        before = text.splitlines()
        behind = self.apply(text).splitlines()
        lines = [line[:2] + line[2:].strip() for line in difflib.ndiff(before, behind)]
        return tuple(line for mark in "-+" for line in lines if line.startswith(mark) and line[2:])


def mutants_of(source):
    """All of them, in the order of the file."""
    skipped = _skipped(source)
    found = []
    numbers = Counter()
    for index in range(len(source.tokens)):
        if index in skipped:
            continue
        for kind, first, last, new in _changes_at(source, index):
            start, end = source.tokens[first].start, source.tokens[last].end
            line, column = source.place(start)
            place = f"{source.name}:{line}:{column}:{kind}"
            numbers[place] += 1
            # Later lines keep their numbers, which the log shows.
            new += "\n" * (source.text.count("\n", start, end) - new.count("\n"))
            found.append(Mutant(f"{place}:{numbers[place]}", source.name, line, start, end, new))
    return found


def _skipped(source):
    """What is there for the compiler alone."""
    skipped = set()
    for index, token in enumerate(source.tokens):
        if token.text in _JUDGED_BY_THE_COMPILER and index + 1 in source.partner:
            skipped.update(range(index, source.partner[index + 1] + 1))
    return skipped


def _changes_at(source, index):
    for find in (_operator, _constant, _statement, _condition, _choice, _result, _arguments):
        yield from find(source, index)


def _operator(source, index):
    token = source.tokens[index]
    if token.kind != "operator":
        return
    if source.is_spaced(index):
        for new in _BINARY.get(token.text, ()):
            yield "operator", index, index, new
    elif token.text in ("++", "--"):
        yield "operator", index, index, "--" if token.text == "++" else "++"
    elif token.text in ("!", "~", "-") and not source.text[token.end].isspace():
        yield "operator", index, index, ""


def _constant(source, index):
    token = source.tokens[index]
    if token.kind == "number" and re.fullmatch(r"\d+", token.text):
        octal = len(token.text) > 1 and token.text.startswith("0")
        value = int(token.text, 8 if octal else 10)
        for new in sorted({value + 1, max(value - 1, 0)} - {value}):
            yield "constant", index, index, f"0{new:o}" if octal else str(new)
    elif token.kind == "character" and len(token.text) == 3:
        yield "constant", index, index, f"'{chr(ord(token.text[1]) + 1)}'"
    elif token.kind == "text" and token.text != '""':
        yield "constant", index, index, '""'
    elif token.kind == "name" and token.text in _NAMES:
        yield "constant", index, index, _NAMES[token.text]


def _statement(source, index):
    """A statement is left out."""
    begins = source.is_at(index - 1, ";", "{", "}", "else", "do") or (
        source.is_at(index - 1, ")") and source.is_at(source.partner.get(index - 1, 0) - 1, "if", "for", "while"))
    if not begins or not source.is_in_code(index):
        return
    end = source.end_of(index, ";")
    if end is None or end == index:
        return
    if source.is_at(index, "break", "continue", "delete") or _is_expression(source, index, end):
        yield "statement", index, end, ";"


def _is_expression(source, index, end):
    """Not a declaration: a name, what is called, indexed or reached from it, and then the end or an assignment."""
    while source.is_at(index, "++", "--", "*"):
        index += 1
    if source.is_at(index, "("):  # a cast
        index = source.partner[index] + 1
    if source.tokens[index].kind != "name" or source.tokens[index].text in _NOT_A_STATEMENT:
        return False
    index += 1
    while index < end:
        if source.is_at(index, "::", ".", "->"):
            index += 2
        elif source.is_at(index, "(", "["):
            index = source.partner[index] + 1
        else:
            break
    return source.is_at(index, ";", "=", "+=", "-=", "++", "--")


def _condition(source, index):
    if source.is_at(index, "if", "while") and source.is_at(index + 1, "("):
        first, last = index + 2, source.partner[index + 1] - 1
        yield "condition", first, last, f"!({source.between(first, last)})"


def _choice(source, index):
    """The two values of a ?: change places."""
    if not source.is_at(index, "?"):
        return
    colon = source.end_of(index + 1, ":", "?")
    if colon is None or source.is_at(colon, "?"):
        return
    end = source.end_of(colon + 1, ",", ";")
    if end is None:  # the bracket around it ends first
        end = source.partner[source.enclosing[index]]
    one, other = source.between(index + 1, colon - 1), source.between(colon + 1, end - 1)
    yield "choice", index + 1, end - 1, f"{other} : {one}"


def _result(source, index):
    if not source.is_at(index, "return") or source.is_at(index + 1, ";", "{"):
        return
    end = source.end_of(index, ";")
    if end is None:
        return
    value = source.between(index + 1, end - 1)
    if value == "kelp::kSuccess":
        yield "result", index + 1, end - 1, "kelp::kFailure"
    elif value not in ("true", "false", "0", '""'):
        yield "result", index + 1, end - 1, "{}"


def _arguments(source, index):
    """Two neighbours among the arguments of a call change places."""
    if not source.is_at(index, "(") or source.tokens[index - 1].kind != "name" or not source.is_in_code(index):
        return
    close = source.partner[index]
    bounds = []
    first = index + 1
    while first < close:
        comma = source.end_of(first, ",")
        last = (comma if comma is not None else close) - 1
        bounds.append((first, last))
        first = last + 2
    if any(_is_declared(source, *bound) for bound in bounds):
        return
    for (a, b), (c, d) in zip(bounds, bounds[1:]):
        one, other = source.between(a, b), source.between(c, d)
        if one != other:
            yield "arguments", a, d, f"{other}, {one}"


def _is_declared(source, first, last):
    kinds = [source.tokens[index].kind for index in range(first, last + 1)]
    return ("name", "name") in zip(kinds, kinds[1:])
