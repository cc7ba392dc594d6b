"""Small changes to a C++ source: a relation, a connective, a sign, a constant, a statement dropped."""
import collections
import dataclasses
import re


@dataclasses.dataclass(frozen=True)
class Change:
    """`old` at `offset` of the file becomes `new`."""
    path: str
    line: int
    offset: int
    old: str
    new: str
    text: str  # the line, without blanks around it
    number: int = 1  # of the changes to the file that are told alike

    def apply(self, source):
        end = self.offset + len(self.old)
        assert source[self.offset:end] == self.old
        return source[:self.offset] + self.new + source[end:]

    def what(self):
        old = " ".join(self.old.split())
        return f"without {old}" if self.new.strip() in ("", "{}") else f"{old} => {self.new}"

    def key(self):
        """What a change is known by in a list: it holds while lines move."""
        number = f" (no. {self.number})" if self.number > 1 else ""
        return f"{self.path} | {self.text} | {self.what()}{number}"


# Comments, literals of text and preprocessor lines are left alone: blanks in their place.
_NOT_CODE = re.compile(
    r"//[^\n]*|/\*.*?\*/|\"(?:\\.|[^\"\\\n])*\"|(?<![0-9a-fA-F])'(?:\\.|[^'\\\n])+'"
    r"|^[ \t]*#(?:[^\n\\]|\\.|\\\n)*", re.DOTALL | re.MULTILINE)

# Formatted sources have a blank on both sides of a binary operator, and none around the angle brackets of
# a template, references and pointers.
_BINARY = {
    "<": ["<=", ">="], "<=": ["<", ">"], ">": [">=", "<="], ">=": [">", "<"],
    "==": ["!="], "!=": ["=="], "&&": ["||"], "||": ["&&"],
    "+": ["-"], "-": ["+"], "*": ["+"], "/": ["*"], "%": ["/"],
    "&": ["|"], "|": ["&"], "^": ["&"], "<<": [">>"], ">>": ["<<"],
    "+=": ["-="], "-=": ["+="], "*=": ["+="], "/=": ["*="],
    "|=": ["&="], "&=": ["|="], "^=": ["|="], "<<=": [">>="], ">>=": ["<<="],
}
_BINARY_AT = re.compile(r"(?<= )(" + "|".join(
    re.escape(o) for o in sorted(_BINARY, key=len, reverse=True)) + r")(?=[ \n])")
_UNARY_AT = re.compile(r"(?<=[(\[{ ])(?:-(?=[\w(])|!(?=[\w(*])|~(?=[\w(]))")
_STEP_AT = re.compile(r"\+\+|--")
_NUMBER_AT = re.compile(r"(?<![\w.])(?:0[xX][0-9a-fA-F']+|0[bB][01']+|\d[\d']*\.\d*(?:[eE][+-]?\d+)?"
                        r"|\d[\d']*)([uUlLfF]*)(?![\w.])")
_WORDS = {"true": "false", "false": "true", "TRUE": "FALSE", "FALSE": "TRUE"}
_WORD_AT = re.compile(r"\b(?:" + "|".join(_WORDS) + r")\b")

# A statement that is an expression, or leaves a block: behind the end of another one or a condition.
_STATEMENT_AT = re.compile(
    r"(?:(?<=[;{}])\s*\n\s*|(?<=\))\s+)((?:\*|\+\+|--)?[a-zA-Z_][\w:]*(?:<[\w:, ]+>)?"
    r"(?:\(|\[|\.|->| (?:[-+*/%|&^]|<<|>>)?= |\+\+;|--;)[^;{}]*;|(?:break|continue|return);"
    r"|(?:\+\+|--|\*)[a-zA-Z_(][^;{}]*;)")
_NO_STATEMENT = re.compile(r"(?:static_assert|HWY_|else\b|using\b|return\b(?!;)|if\b|for\b|while\b|switch\b)")
_RETURN_AT = re.compile(r"(?<=\)) (return [^;{}]+;)")


def _blank(match):
    return re.sub(r"[^\n]", " ", match.group())


def _other_numbers(number, suffix):
    digits = number[:len(number) - len(suffix)].replace("'", "")
    if "." in digits:
        value = float(digits)
        return [("1.0" if value == 0 else repr(value * 1.5)) + suffix]
    if re.match(r"0[xXbB]", digits):
        value = int(digits, 0)
        return [hex(value + 1) + suffix] + ([hex(value - 1) + suffix] if value > 0 else [])
    value = int(digits)
    return [str(value + 1) + suffix] + ([str(value - 1) + suffix] if value > 0 else [])


def _balanced(text):
    return all(text.count(a) == text.count(b) for a, b in ("()", "[]"))


def _numbered(changes):
    seen = collections.Counter()
    numbered = []
    for change in changes:
        seen[change.key()] += 1
        numbered.append(dataclasses.replace(change, number=seen[change.key()]))
    return numbered


def changes_of(path, source):
    """Every change to the source, in the order of the file."""
    code = _NOT_CODE.sub(_blank, source)
    code = re.sub(r"static_assert\([^;]*;", _blank, code)
    found = []

    def add(offset, old, new):
        begin = source.rfind("\n", 0, offset) + 1
        end = source.find("\n", offset)
        line = source.count("\n", 0, offset) + 1
        found.append(Change(path, line, offset, old, new, source[begin:end].strip()))

    for match in _BINARY_AT.finditer(code):
        for new in _BINARY[match.group()]:
            add(match.start(), match.group(), new)
    for match in _UNARY_AT.finditer(code):
        add(match.start(), match.group(), "")
    for match in _STEP_AT.finditer(code):
        add(match.start(), match.group(), "--" if match.group() == "++" else "++")
    for match in _NUMBER_AT.finditer(code):
        for new in _other_numbers(match.group(), match.group(1)):
            add(match.start(), match.group(), new)
    for match in _WORD_AT.finditer(code):
        add(match.start(), match.group(), _WORDS[match.group()])
    for pattern in (_STATEMENT_AT, _RETURN_AT):
        for match in pattern.finditer(code):
            statement = match.group(1)
            if pattern is _STATEMENT_AT and _NO_STATEMENT.match(statement): continue
            if _balanced(statement):  # as many lines as before: fatal assertions name theirs
                add(match.start(1), source[match.start(1):match.end(1)], "{}" + "\n" * statement.count("\n"))
    return _numbered(sorted(found, key=lambda c: (c.offset, c.old, c.new)))
