// Any bytes are vital product data or have a defect, and all texts in them are fit for a terminal.

#include <string>
#include <vector>

#include "midapi/PciVpd.h"
#include "tests/fuzz/Fuzz.h"

namespace {

void requireShown(const std::vector<ma::VpdField>& fields) {
  for (const ma::VpdField& field : fields) {
    test::require(field.keyword.size() == 2, "a keyword has two characters");
    test::requirePrintable(field.keyword);
    test::requirePrintable(field.text);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::vector<std::uint8_t> bytes(data, data + size);
  const ma::PciVpd vpd = ma::parsePciVpd(bytes);
  test::requirePrintable(vpd.productName);
  requireShown(vpd.readOnly);
  requireShown(vpd.readWrite);
  test::requirePrintable(vpd.serialNumber());
  if (!vpd.isValid()) {
    test::requirePrintable(vpd.defect->toString());
    test::require(vpd.defect->offset <= size, "a defect lies in the bytes");
  }
  test::require(vpd.checksum != ma::VpdChecksum::Wrong || !vpd.isValid(), "a wrong sum is one");
  return 0;
}
