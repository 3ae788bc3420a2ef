// The checksum of IEEE 802.3, as firmware packages carry it.

#ifndef ORVEX_MIDAPI_CRC32_H_
#define ORVEX_MIDAPI_CRC32_H_

#include <cstdint>
#include <span>

namespace ma {

// Returns the CRC-32 with the reflected polynomial 0xEDB88320, inverted before and after; 0 for no
// bytes.
[[nodiscard]] std::uint32_t crc32Of(std::span<const std::uint8_t> bytes);

}  // namespace ma

#endif  // ORVEX_MIDAPI_CRC32_H_
