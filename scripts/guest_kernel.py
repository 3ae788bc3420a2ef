"""What the guest starts: a stock kernel out of its package, a first file system, and the test driver's module.

All of it is made of the packages that `scripts/setup --for guest` has downloaded, which are unpacked and never
installed. It stands under build/guest, by the kernel's version, and is made again when a package or a source
changes.
"""

import glob
import gzip
import hashlib
import io
import lzma
import os
import re
import shutil
import struct
import subprocess

# Loaded by tests/guest/init in this order: what it takes to reach the host's files.
FIRST_MODULES = ("virtio_ring virtio virtio_pci_legacy_dev virtio_pci_modern_dev virtio_pci netfs fscache 9pnet "
                 "9pnet_virtio 9p overlay").split()


class CannotPrepare(Exception):
    """What is missing or went wrong, and what to do."""


class Kernel:
    """The kernel of one set of packages, unpacked as far as somebody has asked for it."""

    def __init__(self, folder):
        """`folder` is build/guest; the packages are in it."""
        self.packages = os.path.join(folder, "packages")
        try:
            with open(os.path.join(self.packages, "list"), encoding="utf-8") as stream:
                self.version, *self.files = stream.read().split()
        except (OSError, ValueError):
            raise CannotPrepare(f"{self.packages} holds no packages of a kernel; run scripts/setup --for "
                                "guest") from None
        self.folder = os.path.join(folder, self.version)
        self.vmlinux = os.path.join(self.folder, "vmlinux")
        self.modules = os.path.join(self.folder, "modules")
        self.busybox = os.path.join(self.folder, "busybox")
        self.first_modules = FIRST_MODULES

    def prepare(self, modules):
        """Unpacks the kernel and the named modules beside those of FIRST_MODULES."""
        wanted = sorted({*FIRST_MODULES, *modules})
        # The folder is part of it: the headers' makefile names it.
        stamp = "\n".join([self.folder, *self.files, *wanted])
        if read(os.path.join(self.folder, "stamp")) == stamp:
            return
        shutil.rmtree(self.folder, ignore_errors=True)
        os.makedirs(self.modules)
        self.unpack_image(wanted)
        self.unpack_busybox()
        self.unpack_headers()
        write(os.path.join(self.folder, "stamp"), stamp.encode())

    def package(self, name):
        """Returns the downloaded file of a package."""
        for file in self.files:
            if file.startswith(name + "_"):
                return os.path.join(self.packages, file)
        raise CannotPrepare(f"{self.packages} holds no package {name}; delete that folder and run scripts/setup "
                            "--for guest")

    def unpack_image(self, modules):
        unpacked = os.path.join(self.folder, "image")
        patterns = [f"./boot/vmlinuz-{self.version}", *(f"*/{name}.ko" for name in modules)]
        unpack(self.package(f"linux-image-{self.version}"), unpacked, patterns)
        found = {os.path.basename(path)[:-3]: path for path in glob.glob(f"{unpacked}/**/*.ko", recursive=True)}
        for name in modules:
            if name not in found:
                raise CannotPrepare(f"the kernel {self.version} has no module {name}")
            os.rename(found[name], os.path.join(self.modules, f"{name}.ko"))
        with open(f"{unpacked}/boot/vmlinuz-{self.version}", "rb") as stream:
            write(self.vmlinux, uncompressed(stream.read()))
        shutil.rmtree(unpacked)

    def unpack_busybox(self):
        unpacked = os.path.join(self.folder, "busybox-static")
        unpack(self.package("busybox-static"), unpacked, ["./bin/busybox"])
        os.rename(f"{unpacked}/bin/busybox", self.busybox)
        shutil.rmtree(unpacked)

    def unpack_headers(self):
        """Unpacks what builds modules; its makefile includes another by a path below /usr/src."""
        self.headers = os.path.join(self.folder, "headers")
        for file in self.files:
            if re.match("linux-(headers|kbuild|compiler)-", file):
                unpack(os.path.join(self.packages, file), self.headers)
        makefile = os.path.join(self.build_folder(), "Makefile")
        text = read(makefile)
        write(makefile, text.replace("/usr/src/", f"{self.headers}/usr/src/").encode())

    def build_folder(self):
        return os.path.join(self.folder, "headers", "usr", "src", f"linux-headers-{self.version}")

    def build_module(self, source):
        """Builds the module whose sources are in the folder `source`; returns its file."""
        files = sorted(os.listdir(source))
        stamp = digest(os.path.join(source, name) for name in files)
        place = os.path.join(self.folder, os.path.basename(source))
        if read(os.path.join(place, "stamp")) != stamp:
            shutil.rmtree(place, ignore_errors=True)
            shutil.copytree(source, place)
            run(["make", "-s", "-C", self.build_folder(), f"M={place}", "modules"])
            for module in glob.glob(f"{place}/*.ko"):
                run(["strip", "--strip-debug", module])
            write(os.path.join(place, "stamp"), stamp.encode())
        modules = glob.glob(f"{place}/*.ko")
        if len(modules) != 1:
            raise CannotPrepare(f"{source} makes {len(modules)} modules instead of one")
        return modules[0]

    def make_first_file_system(self, path, init, settings):
        """Writes the file system that the kernel starts with: `init`, what it loads, and its settings."""
        archive = Archive()
        for folder in ("bin", "dev", "modules"):
            archive.add(folder, 0o040755)
        archive.add("dev/console", 0o020600, device=(5, 1))
        archive.add("bin/busybox", 0o100755, read_bytes(self.busybox))
        archive.add("init", 0o100755, read_bytes(init))
        archive.add("settings", 0o100644, settings.encode())
        for name in FIRST_MODULES:
            archive.add(f"modules/{name}.ko", 0o100644, read_bytes(os.path.join(self.modules, f"{name}.ko")))
        write(path, gzip.compress(archive.end(), compresslevel=1))


