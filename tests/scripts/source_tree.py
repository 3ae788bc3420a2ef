"""What the tests of scripts/check-source share: trees of files that are checked.

A tree is a dictionary of paths and texts, made in a temporary git checkout. Every tree starts from
CLEAN, in which nothing is wrong; a test adds or replaces what it is about.
"""

import contextlib
import importlib.machinery
import importlib.util
import io
import os
import subprocess
import sys
import tempfile
import unittest
from unittest import mock

HERE = os.path.dirname(os.path.abspath(__file__))
CHECKER = os.path.join(HERE, "..", "..", "scripts", "check-source")


def load_checker():
    sys.dont_write_bytecode = True
    loader = importlib.machinery.SourceFileLoader("check_source", CHECKER)
    module = importlib.util.module_from_spec(importlib.util.spec_from_loader(loader.name, loader))
    loader.exec_module(module)
    return module


check_source = load_checker()


def replaced(name, table):
    """Replaces a table of the house rules while a test is in this context."""
    return mock.patch.dict(getattr(check_source, name), table, clear=True)


def header(guard, body=""):
    return f"// A contract.\n\n#ifndef {guard}\n#define {guard}\n\n{body}\n#endif  // {guard}\n"


CLEAN = {
    ".gitignore": "/build/\n",
    "core/CMakeLists.txt": "# Sources by name.\nadd_library(Core SHARED\n  Path.cpp  # first\n)\n",
    "core/Path.h": header("ORVEX_CORE_PATH_H_", '#include <string>\n\n#include "Utils/Text.h"\n'),
    "core/Path.cpp": '#include "core/Path.h"\n\nint path() { return 0; }\n',
    "Utils/Text.h": header("ORVEX_UTILS_TEXT_H_"),
    "tests/core/CMakeLists.txt": "add_executable(CoreTest PathTest.cpp)\n",
    "tests/core/PathTest.cpp": '#include <unistd.h>\n\n#include "core/Path.h"\n',
}


class CheckSourceTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="check-source-test-")
        self.addCleanup(folder.cleanup)
        self.root = folder.name
        subprocess.run(["git", "init", "-q", self.root], check=True)

    def write(self, files):
        for path, text in files.items():
            full = os.path.join(self.root, path)
            os.makedirs(os.path.dirname(full), exist_ok=True)
            with open(full, "w", encoding="utf-8") as stream:
                stream.write(text)

    def check(self, files, without=()):
        """Checks CLEAN with `files` in it; returns the exit status and the lines that were printed."""
        self.write({path: text for path, text in CLEAN.items() if path not in without})
        self.write(files)
        output = io.StringIO()
        with contextlib.redirect_stdout(output):
            status = check_source.main([self.root])
        return status, output.getvalue().splitlines()

    def assert_faults(self, expected, files, without=()):
        """Asserts that exactly the faults `expected`, each (path, line, rule), are reported."""
        status, lines = self.check(files, without)
        beginnings = [f"{path}:{line}: [{rule}] " for path, line, rule in expected]
        self.assertEqual(len(lines), len(expected) + 1, lines)
        for beginning, line in zip(sorted(beginnings), sorted(lines[:-1])):
            self.assertTrue(line.startswith(beginning), f"{line!r} does not start with {beginning!r}")
        self.assertTrue(lines[-1].startswith(f"check-source: {len(expected)} faults, 0 warnings"), lines)
        self.assertEqual(status, 1 if expected else 0)

    def assert_clean(self, files, without=()):
        self.assert_faults([], files, without)

    def header_with(self, body):
        """A header core/Odd.h whose line 6 is the first one of `body`."""
        return {"core/Odd.h": header("ORVEX_CORE_ODD_H_", body)}
