#include "midapi/OptionRom.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <numeric>
#include <string_view>
#include <utility>

#include "Utils/Ascii.h"
#include "midapi/Hex.h"

namespace ma {
namespace {

constexpr std::size_t kUnit = 512;

constexpr std::uint8_t kCodeTypeLegacy = 0;
constexpr std::uint8_t kCodeTypeEfi = 3;

// ROM header, from the image's start.
namespace header {
constexpr std::size_t kLength = 0x02;
constexpr std::size_t kEfiSignature = 0x04;
constexpr std::size_t kFiller = 0x06;
constexpr std::size_t kFillerBlock = 0x10;
constexpr std::size_t kDataStructure = 0x18;
constexpr std::size_t kExpansionHeader = 0x1A;
constexpr std::size_t kSize = 0x1A;
}  // namespace header

// PCI Data Structure, from its own start.
namespace pcir {
constexpr std::size_t kVendor = 0x04;
constexpr std::size_t kDevice = 0x06;
constexpr std::size_t kDeviceList = 0x08;
constexpr std::size_t kLength = 0x0A;
constexpr std::size_t kRevision = 0x0C;
constexpr std::size_t kImageLength = 0x10;
constexpr std::size_t kCodeRevision = 0x12;
constexpr std::size_t kCodeType = 0x14;
constexpr std::size_t kIndicator = 0x15;
constexpr std::size_t kMinLength = 0x18;
constexpr std::uint8_t kLastImage = 0x80;
constexpr std::uint8_t kRevisionWithDeviceList = 3;
}  // namespace pcir

// Plug and Play expansion header, from its own start. All expansion headers share the first fields.
namespace pnp {
constexpr std::size_t kLength = 0x05;
constexpr std::size_t kLengthUnit = 16;
constexpr std::size_t kNext = 0x06;
constexpr std::size_t kProduct = 0x10;
constexpr std::size_t kMinLength = 0x20;
constexpr std::size_t kMaxHeaders = 64;
constexpr std::size_t kMaxProduct = 255;
}  // namespace pnp

constexpr std::array<std::uint8_t, 4> kEfiSignatureBytes = {0xF1, 0x0E, 0x00, 0x00};

// What product strings say about the type of a legacy image, in the order of the looks; lower case.
struct ProductName {
  std::string_view part;
  utils::FirmwareType type;
};
constexpr std::array<ProductName, 3> kProductNames = {{
    {"iscsi", utils::FirmwareType::Iscsi},
    {"fcoe", utils::FirmwareType::Fcoe},
    {"clp", utils::FirmwareType::Clp},
}};

bool holds(RomBytes bytes, std::size_t offset, std::size_t count) {
  return offset <= bytes.size() && count <= bytes.size() - offset;
}

std::uint16_t word(RomBytes bytes, std::size_t offset) {
  return static_cast<std::uint16_t>(bytes[offset] | bytes[offset + 1] << 8);
}

bool textAt(RomBytes bytes, std::size_t offset, std::string_view text) {
  return holds(bytes, offset, text.size()) &&
         std::memcmp(bytes.data() + offset, text.data(), text.size()) == 0;
}

std::string hex(std::size_t value) {
  return "0x" + hexText(value, 2);
}

utils::FirmwareType typeOfProduct(std::string product) {
  std::transform(product.begin(), product.end(), product.begin(), utils::toLowerAscii);
  for (const ProductName& name : kProductNames) {
    if (product.find(name.part) != std::string::npos) {
      return name.type;
    }
  }
  return utils::FirmwareType::Pxe;
}

// Reads one image at the start of `rest`, the bytes from there to the end of the chain's file.
class ImageParser {
 public:
  explicit ImageParser(RomBytes rest) : m_rest(rest) {}

  // Returns the reason why the image is invalid; empty when it is valid.
  std::string parse() {
    for (const auto step : {&ImageParser::readHeader, &ImageParser::readDataStructure,
                            &ImageParser::checkCodeType, &ImageParser::readDeviceList,
                            &ImageParser::readExpansionHeaders, &ImageParser::checkSum}) {
      if (std::string reason = (this->*step)(); !reason.empty()) {
        return reason;
      }
    }
    return {};
  }

  OptionRomImage takeImage() { return std::move(m_image); }

 private:
  std::string readHeader() {
    if (!holds(m_rest, 0, header::kSize)) {
      return "only " + std::to_string(m_rest.size()) + " bytes are left, too few for a ROM header";
    }
    if (!isOptionRom(m_rest)) {
      return "no 55 AA signature";
    }
    m_image.dataStructure = word(m_rest, header::kDataStructure);
    return {};
  }

