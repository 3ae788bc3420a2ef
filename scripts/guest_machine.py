"""One start of the guest: the emulator as a child of ours, with a time limit, and what came of it."""

import glob
import os
import shlex
import subprocess
import threading
import time

EMULATOR = "qemu-system-x86_64"
PASSED, FAILED = 65, 33   # the emulator's status for the verdicts 32 and 16 of tests/guest/run-stories
MEMORY = "384"            # MiB
# With panic=-1 a panic ends the emulator. A busy host lets the check of the timer fail, and tearing network devices
# down waits for grace periods. The emulator keeps what it has made of a program's code, by the address: where programs
# have the same addresses each time they start in half the time. The rest saves a tenth: what guards against other
# programs on the machine, of which there are none.
KERNEL_ARGUMENTS = ("console=ttyS0 quiet panic=-1 no_timer_check rcupdate.rcu_expedited=1 nowatchdog norandmaps "
                    "mitigations=off init_on_alloc=0 cgroup_disable=memory lsm=capability audit=0 "
                    "cryptomgr.notests initcall_blacklist=load_system_certificate_list")
MOST_WAITING = 4          # of the limit: how long it may wait for a processor that is busy with something else
CONSOLE_LINES = 40        # that are shown of a machine that has not come to its end
# What the emulator says of every adapter that is connected with nothing, and of the settings of its firmware.
USUAL = ("has no peer", "externally provided fw_cfg item names")


class Result:
    """What a story came to."""

    def __init__(self, name, passed, seconds, text):
        self.name, self.passed, self.seconds, self.text = name, passed, seconds, text


def escape(path):
    """Returns a path as the emulator's options take it."""
    return path.replace(",", ",,")


class Machine:
    """A start of the guest. Its files are in `folder`, which the guest has under the same path."""

    def __init__(self, run, folder, kernel, adapters):
        self.run, self.folder, self.kernel, self.adapters = run, folder, kernel, adapters
        self.console = os.path.join(folder, "console.log")
        self.results = os.path.join(folder, "results")
        self.first = os.path.join(folder, "first.gz")
        self.lock = threading.Lock()
        self.process = None   # guarded by the lock, as is what follows
        self.is_off = False

    def settings(self, **more):
        """Returns what init and run-stories read, as the shell does."""
        values = {"run": self.run, "here": self.folder, "results": self.results, **more}
        return "".join(f"{name}={shlex.quote(str(value))}\n" for name, value in values.items())

    def command(self, serial):
        share = "local,security_model=none"
        return [
            EMULATOR, "-accel", "tcg", "-machine", "pc,graphics=off", "-m", MEMORY, "-nodefaults", "-display", "none",
            "-no-reboot", "-serial", serial, "-kernel", self.kernel.vmlinux, "-initrd", self.first,
            "-append", KERNEL_ARGUMENTS,
            "-device", "isa-debug-exit,iobase=0xf4,iosize=1",
            "-fsdev", f"{share},id=host,path=/,readonly=on,multidevs=remap",
            "-device", "virtio-9p-pci,addr=2,fsdev=host,mount_tag=host",
            "-fsdev", f"{share},id=run,path={escape(self.run)}",
            "-device", "virtio-9p-pci,addr=3,fsdev=run,mount_tag=run",
            *self.adapters]

    def start(self, stories, limit, perhaps=()):
        """Runs it to its end, for `limit` seconds at the most of those in which it could run; returns a result for each
        story, also of those that it runs `perhaps`, and one more, `machine`, for the start itself."""
        began = time.monotonic()
        log = os.path.join(self.folder, "emulator.log")
        with open(log, "wb") as output:
            status = self.run_emulator(output, limit)
        results = self.read_results()
        seconds = time.monotonic() - began
        complaint = self.complaint(status, limit, {result.name for result in results}, stories)
        if complaint:
            text = "".join([complaint, "\n", self.last_story(results, [*stories, *perhaps]), tail(log), tail(self.console)])
            results.append(Result("machine", False, seconds, text))
        elif all(result.passed for result in results) != (status == PASSED):
            results.append(Result("machine", False, seconds, f"the verdict {status} is not that of the results\n"))
        return results

    def run_emulator(self, output, limit):
        """Returns the emulator's status, None when it took too long."""
        with self.lock:
            if self.is_off:
                return None
            self.process = subprocess.Popen(self.command(f"file:{self.console}"), stdin=subprocess.DEVNULL,
                                            stdout=output, stderr=output)
        end = time.monotonic() + limit
        with self.process:
            while True:
                left = end + min(waited_for_processor(self.process.pid), MOST_WAITING * limit) - time.monotonic()
                if left <= 0:
                    self.process.kill()
                    return None
                try:
                    return self.process.wait(left)
                except subprocess.TimeoutExpired:
                    pass

    def switch_off(self):
        """Ends it, from any thread; it does not start any more."""
        with self.lock:
            self.is_off = True
            if self.process is not None:
                self.process.kill()

    def complaint(self, status, limit, named, stories):
        """Returns what is wrong with the start as a whole, nothing where it came to its end."""
        missing = [name for name in stories if name not in named]
        if status is None:
            return f"the machine has not ended after {limit} s and was switched off"
        if status not in (PASSED, FAILED):
            return f"the machine has ended without a verdict (status {status} of {EMULATOR})"
        if missing and status == PASSED:
            return f"these stories were not run: {' '.join(missing)}"
        return ""

    def last_story(self, results, stories):
        """Returns in which story the machine was, and what that has said."""
        named = {result.name for result in results}
        for name in stories:
            said = os.path.join(self.folder, f"{name}.log")
            if name not in named and os.path.exists(said):
                return f"it was in the story {name}:\n{tail(said)}"
        return ""

    def read_results(self):
        results = []
        try:
            with open(self.results, encoding="utf-8") as stream:
                lines = stream.read().splitlines()
        except FileNotFoundError:
            return results
        for line in lines:
            status, milliseconds, name = line.split()
            text = tail(os.path.join(self.folder, f"{name}.log"))
            if status == "124":
                text += "stopped: it took too long\n"
            results.append(Result(name, status == "0", int(milliseconds) / 1000, text))
        return results

    def open_shell(self):
        """Runs it with its console here, until its user ends it there, or the emulator with Ctrl-A X."""
        return subprocess.run(self.command("mon:stdio"), check=False).returncode


def waited_for_processor(process):
    """Returns for how many seconds that thread of a process was kept waiting that waited longest."""
    waited = [0.0]
    for file in glob.glob(f"/proc/{process}/task/*/schedstat"):
        try:
            with open(file, encoding="ascii") as stream:
                waited.append(int(stream.read().split()[1]) / 1e9)
        except (OSError, IndexError):
            pass  # the thread has ended
    return max(waited)


def tail(path, lines=CONSOLE_LINES):
    """Returns a text's last lines, fit to be shown."""
    try:
        with open(path, encoding="utf-8", errors="replace") as stream:
            text = "".join(letter for letter in stream.read() if letter >= " " or letter in "\n\t")
    except FileNotFoundError:
        return ""
    shown = [line for line in text.splitlines() if line.strip() and not any(usual in line for usual in USUAL)]
    return "".join(line + "\n" for line in shown[-lines:])
