"""What the tests of the project's scripts share: a temporary checkout with copies of what a script needs.

Programs that a script starts and that are not what is tested are stand-ins that write down how they
were called.
"""

import os
import shutil
import subprocess
import tempfile
import unittest

ROOT = os.path.abspath(os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", ".."))


class ScriptTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="scripts-test-")
        self.addCleanup(folder.cleanup)
        self.root = folder.name
        self.environment = dict(os.environ, XDG_CACHE_HOME=os.path.join(self.root, "cache"),
                                PATH=os.path.join(self.root, "bin") + ":" + os.environ["PATH"])
        subprocess.run(["git", "init", "-q", self.root], check=True)

    def write(self, path, text, executable=False):
        full = os.path.join(self.root, path)
        os.makedirs(os.path.dirname(full), exist_ok=True)
        with open(full, "w", encoding="utf-8") as stream:
            stream.write(text)
        if executable:
            os.chmod(full, 0o755)

    def bring(self, *paths):
        for path in paths:
            full = os.path.join(self.root, path)
            os.makedirs(os.path.dirname(full), exist_ok=True)
            shutil.copy(os.path.join(ROOT, path), full)

    def stand_in(self, path, commands=""):
        """Puts a program at `path` that appends its name and arguments to the file "calls"."""
        self.write(path, f'#!/bin/bash\necho "$(basename "$0") $*" >>{self.root}/calls\n{commands}\n', True)

    def calls(self):
        with open(os.path.join(self.root, "calls"), encoding="utf-8") as stream:
            return stream.read().splitlines()

    def run_script(self, *command):
        """Runs a script of the temporary checkout; returns the exit status and all its output."""
        run = subprocess.run([os.path.join(self.root, command[0]), *command[1:]], env=self.environment,
                             stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                             text=True, check=False)
        return run.returncode, run.stdout
