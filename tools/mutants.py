"""Finds the places of a C++ source that can be changed a little, and what each may be changed to.

A light tokenizer is enough, because clang-format lays the sources out: a binary operator has white space on both sides,
angle brackets and the stars of declarations do not.
"""

import hashlib
import pathlib
import re
from typing import Iterator, NamedTuple


class Mutant(NamedTuple):
    file: str
    start: int
    end: int
    line: int
    text: str  # the line, stripped
    column: int  # in that text
    repeat: int  # earlier lines of the file with the same text
    operator: str
    after: str
    before: str

    @property
    def key(self) -> str:
        """Names the mutant by the text of its line, so that it keeps its name when other lines come or go."""
        return f"{self.file}|{self.text}|{self.repeat}|{self.column}|{self.operator}|{self.after}"

    def rank(self, seed: int) -> str:
        return hashlib.sha256(f"{seed}|{self.key}".encode()).hexdigest()


# Comments, assertions of the compiler, literals of text and preprocessor lines, in which nothing is changed.
HIDDEN = re.compile(r"""//[^\n]*|/\*.*?\*/|\bstatic_assert\([^;]*;|"(?:\\.|[^"\\\n])*"|'(?:\\.|[^'\\\n])*'|^[ \t]*#(?:\\\n|[^\n])*""", re.S | re.M)

BINARY = {
    "+": ["-"], "-": ["+"], "*": ["/"], "/": ["*"], "%": ["*"],
    "+=": ["-="], "-=": ["+="], "*=": ["/="], "/=": ["*="],
    "<": ["<=", ">="], "<=": ["<", ">"], ">": [">=", "<="], ">=": [">", "<"], "==": ["!="], "!=": ["=="],
    "&&": ["||"], "||": ["&&"],
}
BINARY_AT = re.compile(r"(?<=\s)(?:%s)(?=\s)" % "|".join(re.escape(o) for o in sorted(BINARY, key=len, reverse=True)))
WORDS = {"true": "false", "false": "true", "std::sin": "std::cos", "std::cos": "std::sin", "std::min": "std::max",
         "std::max": "std::min", "degreesToRadians": "radiansToDegrees", "radiansToDegrees": "degreesToRadians",
         "break": "continue", "continue": "break"}
WORD_AT = re.compile(r"(?<![\w:])(?:%s)(?!\w)" % "|".join(WORDS))
STEP_AT = re.compile(r"\+\+|--")
UNARY_MINUS_AT = re.compile(r"(?<=[(\s\[{])-(?=[\w.(])(?!-)")
NOT_AT = re.compile(r"!(?=[\w(:])")
NUMBER_AT = re.compile(r"(?<![\w.'])(0[xX][0-9a-fA-F]+|\d+\.?\d*(?:[eE][+-]?\d+)?)([uUlLfF]*)(?![\w.'])")
CONDITION_AT = re.compile(r"\b(?:if|while) \(")
RETURN_AT = re.compile(r"\breturn ([^;{}]*?(?:\s(?:&&|\|\||[<>]=?|[!=]=)\s|!(?=\w))[^;{}]*);")
STATEMENT_AT = re.compile(r"[ \t]*(?:\+\+|--|\*|::)?[A-Za-z_]")
NOT_DROPPED = re.compile(r"(?:return|const|constexpr|auto|using|if|for|while|else|do|switch|case|default|try|catch|"
                         r"static|namespace|class|struct|enum|template|typedef|public|private|friend|goto)\b")
DECLARATION = re.compile(r"[\w:]+(?:<[^;=()]*>)?(?:::\w+)*[&*]*\s+[&*]?\w+\s*(?:[;=({\[]|$)")


def masked(source: str) -> str:
    """The source with everything that is not code replaced, place for place."""
    def blank(match: re.Match) -> str:
        text = match.group()
        if text[0] in "\"'":
            return text[0] + "_" * (len(text) - 2) + text[-1]
        return re.sub(r"[^\n]", " ", text)
    return HIDDEN.sub(blank, source)


