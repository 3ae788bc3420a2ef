"""The firmware files that stories use: option ROMs, and PLDM firmware packages (DSP0267, format 1).

Nothing but the standard library is needed: struct and zlib know all that a package takes.
"""

import os
import struct
import zlib

from hardware import rom_of

IDENTIFIER = bytes.fromhex("f018878ccb7d49439800a02f059aca02")
DESCRIPTORS = {"vendor": 0x0000, "device": 0x0100, "subsystem_vendor": 0x0101, "subsystem": 0x0102}
FW_UNDI, FW_MGMT = 5, 6
RTL8139 = {"vendor": 0x10EC, "device": 0x8139}
E1000E = {"vendor": 0x8086, "device": 0x10D3}


def text(value):
    """Returns a text of ASCII letters with its type and its length, as two parts of a record."""
    data = value.encode("ascii")
    return struct.pack("<BB", 1, len(data)), data


def device_record(device, components):
    """Returns the record of a device that all components are for."""
    version_head, version = text("SET-1")
    descriptors = b"".join(struct.pack("<HHH", DESCRIPTORS[name], 2, value) for name, value in device.items())
    body = (struct.pack("<BI", len(device), 0) + version_head + struct.pack("<H", 0) +
            ((1 << components) - 1).to_bytes(1, "little") + version + descriptors)
    return struct.pack("<H", len(body) + 2) + body


def package(device, components):
    """Returns a package for one device; a component is (identifier, version, bytes)."""
    version_head, version = text("2026.11")
    release = struct.pack("<h3sBBBBBHB", 0, bytes(3), 0, 0, 12, 22, 11, 2026, 0)
    records = struct.pack("<B", 1) + device_record(device, len(components))
    described = sum(22 + len(component_version) for _, component_version, _ in components)
    size = 16 + 1 + 2 + 13 + 2 + len(version_head) + len(version) + len(records) + 2 + described + 4
    head = IDENTIFIER + struct.pack("<BH", 1, size) + release + struct.pack("<H", 8) + version_head + version
    head += records + struct.pack("<H", len(components))
    place = size
    for identifier, component_version, data in components:
        component_head, name = text(component_version)
        head += struct.pack("<HHIHHII", 10, identifier, 0xFFFFFFFF, 0, 0, place, len(data)) + component_head + name
        place += len(data)
    head += struct.pack("<I", zlib.crc32(head))
    if len(head) != size:
        raise ValueError(f"the package's head has {len(head)} bytes instead of {size}")
    return head + b"".join(data for _, _, data in components)


def changed(data, place):
    """Returns the bytes with one of them changed."""
    return data[:place] + bytes([data[place] ^ 0xFF]) + data[place + 1:]


def files():
    """Returns the files by their names."""
    rom = rom_of("pxe-rtl8139.rom", "NEW1")
    other_rom = rom_of("pxe-e1000e.rom", "NEW1")
    management = b"MGMT" + bytes(range(256)) * 16
    both = [(FW_UNDI, "1.1.0", rom), (FW_MGMT, "7.2.0", management)]
    good = package(RTL8139, both)
    return {
        "rtl8139.rom": rom,
        "e1000e.rom": other_rom,
        "management.bin": management,
        "rtl8139.pldm": good,
        "e1000e.pldm": package(E1000E, [(FW_UNDI, "1.5.0", other_rom), (FW_MGMT, "7.4.0", management)]),
        "unknown-component.pldm": package(RTL8139, [(7, "1.0.0", management)]),
        "cut.pldm": good[:len(good) // 2],
        "wrong-header-checksum.pldm": changed(good, 0x20 + 6),
        "changed-component.pldm": changed(good, len(good) - 1),
        "changed-rom.pldm": changed(good, good.index(rom) + len(rom) // 2),
        "older.pldm": package(RTL8139, [(FW_UNDI, "0.9.0", rom), (FW_MGMT, "7.2.0", management)]),
    }


def make_firmware_files(folder):
    """Writes all of them."""
    os.makedirs(folder)
    for name, data in files().items():
        with open(os.path.join(folder, name), "wb") as stream:
            stream.write(data)
