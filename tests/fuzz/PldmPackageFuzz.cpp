// Any bytes are a firmware package or have a defect. The components of a package lie behind its
// header, within the bytes and apart from each other; what is found in them lies in them; all texts
// are fit for a terminal.
//
// Few inputs would come past the header's checksum: each is read as it is, and again with its
// checksums put right.

#include <algorithm>
#include <string>
#include <vector>

#include "midapi/Crc32.h"
#include "midapi/FirmwareDescription.h"
#include "midapi/FirmwareFormat.h"
#include "midapi/PldmMatch.h"
#include "midapi/PldmNames.h"
#include "midapi/PldmPackage.h"
#include "midapi/PldmRoms.h"
#include "tests/fuzz/Fuzz.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t kFormatAt = 0x10;
constexpr std::size_t kSizeAt = 0x11;
constexpr std::size_t kChecksumSize = 4;

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

void setSum(Bytes& bytes, std::size_t at, std::uint32_t sum) {
  for (std::size_t place = 0; place < kChecksumSize; ++place) {
    bytes[at + place] = static_cast<std::uint8_t>(sum >> 8 * place & 0xFF);
  }
}

// Returns false for bytes without room for checksums.
bool mend(Bytes& bytes) {
  if (bytes.size() < kSizeAt + 2) {
    return false;
  }
  const bool hasPayloadSum = bytes[kFormatAt] >= 4;
  const std::size_t headerSize = bytes[kSizeAt] | std::size_t{bytes[kSizeAt + 1]} << 8;
  const std::size_t sums = hasPayloadSum ? 2 * kChecksumSize : kChecksumSize;
  if (headerSize > bytes.size() || headerSize < kSizeAt + 2 + sums) {
    return false;
  }
  const std::size_t at = headerSize - sums;
  setSum(bytes, at, ma::crc32Of({bytes.data(), at}));
  if (hasPayloadSum) {
    setSum(bytes, at + kChecksumSize, ma::crc32Of(std::span(bytes).subspan(headerSize)));
  }
  return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Bytes bytes(data, data + size);
  read(bytes);
  if (mend(bytes)) {
    read(bytes);
  }
  return 0;
}
