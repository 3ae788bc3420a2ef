"""The guest's adapters: which there are, what the emulator is told of them, and the flash of each test board.

Stock adapters are the emulator's own, driven by the kernel's own modules. Test boards are driven by
driver/testnic.c: one or two functions of a slot, with a flash that is a file. Stories find them by name.
"""

import dataclasses
import os
import struct

ROMS = "/usr/lib/ipxe/qemu"
FLASH_SIZE = 512 * 1024
TAIL_SIZE = 64 * 1024   # the record of a board and its management firmware, at the flash's end
RECORD_ROOM = 256
PRODUCT, CHECKSUM = 0x70, 0x06   # where the ROMs of the package have their name, and a byte that puts the sum right
SHIPPED_PRODUCT = b"iPXE"


@dataclasses.dataclass(frozen=True)
class Stock:
    name: str
    slot: int
    device: str      # the emulator's name of it
    driver: str
    modules: str     # in the order in which they are loaded
    rom: str = ""    # a file of the package; none: the adapter has no option ROM


@dataclasses.dataclass(frozen=True)
class Board:
    name: str
    slot: int
    device: str
    rom: str
    functions: int   # with a port each, or one
    ports: int       # of each function
    serial: str
    undi: str        # versions that it comes with
    mgmt: str
    driver: str = "testnic"     # the module takes any name
    has_devlink: bool = True    # else the driver knows ETHTOOL_FLASHDEV alone


STOCK = (
    Stock("virtio", 4, "virtio-net-pci", "virtio_net", "failover net_failover virtio_net", "pxe-virtio.rom"),
    Stock("e1000e", 5, "e1000e", "e1000e", "e1000e", "pxe-e1000e.rom"),
    Stock("rtl8139", 6, "rtl8139", "8139cp", "mii 8139cp", "pxe-rtl8139.rom"),
    Stock("vmxnet3", 7, "vmxnet3", "vmxnet3", "vmxnet3", "pxe-vmxnet3.rom"),
    Stock("i82550", 8, "i82550", "e100", "mii e100", "pxe-eepro100.rom"),
    Stock("e1000", 9, "e1000", "e1000", "e1000", "pxe-e1000.rom"),
    Stock("pcnet", 10, "pcnet", "pcnet32", "mii pcnet32", "pxe-pcnet.rom"),
    Stock("tulip", 11, "tulip", "tulip", "tulip"),
)

BOARDS = (
    Board("kept", 16, "rtl8139", "pxe-rtl8139.rom", 2, 1, "TN-0001", "1.0.0", "7.1.0"),
    Board("pair", 17, "rtl8139", "pxe-rtl8139.rom", 2, 1, "TN-0002", "1.0.0", "7.1.0"),
    Board("dual", 18, "e1000e", "pxe-e1000e.rom", 1, 2, "TN-0003", "1.4.2", "7.3.0"),
    # Under the name of a driver that is known to write option ROMs by ethtool; that one is not loaded.
    Board("plain", 19, "e1000e", "pxe-e1000e.rom", 1, 2, "TN-0004", "1.0.0", "6.0.1", "cxgb4", False),
)


SHARED, SHARED_BOARDS = ("service", "quorvel", "boards"), ("pair", "dual", "plain")


# A start of a machine. What is before a slash in its name is the machine, whose starts follow each other and find the
# flash of the boards as it was left. Machines run beside each other.
@dataclasses.dataclass(frozen=True)
class Start:
    name: str
    stories: tuple = ()       # folders; one that several starts name is shared: who is first runs a story of it
    stock: bool = False       # has the stock adapters
    boards: tuple = ()        # and these boards
    runs_roms: bool = False   # when it starts: then they name themselves on the console, which takes its time

    @property
    def machine(self):
        return self.name.split("/")[0]

    def adapters(self):
        """Returns its stock adapters and its boards."""
        return STOCK if self.stock else (), [board for board in BOARDS if board.name in self.boards]


# Two machines, since each takes as long as ten stories until it is ready, and again until its programs are in memory.
STARTS = (
    Start("twice/1", ("before-restart", "stock"), stock=True, boards=("kept",)),
    Start("twice/2", ("after-restart", *SHARED), boards=("kept", *SHARED_BOARDS), runs_roms=True),
    Start("once", SHARED, boards=SHARED_BOARDS),
)


def is_shared(folder):
    """Returns whether several starts run the stories of a folder."""
    return sum(folder in start.stories for start in STARTS) > 1


