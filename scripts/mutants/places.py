"""The places of a source that can be changed, and what each can be changed to."""

import re

from source import OPENING, Source

SWAPS = {
    "<": ("<=", ">="), "<=": ("<", ">"), ">": (">=", "<="), ">=": (">", "<"), "==": ("!=",), "!=": ("==",),
    "+": ("-",), "-": ("+",), "*": ("/",), "/": ("*",), "%": ("*",), "<<": (">>",), ">>": ("<<",), "&": ("|",),
    "|": ("&",), "&&": ("||",), "||": ("&&",),
}
ASSIGNING = {"+=": "-=", "-=": "+=", "*=": "/=", "/=": "*=", "|=": "&=", "&=": "|=", "<<=": ">>=", ">>=": "<<=",
             "++": "--", "--": "++"}
NAMES = {"min": "max", "max": "min", "qMin": "qMax", "qMax": "qMin", "min_element": "max_element",
         "max_element": "min_element"}
ASSIGNMENTS = {"=", *(sign for sign in ASSIGNING if sign.endswith("="))}
# What a statement begins with that declares something, or that is more than itself.
KEPT = {"if", "for", "while", "switch", "case", "default", "do", "else", "using", "namespace", "class", "struct",
        "enum", "static", "const", "constexpr", "auto", "template", "typedef", "friend", "public", "private",
        "protected", "explicit", "virtual", "goto", "try", "catch", "throw", "static_assert", "inline", "extern",
        "union", "operator", "Q_OBJECT", "Q_DECLARE_METATYPE", "signed", "unsigned", "constinit", "co_return", "asm"}

# Returned values that are the empty ones already, or that have a change of their own.
EMPTY = {"{}", "true", "false", "0", "nullptr", "std::nullopt", "QString()", "QByteArray()", "QStringList()"}


class Mutant:
    """One change: the text from `start` to `end` becomes `after`. `slot` is the expression around it, from its first
    offset to behind its last, or None for a change of a whole statement, which `statement` is then."""

    def __init__(self, start, end, after, what, slot=None, statement=None, is_fixed=False):
        self.start, self.end, self.after, self.what = start, end, after, what
        self.slot, self.statement, self.is_fixed = slot, statement, is_fixed


