"""A C++ source as tokens: enough of the language to find what can be changed, and no more."""

import bisect
import re
from dataclasses import dataclass

_TOKEN = re.compile(
    r"""(?P<skip>\s+|//[^\n]*|/\*.*?\*/|^[ \t]*\#(?:[^\n\\]|\\.|\\\n)*)
      |(?P<text>"(?:[^"\\\n]|\\.)*")
      |(?P<character>'(?:[^'\\\n]|\\.)+')
      |(?P<number>\d[\w.']*)
      |(?P<name>[A-Za-z_]\w*)
      |(?P<operator><<=|>>=|\.\.\.|::|->|\+\+|--|<<|>>|<=|>=|==|!=|&&|\|\||[-+*/%&|^]=|.)""",
    re.VERBOSE | re.DOTALL | re.MULTILINE)
_CLOSER = {"(": ")", "[": "]", "{": "}"}


@dataclass(frozen=True)
class Token:
    kind: str
    text: str
    start: int

    @property
    def end(self):
        return self.start + len(self.text)


class Source:
    """The tokens of one file without comments and preprocessor lines, and which brackets belong together."""

    def __init__(self, name, text):
        self.name = name
        self.text = text
        self.tokens = [Token(match.lastgroup, match.group(), match.start())
                       for match in _TOKEN.finditer(text) if match.lastgroup != "skip"]
        self.partner = {}
        self.enclosing = []  # of each token: the innermost bracket around it, -1 where there is none
        opened = []
        for index, token in enumerate(self.tokens):
            if token.text in (")", "]", "}") and opened:
                self.partner[opened[-1]] = index
                self.partner[index] = opened.pop()
            self.enclosing.append(opened[-1] if opened else -1)
            if token.text in _CLOSER:
                opened.append(index)
        self._lines = [0] + [match.end() for match in re.finditer("\n", text)]

    def is_at(self, index, *texts):
        return 0 <= index < len(self.tokens) and self.tokens[index].text in texts

    def place(self, offset):
        """Line and column, from 1 on."""
        line = bisect.bisect_right(self._lines, offset)
        return line, offset - self._lines[line - 1] + 1

    def between(self, first, last):
        """The text from one token to another, both included."""
        return self.text[self.tokens[first].start:self.tokens[last].end]

    def end_of(self, index, *ends):
        """The first of the end tokens from here on that is in no inner bracket; None when this bracket ends before."""
        while index < len(self.tokens):
            text = self.tokens[index].text
            if text in ends:
                return index
            if text in (")", "]", "}"):
                return None
            index = self.partner.get(index, index) + 1 if text in _CLOSER else index + 1
        return None

    def is_spaced(self, index):
        """Whether blanks stand on both sides: the layout gives them to binary operators, not to templates or pointers."""
        token = self.tokens[index]
        return self.text[token.start - 1:token.start].isspace() and self.text[token.end:token.end + 1].isspace()

    def is_in_code(self, index):
        """Whether a token stands in the body of a function: not among the members of a class or a namespace."""
        opener = self.enclosing[index]
        return opener > 0 and self.is_at(opener, "{") and (
            self.is_at(opener - 1, ")", "]", "const", "else", "do", "try", "override", "mutable", "{", "}", ";"))
