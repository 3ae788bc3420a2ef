// Builds Vital Product Data of PCI functions for tests, sound until bytes of it are changed.

#ifndef ORVEX_TESTS_SUPPORT_VPDBUILDER_H_
#define ORVEX_TESTS_SUPPORT_VPDBUILDER_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace test {

class VpdBuilder {
 public:
  using Fields = std::vector<std::pair<std::string, std::string>>;  // keyword and data

  VpdBuilder& name(const std::string& name) { return add(0x82, name); }

  // With a checksum and as many reserved bytes behind that.
  VpdBuilder& readOnly(const Fields& fields, std::size_t reserved = 0) {
    std::string content = join(fields) + "RV" + lengthOf(1 + reserved);
    const std::size_t length = content.size() + 1 + reserved;
    unsigned sum =
        0x90U + static_cast<unsigned>(length & 0xFF) + static_cast<unsigned>(length >> 8);
    for (const std::uint8_t byte : m_bytes) {
      sum += byte;
    }
    for (const char byte : content) {
      sum += static_cast<std::uint8_t>(byte);
    }
    content += static_cast<char>((0x100 - (sum & 0xFF)) & 0xFF);
    return add(0x90, content + std::string(reserved, '\0'));
  }

  VpdBuilder& readOnlyWithoutChecksum(const Fields& fields) { return add(0x90, join(fields)); }

  // With as many bytes that are free.
  VpdBuilder& readWrite(const Fields& fields, std::size_t free = 0) {
    return add(0x91, join(fields) + "RW" + lengthOf(free) + std::string(free, '\0'));
  }

  // A resource of any large type.
  VpdBuilder& add(std::uint8_t tag, const std::string& content) {
    m_bytes.push_back(tag);
    m_bytes.push_back(static_cast<std::uint8_t>(content.size() & 0xFF));
    m_bytes.push_back(static_cast<std::uint8_t>(content.size() >> 8 & 0xFF));
    return raw(content);
  }

  VpdBuilder& raw(const std::string& bytes) {
    m_bytes.insert(m_bytes.end(), bytes.begin(), bytes.end());
    return *this;
  }

  // Returns what there is so far, with the end tag.
  [[nodiscard]] std::vector<std::uint8_t> build() const {
    std::vector<std::uint8_t> bytes = m_bytes;
    bytes.push_back(0x78);
    return bytes;
  }

 private:
  static std::string lengthOf(std::size_t length) { return {static_cast<char>(length & 0xFF)}; }

  static std::string join(const Fields& fields) {
    std::string content;
    for (const auto& [keyword, data] : fields) {
      content += keyword;
      content += lengthOf(data.size());
      content += data;
    }
    return content;
  }

  std::vector<std::uint8_t> m_bytes;
};

}  // namespace test

#endif  // ORVEX_TESTS_SUPPORT_VPDBUILDER_H_
