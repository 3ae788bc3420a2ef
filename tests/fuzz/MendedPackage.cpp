#include "tests/fuzz/MendedPackage.h"

#include <cstddef>
#include <span>

#include "midapi/Crc32.h"

namespace test {
namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t kFormatAt = 0x10;
constexpr std::size_t kSizeAt = 0x11;
constexpr std::size_t kChecksumSize = 4;

void setSum(Bytes& bytes, std::size_t at, std::uint32_t sum) {
  for (std::size_t place = 0; place < kChecksumSize; ++place) {
    bytes[at + place] = static_cast<std::uint8_t>(sum >> 8 * place & 0xFF);
  }
}

}  // namespace

bool mendPackage(Bytes& bytes) {
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

}  // namespace test
