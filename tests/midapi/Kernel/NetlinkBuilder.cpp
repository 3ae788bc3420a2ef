#include "tests/midapi/Kernel/NetlinkBuilder.h"

#include <cstddef>

namespace test {
namespace {

constexpr std::uint16_t kNested = 0x8000;   // NLA_F_NESTED
constexpr std::uint16_t kError = 2;         // NLMSG_ERROR
constexpr std::uint16_t kCapped = 0x100;    // NLM_F_CAPPED
constexpr std::uint16_t kHasWords = 0x200;  // NLM_F_ACK_TLVS

template <class Number>
void put(Bytes& bytes, Number number) {
  const auto* const begin = reinterpret_cast<const std::uint8_t*>(&number);
  bytes.insert(bytes.end(), begin, begin + sizeof number);
}

void align(Bytes& bytes) {
  bytes.resize((bytes.size() + 3) / 4 * 4);
}

Bytes message(std::uint16_t type, std::uint16_t flags, std::uint32_t sequence,
              const Bytes& payload) {
  constexpr std::size_t kHeader = 16;
  Bytes bytes;
  put(bytes, static_cast<std::uint32_t>(kHeader + payload.size()));
  put(bytes, type);
  put(bytes, flags);
  put(bytes, sequence);
  put(bytes, std::uint32_t{0});  // port
  bytes.insert(bytes.end(), payload.begin(), payload.end());
  align(bytes);
  return bytes;
}

}  // namespace

NetlinkAttributes& NetlinkAttributes::raw(std::uint16_t type, const Bytes& payload) {
  put(m_bytes, static_cast<std::uint16_t>(4 + payload.size()));
  put(m_bytes, type);
  m_bytes.insert(m_bytes.end(), payload.begin(), payload.end());
  align(m_bytes);
  return *this;
}

NetlinkAttributes& NetlinkAttributes::text(std::uint16_t type, const std::string& text) {
  Bytes payload(text.begin(), text.end());
  payload.push_back(0);
  return raw(type, payload);
}

NetlinkAttributes& NetlinkAttributes::number16(std::uint16_t type, std::uint16_t number) {
  Bytes payload;
  put(payload, number);
  return raw(type, payload);
}

NetlinkAttributes& NetlinkAttributes::number32(std::uint16_t type, std::uint32_t number) {
  Bytes payload;
  put(payload, number);
  return raw(type, payload);
}

NetlinkAttributes& NetlinkAttributes::number64(std::uint16_t type, std::uint64_t number) {
  Bytes payload;
  put(payload, number);
  return raw(type, payload);
}

NetlinkAttributes& NetlinkAttributes::nested(std::uint16_t type, const NetlinkAttributes& inner) {
  return raw(static_cast<std::uint16_t>(type | kNested), inner.bytes());
}

Bytes genericMessage(std::uint16_t family, std::uint8_t command, std::uint32_t sequence,
                     const NetlinkAttributes& attributes) {
  Bytes payload = {command, 1, 0, 0};
  payload.insert(payload.end(), attributes.bytes().begin(), attributes.bytes().end());
  return message(family, 0, sequence, payload);
}

Bytes acknowledgement(std::int32_t error, std::uint32_t sequence,
                      const NetlinkAttributes& attributes, std::size_t repeated) {
  constexpr std::uint32_t kHeader = 16;
  Bytes payload;
  put(payload, error);
  put(payload, static_cast<std::uint32_t>(kHeader + repeated));
  payload.resize(payload.size() + kHeader - 4 + repeated);
  align(payload);
  payload.insert(payload.end(), attributes.bytes().begin(), attributes.bytes().end());
  const auto flags = static_cast<std::uint16_t>((repeated == 0 ? kCapped : 0) |
                                                (attributes.bytes().empty() ? 0 : kHasWords));
  return message(kError, flags, sequence, payload);
}

Bytes joined(const Bytes& one, const Bytes& other) {
  Bytes bytes = one;
  bytes.insert(bytes.end(), other.begin(), other.end());
  return bytes;
}

}  // namespace test
