// Writes netlink messages byte by byte, as the kernel sends them, or damaged.

#ifndef ORVEX_TESTS_MIDAPI_KERNEL_NETLINKBUILDER_H_
#define ORVEX_TESTS_MIDAPI_KERNEL_NETLINKBUILDER_H_

#include <cstdint>
#include <string>
#include <vector>

namespace test {

using Bytes = std::vector<std::uint8_t>;

// Attributes in a row. Every setter returns the list itself.
class NetlinkAttributes {
 public:
  NetlinkAttributes& text(std::uint16_t type, const std::string& text);
  NetlinkAttributes& number16(std::uint16_t type, std::uint16_t number);
  NetlinkAttributes& number32(std::uint16_t type, std::uint32_t number);
  NetlinkAttributes& number64(std::uint16_t type, std::uint64_t number);
  NetlinkAttributes& nested(std::uint16_t type, const NetlinkAttributes& inner);
  NetlinkAttributes& raw(std::uint16_t type, const Bytes& payload);

  [[nodiscard]] const Bytes& bytes() const { return m_bytes; }

 private:
  Bytes m_bytes;
};

// A generic message of a family.
[[nodiscard]] Bytes genericMessage(std::uint16_t family, std::uint8_t command,
                                   std::uint32_t sequence, const NetlinkAttributes& attributes);

// The acknowledgement of a request of which the kernel repeats `repeated` bytes (none with
// NETLINK_CAP_ACK). `error` is 0 or a negative errno value.
[[nodiscard]] Bytes acknowledgement(std::int32_t error, std::uint32_t sequence,
                                    const NetlinkAttributes& attributes = {},
                                    std::size_t repeated = 0);

[[nodiscard]] Bytes joined(const Bytes& one, const Bytes& other);

}  // namespace test

#endif  // ORVEX_TESTS_MIDAPI_KERNEL_NETLINKBUILDER_H_
