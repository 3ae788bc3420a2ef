#include "midapi/FirmwareFormat.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "midapi/OptionRom.h"
#include "midapi/PldmPackage.h"

namespace ma {
namespace {

using namespace std::string_view_literals;

// What a driver compares before it takes a file.
struct Mark {
  FirmwareFormat format;
  std::size_t offset;
  std::string_view bytes;
  std::size_t leastSize;  // of a file that has it
};
constexpr std::array kMarks = {
    Mark{FirmwareFormat::Mfa2, 0, "MLNX.MFA2.XZ.00!"sv, 16},
    Mark{FirmwareFormat::BnxtPart, 0, "BCM\x1A"sv, 28},
    Mark{FirmwareFormat::Hinic, 8, "\x00\x11\x22\x18"sv, 1024},
    Mark{FirmwareFormat::QedNvm, 0, "\x87\x56\x43\x12"sv, 12},
};

// The names of the devlink interface are those of the PCI drivers.
constexpr std::array kUnknownDrivers = {"be2net"sv, "bna"sv,   "bnxt_en"sv,
                                        "cxgb4"sv,  "ionic"sv, "nfp"sv};
constexpr std::array kOptionRomDrivers = {"cxgb4"sv};
constexpr std::array kPldmDrivers = {"ice"sv};
constexpr std::array kMfa2Drivers = {"mlx5_core"sv, "mlxsw_spectrum"sv, "mlxsw_spectrum2"sv,
                                     "mlxsw_spectrum3"sv, "mlxsw_spectrum4"sv};
constexpr std::array kBnxtDrivers = {"bnxt_en"sv};
constexpr std::array kHinicDrivers = {"hinic"sv};
constexpr std::array kQedDrivers = {"qede"sv};

struct Description {
  std::string_view name;
  std::span<const std::string_view> drivers;
  bool tellsDevices;
};
// By the formats' numbers.
constexpr std::array<Description, 7> kDescriptions = {{
    {"unknown format", kUnknownDrivers, false},
    {"option ROM", kOptionRomDrivers, true},
    {"PLDM firmware package", kPldmDrivers, true},
    {"MFA2 container", kMfa2Drivers, false},
    {"bnxt firmware part", kBnxtDrivers, false},
    {"hinic firmware container", kHinicDrivers, false},
    {"qed NVM image", kQedDrivers, false},
}};

bool has(std::span<const std::uint8_t> bytes, const Mark& mark) {
  return bytes.size() >= mark.leastSize &&
         std::equal(mark.bytes.begin(), mark.bytes.end(),
                    bytes.begin() + static_cast<std::ptrdiff_t>(mark.offset),
                    [](char wanted, std::uint8_t byte) {
                      return static_cast<std::uint8_t>(wanted) == byte;
                    });
}

const Description& descriptionOf(FirmwareFormat format) {
  return kDescriptions[static_cast<std::size_t>(format)];
}

}  // namespace

FirmwareFormat firmwareFormatOf(std::span<const std::uint8_t> bytes) {
  if (isPldmPackage(bytes)) {
    return FirmwareFormat::PldmPackage;
  }
  for (const Mark& mark : kMarks) {
    if (has(bytes, mark)) {
      return mark.format;
    }
  }
  return isOptionRom(bytes) ? FirmwareFormat::OptionRom : FirmwareFormat::Unknown;
}

std::string_view nameOf(FirmwareFormat format) {
  return descriptionOf(format).name;
}

std::span<const std::string_view> driversOf(FirmwareFormat format) {
  return descriptionOf(format).drivers;
}

bool tellsDevices(FirmwareFormat format) {
  return descriptionOf(format).tellsDevices;
}

}  // namespace ma
