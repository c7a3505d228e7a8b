"""Finds where C++ sources can be broken in a small way, and how; used by scripts/mutate.

Works on tokens, so that comments, texts and preprocessor lines are told from code. What follows from the layout that
.clang-format gives is used: a binary operator has a blank on both sides, a template bracket has not.
"""
import re
import subprocess
from collections import Counter
from dataclasses import dataclass, replace

TOKEN = re.compile(r"""
    (?P<space>\s+)
  | (?P<comment>//[^\n]*|/\*.*?\*/)
  | (?P<raw>(?:u8|[uUL])?R"(?P<delimiter>[^()\\\s]*)\(.*?\)(?P=delimiter)")
  | (?P<string>(?:u8|[uUL])?"(?:[^"\\\n]|\\.)*")
  | (?P<char>(?:u8|[uUL])?'(?:[^'\\\n]|\\.)+')
  | (?P<number>\.?\d(?:[\w.]|'\w|[eEpP][+-])*)
  | (?P<word>[A-Za-z_]\w*)
  | (?P<operator><<=|>>=|\.\.\.|->\*|::|->|\+\+|--|<<|<=|>=|==|!=|&&|\|\||[-+*/%&|^]=|[-+*/%&|^~!=<>?:;,.(){}\[\]])
  | (?P<other>.)
""", re.X | re.S)
PREPROCESSOR = re.compile(r"^[ \t]*\#(?:[^\n\\]|\\\n|\\.)*", re.M)

COMPARISONS = {"<": "<=", "<=": "<", ">": ">=", ">=": ">", "==": "!=", "!=": "=="}
OPERATORS = {"&&": "||", "||": "&&", "+": "-", "-": "+", "*": "/", "/": "*", "+=": "-=", "-=": "+=", "++": "--",
             "--": "++", "%": "*"}
NO_STATEMENT = {"return", "if", "else", "for", "while", "do", "switch", "case", "default", "break", "continue", "goto",
                "using", "typedef", "static_assert", "class", "struct", "enum", "namespace", "template", "public",
                "private", "protected", "friend", "const", "constexpr", "static", "auto", "extern", "inline", "virtual",
                "explicit", "operator", "signals", "slots", "try", "catch", "union", "Q_OBJECT", "Q_DISABLE_COPY"}
LOCK = re.compile(r"^(const )?[\w:]*(Guard|Scope|Locker|lock_guard|scoped_lock|unique_lock|shared_lock)(<[^;]*>)? "
                  r"\w+[({]")
LOCK_CALL = re.compile(r"^(ThreadGuards::)?((un)?lock|announce\w+)\(|(\.|->)(un)?lock\(\)$")


@dataclass(frozen=True)
class Token:
    kind: str
    text: str
    start: int

    @property
    def end(self):
        return self.start + len(self.text)


@dataclass(frozen=True)
class Mutation:
    """One small change: text[start:end] becomes put."""
    file: str
    line: int
    start: int
    end: int
    put: str
    kind: str
    shown: str  # "original → changed"
    source: str  # The whole original line, stripped: what stays when lines move.
    above: str  # The line above it, stripped.


def tokens_of(text):
    # Preprocessor lines become blanks of the same length; a "#" inside a text never begins a line.
    text = PREPROCESSOR.sub(lambda match: re.sub(r"[^\n]", " ", match[0]), text)
    return [Token(match.lastgroup if match.lastgroup != "delimiter" else "raw", match[0], match.start())
            for match in TOKEN.finditer(text) if match.lastgroup not in ("space", "comment")]


