"""The messages that C++ sources can print or throw, as patterns.

A pattern is the message's text with WILD for whatever is known at run time only. Texts are followed through "+" and
"<<", conditional expressions, named constants, local names and the parameters of helper functions, back to every call.
Whatever prints or throws in a way that cannot be followed is an error: a message must not escape unseen.
"""

import itertools
import re
from dataclasses import dataclass, field

WILD = "\0"

STANDARD_ERRORS = {"runtime_error", "invalid_argument", "logic_error", "domain_error", "length_error", "out_of_range",
                   "range_error", "overflow_error", "underflow_error", "po::error"}
# Thrown for what a library, or main, puts into words.
OTHER_ERRORS = {"po::invalid_option_value", "bad_alloc"}
STREAMS = {"cerr", "cout", "clog"}
# What only passes on a text that is made elsewhere: an exception's message, the option parser's listing.
PASSED_ON = {"error . what ( )", "options"}
OTHER_PRINTERS = {"qWarning", "qCritical", "qDebug", "qInfo", "qFatal", "printf", "fprintf", "puts", "fputs", "perror",
                  "print", "println", "syslog", "error_at_line", "qCWarning", "qCCritical", "qCDebug", "qCInfo"}
# Calls and members that leave a text as it is.
TRANSPARENT = {"string", "QString", "QStringLiteral", "QLatin1String", "to_string", "toStdString", "c_str", "data"}
KEYWORDS = {"if", "for", "while", "switch", "catch", "return", "sizeof", "throw", "alignas", "decltype", "noexcept"}

TOKEN = re.compile(r'"(?:\\.|[^"\\\n])*"|\'(?:\\.|[^\'\\\n])+\'|[A-Za-z_]\w*(?:::~?[A-Za-z_]\w*)*|\d[\w.\']*|'
                   r"<<|>>|->|&&|\|\||[=!<>]=|[^\s\w]")
COMMENT = re.compile(r'("(?:\\.|[^"\\\n])*"|\'(?:\\.|[^\'\\\n])+\')|//[^\n]*|/\*.*?\*/', re.S)
OPEN, CLOSE = "([{", ")]}"


class Unreadable(Exception):
    """A message that cannot be followed to its text."""


@dataclass(frozen=True)
class Parameter:
    """Stands in a pattern for the text of a function's parameter."""
    name: str


@dataclass(eq=False)
class Function:
    name: str
    file: str
    begin: int
    end: int
    parameters: list = field(default_factory=list)  # names in order
    defaults: dict = field(default_factory=dict)    # tokens of default arguments


def tokenize(text):
    text = COMMENT.sub(lambda match: match.group(1) or " ", text)
    text = re.sub(r"^[ \t]*#.*$", "", text, flags=re.M)
    tokens = TOKEN.findall(text)
    if any(token in ("R", "u8R", "LR", "uR", "UR") and after[0] == '"' for token, after in zip(tokens, tokens[1:])):
        raise Unreadable("a raw string")
    return tokens


def closing(tokens, start):
    """The index of the bracket that closes the one at start."""
    depth = 0
    for i in range(start, len(tokens)):
        depth += (tokens[i] in OPEN) - (tokens[i] in CLOSE)
        if depth == 0:
            return i
    raise Unreadable("an unmatched bracket")


def split(tokens, separators):
    """The parts of an expression between separators that stand in no bracket."""
    parts, depth = [[]], 0
    for token in tokens:
        depth += (token in OPEN) - (token in CLOSE)
        if depth == 0 and token in separators:
            parts.append([])
        else:
            parts[-1].append(token)
    return parts


def text_of(literal):
    escapes = {"n": "\n", "t": "\t", "0": "\0"}
    return re.sub(r"\\(.)", lambda match: escapes.get(match.group(1), match.group(1)), literal[1:-1])


def bare(name):
    return name.rsplit("::", 1)[-1]


