"""Copies of the checkout for scripts/mutate, each with a build tree of its own.

To what runs in a copy, the copy stands where the checkout stands: commands and paths are the same, so that the
build tree of the checkout can be taken over, and ccache knows what was compiled there. Nothing that
runs sees the checkout itself.
"""

import errno
import os
import shutil
import subprocess

LEAST_FREE = 1 << 30  # bytes of the disk: a build tree has about as many
MOST_BYTES = 4 << 30  # of one process: an endless loop that allocates must not take the machine's memory
TREE = "build/dev"
# What a test leaves must not meet the next one, and one machine's flash lock is not that of another.
_OWN_PLACES = ("--perms", "1777", "--tmpfs", "/tmp", "--tmpfs", "/run", "--perms", "1777", "--dir", "/run/lock",
               "--unshare-net", "--unshare-ipc")


class CannotRun(Exception):
    pass


def read(path):
    with open(path, encoding="utf-8") as stream:
        return stream.read()


def _write(path, text):
    with open(path, "w", encoding="utf-8") as stream:
        stream.write(text)


def _is_same(one, other):
    with open(one, "rb") as first, open(other, "rb") as second:
        return first.read() == second.read()


class Copy:
    """The copy with a number; of one thread at a time."""

    def __init__(self, root, number):
        self.root = root
        self.place = os.path.join(root, "build", "mutate", str(number))

    def path(self, name):
        return os.path.join(self.place, name)

    def tree(self):
        """The build tree, as those see it who run in the copy."""
        return os.path.join(self.root, TREE)

    def follow(self, names, tree):
        """Brings what differs from the checkout, so that only that is built again, and removes what is gone.

        A copy without a build tree takes over `tree`, where that exists. Its objects are older than
        the sources of before it: a source keeps its time when it is new here. One that was left
        changed does not, so that its object is made again.
        """
        for folder, folders, files in os.walk(self.place):
            folders[:] = [name for name in folders if os.path.join(folder, name) != self.path("build")]
            for name in files:
                if os.path.relpath(os.path.join(folder, name), self.place) not in names:
                    os.unlink(os.path.join(folder, name))
        for name in names:
            source, target = os.path.join(self.root, name), self.path(name)
            if not os.path.exists(target):
                os.makedirs(os.path.dirname(target), exist_ok=True)
                shutil.copy2(source, target)
            elif not _is_same(source, target):
                shutil.copy(source, target)
        if not os.path.exists(self.path(TREE)) and os.path.exists(os.path.join(tree, "build.ninja")):
            os.makedirs(self.path("build"), exist_ok=True)
            copied = subprocess.run(["cp", "--archive", "--reflink=auto", tree, self._part()], check=False,
                                    stderr=subprocess.PIPE, text=True, errors="replace")
            if copied.returncode != 0:
                self.discard_part()
                raise CannotRun(f"{tree} cannot be copied to {self.path(TREE)}; where there is no space left, make "
                                f"room there, then start again\n{copied.stderr[-1000:].strip()}")
            os.rename(self._part(), self.path(TREE))

    def _part(self):
        # Under the name of a tree when it is whole: what a kill leaves is none.
        return self.path(TREE) + ".part"

    def discard_part(self):
        """Removes what was left of a tree that could not be taken over; it may fill the disk."""
        shutil.rmtree(self._part(), ignore_errors=True)

    def change(self, name, text):
        _write(self.path(name), text)

    def demand_room(self):
        free = shutil.disk_usage(self.place).free
        if free < LEAST_FREE:
            raise CannotRun(f"the disk of {self.place} has {free >> 20} MB left, and a build can need "
                            f"{LEAST_FREE >> 20}: make room there, then start again")

    def configure(self):
        # Programs that load a library need no new link when it changes, and a suite is one test: to start a
        # process costs more than most cases.
        return self._run(self._workshop(), ["cmake", "--preset", "dev", "-DCMAKE_LINK_DEPENDS_NO_SHARED=ON",
                                            "-DQUORVEL_WHOLE_SUITES=ON"])

    def build(self, targets):
        built = self._run(self._workshop(), ["cmake", "--build", TREE, "--target", *targets])
        if built.returncode != 0:
            self.demand_room()
            if os.strerror(errno.ENOSPC) in built.stdout:
                raise CannotRun(f"the disk of {self.place}, or a user's part of it, is full: make room there, then "
                                f"start again\n{built.stdout[-1000:]}")
        return built

    def ask(self, *command):
        """Runs a command that only looks; returns its output."""
        done = self._run(self._workshop(), command)
        if done.returncode != 0:
            raise CannotRun(f"{' '.join(command)} fails:\n{done.stdout}")
        return done.stdout

    def run_test(self, command, folder, environment, seconds):
        """Runs one program on a machine of its own, as far as it can tell; it can write to nothing else.

        A program that was made wrong may delete the wrong file, or signal the wrong process.
        """
        machine = ["bwrap", "--ro-bind", "/", "/", "--dev", "/dev", *_OWN_PLACES,
                   "--ro-bind", self.place, self.root, *self._process_of_its_own(folder)]
        if os.geteuid() == 0:
            machine += ["--cap-add", "ALL"]  # some tests become other users
        # Programs in the background may have been started without these signals, which tests send.
        wrapped = ["env", "--default-signal=HUP,INT,QUIT", "prlimit", f"--data={MOST_BYTES}", *command]
        return self._run(machine, wrapped, seconds,
                         dict(os.environ, GTEST_FAIL_FAST="1", GTEST_COLOR="no", **environment))

    def _workshop(self):
        return ["bwrap", "--dev-bind", "/", "/", "--bind", self.place, self.root, *self._process_of_its_own(self.root)]

    @staticmethod
    def _process_of_its_own(folder):
        # It ends when scripts/mutate does, whatever ended that.
        return ["--proc", "/proc", "--unshare-pid", "--die-with-parent", "--chdir", folder]

    def _run(self, machine, command, seconds=None, environment=None):
        environment = environment or dict(os.environ, CCACHE_BASEDIR=self.root, CCACHE_NOHASHDIR="true")
        return subprocess.run([*machine, *command], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, text=True, errors="replace", check=False, timeout=seconds,
                              env=environment)