def closing(code: str, opening: int) -> int:
    """The place of the bracket that closes the one at opening; -1 without one."""
    depth = 0
    for place in range(opening, len(code)):
        depth += (code[place] in "([{") - (code[place] in ")]}")
        if depth == 0:
            return place
    return -1


def changed_number(digits: str, suffix: str) -> str:
    if re.fullmatch(r"0[xX][0-9a-fA-F]+", digits):
        return hex(int(digits, 16) + 1) + suffix
    if re.fullmatch(r"0[0-7]+", digits):
        return "0" + oct(int(digits, 8) + 1)[2:] + suffix
    if digits.isdigit():
        return str(int(digits) + 1) + suffix
    value = float(digits)
    return repr(value * 1.5 if value else 1.0) + suffix


def statements(code: str) -> Iterator[tuple[int, int]]:
    """Start and end of every whole expression statement: a call, an assignment, a throw."""
    for match in re.finditer(r"^", code, re.M):
        start = match.start()
        if not STATEMENT_AT.match(code, start):
            continue
        before = code[:start].rstrip()
        end = start
        while end < len(code) and code[end] not in ";)]}":
            end = closing(code, end) + 1 if code[end] in "([{" else end + 1
        text = code[start:end].strip()
        if before[-1:] not in (";", "{", "}") or code[end:end + 1] != ";" or end == 0:
            continue
        if code[start] != " " or NOT_DROPPED.match(text) or text.endswith(("= delete", "= default")):
            continue  # outside any function, or nothing that is done
        if DECLARATION.match(text) and not text.startswith("throw "):
            continue
        if "(" in text or " = " in text or re.search(r"\+\+|--|[-+*/]=", text):
            yield start + len(code[start:end]) - len(code[start:end].lstrip()), end + 1


def changes(source: str) -> Iterator[tuple[int, int, str, str]]:
    """Every change as start, end, operator, new text."""
    code = masked(source)
    for match in BINARY_AT.finditer(code):
        for other in BINARY[match.group()]:
            yield match.start(), match.end(), "operator", other
    for match in STEP_AT.finditer(code):
        yield match.start(), match.end(), "operator", "--" if match.group() == "++" else "++"
    for match in WORD_AT.finditer(code):
        yield match.start(), match.end(), "word", WORDS[match.group()]
    for match in NUMBER_AT.finditer(code):
        yield match.start(), match.end(), "constant", changed_number(match.group(1), match.group(2))
    for match in UNARY_MINUS_AT.finditer(code):
        yield match.start(), match.end(), "sign dropped", ""
    for match in NOT_AT.finditer(code):
        yield match.start(), match.end(), "not dropped", ""
    for match in CONDITION_AT.finditer(code):
        opening, end = match.end() - 1, closing(code, match.end() - 1)
        if ";" not in code[opening:end]:
            yield opening, end + 1, "condition negated", f"(!{source[opening:end + 1]})"
    for match in RETURN_AT.finditer(code):
        if " ? " not in match.group(1) and "throw" not in match.group(1):
            yield match.start(1), match.end(1), "result negated", f"!({source[match.start(1):match.end(1)]})"
    for start, end in statements(code):
        yield start, end, "statement dropped", ";"


def mutants_of(root: pathlib.Path, file: str) -> list[Mutant]:
    source = (root / file).read_text()
    lines = source.split("\n")
    found = []
    for start, end, operator, after in changes(source):
        line = source.count("\n", 0, start)
        text = lines[line].strip()
        repeat = sum(other.strip() == text for other in lines[:line])
        column = start - (source.rfind("\n", 0, start) + 1) - (len(lines[line]) - len(lines[line].lstrip()))
        before = source[start:end]
        found.append(Mutant(file, start, end, line + 1, text, column, repeat, operator, after, before))
    return sorted(found, key=lambda mutant: (mutant.line, mutant.column, mutant.after))
