"""The tests that scripts/mutate runs, those first that are likely to notice a change."""

import concurrent.futures
import dataclasses
import json
import os
import re
import subprocess
import time

from mutation_copy import TREE, CannotRun, read

_NOT_ABOUT_SOURCES = "^scripts\\."
_LEAST_SECONDS = 30  # that a test may take: on a machine with other work, the shortest ones take some, too
_SUITE = re.compile(r"^(?:TYPED_)?TEST(?:_F|_P)?\(\s*(\w+),", re.MULTILINE)
_FAILED = re.compile(r"^\[  FAILED  \] ([^\s,]+)", re.MULTILINE)
_STARTED = re.compile(r"^\[ RUN      \] (\S+)", re.MULTILINE)


@dataclasses.dataclass
class Test:
    """One of ctest's: a suite, or a case that needs a process of its own, or a program without cases."""

    name: str
    command: list
    folder: str
    environment: dict
    seconds: float = 60.0  # that it takes without a change; at first, as far as is known

    def program(self):
        return os.path.basename(self.command[0])

    def is_of(self, suites):
        """Whether it is of one of these: a name may have a prefix, and a number or a case behind it."""
        return not suites.isdisjoint(re.split(r"[/.]", self.name))

    def failure(self, copy):
        """Runs it; returns how it fails, or None."""
        seconds = _LEAST_SECONDS + 10 * self.seconds
        try:
            done = copy.run_test(self.command, self.folder, self.environment, seconds)
        except subprocess.TimeoutExpired as late:
            output = (late.stdout or b"").decode(errors="replace")
            return f"{self._case(output)}, which took more than {seconds:.0f} s"
        if done.returncode == 0:
            return None
        if _FAILED.search(done.stdout):
            return self._case(done.stdout)
        return f"{self._case(done.stdout)}, which ended with status {done.returncode}"

    def _case(self, output):
        case = _FAILED.search(output)
        started = _STARTED.findall(output)
        name = case[1] if case else started[-1] if started else self.name
        return name if name == self.program() else f"{name} in {self.program()}"


def listed(copy):
    """Returns the tests that ctest knows in a copy that is built."""
    listing = json.loads(copy.ask("ctest", "--test-dir", TREE, "--show-only=json-v1", "--exclude-regex", _NOT_ABOUT_SOURCES))
    found = []
    for test in listing["tests"]:
        if "command" not in test:
            raise CannotRun(f"{test['name']} was not built")
        properties = {each["name"]: each["value"] for each in test.get("properties", [])}
        found.append(Test(test["name"], test["command"], properties.get("WORKING_DIRECTORY", copy.tree()),
                          dict(each.split("=", 1) for each in properties.get("ENVIRONMENT", []))))
    return found


def mirrors_of(name):
    """The files of tests that can be those of a source: beside a platform's own may stand those for all platforms."""
    stem = name.removesuffix(".cpp")
    return [f"tests/{stem}Test.cpp", "tests/" + re.sub(r"Posix/(?:Posix)?(?=\w+$)", "", stem) + "Test.cpp"]


class Tests:
    """All tests. Those of several copies can run at the same time."""

    def __init__(self, copy):
        self.all = listed(copy)
        self._sources = {}
        for program in {test.program() for test in self.all}:
            self._sources[program] = set(copy.ask("ninja", "-C", TREE, "-t", "inputs", f"bin/{program}").splitlines())

    def measure(self, copy):
        """Runs all without a change; returns how those fail that do."""

        def measured(test):
            failure = None
            for _ in range(2):
                begin = time.monotonic()
                failure = test.failure(copy)
                if failure is None:
                    test.seconds = time.monotonic() - begin
                    break
            return failure

        # From the back: the programs as a whole and their tortures stand there, which take longest.
        with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
            return [failure for failure in pool.map(measured, reversed(self.all)) if failure]

    def stages(self, copy, name):
        """Yields lists of tests that can notice a change of a source, the likely ones first: those that mirror it,
        those of its folder, and all others of programs that are made of it. The shortest go first.
        """
        suites = set()
        for mirror in mirrors_of(name):
            if os.path.exists(copy.path(mirror)):
                suites |= set(_SUITE.findall(read(copy.path(mirror))))
        folder = os.path.join(copy.tree(), "tests", name.split("/")[0])
        rest = [test for test in self.all if os.path.join(copy.root, name) in self._sources[test.program()]]
        rest.sort(key=lambda test: test.seconds)
        for is_next in (lambda test: test.is_of(suites), lambda test: test.folder == folder, lambda test: True):
            stage = [test for test in rest if is_next(test)]
            rest = [test for test in rest if not is_next(test)]
            if stage:
                yield stage


def first_failure(copy, tests, times):
    """Runs tests until one fails; returns how it does, or None. It must fail that many times in a row."""
    failures = []

    def run(test):
        if failures:
            return
        for _ in range(times):
            failure = test.failure(copy)
            if failure is None:
                return
        failures.append(failure)

    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        for _ in pool.map(run, tests):
            pass
    return failures[0] if failures else None
