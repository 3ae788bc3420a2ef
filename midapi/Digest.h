// A digest that tells contents apart which nobody made alike on purpose.

#ifndef ORVEX_MIDAPI_DIGEST_H_
#define ORVEX_MIDAPI_DIGEST_H_

#include <cstdint>
#include <span>

namespace ma {

// Returns the 64-bit FNV-1a digest; with that of other bytes, the digest of those and these behind
// them.
[[nodiscard]] inline std::uint64_t digestOf(std::span<const std::uint8_t> bytes,
                                            std::uint64_t digest = 0xCBF29CE484222325) {
  for (const std::uint8_t byte : bytes) {
    digest = (digest ^ byte) * 0x100000001B3;
  }
  return digest;
}

}  // namespace ma

#endif  // ORVEX_MIDAPI_DIGEST_H_
