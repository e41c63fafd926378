# SPDX-License-Identifier: MIT
"""The changes that can be made to a source: one operator, one constant or one rounding each."""

import re
from dataclasses import dataclass

OPERATORS = {
    "<": "<=", "<=": "<", ">": ">=", ">=": ">", "==": "!=", "!=": "==",
    "+": "-", "-": "+", "*": "/", "/": "*", "%": "*", "<<": ">>", ">>": "<<",
    "&&": "||", "||": "&&", "&": "|", "|": "&", "+=": "-=", "-=": "+=", "*=": "/=", "/=": "*=",
}  # fmt: skip
ROUNDINGS = {"ceil": "floor", "floor": "ceil", "round": "floor", "nearbyint": "ceil", "rint": "ceil", "trunc": "ceil"}

# clang-format puts spaces around binary operators, and around nothing else that looks like one.
OPERATOR = re.compile(r"(?<= )(?:[<>=!+\-*/]=|<<|>>|&&|\|\||[<>+\-*/%&|])(?= )")
STEP = re.compile(r"\+\+|--|!(?=[\w(])")
CONSTANT = re.compile(r"(?<![\w.'])(?:0[xX][\da-fA-F']+|\d[\d']*\.?\d*(?:[eE][+-]?\d+)?)(?=[uUlLfFzZ]*(?![\w.']))|\b(?:true|false)\b")
ROUNDING = re.compile(r"\b(?:" + "|".join(ROUNDINGS) + r")(?=[fl]?\()|\b(?:Ceil|Floor|Round)(?=\()")

# Comments and texts, the insides of which are no code. A raw text ends with the word that it began with.
NO_CODE = re.compile(
    r'//[^\n]*|/\*.*?\*/|R"(?P<word>[^(\s]*)\(.*?\)(?P=word)"|"(?:\\.|[^"\\\n])*"|(?<![\w])\'(?:\\.|[^\'\\\n])+\'', re.S
)
# Lines that say nothing about what the program does when it runs.
NO_STATEMENT = re.compile(r"^[ \t]*(?:#|static_assert|template\b|using\b|extern \"C\").*?(?<!\\)$", re.M)


@dataclass(frozen=True)
class Change:
    kind: str  # operator, constant or rounding
    at: int
    old: str
    new: str

    def made_in(self, text: str) -> str:
        return text[: self.at] + self.new + text[self.at + len(self.old) :]


def code_of(text: str) -> str:
    """The text with blanks for all that is no code, as long as before."""
    for pattern in (NO_CODE, NO_STATEMENT):
        text = pattern.sub(lambda found: re.sub(r"[^\n]", " ", found[0]), text)
    return text


def next_constant(constant: str) -> str:
    if constant in ("true", "false"):
        return "false" if constant == "true" else "true"
    digits = constant.replace("'", "")
    if digits[:2].lower() == "0x":
        return hex(int(digits, 16) + 1)
    if digits.isdigit():
        return str(int(digits, 8 if len(digits) > 1 and digits[0] == "0" else 10) + 1)
    return repr(float(digits) + 1.0)


def changes_of(text: str) -> list[Change]:
    code = code_of(text)
    found = [Change("operator", m.start(), m[0], OPERATORS[m[0]]) for m in OPERATOR.finditer(code) if m[0] in OPERATORS]
    steps = {"++": "--", "--": "++", "!": ""}
    found += [Change("operator", m.start(), m[0], steps[m[0]]) for m in STEP.finditer(code)]
    found += [Change("constant", m.start(), m[0], next_constant(m[0])) for m in CONSTANT.finditer(code)]
    vectors = {"Ceil": "Floor", "Floor": "Ceil", "Round": "Floor"}
    names = ROUNDINGS | vectors
    found += [Change("rounding", m.start(), m[0], names[m[0]]) for m in ROUNDING.finditer(code)]
    return found
