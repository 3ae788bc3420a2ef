#include <gmock/gmock.h>
#include <numeric>
#include <span>
#include <string>
#include <vector>

#include "midapi/Crc32.h"

namespace {

using ma::crc32Of;

std::uint32_t crcOfText(const std::string& text) {
  return crc32Of({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
}

TEST(Crc32, IsThatOfKnownTexts) {
  EXPECT_EQ(crcOfText(""), 0x00000000U);
  EXPECT_EQ(crcOfText("a"), 0xE8B7BE43U);
  EXPECT_EQ(crcOfText("abc"), 0x352441C2U);
  EXPECT_EQ(crcOfText("123456789"), 0xCBF43926U);
  EXPECT_EQ(crcOfText("The quick brown fox jumps over the lazy dog"), 0x414FA339U);
}

TEST(Crc32, IsThatOfErasedFlash) {
  EXPECT_EQ(crc32Of(std::vector<std::uint8_t>(32, 0x00)), 0x190A55ADU);
  EXPECT_EQ(crc32Of(std::vector<std::uint8_t>(32, 0xFF)), 0xFF6CAB0BU);
}

// One bit after the other, as the polynomial says it.
std::uint32_t slowCrc(std::span<const std::uint8_t> bytes) {
  std::uint32_t remainder = 0xFFFFFFFF;
  for (const std::uint8_t byte : bytes) {
    remainder ^= byte;
    for (int bit = 0; bit < 8; ++bit) {
      remainder = (remainder & 1) != 0 ? remainder >> 1 ^ 0xEDB88320 : remainder >> 1;
    }
  }
  return ~remainder;
}

TEST(Crc32, IsTheSameForEveryLengthAndAlignment) {
  std::vector<std::uint8_t> bytes(64);
  std::iota(bytes.begin(), bytes.end(), std::uint8_t{0xC0});
  for (std::size_t begin = 0; begin < 9; ++begin) {
    for (std::size_t end = begin; end <= bytes.size(); ++end) {
      const auto part = std::span(bytes).subspan(begin, end - begin);
      ASSERT_EQ(crc32Of(part), slowCrc(part)) << begin << " to " << end;
    }
  }
}

}  // namespace
