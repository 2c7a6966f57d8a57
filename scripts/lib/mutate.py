"""Makes single changes in the core and reports those that no test notices; see scripts/mutate.

The places are chosen at random from all in the sources, the same ones for the same seed. A change that does not compile
is not counted. Several changes are tried at once, each in a separate copy.
"""

import argparse
import os
import queue
import random
import re
import resource
import shutil
import subprocess
import sys
import time
from collections import Counter
from concurrent.futures import ThreadPoolExecutor, as_completed
from pathlib import Path
from typing import NamedTuple

ROOT = Path(__file__).resolve().parents[2]
COPIES = ROOT / "build/mutants"
NOT_COPIED = ("build", ".git")
EXPLAINED = ROOT / "scripts/mutants.txt"

# The test programs that can notice a change in a folder, the likeliest first.
ABOVE_DAO = ("markup_tests", "loader_tests")
TESTS = {
    "src/platform": ("platform_tests", "dao_tests", *ABOVE_DAO),
    "src/evaluator": ("evaluator_tests", "dao_tests"),
    "src/dao": ("dao_tests", "own_evaluator_tests", *ABOVE_DAO),
    "src/loader": ("loader_tests", "allocation_tests"),
    "src/markup": ("markup_tests", "loader_tests"),
    "include": ("dao_tests", "platform_tests", "evaluator_tests", *ABOVE_DAO),
}
# Public headers of rooms above the core.
ABOVE = ("plan_tests", "sqlite_tests")
TESTS_OF_HEADERS = {
    "include/korvex/sqlite/": ("sqlite_tests",),
    "include/korvex/DefinitionSet.h": ABOVE,
    "include/korvex/Plan.h": ABOVE,
    "include/korvex/Value.h": ABOVE,
}
EVERY_TEST = sorted({test for tests in (*TESTS.values(), ABOVE) for test in tests})

WANTED_RATE = 0.95
TEST_SECONDS = 60  # a test program takes a few; a change can make it run for ever
TEST_BYTES = 4 << 30  # or take all memory there is


class Mutant(NamedTuple):
    file: str
    line: int  # from 1
    before: str
    after: str  # both are the whole line

    def key(self):
        return self.file, self.before.strip(), self.after.strip()

    def tests(self):
        by_beginning = (*TESTS_OF_HEADERS.items(), *((folder + "/", tests) for folder, tests in TESTS.items()))
        return next(tests for beginning, tests in by_beginning if self.file.startswith(beginning))

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
CONDITION = re.compile(r"(?<=\bif \()[^()]*(?:\([^()]*\)[^()]*)*(?=\) )")
ARGUMENTS = re.compile(r"(?<=[\w>]\()([\w.]+), ([\w.]+)(?=\))")
TABLE_SIZE = re.compile(r"std::array<[^>]*>")
# A call, an assignment, a step, a break, and an if with its statement, each complete on its line.
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
    (CONDITION, lambda condition: f"!({condition})"),
    (ARGUMENTS, lambda pair: ", ".join(reversed(pair.split(", ")))),
)


def blanked(match):
    """Replaces a comment by spaces, so that the line ends before it, and each character of a string by a mark."""
    return re.sub(r"[^\n]", " " if match.group().startswith("/") else MARK, match.group())


def changes_of(code, before, starts_statement):
    """The changed lines of one line, in the order of their places; `code` is the line without comments and texts."""
    if NO_CHANGE.search(code):
        return []
    code = TABLE_SIZE.sub(blanked, code)
    found = []
    for pattern, change in CHANGES:
        for match in pattern.finditer(code):
            piece = before[match.start() : match.end()]
            found.append((match.start(), before[: match.start()] + change(piece) + before[match.end() :]))
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


def every_mutant():
    files = sorted(path for folder in TESTS for path in (ROOT / folder).rglob("*") if path.suffix in (".h", ".cpp"))
    return [mutant for path in files for mutant in mutants_of(path.relative_to(ROOT).as_posix())]


# ----------------------------------------------------------------------------------------------
# Building and testing


def copy_if_changed(source, target):
    """Keeps the time of an unchanged file, so that it is not rebuilt."""
    if target.exists() and target.read_bytes() == source.read_bytes():
        return
    target.parent.mkdir(parents=True, exist_ok=True)
    shutil.copyfile(source, target)


def ran(command, **options):
    return subprocess.run(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, **options)


def limit_memory():
    resource.setrlimit(resource.RLIMIT_AS, (TEST_BYTES, TEST_BYTES))
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))


