#include "midapi/PciVpd.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "midapi/ByteReader.h"
#include "midapi/ByteText.h"
#include "midapi/Hex.h"

namespace ma {
namespace {

using Bytes = std::span<const std::uint8_t>;

// Large resources have this bit, and a length of two bytes; small ones have theirs in the tag.
constexpr std::uint8_t kLargeBit = 0x80;
constexpr std::uint8_t kSmallLength = 0x07;

constexpr std::uint8_t kProductName = 0x82;
constexpr std::uint8_t kReadOnly = 0x90;
constexpr std::uint8_t kReadWrite = 0x91;
constexpr std::uint8_t kEnd = 0x78;  // of no length, as all that is looked at of it

constexpr std::size_t kKeywordSize = 2;

bool isKeyword(Bytes keyword) {
  return std::all_of(keyword.begin(), keyword.end(), [](std::uint8_t sign) {
    return (sign >= '0' && sign <= '9') || (sign >= 'A' && sign <= 'Z');
  });
}

class VpdParser {
 public:
  explicit VpdParser(Bytes bytes) : m_bytes(bytes), m_reader(bytes, 0, bytes.size(), "data") {}

  // Throws FieldFault; what was read before stays.
  void parse() {
    while (readResource()) {
    }
    if (m_wrongSum) {
      throw FieldFault(*m_wrongSum);
    }
  }

  PciVpd takeVpd() { return std::move(m_vpd); }

 private:
  // Returns false for the end tag.
  bool readResource() {
    const std::size_t at = m_reader.position();
    const std::uint8_t tag = m_reader.number8("tag");
    if (tag == kEnd) {
      return false;
    }
    if (at == 0 && tag != kProductName && tag != kReadOnly) {
      m_reader.refuse("tag", "is 0x" + hexText(tag, 2) +
                                 ", but the list begins with a product name (0x82) or a "
                                 "read-only area (0x90)");
    }
    if ((tag & kLargeBit) == 0) {
      static_cast<void>(m_reader.part("tag", tag & kSmallLength, 0, "resource"));
      return true;
    }
    const std::size_t length = m_reader.number16("length");
    ByteReader content = m_reader.part("length", length, 0, "resource");
    if (tag == kProductName) {
      m_vpd.productName = decodeText(content.bytes("name", length), TextEncoding::Ascii);
    } else if (tag == kReadOnly) {
      readFields(content, m_vpd.readOnly);
    } else if (tag == kReadWrite) {
      readFields(content, m_vpd.readWrite);
    }
    return true;
  }

  void readFields(ByteReader& area, std::vector<VpdField>& fields) {
    while (area.left() > 0) {
      const Bytes bytes = area.bytes("keyword", kKeywordSize);
      if (!isKeyword(bytes)) {
        area.refuse("keyword", "is 0x" + hexText(bytes[0], 2) + " 0x" + hexText(bytes[1], 2) +
                                   ", must be two capital letters or digits");
      }
      const std::string keyword(bytes.begin(), bytes.end());
      const std::size_t length = area.number8((keyword + " length").c_str());
      ByteReader content = area.part((keyword + " length").c_str(), length, 0, "area");
      if (keyword == "RV") {
        checkSum(content);
        return;
      }
      if (keyword == "RW") {
        return;
      }
      fields.push_back({keyword, decodeText(content.bytes("data", length), TextEncoding::Ascii)});
    }
  }

  // The sum is the first byte; what follows it in the area is reserved.
  void checkSum(ByteReader& content) {
    const std::size_t at = content.position();
    static_cast<void>(content.number8("RV checksum"));
    // Goes on from the checksum before, of which hostile data has thousands.
    for (; m_summed < content.position(); ++m_summed) {
      m_sum = static_cast<std::uint8_t>((m_sum + m_bytes[m_summed]) & 0xFF);
    }
    if (m_sum == 0) {
      m_vpd.checksum = m_wrongSum ? VpdChecksum::Wrong : VpdChecksum::Right;
    } else if (!m_wrongSum) {
      m_vpd.checksum = VpdChecksum::Wrong;
      m_wrongSum =
          FieldDefect{"RV checksum", at,
                      "the bytes up to it add up to 0x" + hexText(m_sum, 2) + ", must be 0x00"};
    }
  }

  Bytes m_bytes;
  ByteReader m_reader;
  PciVpd m_vpd;
  std::size_t m_summed = 0;
  std::uint8_t m_sum = 0;
  std::optional<FieldDefect> m_wrongSum;  // of the first that is wrong
};

}  // namespace

std::string_view PciVpd::field(std::string_view keyword) const {
  const auto found =
      std::find_if(readOnly.begin(), readOnly.end(),
                   [keyword](const VpdField& candidate) { return candidate.keyword == keyword; });
  return found == readOnly.end() ? std::string_view() : std::string_view(found->text);
}

PciVpd parsePciVpd(Bytes bytes) {
  VpdParser parser(bytes);
  std::optional<FieldDefect> defect;
  try {
    parser.parse();
  } catch (const FieldFault& fault) {
    defect = fault.defect();
  }
  PciVpd vpd = parser.takeVpd();
  vpd.defect = std::move(defect);
  return vpd;
}

}  // namespace ma