class Sources:
    def __init__(self, texts):
        """texts: file name -> content."""
        self.tokens = {name: tokenize(text) for name, text in texts.items()}
        self.constants = {}
        for name in self.tokens:
            self._find_constants(name)
        self._calls = {}
        self.functions = [function for name in self.tokens for function in self._find_functions(name)]

    def _find_constants(self, file):
        """Constants with the text of their value, by innermost namespace and name."""
        tokens = self.tokens[file]
        ends, spaces = [], []
        for i, token in enumerate(tokens):
            if token == "namespace" and i + 2 < len(tokens) and tokens[i + 2] == "{":
                spaces.append(bare(tokens[i + 1]))
                ends.append(closing(tokens, i + 2))
            while ends and i >= ends[-1]:
                ends.pop()
                spaces.pop()
            declared = tokens[max(0, i - 6):i]
            if token == "=" and not set("(;{}") & set(declared[-3:]) and {"const", "constexpr"} & set(declared):
                value = self._constant(tokens[i + 1:i + 1 + len(split(tokens[i + 1:i + 9], {";"})[0])])
                if value is not None:
                    self.constants[(spaces or [""])[-1] + "::" + tokens[i - 1]] = value

    @staticmethod
    def _constant(tokens):
        while len(tokens) >= 4 and tokens[0] in TRANSPARENT and tokens[1] == "(" and tokens[-1] == ")":
            tokens = tokens[2:-1]
        if tokens and all(token[0] == '"' for token in tokens):
            return "".join(map(text_of, tokens))
        return tokens[0] if len(tokens) == 1 and tokens[0].isdigit() else None

    def _find_functions(self, file):
        tokens = self.tokens[file]
        for i in range(len(tokens) - 1):
            if tokens[i + 1] != "(" or not re.match(r"[A-Za-z_]", tokens[i]) or tokens[i] in KEYWORDS:
                continue
            end = closing(tokens, i + 1)
            body = self._body(tokens, end + 1)
            if body is None:
                continue
            function = Function(bare(tokens[i]), file, end + 1, closing(tokens, body))
            for part in split(tokens[i + 2:end], {","}):
                declared = split(part, {"="})
                names = [token for token in declared[0] if re.match(r"[A-Za-z_]\w*$", token)]
                function.parameters.append(names[-1] if names else "")
                if len(declared) > 1:
                    function.defaults[function.parameters[-1]] = declared[1]
            yield function

    @staticmethod
    def _body(tokens, i):
        """Where the body of a function begins whose parameters end before i; None where no function is defined."""
        while i < len(tokens) and tokens[i] in ("const", "noexcept", "override", "final"):
            i += 1
        if i < len(tokens) and tokens[i] == ":":  # a constructor's members
            i += 1
            while i + 1 < len(tokens) and re.match(r"\w", tokens[i]) and tokens[i + 1] in ("(", "{"):
                i = closing(tokens, i + 1) + 1
                i += tokens[i] == ","
        return i if i < len(tokens) and tokens[i] == "{" else None

    def enclosing(self, file, i):
        """The function in whose body a token stands."""
        around = [each for each in self.functions if each.file == file and each.begin <= i <= each.end]
        return min(around, key=lambda each: each.end - each.begin, default=None)

    def evaluate(self, tokens, function, locals_seen=()):
        """The patterns of an expression: tuples of texts, WILD and Parameter."""
        if not tokens:
            return [()]
        alternatives = split(tokens, {"?", ":"})
        if len(alternatives) == 3:
            return [pattern for part in alternatives[1:] for pattern in self.evaluate(part, function, locals_seen)]
        terms = split(tokens, {"+", "<<"})
        if len(terms) > 1:
            evaluated = [self.evaluate(term, function, locals_seen) for term in terms]
            return [sum(choice, ()) for choice in itertools.product(*evaluated)]
        return self._term(tokens, function, locals_seen)

    def _term(self, tokens, function, locals_seen):
        if all(token[0] in "\"'" for token in tokens):
            return [("".join(map(text_of, tokens)),)]
        if tokens[0] == "(" and closing(tokens, 0) == len(tokens) - 1:
            return self.evaluate(tokens[1:-1], function, locals_seen)
        called = len(tokens) > 1 and tokens[1] == "(" and closing(tokens, 1) == len(tokens) - 1
        if called and bare(tokens[0]) in TRANSPARENT:
            return self.evaluate(tokens[2:-1], function, locals_seen)
        if len(tokens) > 4 and tokens[-4] == "." and tokens[-3] in TRANSPARENT:
            return self.evaluate(tokens[:-4], function, locals_seen)
        if len(tokens) == 1:
            return self._name(tokens[0], function, locals_seen)
        return [(WILD,)]

    def _name(self, name, function, locals_seen):
        if bare(name) in ("endl", "flush"):
            return [("\n" if bare(name) == "endl" else "",)]
        if function and name in function.parameters:
            return [(Parameter(name),)]
        if function and name not in locals_seen:
            tokens = self.tokens[function.file]
            assigned = [i for i in range(function.begin, function.end) if tokens[i] == name and tokens[i + 1] == "="]
            if len(assigned) == 1:
                value = split(tokens[assigned[0] + 2:function.end], {";"})[0]
                return self.evaluate(value, function, (*locals_seen, name))
        qualified = "::".join(name.split("::")[-2:]) if "::" in name else "pos::" + name
        known = self.constants.get(qualified, self.constants.get("::" + name))
        return [(WILD,)] if known is None else [(known,)]

    def calls(self, function):
        """The arguments of every call of a function, with the function in which the call stands."""
        if function not in self._calls:
            self._calls[function] = list(self._find_calls(function))
        return self._calls[function]

    def _find_calls(self, function):
        local = any(other.name == function.name for other in self.functions if other.file != function.file)
        for file, tokens in self.tokens.items():
            if local and file != function.file:
                continue  # several files have a helper of this name, each its own
            for i in range(len(tokens) - 1):
                if bare(tokens[i]) == function.name and tokens[i + 1] == "(" and self.enclosing(file, i):
                    arguments = split(tokens[i + 2:closing(tokens, i + 1)], {","})
                    yield arguments, self.enclosing(file, i)

    def resolve(self, pattern, function, trail=()):
        """The texts that a pattern stands for once its parameters are followed to the calls."""
        if not any(isinstance(piece, Parameter) for piece in pattern):
            return {"".join(pattern)}
        found = set()
        if function not in trail:
            for arguments, caller in self.calls(function):
                given = {}
                for i, name in enumerate(function.parameters):
                    tokens = arguments[i] if i < len(arguments) else function.defaults.get(name, [])
                    given[name] = self.evaluate(tokens, caller) if tokens else [(WILD,)]
                used = sorted({piece.name for piece in pattern if isinstance(piece, Parameter)})
                for choice in itertools.product(*(given[name] for name in used)):
                    values = dict(zip(used, choice))
                    filled = sum((values[p.name] if isinstance(p, Parameter) else (p,) for p in pattern), ())
                    found |= self.resolve(filled, caller, (*trail, function))
        return found or {"".join(WILD if isinstance(piece, Parameter) else piece for piece in pattern)}

    def sinks(self):
        """What is thrown or printed: file, index, and the tokens of its text."""
        for file, tokens in self.tokens.items():
            for i, token in enumerate(tokens):
                if token == "throw" and tokens[i + 1] != ";":
                    kind = tokens[i + 1].removeprefix("std::")
                    if kind in STANDARD_ERRORS:
                        yield file, i, tokens[i + 3:closing(tokens, i + 2)]
                    elif kind not in OTHER_ERRORS:
                        raise Unreadable(f"{file} throws a {kind}, which this check does not know")
                elif bare(token) in STREAMS and "::" in token and tokens[i + 1] == "<<":
                    yield file, i, split(tokens[i + 2:], {";"})[0]
                elif bare(token) in OTHER_PRINTERS and tokens[i + 1] == "(":
                    raise Unreadable(f"{file} prints by {token}, which this check does not read")

    def messages(self):
        """The patterns of all messages, one for each line, with the files that make them."""
        found = {}
        for file, i, expression in self.sinks():
            shown = [" ".join(part) for part in split(expression, {"<<"})]
            if shown[0] in PASSED_ON and all(bare(rest) in ("endl", "flush") for rest in shown[1:]):
                continue
            function = self.enclosing(file, i)
            for pattern in self.evaluate(expression, function):
                for text in self.resolve(pattern, function):
                    text = re.sub(WILD + "+", WILD, text).strip("\n")
                    if not re.search("[A-Za-z]", text):
                        raise Unreadable(f"{file}: the text of {' '.join(expression)!r} cannot be told")
                    for line in text.split("\n"):
                        found.setdefault(line, set()).add(file)
        return found


def read_sources(root):
    folders = [root / "pos" / "positioner" / folder for folder in ("poslib", "veko_configure")]
    files = sorted(path for folder in folders for path in folder.iterdir() if path.suffix in (".cpp", ".h"))
    if len(files) < 2:
        raise Unreadable(f"no sources below {root}")
    return Sources({path.name: path.read_text() for path in files})
