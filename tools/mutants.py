# SPDX-License-Identifier: MIT
"""Where a source can be broken on purpose, and which of these places a seed chooses.

Looked at are lines of the .cpp files as clang-format lays them out: an operator of two operands has
blanks around it, a "<" of a template has not. Headers are passed over: to change one is to compile
most of the library and all tests again, and they hold declarations for the most part.
"""

import collections
import os
import random
import re

# One way to break a line. `before` and `after` are the whole line.
Mutant = collections.namedtuple("Mutant", "path line kind before after")

EXCHANGED = {"==": "!=", "!=": "==", "<": "<=", "<=": "<", ">": ">=", ">=": ">",
             "+": "-", "-": "+", "+=": "-=", "-=": "+=", "&&": "||", "||": "&&"}
OPERATOR = re.compile(r"(?<!\S)(==|!=|<=|>=|<|>|\+=|-=|\+|-|&&|\|\|)(?!\S)")
NOT = re.compile(r"(?<![\w)\]])!(?=[A-Za-z_(:*])")
NUMBER = re.compile(r"(?<![\w.'])\d+(?![\w.'])")
BOOLEAN = re.compile(r"\b(true|false)\b")

# What only checks, tells the programmer or saves time: no test could notice its change.
UNSEEN_CALL = re.compile(r"\b(Q_ASSERT\w*|static_assert|Q_UNREACHABLE|Q_UNUSED|"
                         r"q(Debug|Info|Warning|Critical|CDebug|CInfo|CWarning)|"
                         r"([\w:]+(\.|->))*(reserve|squeeze))\s*\(")
PURE_DECLARATION = re.compile(r"^\s*(using|typedef|class|struct|template|namespace|friend|extern)\b"
                              r"|\)\s*(const\s*)?(noexcept\s*)?=\s*0;")
# A whole statement that calls, assigns or counts, not a declaration: no blank behind its first name.
STATEMENT = re.compile(r"^\s*(\+\+|--|\*|delete )?[A-Za-z_][\w:]*"
                       r"(\.|->|\[|\(|\+\+;|--;|;| (?:[-+*/|&^%]|<<|>>)?= | << )")
NO_STATEMENT = re.compile(r"^\s*(return|break|continue|throw|case|default|else|if|for|while|do|"
                          r"switch|goto|public|private|protected|Q_[A-Z_]+)\b")


# --- reading a source ---

LITERALS = re.compile(r"""
    //[^\n]*                                                # comments
  | /\*.*?\*/
  | (?P<raw>R"(?P<mark>[^(\s]*)\(.*?\)(?P=mark)")           # texts
  | (?P<text>"(?:\\.|[^"\\\n])*")
  | (?<![0-9])(?P<sign>'(?:\\.|[^'\\\n])+')                 # characters, not 10'000
  | ^[ \t]*\#(?:[^\n\\]|\\\n|\\.)*                          # preprocessor
""", re.VERBOSE | re.DOTALL | re.MULTILINE)


def masked(text):
    """The text without what the compiler does not read as code, with every line at its place.

    Comments and preprocessor lines become blanks, texts and characters become quotation marks.
    """
    def blanks(match):
        is_value = match["raw"] or match["text"] or match["sign"]
        return re.sub(r"[^\n]", '"' if is_value else " ", match[0])

    code = LITERALS.sub(blanks, text)
    parts, end = [], 0
    for call in UNSEEN_CALL.finditer(code):
        if call.start() < end:
            continue
        behind = behind_bracket(code, call.end() - 1)
        parts += [code[end:call.start()], re.sub(r"[^\n]", " ", code[call.start():behind])]
        end = behind
    return "".join(parts) + code[end:]


def behind_bracket(code, at):
    """Where the bracket that opens at a position is closed, behind it."""
    depth = 0
    for position in range(at, len(code)):
        depth += {"(": 1, ")": -1}.get(code[position], 0)
        if depth == 0:
            return position + 1
    return len(code)


# --- breaking a line ---

def is_statement(code, previous):
    """Whether a line is a statement of its own, given the line of code before it."""
    return (STATEMENT.match(code) is not None and NO_STATEMENT.match(code) is None and
            code.rstrip().endswith(";") and
            all(code.count(left) == code.count(right) for left, right in ("()", "{}", "[]")) and
            (previous.endswith((";", "{", "}", ")", ":")) or previous.split()[-1:] == ["else"]))


def replacements(code, previous):
    """Yield (kind, start, end, replacement) for each way to break a line of masked code."""
    for found in OPERATOR.finditer(code):
        yield "operator", found.start(), found.end(), EXCHANGED[found[0]]
    for found in NOT.finditer(code):
        yield "negation", found.start(), found.end(), ""
    for found in NUMBER.finditer(code):
        number = int(found[0])
        yield "constant", found.start(), found.end(), str(0 if number == 1 else number + 1)
    for found in BOOLEAN.finditer(code):
        yield "constant", found.start(), found.end(), "false" if found[0] == "true" else "true"
    if is_statement(code, previous):
        stripped = code.strip()
        start = code.index(stripped)
        yield "statement", start, start + len(stripped), ";"


def mutants_of(path, text):
    """{line number: mutants} of one source."""
    found = {}
    previous = ""
    for number, (line, code) in enumerate(zip(text.split("\n"), masked(text).split("\n")), 1):
        if not code.strip():
            continue
        if not PURE_DECLARATION.search(code):
            mutants = [Mutant(path, number, kind, line, line[:start] + new + line[end:])
                       for kind, start, end, new in replacements(code, previous)]
            if mutants:
                found[number] = mutants
        previous = code.rstrip()
    return found


def mutated(text, mutant):
    """The text of a source with one of its lines broken."""
    lines = text.split("\n")
    if lines[mutant.line - 1] != mutant.before:
        raise ValueError(f"{mutant.path}:{mutant.line} is another line by now")
    lines[mutant.line - 1] = mutant.after
    return "\n".join(lines)


# --- choosing ---

def read_lines(root):
    """The mutants of each line below src/ that has some, in the order of paths and lines."""
    lines = []
    for folder, folders, names in os.walk(os.path.join(root, "src")):
        folders.sort()
        for name in sorted(names):
            if name.endswith(".cpp"):
                full = os.path.join(folder, name)
                with open(full, encoding="utf-8") as source:
                    found = mutants_of(os.path.relpath(full, root), source.read())
                lines += [found[number] for number in sorted(found)]
    return lines


def choose(lines, count, seed):
    """For each of `count` equal parts of the lines its mutants, in the order to try them.

    So that large folders get more of them than small ones and none is left out by chance. Of each
    line there is one; those behind the first stand in for one that does not compile.
    """
    parts = []
    for part in range(count):
        own = lines[len(lines) * part // count:len(lines) * (part + 1) // count]
        dice = random.Random(f"{seed}/{count}/{part}")
        parts.append([dice.choice(mutants) for mutants in dice.sample(own, len(own))])
    return parts
