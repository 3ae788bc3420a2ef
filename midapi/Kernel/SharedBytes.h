// Bytes that never change, and that copies share: what is known of an adapter is handed out at each
// look, with its option ROM.
//
// Copies are as cheap as a pointer. Any thread may have one.

#ifndef ORVEX_MIDAPI_KERNEL_SHAREDBYTES_H_
#define ORVEX_MIDAPI_KERNEL_SHAREDBYTES_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace ma {

// A contiguous range: a span of bytes can be made of it.
class SharedBytes {
 public:
  using value_type = std::uint8_t;
  using const_iterator = const std::uint8_t*;

  SharedBytes() = default;
  // Not explicit: it is the vector, and takes it over.
  SharedBytes(std::vector<std::uint8_t> bytes)  // NOLINT(google-explicit-constructor)
      : m_bytes(bytes.empty() ? nullptr : std::make_shared<const Bytes>(std::move(bytes))) {}

  [[nodiscard]] const std::uint8_t* data() const { return m_bytes ? m_bytes->data() : nullptr; }
  [[nodiscard]] std::size_t size() const { return m_bytes ? m_bytes->size() : 0; }
  [[nodiscard]] bool empty() const { return m_bytes == nullptr; }
  [[nodiscard]] const_iterator begin() const { return data(); }
  [[nodiscard]] const_iterator end() const { return data() + size(); }

  // Compares the bytes.
  friend bool operator==(const SharedBytes& one, const SharedBytes& other) {
    return std::equal(one.begin(), one.end(), other.begin(), other.end());
  }

 private:
  using Bytes = std::vector<std::uint8_t>;

  std::shared_ptr<const Bytes> m_bytes;  // null: none
};

}  // namespace ma

#endif  // ORVEX_MIDAPI_KERNEL_SHAREDBYTES_H_
