#include "midapi/Crc32.h"

#include <array>
#include <cstddef>

namespace ma {
namespace {

constexpr std::uint32_t kPolynomial = 0xEDB88320;
// Table k tells what a byte adds that has k bytes behind it, so that eight are taken at once:
// packages are tens of megabytes long.
constexpr std::size_t kSlices = 8;
using Tables = std::array<std::array<std::uint32_t, 256>, kSlices>;

constexpr Tables makeTables() {
  Tables tables{};
  for (std::uint32_t byte = 0; byte < 256; ++byte) {
    std::uint32_t remainder = byte;
    for (int bit = 0; bit < 8; ++bit) {
      remainder = remainder >> 1 ^ ((remainder & 1) != 0 ? kPolynomial : 0);
    }
    tables[0][byte] = remainder;
  }
  for (std::size_t slice = 1; slice < kSlices; ++slice) {
    for (std::size_t byte = 0; byte < 256; ++byte) {
      const std::uint32_t before = tables[slice - 1][byte];
      tables[slice][byte] = before >> 8 ^ tables[0][before & 0xFF];
    }
  }
  return tables;
}

constexpr Tables kTables = makeTables();

}  // namespace

std::uint32_t crc32Of(std::span<const std::uint8_t> bytes) {
  std::uint32_t remainder = 0xFFFFFFFF;
  std::size_t at = 0;
  for (; at + kSlices <= bytes.size(); at += kSlices) {
    std::uint32_t next = 0;
    for (std::size_t i = 0; i < kSlices; ++i) {
      const std::uint32_t before = i < 4 ? remainder >> (8 * i) & 0xFF : 0;
      next ^= kTables[kSlices - 1 - i][bytes[at + i] ^ before];
    }
    remainder = next;
  }
  for (; at < bytes.size(); ++at) {
    remainder = remainder >> 8 ^ kTables[0][(remainder ^ bytes[at]) & 0xFF];
  }
  return ~remainder;
}

}  // namespace ma
