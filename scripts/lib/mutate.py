"""Breaks the core in single places and tells which of the changes no test notices; see scripts/mutate.

The places are chosen by rule, the same ones for the same sources: every file of the core has its share,
spread over its lines. A change that does not compile says nothing of the tests and is not counted.
"""

import re
import resource
import shutil
import subprocess
import sys
import time
from collections import Counter
from pathlib import Path
from typing import NamedTuple

ROOT = Path(__file__).resolve().parents[2]
CORE = ("src/dao", "src/evaluator", "src/platform", "include/korvex")
NOT_COPIED = ("build", ".git")
TREE = ROOT / "build/mutants/tree"
BUILD = ROOT / "build/mutants/build"
EXPLAINED = ROOT / "scripts/mutants.txt"
TESTS = ("platform_tests", "evaluator_tests", "dao_tests", "loader_tests", "tool_tests")  # the last one is slow

USUAL_COUNT = 150
WANTED_RATE = 0.9
TEST_SECONDS = 20  # a test program takes one or two; a change can make it run for ever
TEST_BYTES = 4 << 30  # or take all memory there is


class Mutant(NamedTuple):
    file: str
    line: int  # from 1
    before: str
    after: str  # both are the whole line

    def key(self):
        return self.file, self.before.strip(), self.after.strip()

    def diff(self):
        return f"{self.file}\n- {self.before.strip()}\n+ {self.after.strip()}".rstrip()


# ----------------------------------------------------------------------------------------------
# Places

NO_CODE = re.compile(r'//[^\n]*|/\*.*?\*/|R"\(.*?\)"|"(?:\\.|[^"\\\n])*"|\'(?:\\.|[^\'\\\n])*\'', re.DOTALL)
NO_CHANGE = re.compile(r"^\s*#|static_assert|\btemplate\b|\brequires\b|\bconcept\b|\busing\b|\.reserve\(")

MARK = "\x01"  # stands for what is no code

EXCHANGED = {
    "==": "!=", "!=": "==", "<": "<=", "<=": "<", ">": ">=", ">=": ">", "&&": "||", "||": "&&",
    "+": "-", "-": "+", "+=": "-=", "-=": "+=",
}
OPERATOR = re.compile("(?<= )(?:" + "|".join(re.escape(sign) for sign in EXCHANGED) + ")(?= )")
STEP = re.compile(r"\+\+|--")
NUMBER = re.compile(r"(?<![\w.<])(?:0x[0-9A-Fa-f]+|\d+)(?=U?[,;:)\]} ]|U?$)(?!>)")
NOT = re.compile(r"!(?=[\w(])")
TRUTH = re.compile(r"\b(?:true|false)\b")
TABLE_SIZE = re.compile(r"std::array<[^>]*>")
# A call, an assignment, a step, a break, and an if with what it does: each whole on its line.
STATEMENT = re.compile(
    r"^\s+((?:[\w.:>\[\]*()-]+\(.*\)|[\w.>\[\]*-]+ [-+|&]?= .*|(?:\+\+|--)\w+|break|if \(.*\) [^{]*);)$"
)
STATEMENT_BEGINS_AFTER = re.compile(r"(^|[;{}:])\s*$")


def moved_by_one(number):
    if number.startswith("0x"):
        return f"0x{int(number, 16) + 1:X}"
    return str(int(number) + 1)


CHANGES = (
    (OPERATOR, lambda sign: EXCHANGED[sign]),
    (STEP, lambda sign: "--" if sign == "++" else "++"),
    (NUMBER, moved_by_one),
    (NOT, lambda sign: ""),
    (TRUTH, lambda word: "false" if word == "true" else "true"),
)


def blanked(match):
    """Spaces for a comment, so that a line ends before it, and a mark for each character of a text."""
    return re.sub(r"[^\n]", " " if match.group().startswith("/") else MARK, match.group())


def changes_of(code, before, starts_statement):
    """The changed lines of one line, in the order of their places; `code` is the line without comments and texts."""
    if NO_CHANGE.search(code):
        return []
    code = TABLE_SIZE.sub(blanked, code)
    found = []
    for pattern, change in CHANGES:
        for match in pattern.finditer(code):
            found.append((match.start(), before[: match.start()] + change(match.group()) + before[match.end() :]))
    statement = STATEMENT.match(code)
    if statement and starts_statement:
        found.append((statement.start(1), ""))
    return [after for _, after in sorted(found)]


def mutants_of(file):
    text = (ROOT / file).read_text()
    lines = text.split("\n")
    codes = NO_CODE.sub(blanked, text).split("\n")
    mutants = []
    code_before = ""
    for number, (before, code) in enumerate(zip(lines, codes), 1):
        code = code.rstrip()
        starts_statement = STATEMENT_BEGINS_AFTER.search(code_before)
        mutants += [Mutant(file, number, before, after) for after in changes_of(code, before, starts_statement)]
        code_before = code or code_before
    return mutants


