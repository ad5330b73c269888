"""A C++ source as tokens, its brackets, and what kind of code stands where.

This is no parser: it leans on the sources being in the project's format, in which an operator with two sides has blanks
around it and the bracket of a template has none before it.
"""

import bisect
import re

TOKEN = re.compile(r"""
    (?P<comment>//[^\n]*|/\*.*?\*/)
  | (?P<raw>(?:u8|u|U|L)?R"(?P<tag>[^(\s]*)\(.*?\)(?P=tag)"\w*)
  | (?P<string>(?:u8|u|U|L)?"(?:\\.|[^"\\\n])*"\w*)
  | (?P<sign>(?:u8|u|U|L)?'(?:\\.|[^'\\\n])+'\w*)
  | (?P<number>\.?\d(?:'?[\w.])*)
  | (?P<word>[A-Za-z_]\w*)
  | (?P<mark><=>|<<=|>>=|->\*|\.\.\.|::|->|\+\+|--|<<|>>|<=|>=|==|!=|&&|\|\||[-+*/%&|^]=|[^\s\w])
  | (?P<space>\s+)
""", re.VERBOSE | re.DOTALL)

DIRECTIVE = re.compile(r"^[ \t]*#(?:[^\n\\]|\\.)*(?:\\\n(?:[^\n\\]|\\.)*)*", re.MULTILINE)

OPENING = {"(": ")", "[": "]", "{": "}"}
HEADS = {"class", "struct", "union", "enum", "namespace"}


class Token:
    """One token: its kind, its text, and where it stands."""

    def __init__(self, kind, text, start):
        self.kind, self.text, self.start, self.end = kind, text, start, start + len(text)
        # The bracket that it stands in, and for a bracket the one that closes or opens it: places in the list.
        self.inside, self.other = None, None

    def __repr__(self):
        return self.text


def blank(text):
    """The same length and the same lines, with nothing in them."""
    return re.sub(r"[^\n]", " ", text)


class Source:
    """The tokens of a text. In `code` comments are blank, so that offsets and lines are those of the text."""

    def __init__(self, text):
        self.text = text
        self.lines = [0] + [at + 1 for at, sign in enumerate(text) if sign == "\n"]
        code = []
        tokens = []
        for match in TOKEN.finditer(DIRECTIVE.sub(lambda found: blank(found.group()), text)):
            kind = match.lastgroup if match.lastgroup != "tag" else "raw"
            code.append(blank(match.group()) if kind == "comment" else match.group())
            if kind not in ("comment", "space"):
                tokens.append(Token(kind, match.group(), match.start()))
        # Directives are no tokens, but they stay in the code.
        self.code = "".join(code)
        for found in DIRECTIVE.finditer(text):
            self.code = self.code[:found.start()] + found.group() + self.code[found.end():]
        self.tokens = self.split_template_ends(tokens)
        self.match_brackets()
        self.kinds = {at: self.kind_of_brace(at) for at, token in enumerate(self.tokens) if token.text == "{"}

    def split_template_ends(self, tokens):
        """A ">>" that closes two templates becomes two tokens."""
        result = []
        for token in tokens:
            if token.text == ">>" and not self.is_spaced(token):
                result += [Token("mark", ">", token.start), Token("mark", ">", token.start + 1)]
            else:
                result.append(token)
        return result

    def is_spaced(self, token):
        """Whether there is space on both sides, as around every operator with two."""
        return self.code[token.start - 1:token.start].isspace() and self.code[token.end:token.end + 1].isspace()

    def opens_template(self, at):
        token = self.tokens[at]
        if token.text != "<" or at == 0:
            return False
        before = self.tokens[at - 1]
        return before.text == "template" or before.kind == "word" and before.end == token.start \
            and before.text != "operator"

    def match_brackets(self):
        stack = []
        for at, token in enumerate(self.tokens):
            token.inside = stack[-1] if stack else None
            if token.text in OPENING or self.opens_template(at):
                stack.append(at)
                continue
            if token.text in (")", "]", "}"):
                # What looked like a template's and was none.
                while stack and self.tokens[stack[-1]].text == "<":
                    stack.pop()
            if stack and token.text == OPENING.get(self.tokens[stack[-1]].text, ">"):
                if token.text != ">" or not self.is_spaced(token) or self.tokens[stack[-1]].text == "<":
                    token.other = stack.pop()
                    self.tokens[token.other].other = at
                    token.inside = stack[-1] if stack else None

    def line(self, offset):
        """The line of an offset, from 1."""
        return bisect.bisect_right(self.lines, offset)

    def head(self, at):
        """The first token of what an opening brace belongs to, back to the last statement's end beside it."""
        first = at
        while first > 0:
            before = self.tokens[first - 1]
            if before.text == ";" or before.text == "{" and before.other is not None and before.other > at:
                break
            if before.text == "}" and self.kinds_of_closed(before):
                break
            first = first - 1 if before.text in OPENING or before.other is None else before.other
            if self.tokens[first].inside != self.tokens[at].inside:
                return first + 1
        return first

    def kinds_of_closed(self, brace):
        """Whether a closing brace ends a statement: what follows an initializer goes on with it."""
        return self.kind_of_brace(brace.other) != "initializer" if brace.other is not None else True

    def inner(self, at):
        """The tokens directly inside a bracket, by place."""
        here = at + 1
        end = self.tokens[at].other
        while end is not None and here < end:
            yield here
            here = self.tokens[here].other + 1 if (self.tokens[here].other or 0) > here else here + 1

    def kind_of_brace(self, at):
        """"function" for a block of statements, "type" for what holds declarations, or "initializer"."""
        known = getattr(self, "kinds", {}).get(at)
        if known:
            return known
        before = self.tokens[at - 1] if at else None
        words = []
        here = at - 1
        while here >= 0 and self.tokens[here].text not in (";", "{", "}", "(", ","):
            token = self.tokens[here]
            words.append(token.text)
            here = token.other - 1 if token.other is not None and token.other < here else here - 1
        if HEADS & set(words) and ")" not in words and "=" not in words:
            return "enum" if "enum" in words else "type"
        if before is None or before.text in (")", "]", "else", "do", "try", "const", "noexcept", "override", "mutable",
                                             ";", "{", "}", ":") and before.text not in ("{",):
            return "function"
        if "->" in words and ")" in words:
            return "function"
        texts = [self.tokens[place].text for place in self.inner(at)]
        return "function" if ";" in texts else "initializer"

    def in_function(self, at):
        """Whether the innermost block around a token is one of statements."""
        around = self.tokens[at].inside
        while around is not None:
            if self.tokens[around].text == "{" and self.kinds[around] != "initializer":
                return self.kinds[around] == "function"
            around = self.tokens[around].inside
        return False

    def in_data(self, at):
        """Whether a token stands in a table: an initializer of several lines that holds initializers, or an enum."""
        around = self.tokens[at].inside
        while around is not None:
            token = self.tokens[around]
            if token.text == "{" and self.kinds[around] == "enum":
                return True
            if token.text == "{" and self.kinds[around] == "initializer" and token.other is not None:
                braces = sum(self.tokens[place].text == "{" for place in self.inner(around))
                if braces >= 4:
                    return True
            if token.text == "{" and self.kinds[around] == "function":
                return False
            around = token.inside
        return False

    def in_template(self, at):
        around = self.tokens[at].inside
        while around is not None:
            if self.tokens[around].text == "<":
                return True
            around = self.tokens[around].inside
        return False