class Copy:
    """A copy of the sources with its own build, in which one change at a time is tried."""

    def __init__(self, number):
        self.tree = COPIES / str(number) / "tree"
        self.build_folder = COPIES / str(number) / "build"

    def prepare(self):
        """Whether the unchanged sources build and pass."""
        for source in ROOT.iterdir():
            if source.name in NOT_COPIED:
                continue
            for path in [source] if source.is_file() else source.rglob("*"):
                if path.is_file():
                    copy_if_changed(path, self.tree / path.relative_to(ROOT))
        flags = ["-DCMAKE_BUILD_TYPE=Debug", "-DCMAKE_CXX_FLAGS_DEBUG=-O0 -D_GLIBCXX_ASSERTIONS",
                 "-DKORVEX_BUILD_TESTS=ON", "-DKORVEX_EXCEPTIONS=ON"]
        if shutil.which("ccache"):
            flags.append("-DCMAKE_CXX_COMPILER_LAUNCHER=ccache")
        configured = ran(["cmake", "-S", self.tree, "-B", self.build_folder, *flags]).returncode == 0
        return configured and self.outcome(EVERY_TEST) == "survived"

    def outcome(self, tests):
        for test in tests:
            if ran(["cmake", "--build", self.build_folder, "--target", test], env=self.environment()).returncode != 0:
                return "does not compile"
            if not self.passes(test):
                return "killed"
        return "survived"

    def outcome_of(self, mutant):
        path = self.tree / mutant.file
        text = path.read_text()
        lines = text.split("\n")
        lines[mutant.line - 1] = mutant.after
        path.write_text("\n".join(lines))
        try:
            return self.outcome(mutant.tests())
        finally:
            path.write_text(text)

    def environment(self):
        return {**os.environ, "CCACHE_BASEDIR": str(self.tree), "CCACHE_NOHASHDIR": "1"}

    def passes(self, test):
        command = [self.build_folder / "tests" / test, "--gtest_brief=1", "--gtest_fail_fast"]
        environment = {**os.environ, "MALLOC_PERTURB_": "165"}  # overwrites what is freed, so that using it shows
        try:
            return ran(command, timeout=TEST_SECONDS, preexec_fn=limit_memory, env=environment).returncode == 0
        except subprocess.TimeoutExpired:
            return False


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
    explained = len(survivors) - len(unexplained)
    rate = counts["killed"] / max(1, compiled - explained)
    for mutant in unexplained:
        print(f"\nsurvived without a reason: line {mutant.line} of\n{mutant.diff()}")
    for mutant in stale:
        print(f"\nnoticed, so its reason can go: line {mutant.line} of\n{mutant.diff()}")
    print(f"\n{compiled} mutants: {counts['killed']} killed, {rate:.1%} of those that a test can notice; "
          f"{explained} change nothing, as scripts/mutants.txt explains; {counts['does not compile']} more do not compile")
    return not unexplained and rate >= WANTED_RATE


def tried(mutant, copies):
    copy = copies.get()
    began = time.monotonic()
    try:
        return mutant, copy.outcome_of(mutant), time.monotonic() - began
    finally:
        copies.put(copy)


def arguments():
    parser = argparse.ArgumentParser(prog="scripts/mutate")
    parser.add_argument("count", nargs="?", type=int, default=400, help="how many changes are tried (400)")
    parser.add_argument("--seed", type=int, default=1, help="which of the changes are drawn (1)")
    parser.add_argument("--jobs", type=int, default=os.cpu_count(), help="how many are tried at once (one a core)")
    return parser.parse_args()


def main():
    wanted = arguments()
    every = every_mutant()
    mutants = random.Random(wanted.seed).sample(every, min(wanted.count, len(every)))
    print(f"{len(mutants)} of {len(every)} changes; building what they are tried on", flush=True)
    copies = queue.Queue()
    for number in range(wanted.jobs):
        copies.put(Copy(number))
    with ThreadPoolExecutor(wanted.jobs) as pool:
        if not all(pool.map(Copy.prepare, list(copies.queue))):
            sys.exit("the unchanged sources do not build or do not pass their tests")
        results = []
        for future in as_completed([pool.submit(tried, mutant, copies) for mutant in mutants]):
            mutant, result, seconds = future.result()
            results.append((mutant, result))
            report(mutant, result, seconds)
    sys.exit(0 if summary(results, explanations()) else 1)


if __name__ == "__main__":
    main()
