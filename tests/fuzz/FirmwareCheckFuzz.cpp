// Any file is checked against any adapter of the kernel's: a refusal has a reason that shows on a
// terminal, what is prepared is no more than the file, and of a package it is the very file.
//
// The first byte of an input chooses the driver and whether it is trusted, the rest is the file.

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "midapi/FirmwareFormat.h"
#include "midapi/Kernel/FirmwareCheck.h"
#include "tests/fuzz/Fuzz.h"
#include "tests/fuzz/MendedPackage.h"

namespace {

using Bytes = std::vector<std::uint8_t>;
using ma::PrepareStatus;

constexpr const char* kDrivers[] = {"ice", "testnic", "cxgb4", "ionic", "mlx5_core", "e1000e"};
constexpr std::uint8_t kTrusted = 0x80;
constexpr std::uint8_t kFixed = 0x40;

// Of the files in the corpus.
constexpr ma::PciIds kIds{0x1AF4, 0x1041, 0x1AF4, 1};

bool isFilled(PrepareStatus status) {
  return status == PrepareStatus::Ok || status == PrepareStatus::Downgrade ||
         status == PrepareStatus::TypesDiffer;
}

void requireSound(const ma::Preparation& preparation, const Bytes& file, const Bytes& prepared) {
  test::requirePrintable(preparation.reason);
  test::require((preparation.status == PrepareStatus::Ok) == preparation.reason.empty(),
                "what is refused has a reason");
  test::require(preparation.filled <= file.size(), "no more than the file");
  test::require(isFilled(preparation.status) || preparation.filled == 0, "nothing is prepared");
  if (preparation.filled > 0 && ma::firmwareFormatOf(file) != ma::FirmwareFormat::OptionRom) {
    test::require(prepared == file, "the very file");
  }
}

void check(const ma::FirmwareTarget& target, const Bytes& file) {
  using Types = std::vector<utils::FirmwareType>;
  for (const Types& types : {Types{}, Types{utils::FirmwareType::Uefi}}) {
    Bytes prepared(file.size());
    const ma::Preparation preparation = prepareFirmware(target, file, prepared, types);
    requireSound(preparation, file, prepared);
  }
  static_cast<void>(compareFirmware(target, file));
  const ma::FlashPlan plan = planFlash(target, file);
  test::require(plan.bytes <= file.size(), "no more than the file is written");
  for (const ma::NamedVersion& version : plan.versions) {
    test::requirePrintable(version.value);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) {
    return 0;
  }
  const char* const driver = kDrivers[data[0] % std::size(kDrivers)];
  const std::vector<ma::FirmwareVersions> versions = {{"fw.undi", "1.0.0", "1.0.0"},
                                                      {"fw.mgmt", "7.1.0", ""}};
  const bool isFixed = (data[0] & kFixed) != 0;
  const ma::FirmwareTarget target{kIds,
                                  &ma::driverOf(driver, std::string(driver) != "e1000e"),
                                  driver,
                                  (data[0] & kTrusted) != 0,
                                  isFixed ? "it cannot be updated" : "",
                                  {},
                                  true,
                                  versions};
  Bytes file(data + 1, data + size);
  check(target, file);
  if (test::mendPackage(file)) {
    check(target, file);
  }
  return 0;
}
