// Any bytes are a chain of images or have a defect; the images lie within the bytes, one behind the
// other, and what is said of the file as a whole agrees.

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "midapi/FirmwareDescription.h"
#include "midapi/OptionRom.h"
#include "tests/fuzz/Fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const ma::RomChain chain = ma::parseRomChain({data, size});
  std::size_t end = 0;
  for (const ma::OptionRomImage& image : chain.images) {
    test::require(image.offset == end, "images stand one behind the other");
    test::require(image.length > 0 && image.length <= size - end, "and within the bytes");
    test::require(image.dataStructure < image.length && image.structuresEnd <= image.length,
                  "with their structures");
    end += image.length;
  }
  test::require(chain.length == end, "the chain ends with the last one");
  test::require(chain.isValid() != chain.images.empty(), "there are images or there is a defect");
  if (chain.isValid()) {
    const ma::RomChain again = ma::parseRomChain({data, chain.length});
    test::require(again.isValid() && again.images.size() == chain.images.size(),
                  "without what follows it is the same");
  }
  const ma::FirmwareDescription described = ma::describeFirmware({data, size});
  if (described.format == ma::FirmwareFormat::OptionRom) {
    test::require(described.problem.empty() == chain.isValid(), "what is described is a chain");
  }
  return 0;
}
