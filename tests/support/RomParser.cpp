#include "tests/support/RomParser.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>

namespace test {
namespace {

using Bytes = std::vector<std::uint8_t>;

struct Fault : std::runtime_error {
  using std::runtime_error::runtime_error;
};

void demand(bool condition, const char* text) {
  if (!condition) {
    throw Fault(text);
  }
}

// Bytes of an image; reading outside them is a fault.
class Window {
 public:
  Window(const Bytes& bytes, std::size_t offset, std::size_t size)
      : m_bytes(bytes.begin() + static_cast<std::ptrdiff_t>(offset),
                bytes.begin() + static_cast<std::ptrdiff_t>(offset + size)) {}

  [[nodiscard]] std::size_t size() const { return m_bytes.size(); }

  [[nodiscard]] unsigned u8(std::size_t at) const {
    demand(at < m_bytes.size(), "a structure reaches outside");
    return m_bytes[at];
  }
  [[nodiscard]] std::uint16_t u16(std::size_t at) const {
    return static_cast<std::uint16_t>(u8(at) + 256 * u8(at + 1));
  }
  [[nodiscard]] std::string text(std::size_t at, std::size_t count) const {
    std::string result;
    for (std::size_t index = at; index < at + count && index < m_bytes.size(); ++index) {
      result += static_cast<char>(m_bytes[index]);
    }
    return result;
  }
  [[nodiscard]] std::uint8_t sum(std::size_t at, std::size_t count) const {
    unsigned total = 0;
    for (std::size_t index = 0; index < count; ++index) {
      total += u8(at + index);
    }
    return static_cast<std::uint8_t>(total % 256);
  }

 private:
  Bytes m_bytes;
};

bool mentions(const std::vector<std::string>& products, const std::string& word) {
  return std::any_of(products.begin(), products.end(), [&](std::string product) {
    for (char& letter : product) {
      letter = letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    }
    return product.find(word) != std::string::npos;
  });
}

utils::FirmwareType judgeType(const ParsedImage& image) {
  if (image.codeType == 3) {
    return utils::FirmwareType::Uefi;
  }
  if (image.codeType != 0) {
    return utils::FirmwareType::None;
  }
  if (mentions(image.products, "iscsi")) {
    return utils::FirmwareType::Iscsi;
  }
  if (mentions(image.products, "fcoe")) {
    return utils::FirmwareType::Fcoe;
  }
  return mentions(image.products, "clp") ? utils::FirmwareType::Clp : utils::FirmwareType::Pxe;
}

void readProducts(const Window& window, ParsedImage& image) {
  std::size_t at = window.u16(0x1A);
  for (int headers = 0; headers < 64 && at != 0 && window.text(at, 1) == "$"; ++headers) {
    if (window.text(at, 4) == "$PnP") {
      const std::size_t length = 16 * window.u8(at + 5);
      demand(length >= 32 && at + length <= window.size(), "$PnP does not fit");
      demand(window.sum(at, length) == 0, "$PnP sum");
      const std::size_t product = window.u16(at + 0x10);
      const std::string text = product == 0 ? "" : window.text(product, 255);
      image.products.push_back(text.substr(0, text.find('\0')));
    } else if (at + 8 > window.size()) {
      break;
    }
    at = window.u16(at + 6);
  }
}

ParsedImage parseImage(const Bytes& bytes, std::size_t offset) {
  ParsedImage image;
  image.offset = offset;
  const Window rest(bytes, offset, bytes.size() - offset);
  demand(rest.u16(0) == 0xAA55, "signature");
  const std::size_t pcir = rest.u16(0x18);
  demand(pcir >= 0x1A && rest.text(pcir, 4) == "PCIR", "PCIR");
  image.length = std::size_t{rest.u16(pcir + 0x10)} * 512;
  demand(image.length != 0 && image.length <= rest.size(), "image length");

  const Window window(bytes, offset, image.length);
  const std::size_t pcirLength = window.u16(pcir + 0x0A);
  demand(pcirLength >= 0x18 && pcir + pcirLength <= window.size(), "PCIR length");
  image.vendor = window.u16(pcir + 0x04);
  image.device = window.u16(pcir + 0x06);
  image.version = {static_cast<std::uint8_t>(window.u8(pcir + 0x13)),
                   static_cast<std::uint8_t>(window.u8(pcir + 0x12))};
  image.codeType = static_cast<std::uint8_t>(window.u8(pcir + 0x14));
  image.isLast = window.u8(pcir + 0x15) >= 0x80;
  image.sum = window.sum(0, window.size());
  demand(image.sum == 0, "byte sum");
  if (image.codeType == 0) {
    demand(512 * window.u8(2) == image.length, "header length");
    readProducts(window, image);
  }
  if (image.codeType == 3) {
    demand(window.u16(4) == 0x0EF1 && window.u16(6) == 0, "EFI signature");
  }
  if (const std::size_t list = window.u16(pcir + 0x08); window.u8(pcir + 0x0C) == 3 && list != 0) {
    for (std::size_t at = pcir + list; window.u16(at) != 0; at += 2) {
      image.deviceList.push_back(window.u16(at));
    }
  }
  image.type = judgeType(image);
  return image;
}

}  // namespace

std::vector<utils::FirmwareType> ParsedRom::types() const {
  std::vector<utils::FirmwareType> result;
  std::transform(images.begin(), images.end(), std::back_inserter(result),
                 [](const ParsedImage& image) { return image.type; });
  return result;
}

ParsedRom parseRom(const std::vector<std::uint8_t>& bytes) {
  ParsedRom rom;
  try {
    std::size_t offset = 0;
    do {
      demand(offset < bytes.size(), "the chain does not end");
      rom.images.push_back(parseImage(bytes, offset));
      offset += rom.images.back().length;
    } while (!rom.images.back().isLast);
    const auto rest = bytes.begin() + static_cast<std::ptrdiff_t>(offset);
    demand(std::all_of(rest, bytes.end(), [](unsigned byte) { return byte == 0x00; }) ||
               std::all_of(rest, bytes.end(), [](unsigned byte) { return byte == 0xFF; }),
           "something follows the last image");
  } catch (const Fault& fault) {
    rom.fault = fault.what();
  }
  return rom;
}

std::ostream& operator<<(std::ostream& out, const ParsedRom& rom) {
  for (const ParsedImage& image : rom.images) {
    out << utils::firmwareTypeName(image.type) << ' ' << image.version.toString() << " at "
        << image.offset << " +" << image.length << "; ";
  }
  return out << (rom.isValid() ? "valid" : "fault: " + rom.fault);
}

}  // namespace test