class Places:
    """All places of a file."""

    def __init__(self, text):
        self.source = Source(text)
        self.tokens = self.source.tokens

    def all(self):
        """For each place the list of its mutants."""
        for at, token in enumerate(self.tokens):
            mutants = [] if self.is_skipped(at) else list(self.of_token(at, token))
            if mutants:
                yield mutants

    def is_skipped(self, at):
        return self.source.in_template(at) or self.source.in_data(at) or \
            at > 0 and self.tokens[at - 1].text == "operator"

    def of_token(self, at, token):
        before = self.tokens[at - 1] if at else None
        following = self.tokens[at + 1] if at + 1 < len(self.tokens) else None
        if token.text in SWAPS and self.source.is_spaced(token):
            if token.text == "+" and self.adds_text(at):
                return
            for other in SWAPS[token.text]:
                yield self.in_slot(at, token.start, token.end, other, "operator")
        elif token.text in ASSIGNING:
            yield self.in_slot(at, token.start, token.end, ASSIGNING[token.text], "operator")
        elif token.text == "!":
            yield self.in_slot(at, token.start, token.end, "", "negation")
        elif token.kind == "number":
            yield from self.of_number(at, token)
        elif token.text in ("true", "false"):
            other = "false" if token.text == "true" else "true"
            yield self.in_slot(at, token.start, token.end, other, "constant")
        elif token.text in NAMES and following is not None and following.text == "(" and \
                before.text in ("::", "(", "="):
            yield self.in_slot(at, token.start, token.end, NAMES[token.text], "call")
        elif token.text in ("if", "while") and following is not None and following.text == "(":
            yield from self.of_condition(at + 1)
        elif self.starts_statement(at):
            yield from self.of_statement(at)

    def adds_text(self, at):
        """Whether a "+" joins texts, which nothing takes from each other."""
        first, last = self.slot(at)
        return any(self.tokens[here].kind in ("string", "sign", "raw") for here in self.flat(first, last + 1))

    def of_number(self, at, token):
        match = re.fullmatch(r"(0[xX](?=[\da-fA-F]))?((?(1)[\da-fA-F']+|[\d']+))([uUlLzZ]*)", token.text)
        if not match or self.tokens[at - 1].text == "=" and self.tokens[at + 1].text == ";" \
                and self.tokens[at - 2].text in (")", "const", "noexcept", "override"):
            # A function that has no body.
            return
        value = int(match.group(2).replace("'", ""), 16 if match.group(1) else 10)
        for other in sorted({value + 1, value - 1, 0} - {value}):
            if other >= 0:
                yield self.in_slot(at, token.start, token.end, f"{other}{match.group(3)}", "constant")
            elif not match.group(3):
                yield self.in_slot(at, token.start, token.end, f"({other})", "constant")

    def of_condition(self, opening):
        tokens = self.tokens
        closing = tokens[opening].other
        places = list(self.source.inner(opening))
        if closing is None or not places or any(tokens[at].text in (";", "=") for at in places):
            return
        operators = [tokens[at].text for at in places if tokens[at].text in ("&&", "||", "==", "!=", "!")]
        if len(operators) == 1 and operators[0] in ("==", "!=", "!"):
            # The change of that operator is the same.
            return
        start, end = tokens[places[0]].start, tokens[closing].start
        yield Mutant(start, end, f"!({self.source.code[start:end]})", "condition", slot=(start, end),
                     is_fixed=tokens[opening - 1].text == "constexpr")

    def starts_statement(self, at):
        token = self.tokens[at]
        if token.kind != "word" and token.text not in ("*", "++", "--", "(") or not self.source.in_function(at):
            return False
        around = token.inside
        if self.tokens[around].text != "{":
            return False
        before = self.tokens[at - 1]
        if before.text == ":":
            here = at - 2
            while here > around and self.tokens[here].text in ("::",) or self.tokens[here].kind in ("word", "sign",
                                                                                                   "number"):
                if self.tokens[here].text in ("case", "default"):
                    return True
                here -= 1
            return False
        return before.text in (";", "{") or before.text == "}" and self.source.kinds_of_closed(before)

    def statement_end(self, at):
        """The place of the statement's semicolon."""
        here = at
        while here < len(self.tokens) and self.tokens[here].text != ";":
            other = self.tokens[here].other
            here = other + 1 if other is not None and other > here else here + 1
            if here < len(self.tokens) and self.tokens[here].inside != self.tokens[at].inside:
                return None
        return here if here < len(self.tokens) else None

    def of_statement(self, at):
        tokens = self.tokens
        end = self.statement_end(at)
        if end is None or tokens[at].text in KEPT:
            return
        start, behind = tokens[at].start, tokens[end].end
        if tokens[at].text == "return" and end > at + 1:
            if "".join(token.text for token in tokens[at + 1:end]) not in EMPTY:
                yield self.of_returned(at, end)
            if any(tokens[here].text in SWAPS and tokens[here].text in "<= >= == != && || < >".split() and
                   self.source.is_spaced(tokens[here]) for here in self.flat(at, end)) and \
                    not any(tokens[here].text == "?" for here in self.flat(at, end)):
                first = tokens[at + 1].start
                yield Mutant(first, tokens[end].start, f"!({self.source.code[first:tokens[end].start]})",
                             "returned value", slot=(first, tokens[end].start))
        elif tokens[at].text in ("break", "continue", "return") or not self.is_declaration(at, end):
            yield Mutant(start, behind, ";", "statement", statement=start)

    def of_returned(self, at, end):
        """The empty value in the place of a returned one. What a lambda returns has its type from that."""
        tokens = self.tokens
        start, behind = tokens[at].start, tokens[end].end
        opener = tokens[at].inside
        while opener is not None and self.source.kinds.get(opener) != "function" or self.is_block(opener):
            opener = tokens[opener].inside
        if opener is not None and not self.is_statement_brace(tokens[tokens[opener].other]):
            first, last = tokens[at + 1].start, tokens[end].start
            return Mutant(first, last, f"std::decay_t<decltype({self.source.code[first:last]})>{{}}", "returned value",
                          slot=(first, last))
        return Mutant(start, behind, "return {};", "returned value", statement=start)

    def is_block(self, opener):
        """Whether a brace is that of a loop or a condition, and no function's own."""
        if opener is None:
            return False
        before = self.tokens[opener - 1]
        if before.text == ")":
            return self.tokens[before.other - 1].text in ("if", "for", "while", "switch", "constexpr", "catch")
        return before.text in ("else", "do", "try", ";", "{", "}", ":")

    def flat(self, at, end):
        """The places from one to another that stand in no bracket of their own."""
        here = at
        while here < end:
            yield here
            other = self.tokens[here].other
            here = other if other is not None and other > here else here + 1

    def is_declaration(self, at, end):
        flat = [here for here in self.flat(at, end)]
        for here in flat:
            if self.tokens[here].text in ASSIGNMENTS:
                break
            following = self.tokens[here + 1]
            if following.kind == "word" and here + 1 < end and self.tokens[here].text not in ("Q_EMIT", "delete"):
                kind = self.tokens[here].kind
                if kind == "word" or self.tokens[here].text in ("&", "*", ">", "&&") and here > at and \
                        not self.source.is_spaced(self.tokens[here]):
                    return True
            if self.tokens[here].text == "[" and here == at:
                return True
        return False

    def in_slot(self, at, start, end, after, what):
        first, last = self.slot(at)
        is_fixed = self.is_constant(at, first)
        return Mutant(start, end, after, what, slot=(self.tokens[first].start, self.tokens[last].end),
                      is_fixed=is_fixed)

    def slot(self, at):
        """The first and last token of the innermost whole expression around one: what could stand in parentheses."""
        tokens = self.tokens
        assigns = tokens[at].text in ASSIGNING
        around = tokens[at].inside
        is_for = around is not None and around > 0 and tokens[around].text == "(" and tokens[around - 1].text == "for"
        first = at
        while first > 0:
            before = tokens[first - 1]
            if first - 1 == around or before.text in (",", ";", "return", "case", "else"):
                break
            if before.text == "}" and before.inside == tokens[at].inside and self.source.kinds_of_closed(before) and \
                    self.is_statement_brace(before):
                break
            if before.text in ASSIGNMENTS and not assigns:
                break
            if before.text == ":" and (is_for or self.is_label(first - 1)):
                break
            first = before.other if before.other is not None and before.other < first - 1 else first - 1
        last = at
        while last + 1 < len(tokens):
            opened = tokens[last].other
            if opened is not None and opened > last:
                last = opened
            following = tokens[last + 1]
            if following.text in (",", ";") or following.other is not None and following.other == around:
                break
            if following.text == "{" and self.source.kinds.get(last + 1) == "function" and \
                    tokens[last].text == ")" and tokens[tokens[last].other - 1].text != "]":
                break
            last += 1
            if following.other is not None and following.other > last:
                last = following.other
        return first, last

    def is_statement_brace(self, brace):
        """Whether a brace that closes a block is no lambda's, after which the expression goes on."""
        opener = brace.other
        before = self.tokens[opener - 1] if opener else None
        if before is None:
            return True
        if before.text == "]":
            return False
        if before.text == ")" and self.tokens[before.other - 1].text == "]":
            return False
        return True

    def is_label(self, colon):
        here = colon - 1
        while here >= 0 and (self.tokens[here].kind in ("word", "number", "sign") or self.tokens[here].text == "::"):
            if self.tokens[here].text in ("case", "default"):
                return True
            here -= 1
        return False

    def is_constant(self, at, first):
        """Whether the compiler has to know the value."""
        here = first - 1
        while here >= 0 and self.tokens[here].text not in (";", "}"):
            if self.tokens[here].text in ("constexpr", "static_assert", "case", "consteval"):
                return True
            if self.tokens[here].text == "{" and self.source.kinds.get(here) != "initializer":
                # A constexpr function's body.
                here = self.source.head(here)
                return any(token.text == "constexpr" for token in self.tokens[here:here + 4])
            here = self.tokens[here].other - 1 if self.tokens[here].other is not None and \
                self.tokens[here].other < here else here - 1
        return self.tokens[at - 1].text in ("case",)