  std::string readDataStructure() {
    const std::size_t start = m_image.dataStructure;
    if (start < header::kSize || !holds(m_rest, start, pcir::kMinLength)) {
      return "pointer to the PCI data structure is " + hex(start) + ", outside the image";
    }
    if (!textAt(m_rest, start, "PCIR")) {
      return "no \"PCIR\" signature at " + hex(start);
    }
    const std::size_t structureLength = word(m_rest, start + pcir::kLength);
    if (structureLength < pcir::kMinLength) {
      return "PCI data structure is " + hex(structureLength) + " bytes long, must be at least 0x18";
    }
    const std::size_t units = word(m_rest, start + pcir::kImageLength);
    m_image.length = units * kUnit;
    if (units == 0) {
      return "image length is 0";
    }
    if (m_image.length > m_rest.size()) {
      return "image length is " + std::to_string(m_image.length) + " bytes, but only " +
             std::to_string(m_rest.size()) + " are left";
    }
    m_bytes = m_rest.first(m_image.length);
    if (!holds(m_bytes, start, structureLength)) {
      return "PCI data structure at " + hex(start) + " ends outside the image";
    }
    m_image.structuresEnd = start + structureLength;
    m_image.vendor = word(m_bytes, start + pcir::kVendor);
    m_image.device = word(m_bytes, start + pcir::kDevice);
    m_image.codeType = m_bytes[start + pcir::kCodeType];
    m_image.version =
        utils::FirmwareVersion::fromCodeRevision(word(m_bytes, start + pcir::kCodeRevision));
    m_image.isLast = (m_bytes[start + pcir::kIndicator] & pcir::kLastImage) != 0;
    return {};
  }

  std::string checkCodeType() {
    if (m_image.codeType == kCodeTypeEfi) {
      m_image.type = utils::FirmwareType::Uefi;
      if (!std::equal(kEfiSignatureBytes.begin(), kEfiSignatureBytes.end(),
                      m_bytes.begin() + header::kEfiSignature)) {
        return "no EFI signature 0x0EF1 in an image of the EFI code type";
      }
    }
    if (m_image.codeType == kCodeTypeLegacy) {
      m_image.type = utils::FirmwareType::Pxe;
      const std::size_t units = m_bytes[header::kLength];
      if (units * kUnit != m_image.length) {
        return "header length is " + std::to_string(units) +
               " blocks, but the PCI data structure says " + std::to_string(m_image.length / kUnit);
      }
    }
    return {};
  }

  std::string readDeviceList() {
    const std::size_t start = m_image.dataStructure;
    const std::size_t pointer = word(m_bytes, start + pcir::kDeviceList);
    if (m_bytes[start + pcir::kRevision] != pcir::kRevisionWithDeviceList || pointer == 0) {
      return {};
    }
    for (std::size_t at = start + pointer; holds(m_bytes, at, 2); at += 2) {
      const std::uint16_t id = word(m_bytes, at);
      if (id == 0) {
        reserve(at + 2);
        return {};
      }
      m_image.deviceList.push_back(id);
    }
    return "device list at " + hex(start + pointer) + " does not end inside the image";
  }

  std::string readExpansionHeaders() {
    if (m_image.codeType != kCodeTypeLegacy) {
      return {};
    }
    std::size_t at = word(m_bytes, header::kExpansionHeader);
    // Other users of this pointer exist, and chains may be damaged into rings: whatever has no '$'
    // ends the chain, and so does a length that nobody needs.
    for (std::size_t count = 0; count < pnp::kMaxHeaders && at != 0 && textAt(m_bytes, at, "$");
         ++count) {
      if (!textAt(m_bytes, at, "$PnP")) {
        if (!holds(m_bytes, at, pnp::kNext + 2)) {
          return {};
        }
      } else if (std::string reason = readPnpHeader(at); !reason.empty()) {
        return reason;
      }
      at = word(m_bytes, at + pnp::kNext);
    }
    return {};
  }

  std::string readPnpHeader(std::size_t at) {
    const std::size_t length =
        holds(m_bytes, at, pnp::kMinLength) ? m_bytes[at + pnp::kLength] * pnp::kLengthUnit : 0;
    if (length < pnp::kMinLength || !holds(m_bytes, at, length)) {
      return "$PnP header at " + hex(at) + " does not fit";
    }
    if (const std::uint8_t sum = byteSum(m_bytes.subspan(at, length)); sum != 0) {
      return "byte sum of the $PnP header at " + hex(at) + " is " + hex(sum) + ", must be 0";
    }
    reserve(at + length);
    const std::size_t product = word(m_bytes, at + pnp::kProduct);
    if (product != 0 && product < m_bytes.size() && m_image.type == utils::FirmwareType::Pxe) {
      const auto first = m_bytes.begin() + static_cast<std::ptrdiff_t>(product);
      const auto limit =
          first + static_cast<std::ptrdiff_t>(std::min(pnp::kMaxProduct, m_bytes.size() - product));
      const std::string text(first, std::find(first, limit, 0));
      reserve(std::min(product + text.size() + 1, m_bytes.size()));
      m_image.type = typeOfProduct(text);
    }
    return {};
  }

