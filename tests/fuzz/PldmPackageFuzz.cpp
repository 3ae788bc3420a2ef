// Any bytes are a firmware package or have a defect. The components of a package lie behind its
// header, within the bytes and apart from each other; what is found in them lies in them; all texts
// are fit for a terminal.
//
// Few inputs would come past the header's checksum: each is read as it is, and again with its
// checksums put right.

#include <algorithm>
#include <string>
#include <vector>

#include "midapi/FirmwareDescription.h"
#include "midapi/FirmwareFormat.h"
#include "midapi/PldmMatch.h"
#include "midapi/PldmNames.h"
#include "midapi/PldmPackage.h"
#include "midapi/PldmRoms.h"
#include "tests/fuzz/Fuzz.h"
#include "tests/fuzz/MendedPackage.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

void requireSound(const ma::PldmRecord& record, const ma::PldmPackage& package) {
  test::requirePrintable(record.setVersion);
  test::requirePrintable(record.minVersion);
  for (const std::size_t component : record.components) {
    test::require(component < package.components.size(), "a record names components that are");
  }
  for (const ma::PldmDescriptor& descriptor : record.descriptors) {
    test::requirePrintable(ma::describeDescriptor(descriptor));
  }
}

void requireApart(const ma::PldmPackage& package, std::size_t size) {
  std::vector<ma::PldmComponent> components = package.components;
  std::sort(components.begin(), components.end(),
            [](const ma::PldmComponent& one, const ma::PldmComponent& other) {
              return one.location < other.location;
            });
  std::size_t end = package.headerEnd;
  for (const ma::PldmComponent& component : components) {
    test::require(component.location >= end, "components are apart");
    test::require(component.size > 0 && component.location < size, "and somewhere");
    test::require(component.size <= size - component.location, "within the bytes");
    end = component.location + component.size;
    test::requirePrintable(component.version);
    test::requirePrintable(ma::describeClassification(component.classification));
    test::requirePrintable(ma::describeActivation(component.activation));
  }
}

void describe(const Bytes& bytes) {
  const ma::FirmwareDescription file = ma::describeFirmware(bytes);
  test::require(file.devices.size() <= ma::FirmwareDescription::kMostListed, "devices are bounded");
  test::require(file.components.size() <= ma::FirmwareDescription::kMostListed,
                "components are bounded");
  test::require(file.problem.empty() || file.components.empty(), "a damaged file tells nothing");
  test::requirePrintable(file.problem);
  test::requirePrintable(file.version);
  for (const std::string& device : file.devices) {
    test::requirePrintable(device);
  }
}

void read(const Bytes& bytes) {
  describe(bytes);
  const ma::PldmPackage package = ma::parsePldmPackage(bytes);
  if (!package.isValid()) {
    test::require(package.components.empty() && package.devices.empty(), "a defect is all");
    test::requirePrintable(package.defect->toString());
    test::require(package.defect->offset <= bytes.size(), "and lies in the bytes");
    return;
  }
  test::require(ma::firmwareFormatOf(bytes) == ma::FirmwareFormat::PldmPackage, "it looks so");
  test::requirePrintable(package.version);
  requireApart(package, bytes.size());
  for (const ma::PldmRecord& record : package.devices) {
    requireSound(record, package);
  }
  for (const ma::PldmRecord& record : package.downstreamDevices) {
    requireSound(record, package);
  }
  for (const std::size_t record : ma::findRecordsFor(package, {0x1AF4, 0x1041, 0, 0})) {
    test::require(record < package.devices.size(), "records that match are there");
  }
  for (const ma::PldmRom& rom : ma::findOptionRoms(package, bytes)) {
    test::require(rom.chain.length <= package.components[rom.component].size, "a ROM lies in it");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Bytes bytes(data, data + size);
  read(bytes);
  if (test::mendPackage(bytes)) {
    read(bytes);
  }
  return 0;
}
