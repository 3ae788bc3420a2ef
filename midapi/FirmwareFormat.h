// What kind of firmware file some bytes are, told by the bytes alone: a file's name says nothing.
//
// Pure functions; nothing throws. Any thread.

#ifndef ORVEX_MIDAPI_FIRMWAREFORMAT_H_
#define ORVEX_MIDAPI_FIRMWAREFORMAT_H_

#include <cstdint>
#include <span>
#include <string_view>

namespace ma {

// The containers are those of drivers of Linux whose sources (6.1) say how they begin. Drivers that
// hand over any file to the adapter, which then checks it, have formats that are unknown here.
enum class FirmwareFormat {
  Unknown,
  OptionRom,
  PldmPackage,
  Mfa2,      // mlxfw
  BnxtPart,  // what one region of the flash takes
  Hinic,
  QedNvm,
};

// Returns the format by how the file begins; whether the rest is sound is the parsers' question.
[[nodiscard]] FirmwareFormat firmwareFormatOf(std::span<const std::uint8_t> bytes);

// Returns for example "PLDM firmware package".
[[nodiscard]] std::string_view nameOf(FirmwareFormat format);

// Returns the names of the drivers that take such files, as the kernel and `ethtool -i` write them;
// of an unknown format those whose files nothing here tells from others. The adapters of the
// virtual back end, which have no driver, take option ROMs.
[[nodiscard]] std::span<const std::string_view> driversOf(FirmwareFormat format);

// Returns whether the file says which devices it is for, and this library can read that.
[[nodiscard]] bool tellsDevices(FirmwareFormat format);

}  // namespace ma

#endif  // ORVEX_MIDAPI_FIRMWAREFORMAT_H_
