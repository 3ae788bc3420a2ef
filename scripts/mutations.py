"""Where single statements of a C++ source can be changed into wrong ones, for scripts/mutate."""

import dataclasses
import random
import re

# What is not the program's own text: replaced by blanks of the same length before anything is sought.
_NOT_CODE = re.compile(r"""//[^\n]*|/\*.*?\*/|R"(?P<d>[^(\s]*)\(.*?\)(?P=d)"|"(?:\\.|[^"\\\n])*"|'(?:\\.|[^'\\\n])+'"""
                       r"""|^[ ]*\#(?:\\\n|[^\n])*|\bstatic_assert\([^;]*;""", re.DOTALL | re.MULTILINE | re.VERBOSE)
_COMPARISONS = {"==": "!=", "!=": "==", "<": "<=", "<=": "<", ">": ">=", ">=": ">"}
_OTHER_OPERATORS = {"&&": "||", "||": "&&", "+": "-", "-": "+", "+=": "-=", "-=": "+="}
_WORDS = {"true": "false", "false": "true"}
_BINARY = re.compile(r"(?<=[\w)\]}'\"]) (==|!=|<=|>=|<|>|&&|\|\||\+|-|\+=|-=) (?=[\w(!*&\-~:'\" ])")
_CONDITION = re.compile(r"\b(?:if|while) \(")
_NOT = re.compile(r"(?<=[ (])!(?=[\w(])")
_NUMBER = re.compile(r"(?<![\w.'])(?:0x[0-9a-fA-F']+|[0-9][0-9']*)(?=[uUlLzZ]*(?![\w.']))|\b(?:true|false)\b")
# A literal that is empty itself is left alone.
_RETURN = re.compile(r"\breturn (?!(?:\{\}|\*this|false|0|nullptr|std::nullopt);)([^;]+);")
_LOCK = re.compile(r"^[ ]+const (?:utils::ScopedLock|platform::Lock|ScopedLock) \w+[({][^;]*;", re.MULTILINE)
# An expression that stands as a statement of its own: no blank before its first parenthesis, where a
# declaration has one and so have if, while and return.
_CALL = re.compile(r"(?<=[;{}]\n)[ ]+(?!static_cast<void>|ORVEX_|QUORVEL_)[A-Za-z_][\w:]*(?:(?:\.|->)\w+|\[[^\]\n]*\]|\(\)(?:\.|->)\w+)*"
                   r"\([^;{}]*\);")
# Stands before a source that was changed: a warning is no refusal, but for what the analysis of locks says. Lines
# keep their numbers.
WARNINGS = ('#pragma clang diagnostic ignored "-Weverything"\n'
            '#pragma clang diagnostic error "-Wthread-safety"\n#line 1\n')


@dataclasses.dataclass(frozen=True)
class Mutation:
    """Replaces text[begin:end] of a file by `replacement`."""

    path: str
    kind: str
    begin: int
    end: int
    replacement: str

    def applied(self, text):
        return text[:self.begin] + self.replacement + text[self.end:]

    def line(self, text):
        return text.count("\n", 0, self.begin) + 1

    def shown(self, text):
        """What changes, in the lines where it stands: "- before" and "+ after"."""
        first = text.rfind("\n", 0, self.begin) + 1
        last = text.find("\n", self.end)
        last = len(text) if last < 0 else last
        before = text[first:last].splitlines()
        after = (text[first:self.begin] + self.replacement + text[self.end:last]).splitlines()
        return "\n".join([f"- {line.strip()}" for line in before] + [f"+ {line.strip()}" for line in after])


def blanked(text):
    """Returns the text with blanks where there is no code; line ends stay."""
    return _NOT_CODE.sub(lambda match: re.sub(r"[^\n]", " ", match[0]), text)


def _matching_parenthesis(code, opening):
    depth = 0
    for position in range(opening, len(code)):
        depth += {"(": 1, ")": -1}.get(code[position], 0)
        if depth == 0:
            return position
    return None


def _next_number(text):
    digits = text.replace("'", "")
    return hex(int(digits, 16) + 1) if digits.lower().startswith("0x") else str(int(digits, 8 if digits[0] == "0" else 10) + 1)


def find(path, text):
    """Returns all mutations of a source's text, in its order within each kind."""
    code = blanked(text)
    found = []

    def add(kind, begin, end, replacement):
        found.append(Mutation(path, kind, begin, end, replacement))

    for match in _BINARY.finditer(code):
        kind = "comparison" if match[1] in _COMPARISONS else "operator"
        add(kind, match.start(1), match.end(1), {**_COMPARISONS, **_OTHER_OPERATORS}[match[1]])
    for match in _CONDITION.finditer(code):
        opening = match.end() - 1
        closing = _matching_parenthesis(code, opening)
        condition = text[opening + 1:closing]
        if closing and ";" not in code[opening:closing]:
            add("negation", opening + 1, closing, f"!({condition})")
    for match in _NOT.finditer(code):
        add("negation", match.start(), match.end(), "")
    for match in _NUMBER.finditer(code):
        add("constant", match.start(), match.end(), _WORDS.get(match[0]) or _next_number(match[0]))
    for match in _RETURN.finditer(code):
        add("return", match.start(1), match.end(1), "{}")
    for match in _LOCK.finditer(code):
        add("lock", match.start(), match.end(), "")
    for match in _CALL.finditer(code):
        add("call", match.start(), match.end(), "")
    return found


def chosen(mutations, seed):
    """Yields mutations in an order that the seed decides, each kind as often as the others."""
    generator = random.Random(seed)
    kinds = {}
    for mutation in mutations:
        kinds.setdefault(mutation.kind, []).append(mutation)
    for kind in sorted(kinds):
        generator.shuffle(kinds[kind])
    while any(kinds.values()):
        for kind in sorted(kinds):
            if kinds[kind]:
                yield kinds[kind].pop()