def rom_of(file, product):
    """Returns the package's ROM `file` with another name in its banner, of as many letters."""
    with open(os.path.join(ROMS, file), "rb") as stream:
        rom = bytearray(stream.read())
    if rom[PRODUCT:PRODUCT + 4] != SHIPPED_PRODUCT or len(product) != 4:
        raise ValueError(f"{file} has no name of four letters at {PRODUCT:#x}")
    rom[PRODUCT:PRODUCT + 4] = product.encode("ascii")
    rom[CHECKSUM] = (rom[CHECKSUM] - sum(rom)) % 256
    return bytes(rom)


def flash_of(board):
    """Returns what the flash of a test board holds when it is new, as driver/testnic.c reads it."""
    rom = rom_of(board.rom, "OLD1")
    text = "32s"
    record = struct.pack("<8s" + 5 * text + "I", b"TESTNIC1", board.undi.encode(), board.mgmt.encode(),
                         board.serial.encode(), f"TNIC-{board.functions}{board.ports}".encode(),
                         f"Test adapter {board.name}".encode(), board.ports)
    return (rom.ljust(FLASH_SIZE - TAIL_SIZE, b"\xff") + record.ljust(RECORD_ROOM, b"\xff") +
            b"MGMT".ljust(TAIL_SIZE - RECORD_ROOM, b"\xff"))


def make_flash_files(folder, starts):
    """Writes the flash of each board of these starts, and beside it what `fresh_board` sets it back to."""
    os.makedirs(folder)
    for board in {board for start in starts for board in start.adapters()[1]}:
        flash = flash_of(board)
        for name in (f"{board.name}.flash", f"{board.name}.new"):
            with open(os.path.join(folder, name), "wb") as stream:
                stream.write(flash)


def emulator_arguments(start, flashes, folder):
    """Returns the emulator's arguments for the adapters of a start. Their flash files are in `flashes`; `folder`
    is for what else takes a file."""
    arguments = []
    if not start.runs_roms:
        # What the firmware reads to know which of them it runs: none.
        none = os.path.join(folder, "no-roms")
        with open(none, "wb") as stream:
            stream.write(bytes(8))
        arguments += ["-fw_cfg", f"name=etc/pci-optionrom-exec,file={escape(none)}"]
    all_stock, boards = start.adapters()
    for stock in all_stock:
        rom = os.path.join(ROMS, stock.rom) if stock.rom else ""
        arguments += ["-device", f"{stock.device},addr={stock.slot:x}.0,romfile={escape(rom)}"]
    for board in boards:
        flash = escape(os.path.join(flashes, f"{board.name}.flash"))
        arguments += ["-object", f"memory-backend-file,id={board.name},share=on,mem-path={flash},size={FLASH_SIZE}"]
        arguments += ["-device", f"{board.device},addr={board.slot:x}.0,multifunction=on,romfile={flash}"]
        for function in range(1, board.functions):
            arguments += ["-device", f"{board.device},addr={board.slot:x}.{function},romfile="]
        arguments += ["-device", f"ivshmem-plain,addr={board.slot:x}.{board.functions},memdev={board.name}"]
    return arguments


def driver_parameters():
    """Returns the parameters of the test driver's module, which give it its names."""
    parameters = []
    for parameter, has_devlink in (("devlink_drivers", True), ("ethtool_drivers", False)):
        names = sorted({board.driver for board in BOARDS if board.has_devlink == has_devlink})
        if names:
            parameters.append(f"{parameter}={','.join(names)}")
    return " ".join(parameters)


def escape(path):
    """Returns a path as the emulator's options take it."""
    return path.replace(",", ",,")


def described(file):
    """Returns, of an option ROM, the first half of the digest that quorvel tells of it, FNV-1a, and the vendor and device
    that it is for, as one word each."""
    digest = 0xCBF29CE484222325
    with open(file, "rb") as stream:
        rom = stream.read()
    for byte in rom:
        digest = (digest ^ byte) * 0x100000001B3 & 0xFFFFFFFFFFFFFFFF
    vendor, device = struct.unpack_from("<HH", rom, struct.unpack_from("<H", rom, 0x18)[0] + 4)
    return f"{digest >> 32:08x} {vendor:04x}:{device:04x}"


def table(start):
    """Returns the lines of a start by which library.sh knows adapters: kind, name, address and driver, and for a stock
    adapter its ROM, what is told of that and modules, for a board functions, ports, serial number and versions."""
    all_stock, boards = start.adapters()
    lines = []
    for stock in all_stock:
        rom = os.path.join(ROMS, stock.rom)
        lines.append(f"stock {stock.name} 0000:00:{stock.slot:02x} {stock.driver} "
                     f"{f'{rom} {described(rom)}' if stock.rom else '- - -'} {stock.modules}")
    lines += [f"board {board.name} 0000:00:{board.slot:02x} {board.driver} {board.functions} {board.ports} "
              f"{board.serial} {board.undi} {board.mgmt}" for board in boards]
    return "".join(line + "\n" for line in lines)