  std::string checkSum() {
    const std::uint8_t sum = byteSum(m_bytes);
    return sum == 0 ? std::string() : "byte sum is " + hex(sum) + ", must be 0";
  }

  void reserve(std::size_t end) { m_image.structuresEnd = std::max(m_image.structuresEnd, end); }

  RomBytes m_rest;
  RomBytes m_bytes;
  OptionRomImage m_image;
};

RomChain defective(std::size_t image, std::size_t offset, std::string reason) {
  RomChain chain;
  chain.defect = RomDefect{image, offset, std::move(reason)};
  return chain;
}

// Returns the position of the byte that may take up a difference in the image's sum.
std::optional<std::size_t> findSumByte(RomBytes bytes, const OptionRomImage& image) {
  if (image.codeType == kCodeTypeLegacy) {
    // Images with this block are built with a filler byte behind their entry jump.
    const std::size_t block = word(bytes, header::kFillerBlock);
    if (block >= header::kSize && textAt(bytes, block, "iPXE")) {
      return header::kFiller;
    }
  }
  constexpr std::size_t kPaddingBefore = 4;
  const std::size_t last = bytes.size() - 1;
  if (last < image.structuresEnd + kPaddingBefore ||
      !isPadding(bytes.subspan(last - kPaddingBefore, kPaddingBefore))) {
    return std::nullopt;
  }
  return last;
}

}  // namespace

bool OptionRomImage::isFor(std::uint16_t vendorId, std::uint16_t deviceId) const {
  return vendor == vendorId &&
         (device == deviceId ||
          std::find(deviceList.begin(), deviceList.end(), deviceId) != deviceList.end());
}

std::string RomDefect::toString() const {
  return "image " + std::to_string(image) + " at " + hex(offset) + ": " + reason;
}

bool isOptionRom(RomBytes bytes) {
  return bytes.size() >= 2 && bytes[0] == 0x55 && bytes[1] == 0xAA;
}

RomChain parseRomChain(RomBytes bytes) {
  if (bytes.empty()) {
    return defective(0, 0, "there are no bytes");
  }
  RomChain chain;
  do {
    if (chain.length == bytes.size()) {
      return defective(chain.images.size() - 1, chain.images.back().offset,
                       "no image follows, but the last-image bit is not set");
    }
    ImageParser parser(bytes.subspan(chain.length));
    if (std::string reason = parser.parse(); !reason.empty()) {
      return defective(chain.images.size(), chain.length, std::move(reason));
    }
    chain.images.push_back(parser.takeImage());
    chain.images.back().offset = chain.length;
    chain.length += chain.images.back().length;
  } while (!chain.images.back().isLast);
  if (!isPadding(bytes.subspan(chain.length))) {
    return defective(chain.images.size(), chain.length,
                     "bytes follow the last image that are neither all 0x00 nor all 0xFF");
  }
  return chain;
}

std::uint8_t byteSum(RomBytes bytes) {
  // Sums side by side, which compilers turn into vector additions: images are megabytes long.
  std::array<std::uint8_t, 32> lanes{};
  std::size_t at = 0;
  for (; at + lanes.size() <= bytes.size(); at += lanes.size()) {
    const std::uint8_t* const next = bytes.data() + at;
    for (std::size_t lane = 0; lane < lanes.size(); ++lane) {
      lanes[lane] = static_cast<std::uint8_t>(lanes[lane] + next[lane]);
    }
  }
  const RomBytes rest = bytes.subspan(at);
  const unsigned sum =
      std::accumulate(rest.begin(), rest.end(), std::accumulate(lanes.begin(), lanes.end(), 0U));
  return static_cast<std::uint8_t>(sum & 0xFF);
}

bool isPadding(RomBytes bytes) {
  if (bytes.empty()) {
    return true;
  }
  return (bytes[0] == 0x00 || bytes[0] == 0xFF) &&
         std::memcmp(bytes.data(), bytes.data() + 1, bytes.size() - 1) == 0;
}

bool setLastImageBit(std::span<std::uint8_t> bytes, const OptionRomImage& image, bool isLast) {
  std::uint8_t& indicator = bytes[image.dataStructure + pcir::kIndicator];
  if (((indicator & pcir::kLastImage) != 0) == isLast) {
    return true;
  }
  const auto sumByte = findSumByte(bytes, image);
  if (!sumByte) {
    return false;
  }
  // The bit's value is half of 256: setting and clearing it shift the sum by the same amount.
  indicator = static_cast<std::uint8_t>(indicator ^ pcir::kLastImage);
  bytes[*sumByte] = static_cast<std::uint8_t>(bytes[*sumByte] ^ pcir::kLastImage);
  return true;
}

}  // namespace ma
