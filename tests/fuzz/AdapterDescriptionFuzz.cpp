// Any text is a description or a fault; what is written of a description reads the same.

#include <string>
#include <string_view>

#include "midapi/Virtual/AdapterDescription.h"
#include "tests/fuzz/Fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  try {
    const ma::AdapterDescription read = ma::parseDescription(text);
    test::require(!read.ports.empty(), "an adapter has a port");
    const ma::AdapterDescription again = ma::parseDescription(ma::formatDescription(read));
    test::require(again.name == read.name && again.vendor == read.vendor &&
                      again.device == read.device && again.ports.size() == read.ports.size() &&
                      again.writeRate == read.writeRate && again.isUpdatable == read.isUpdatable &&
                      again.capabilityWord == read.capabilityWord,
                  "what is written reads the same");
  } catch (const ma::DescriptionFault& fault) {
    test::require(*fault.what() != '\0', "a fault says what it is");
  }
  return 0;
}