def spread(items, count):
    """`count` of the items at equal distances, or all of them."""
    if count >= len(items):
        return items
    return [items[(2 * at + 1) * len(items) // (2 * count)] for at in range(count)]


def chosen_mutants(count):
    """Each file has a share by the number of its places, but one at least."""
    files = [path for room in CORE for path in (ROOT / room).rglob("*") if path.suffix in (".h", ".cpp")]
    places = [mutants_of(path.relative_to(ROOT).as_posix()) for path in sorted(files)]
    every = sum(len(mutants) for mutants in places)
    shares = [max(1, round(count * len(mutants) / every)) for mutants in places]
    return every, [mutant for mutants, share in zip(places, shares) for mutant in spread(mutants, share)]


# ----------------------------------------------------------------------------------------------
# Building and testing


def copy_if_changed(source, target):
    """Keeps the time of a file that is as it was, and with it what was built from it."""
    if target.exists() and target.read_bytes() == source.read_bytes():
        return
    target.parent.mkdir(parents=True, exist_ok=True)
    shutil.copyfile(source, target)


def copy_tree():
    for source in ROOT.iterdir():
        if source.name in NOT_COPIED:
            continue
        for path in [source] if source.is_file() else source.rglob("*"):
            if path.is_file():
                copy_if_changed(path, TREE / path.relative_to(ROOT))


def ran(command, **options):
    return subprocess.run(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, **options)


def configure():
    """The preset debug, but for the time that its debug information takes."""
    flags = ["-DCMAKE_BUILD_TYPE=Debug", "-DCMAKE_CXX_FLAGS_DEBUG=-O0 -D_GLIBCXX_ASSERTIONS", "-DKORVEX_BUILD_TESTS=ON"]
    return ran(["cmake", "-S", TREE, "-B", BUILD, *flags])


def build(test):
    return ran(["cmake", "--build", BUILD, "--parallel", "2", "--target", test])


def limit_memory():
    resource.setrlimit(resource.RLIMIT_AS, (TEST_BYTES, TEST_BYTES))
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))


def passes(test):
    command = [BUILD / "tests" / test, "--gtest_brief=1", "--gtest_fail_fast"]
    try:
        return ran(command, timeout=TEST_SECONDS, preexec_fn=limit_memory).returncode == 0
    except subprocess.TimeoutExpired:
        return False


def outcome():
    for test in TESTS:
        if build(test).returncode != 0:
            return "does not compile"
        if not passes(test):
            return "killed"
    return "survived"


def outcome_of(mutant):
    path = TREE / mutant.file
    text = path.read_text()
    lines = text.split("\n")
    lines[mutant.line - 1] = mutant.after
    path.write_text("\n".join(lines))
    try:
        return outcome()
    finally:
        path.write_text(text)


# ----------------------------------------------------------------------------------------------
# The report


def explanations():
    """The reasons by mutant: blocks of file, "- " line, "+ " line, reason."""
    reasons = {}
    for block in re.split(r"\n\s*\n", EXPLAINED.read_text().strip()):
        lines = [line for line in block.split("\n") if line and not line.startswith("#")]
        if lines:
            file, before, after, reason = lines
            reasons[file, before[1:].strip(), after[1:].strip()] = reason
    return reasons


def report(mutant, result, seconds):
    print(f"{result:16} {seconds:5.1f} s  {mutant.file}:{mutant.line}", flush=True)
    if result == "survived":
        print(mutant.diff(), flush=True)


def summary(results, reasons):
    counts = Counter(result for _, result in results)
    survivors = [mutant for mutant, result in results if result == "survived"]
    unexplained = [mutant for mutant in survivors if mutant.key() not in reasons]
    stale = [mutant for mutant, result in results if result != "survived" and mutant.key() in reasons]
    compiled = counts["killed"] + counts["survived"]
    rate = counts["killed"] / max(1, compiled)
    for mutant in unexplained:
        print(f"\nsurvived without a reason: line {mutant.line} of\n{mutant.diff()}")
    for mutant in stale:
        print(f"\nnoticed, so its reason can go: line {mutant.line} of\n{mutant.diff()}")
    print(f"\n{compiled} mutants: {counts['killed']} killed ({rate:.1%}), {counts['survived']} survived, "
          f"{len(survivors) - len(unexplained)} of them explained; {counts['does not compile']} more do not compile")
    return not unexplained and rate >= WANTED_RATE


def main(arguments):
    if len(arguments) > 1 or any(not argument.isdigit() or int(argument) == 0 for argument in arguments):
        sys.exit("usage: scripts/mutate [COUNT]")
    every, mutants = chosen_mutants(int(arguments[0]) if arguments else USUAL_COUNT)
    reasons = explanations()
    print(f"{len(mutants)} of {every} places; building what they are tried on")
    copy_tree()
    if configure().returncode != 0 or outcome() != "survived":
        sys.exit("the unchanged sources do not build or do not pass their tests")
    results = []
    for mutant in mutants:
        began = time.monotonic()
        results.append((mutant, outcome_of(mutant)))
        report(*results[-1], time.monotonic() - began)
    sys.exit(0 if summary(results, reasons) else 1)


if __name__ == "__main__":
    main(sys.argv[1:])
