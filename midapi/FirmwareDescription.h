// What a firmware file is, told by its bytes alone, in words for people and for lists of files.
//
// Pure: no I/O, no shared state, and no read outside the bytes, whatever those hold; throws nothing
// but std::bad_alloc. What comes back is some MiB at the most, however much a file names. All texts
// are UTF-8 and fit for a terminal. Any thread.

#ifndef ORVEX_MIDAPI_FIRMWAREDESCRIPTION_H_
#define ORVEX_MIDAPI_FIRMWAREDESCRIPTION_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "Utils/FirmwareTypes.h"
#include "midapi/Export.h"
#include "midapi/FirmwareFormat.h"

namespace ma {

// One image of an option ROM, or one component of a package.
struct FirmwareComponent {
  // "IMG_PXE", or "image 2" for one of no known type; of a package "fw.undi (component 5)", or
  // "component 1" where the identifier has no name.
  std::string name;
  std::string classification;  // "EFI driver", "firmware"
  std::string version;
  std::size_t size = 0;
  // What makes it take effect: "system reboot, AC power cycle"; empty where the file does not say.
  std::string activation;
  // The images of known types in it, the first of each type.
  std::vector<utils::FirmwareVersionInfo> images;
};

// What is empty is not told by the file.
struct FirmwareDescription {
  // How many devices and components are listed; real files name some hundreds.
  static constexpr std::size_t kMostListed = 1024;

  FirmwareFormat format = FirmwareFormat::Unknown;
  std::string formatName;  // "PLDM firmware package"
  std::size_t size = 0;
  std::uint64_t digest = 0;  // FNV-1a of the bytes
  // Why the file is damaged, with the place; empty when it is sound, and then only is told what
  // stands below, but for the drivers.
  std::string problem;
  // Of a package its own; of an option ROM that of its images, "2.1", one for each type where they
  // differ: "2.1+5.0".
  std::string version;
  std::string releaseTime;  // RFC 3339

  // Whether the file says which devices it is for. A package says so where each of its records
  // names vendor and device.
  bool tellsDevices = false;
  // Each once: "8086:1592", "8086:1592 sub 8086:0002", "8086:any", "any".
  std::vector<std::string> devices;
  bool hasMoreDevices = false;  // than are listed

  std::vector<FirmwareComponent> components;
  bool hasMoreComponents = false;

  // The option-ROM images of known types in the file, the first of each type.
  std::vector<utils::FirmwareVersionInfo> images;

  // The names of the drivers that take files of this format, see driversOf.
  std::vector<std::string> drivers;
  // Whether a byte of a component that has changed is noticed, whatever the component is: by a
  // checksum of all of the file that counts. Not said of option ROMs, whose images have sums.
  std::optional<bool> protectsComponents;
  // Why the kernel's own reader of packages refuses this one, sound as it is.
  std::string kernelRefusal;
};

[[nodiscard]] ORVEX_MIDAPI_API FirmwareDescription
describeFirmware(std::span<const std::uint8_t> bytes);

}  // namespace ma

#endif  // ORVEX_MIDAPI_FIRMWAREDESCRIPTION_H_