class Archive:
    """A cpio archive in the format that the kernel takes, which the cpio of this system calls newc."""

    def __init__(self):
        self.stream = io.BytesIO()
        self.count = 0

    def add(self, name, mode, data=b"", device=(0, 0)):
        self.count += 1
        encoded = name.encode() + b"\0"
        fields = (self.count, mode, 0, 0, 1, 0, len(data), 0, 0, *device, len(encoded), 0)
        self.stream.write(b"070701" + b"".join(b"%08X" % field for field in fields))
        self.pad(encoded)
        self.pad(data)

    def pad(self, data):
        self.stream.write(data)
        self.stream.write(bytes(-self.stream.tell() % 4))

    def end(self):
        self.add("TRAILER!!!", 0)
        return self.stream.getvalue()


def uncompressed(vmlinuz):
    """Returns the ELF kernel in a compressed one: it starts in half the time, being nothing to unpack.

    Where the compressed one lies says the setup header (boot protocol 2.08 and later)."""
    sectors = vmlinuz[0x1F1] or 4
    offset, length = struct.unpack_from("<II", vmlinuz, 0x248)
    start = (sectors + 1) * 512 + offset
    try:
        # Behind it stands the size of what it unpacks to.
        return lzma.LZMADecompressor().decompress(vmlinuz[start:start + length])
    except lzma.LZMAError as error:
        raise CannotPrepare(f"the kernel is not compressed by xz: {error}") from error


def unpack(package, folder, patterns=()):
    """Unpacks a package, or those of its files that match the patterns."""
    os.makedirs(folder, exist_ok=True)
    options = ["--wildcards", *patterns] if patterns else []
    source = subprocess.Popen(["dpkg-deb", "--fsys-tarfile", package], stdout=subprocess.PIPE, stderr=subprocess.PIPE)
    with source:
        tar = subprocess.run(["tar", "-x", "-C", folder, *options], stdin=source.stdout, stdout=subprocess.DEVNULL,
                             stderr=subprocess.PIPE, check=False)
        complaint = (source.stderr.read() + tar.stderr).decode(errors="replace").strip()
    if source.returncode != 0 or tar.returncode != 0:
        raise CannotPrepare(f"{package} cannot be unpacked ({complaint}); delete {os.path.dirname(package)} and run "
                            "scripts/setup --for guest")


def run(command):
    try:
        done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False)
    except FileNotFoundError:
        raise CannotPrepare(f"{command[0]} is not installed; run scripts/setup --for guest") from None
    if done.returncode != 0:
        raise CannotPrepare(f"{' '.join(command)} failed:\n{done.stdout.decode(errors='replace')}")


def digest(paths):
    total = hashlib.sha256()
    for path in paths:
        total.update(os.path.basename(path).encode() + b"\0" + hashlib.sha256(read_bytes(path)).digest())
    return total.hexdigest()


def read(path):
    """Returns a file's text, an empty one where there is none."""
    try:
        return read_bytes(path).decode()
    except FileNotFoundError:
        return ""


def read_bytes(path):
    with open(path, "rb") as stream:
        return stream.read()


def write(path, data):
    with open(path, "wb") as stream:
        stream.write(data)