def lines_left_out(text, flags, root):
    """Lines that the preprocessor drops here, such as the code of another processor."""
    directives = {text.count("\n", 0, match.start()) + offset for match in PREPROCESSOR.finditer(text)
                  for offset in range(1, match[0].count("\n") + 2)}
    lines = text.split("\n")
    if not any(re.match(r"\s*#\s*if", lines[number - 1]) for number in directives):
        return set()
    code = set(range(1, len(lines) + 1)) - directives
    # A line of code stands for itself only. Qt's headers are not looked for, nor then those of ours that need them; what
    # says which code is for this processor needs none.
    for included in (r"\s*#\s*include\s*<Q", r"\s*#\s*include\s*(<Q|\"(?!avx2|avx512|neon))"):
        asked = "\n".join(f"@{number}@" if number in code else "" if re.match(included, line) else line
                          for number, line in enumerate(lines, 1))
        done = subprocess.run(["c++", "-E", "-P", "-w", "-x", "c++", "-std=c++17", f"-I{root / 'src'}", *flags, "-"],
                              input=asked, capture_output=True, text=True)
        if done.returncode == 0:
            return code - {int(number) for number in re.findall(r"@(\d+)@", done.stdout)}
    return set()


class Finder:
    """The mutations of one file, in the order of their places."""

    def __init__(self, name, text):
        self.name, self.text = name, text
        self.tokens = tokens_of(text)
        self.partner = self._partners()
        self.found = []

    def _partners(self):
        partner, opened = {}, []
        for i, token in enumerate(self.tokens):
            if token.text in ("(", "[", "{") and token.kind == "operator":
                opened.append(i)
            elif token.text in (")", "]", "}") and token.kind == "operator" and opened:
                partner[opened[-1]] = i
                partner[i] = opened.pop()
        return partner

    def _add(self, start, end, put, kind, shown=None):
        begin = self.text.rfind("\n", 0, start) + 1
        close = self.text.find("\n", start)
        before = " ".join(self.text[start:end].split())
        above = self.text[:max(begin - 1, 0)].rpartition("\n")[2].strip()
        self.found.append(Mutation(self.name, self.text.count("\n", 0, start) + 1, start, end, put, kind,
                                   shown or f"{before} → {put or 'nothing'}", self.text[begin:close].strip(), above))

    def _replace(self, token, put, kind):
        self._add(token.start, token.end, put, kind)

    def _spaced(self, token):
        return (token.start > 0 and self.text[token.start - 1].isspace() and self.text[token.end:token.end + 1].isspace())

    def mutations(self):
        asserted = -1
        for i, token in enumerate(self.tokens):
            if token.text == "static_assert" and i + 1 in self.partner:
                asserted = self.partner[i + 1]  # A test of its own, done by the compiler.
            if i <= asserted:
                continue
            if token.kind == "operator":
                self._operator(i, token)
            elif token.kind == "number":
                self._number(i, token)
            elif token.kind == "string":
                self._string(token)
            elif token.kind == "word":
                self._word(i, token)
            if self._begins_statement(i):
                self._statement(i)
        return self._numbered(sorted(set(self.found), key=lambda m: (m.start, m.end, m.put)))

    @staticmethod
    def _numbered(found):
        """Tells equal changes of one line apart."""
        seen = Counter()
        for i, mutation in enumerate(found):
            seen[mutation.line, mutation.shown] += 1
            if seen[mutation.line, mutation.shown] > 1:
                found[i] = replace(mutation, shown=f"{mutation.shown} #{seen[mutation.line, mutation.shown]}")
        return found

    # ---- Single tokens ----

    def _operator(self, i, token):
        text = token.text
        if text in COMPARISONS and self._spaced(token):
            self._replace(token, COMPARISONS[text], "comparison")
        elif text in ("++", "--"):
            self._replace(token, OPERATORS[text], "arithmetic")
        elif text in ("&&", "||") and self._spaced(token):
            self._replace(token, OPERATORS[text], "logic")
        elif text in OPERATORS and self._spaced(token):
            self._replace(token, OPERATORS[text], "arithmetic")
        elif text == "!":
            self._add(token.start, token.end, "", "condition", "! → nothing")
        elif text == "?":
            self._ternary(i)

    def _number(self, i, token):
        if self.tokens[i - 1].text == "=" and i + 1 < len(self.tokens) and self.tokens[i - 2].text in (
                ")", "const", "override"):
            return  # A pure virtual function.
        match = re.fullmatch(r"(0[xX][\da-fA-F']+|\d[\d']*)([uUlL]*)", token.text)
        if match:
            digits = match[1].replace("'", "")
            value = int(digits, 16 if digits[:2] in ("0x", "0X") else 8 if digits[0] == "0" and len(digits) > 1 else 10)
            put = hex(value + 1) if digits[:2] in ("0x", "0X") else str(value + 1)
            self._replace(token, put + match[2], "constant")
            return
        match = re.fullmatch(r"(\d+\.\d*|\.\d+)([fFlL]?)", token.text)
        if match:
            self._replace(token, repr(float(match[1]) + 1.0) + match[2], "constant")

    def _string(self, token):
        quote = token.text.index('"')
        body_start, body_end = token.start + quote + 1, token.end - 1
        body = self.text[body_start:body_end]
        if not body:
            return
        self._add(token.start, token.end, token.text[:quote] + '""', "text")
        plain = [m.start() for m in re.finditer(r"\\.[0-7a-fA-F]*|(?P<plain>[^\\%])", body) if m["plain"]]
        if plain:
            at = plain[len(plain) // 2]
            put = token.text[:quote + 1] + body[:at] + ("y" if body[at] == "x" else "x") + body[at + 1:] + '"'
            self._add(token.start, token.end, put, "text")

    def _word(self, i, token):
        if token.text in ("true", "false"):
            self._replace(token, "false" if token.text == "true" else "true", "constant")
        elif token.text in ("if", "while"):
            opening = i + 1
            if opening < len(self.tokens) and self.tokens[opening].text == "constexpr":
                return
            if opening in self.partner and self.tokens[opening].text == "(":
                self._negate(opening, self.partner[opening])

    def _negate(self, opening, closing):
        first = opening + 1
        for j in range(opening + 1, closing):
            if self.tokens[j].text == ";" and self.tokens[j].kind == "operator":
                first = j + 1
        if first >= closing or any(token.text == "=" for token in self.tokens[first:closing]):
            return  # Nothing there, or a declaration.
        if self._flips_anyway(first, closing):
            return
        start, end = self.tokens[first].start, self.tokens[closing].start
        condition = self.text[start:end]
        short = " ".join(condition.split())
        self._add(start, end, f"!({condition})", "condition", f"({short}) → (!({short}))")

    def _flips_anyway(self, first, end):
        """Whether the change of one operator of a condition negates all of it."""
        operators, j = [], first
        while j < end:
            token = self.tokens[j]
            if token.text in ("(", "[", "{") and j in self.partner and token.kind == "operator":
                j = self.partner[j]
            elif token.text in ("==", "!=", "&&", "||", "<", ">", "<=", ">=", "?"):
                operators.append(token.text)
            j += 1
        return operators in (["=="], ["!="]) or (not operators and self.tokens[first].text == "!")

    def _ternary(self, i):
        """Negates what stands before a question mark."""
        j = i - 1
        while j >= 0:
            token = self.tokens[j]
            if token.text in (")", "]", "}") and j in self.partner:
                j = self.partner[j] - 1
                continue
            if token.text in ("(", "[", "{", ",", ";", "=", "return", "?", ":", "<<", "+=", "+") and token.kind != "string":
                break
            j -= 1
        if self._flips_anyway(j + 1, i):
            return
        start, end = self.tokens[j + 1].start, self.tokens[i].start
        condition = self.text[start:end].rstrip()
        if condition:
            short = " ".join(condition.split())
            self._add(start, start + len(condition), f"!({condition})", "condition", f"{short} ? → !({short}) ?")

    # ---- Statements ----

    def _begins_statement(self, i):
        if i == 0:
            return False
        before = self.tokens[i - 1]
        if before.kind == "word" and before.text in ("else", "do"):
            return True
        if before.kind != "operator":
            return False
        if before.text in (";", "{", "}"):
            return True
        if before.text == ":":
            return self._ends_label(i - 1)
        # The body of an if or a loop.
        if before.text == ")" and i - 1 in self.partner:
            word = self.tokens[self.partner[i - 1] - 1]
            return word.kind == "word" and word.text in ("if", "for", "while", "constexpr")
        return False

    def _ends_label(self, i):
        j = i - 1
        while j > 0 and self.tokens[j].text not in (";", "{", "}", "?", "case", "default"):
            j -= 1
        return self.tokens[j].text in ("case", "default")

    def _end_of_statement(self, i):
        """Index of the semicolon that ends a simple statement; None where a block begins first."""
        j = i
        while j < len(self.tokens):
            text = self.tokens[j].text
            if self.tokens[j].kind == "operator":
                if text == ";":
                    return j
                if text in ("(", "[", "{") and j in self.partner:
                    if text == "{" and self.tokens[j - 1].text in (")", "const", "override") and not self._lambda(j, i):
                        return None
                    j = self.partner[j]
                elif text in (")", "]", "}"):
                    return None
            j += 1
        return None

    def _lambda(self, brace, first):
        return any(self.tokens[k].text == "[" for k in range(first, brace))

    def _statement(self, i):
        first = self.tokens[i]
        if first.text == "if":
            self._guard(i)
            return
        if first.text == "{":
            return
        end = self._end_of_statement(i)
        if end is None or end == i:
            return
        start, stop = first.start, self.tokens[end].start
        body = " ".join(self.text[start:stop].split())
        if body.endswith(("= delete", "= default", "= 0")):
            return
        if LOCK.match(body):
            self._drop(start, stop, body, "lock")
        elif first.text in ("break", "continue") or body == "return":
            self._drop(start, stop, body, "return")
        elif first.text in ("delete", "emit"):
            self._drop(start, stop, body, first.text)
        elif first.kind in ("word", "operator") and first.text not in NO_STATEMENT and self._acts(i, end):
            self._drop(start, stop, body, "lock" if LOCK_CALL.search(body) else "statement")

    def _drop(self, start, stop, body, kind):
        self._add(start, stop, "", kind, f"{body}; → dropped")

    def _acts(self, i, end):
        """Whether a simple statement is a call or an assignment rather than a declaration."""
        j, calls = i, False
        while j < end:
            token, following = self.tokens[j], self.tokens[j + 1]
            if token.text in ("(", "[", "{") and j in self.partner:
                calls = calls or token.text == "("
                j = self.partner[j] + 1
                continue
            if token.text in ("=", "+=", "-=", "++", "--", "<<", "|=", "&=", "*=", "/="):
                return True
            if token.kind == "word" and following.kind == "word":
                return False
            if token.text in ("*", "&", ">") and j > i and following.kind == "word" and self.tokens[j - 1].kind == "word":
                return False
            j += 1
        return calls and self.tokens[end - 1].text == ")"

    def _guard(self, i):
        """An if without else whose only statement leaves."""
        opening = i + 1
        if opening not in self.partner or self.tokens[opening].text != "(":
            return
        body = self.partner[opening] + 1
        if body >= len(self.tokens) or self.tokens[body].text not in ("return", "break", "continue"):
            return
        end = self._end_of_statement(body)
        if end is None or (end + 1 < len(self.tokens) and self.tokens[end + 1].text == "else"):
            return
        start, stop = self.tokens[i].start, self.tokens[end].start
        shown = " ".join(self.text[start:stop].split())
        self._drop(start, stop, shown, "guard")


def mutations_of(name, text, root, flags=()):
    """The mutations of what is compiled on this machine with these flags; root is the folder that src lies in."""
    left_out = lines_left_out(text, flags, root)
    return [mutation for mutation in Finder(name, text).mutations() if mutation.line not in left_out]
