#include "midapi/PldmPackage.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "midapi/ByteReader.h"
#include "midapi/ByteText.h"
#include "midapi/Crc32.h"
#include "midapi/Hex.h"

namespace ma {
namespace {

using Bytes = std::span<const std::uint8_t>;
using Identifier = std::array<std::uint8_t, 16>;

// Of the formats 1 to 4.
constexpr std::array<Identifier, 4> kIdentifiers = {{
    {0xF0, 0x18, 0x87, 0x8C, 0xCB, 0x7D, 0x49, 0x43, 0x98, 0x00, 0xA0, 0x2F, 0x05, 0x9A, 0xCA,
     0x02},
    {0x12, 0x44, 0xD2, 0x64, 0x8D, 0x7D, 0x47, 0x18, 0xA0, 0x30, 0xFC, 0x8A, 0x56, 0x58, 0x7D,
     0x5A},
    {0x31, 0x19, 0xCE, 0x2F, 0xE8, 0x0A, 0x4A, 0x99, 0xAF, 0x6D, 0x46, 0xF8, 0xB1, 0x21, 0xF6,
     0xBF},
    {0x7B, 0x29, 0x1C, 0x99, 0x6D, 0xB6, 0x42, 0x08, 0x80, 0x1B, 0x02, 0x02, 0x6E, 0x46, 0x3C,
     0x78},
}};

constexpr std::uint8_t kFormatWithDownstream = 2;
constexpr std::uint8_t kFormatWithOpaqueData = 3;
constexpr std::uint8_t kFormatWithManifest = 4;
constexpr std::uint8_t kFormatWithPayloadChecksum = 4;

constexpr std::size_t kChecksumSize = 4;
constexpr std::size_t kBitsOfByte = 8;
constexpr std::uint32_t kHasMinVersionStamp = 1;  // option flag of a downstream record

// By the types' numbers. What has no type is likely to be ASCII, which UTF-8 is as well.
constexpr std::array kEncodings = {TextEncoding::Utf8,    TextEncoding::Ascii,
                                   TextEncoding::Utf8,    TextEncoding::Utf16,
                                   TextEncoding::Utf16Le, TextEncoding::Utf16Be};

struct DescriptorSize {
  PldmDescriptorType type;
  std::size_t size;
};
constexpr std::array kDescriptorSizes = {
    DescriptorSize{PldmDescriptorType::PciVendor, 2},
    DescriptorSize{PldmDescriptorType::IanaEnterprise, 4},
    DescriptorSize{PldmDescriptorType::Uuid, 16},
    DescriptorSize{PldmDescriptorType::PnpVendor, 3},
    DescriptorSize{PldmDescriptorType::AcpiVendor, 4},
    DescriptorSize{PldmDescriptorType::PciDevice, 2},
    DescriptorSize{PldmDescriptorType::PciSubsystemVendor, 2},
    DescriptorSize{PldmDescriptorType::PciSubsystemDevice, 2},
    DescriptorSize{PldmDescriptorType::PciRevision, 1},
    DescriptorSize{PldmDescriptorType::PnpProduct, 4},
    DescriptorSize{PldmDescriptorType::AcpiProduct, 4},
};

// What the fields of the two kinds of records are called.
struct RecordNames {
  bool isDownstream;
  const char* list;
  const char* versionType;
  const char* versionLength;
  const char* version;
};
constexpr RecordNames kDeviceNames = {false, "devices", "setVersionType", "setVersionLength",
                                      "setVersion"};
constexpr RecordNames kDownstreamNames = {true, "downstream", "minVersionType", "minVersionLength",
                                          "minVersion"};

std::string hex(std::size_t value) {
  return "0x" + hexText(value, 1);
}

std::string nameOf(const char* list, std::size_t index, const char* field) {
  return list + ("[" + std::to_string(index) + "]") + field;
}

std::vector<std::uint8_t> copyOf(Bytes bytes) {
  return {bytes.begin(), bytes.end()};
}

TextEncoding readTextType(ByteReader& reader, const char* field) {
  const std::size_t type = reader.number8(field);
  if (type >= kEncodings.size()) {
    reader.refuse(field, "is " + hex(type) + ", must be 0x0 to 0x5");
  }
  return kEncodings[type];
}

// Returns the indexes of the bits that are set, the lowest of the first byte first.
std::vector<std::size_t> readBitmap(Bytes bitmap) {
  std::vector<std::size_t> indexes;
  for (std::size_t bit = 0; bit < bitmap.size() * kBitsOfByte; ++bit) {
    if ((bitmap[bit / kBitsOfByte] >> bit % kBitsOfByte & 1) != 0) {
      indexes.push_back(bit);
    }
  }
  return indexes;
}

PldmDescriptor readDescriptor(ByteReader& reader) {
  PldmDescriptor descriptor;
  descriptor.type = static_cast<PldmDescriptorType>(reader.number16("type"));
  const std::size_t length = reader.number16("length");
  for (const DescriptorSize& known : kDescriptorSizes) {
    if (known.type == descriptor.type && known.size != length) {
      reader.refuse("length", "is " + hex(length) + ", must be " + hex(known.size) +
                                  " for descriptors of type " +
                                  hex(static_cast<std::uint16_t>(known.type)));
    }
  }
  ByteReader content = reader.part("length", length, 0, "descriptor");
  if (descriptor.type == PldmDescriptorType::VendorDefined) {
    const TextEncoding encoding = readTextType(content, "titleType");
    const std::size_t titleLength = content.number8("titleLength");
    descriptor.title = decodeText(content.bytes("title", titleLength), encoding);
  }
  descriptor.data = copyOf(content.bytes("data", content.left()));
  return descriptor;
}

class PackageParser {
 public:
  explicit PackageParser(Bytes bytes) : m_bytes(bytes), m_reader(bytes, 0, bytes.size(), "file") {}

  void parse() {
    readStart();
    readRelease();
    readDevices();
    if (m_package.format >= kFormatWithDownstream) {
      readDownstreamDevices();
    }
    readComponents();
    if (m_reader.left() != 0) {
      m_reader.refuseAt(m_sizeAt, "headerSize",
                        "is " + hex(m_headerSize) + ", but the header's fields end at " +
                            hex(m_reader.position()));
    }
    checkSelections();
    checkPlaces();
    checkPayload();
  }

  PldmPackage takePackage() { return std::move(m_package); }

 private:
  // Where the fields stand that can be judged only when all have been read.
  struct Selection {
    std::string field;
    std::size_t offset;
    std::size_t last;
  };

  void readStart() {
    const Bytes identifier = m_reader.bytes("identifier", kIdentifiers[0].size());
    std::copy(identifier.begin(), identifier.end(), m_package.identifier.begin());
    if (!isPldmPackage(identifier)) {
      m_reader.refuse("identifier", "is no firmware package's");
    }
    m_package.format = m_reader.number8("format");
    if (m_package.format < 1 || m_package.format > kIdentifiers.size()) {
      m_reader.refuse("format", "is " + hex(m_package.format) + ", must be 0x1 to 0x4");
    }
    if (m_package.identifier != kIdentifiers[0] &&
        m_package.identifier != kIdentifiers[m_package.format - 1U]) {
      m_reader.refuse("format",
                      "is " + hex(m_package.format) + ", but the identifier is another format's");
    }
    m_sizeAt = m_reader.position();
    m_headerSize = m_reader.number16("headerSize");
    const std::size_t checksums = checkHeaderSum();
    m_package.headerEnd =
        checksums + kChecksumSize * (m_package.format >= kFormatWithPayloadChecksum ? 2 : 1);
    m_reader = ByteReader(m_bytes, m_reader.position(), checksums, "header");
  }

  // Returns the position of the header's checksum.
  std::size_t checkHeaderSum() {
    // Whether the size counts the payload's checksum, too, is not the same everywhere.
    const std::size_t most = m_package.format >= kFormatWithPayloadChecksum ? 2 : 1;
    if (m_headerSize < m_reader.position() + most * kChecksumSize) {
      m_reader.refuse("headerSize", "is " + hex(m_headerSize) + ", too small for any header");
    }
    if (m_headerSize > m_bytes.size()) {
      m_reader.refuse("headerSize", "is " + hex(m_headerSize) + ", but the file has only " +
                                        hex(m_bytes.size()) + " bytes");
    }
    for (std::size_t count = most; count > 0; --count) {
      const std::size_t at = m_headerSize - count * kChecksumSize;
      m_package.headerChecksum = sumAt(at);
      if (m_package.headerChecksum == crc32Of(m_bytes.first(at))) {
        return at;
      }
    }
    const std::size_t at = m_headerSize - most * kChecksumSize;
    m_reader.refuseAt(at, "headerChecksum",
                      "is " + hex(sumAt(at)) + ", but the header's bytes have " +
                          hex(crc32Of(m_bytes.first(at))) + ": the file is damaged");
  }

  [[nodiscard]] std::uint32_t sumAt(std::size_t at) const {
    return ByteReader(m_bytes, at, m_bytes.size(), "file").number32("checksum");
  }

  void readRelease() {
    m_package.releaseTime =
        readPldmTime(m_reader.bytes("releaseTime", kPldmTimeSize).first<kPldmTimeSize>());
    m_bitmapBitsAt = m_reader.position();
    m_bitmapBits = m_reader.number16("bitmapBits");
    if (m_bitmapBits % kBitsOfByte != 0) {
      m_reader.refuse("bitmapBits", "is " + hex(m_bitmapBits) + ", must be a multiple of 0x8");
    }
    const TextEncoding encoding = readTextType(m_reader, "versionType");
    const std::size_t length = m_reader.number8("versionLength");
    m_package.version = decodeText(m_reader.bytes("version", length), encoding);
  }

  void readDevices() {
    const std::size_t count = m_reader.number8("deviceCount");
    for (std::size_t index = 0; index < count; ++index) {
      m_package.devices.push_back(readRecord(kDeviceNames, index));
    }
  }

  void readDownstreamDevices() {
    const std::size_t count = m_reader.number8("downstreamCount");
    for (std::size_t index = 0; index < count; ++index) {
      m_package.downstreamDevices.push_back(readRecord(kDownstreamNames, index));
    }
  }

  PldmRecord readRecord(const RecordNames& names, std::size_t index) {
    const std::string prefix = nameOf(names.list, index, ".");
    m_reader.setPrefix(prefix);
    const std::size_t start = m_reader.position();
    const std::size_t length = m_reader.number16("length");
    ByteReader reader = m_reader.part("length", length, m_reader.position() - start, "record");
    m_reader.setPrefix({});

    PldmRecord record;
    const std::size_t descriptorCount = reader.number8("descriptorCount");
    record.optionFlags = reader.number32("optionFlags");
    const TextEncoding encoding = readTextType(reader, names.versionType);
    const std::size_t versionLength = reader.number8(names.versionLength);
    const std::size_t dataLength = reader.number16("packageDataLength");
    const std::size_t manifestLength =
        m_package.format >= kFormatWithManifest ? reader.number32("manifestLength") : 0;
    const std::size_t bitmapAt = reader.position();
    record.components = readBitmap(reader.bytes("components", m_bitmapBits / kBitsOfByte));
    if (!record.components.empty()) {
      m_selections.push_back({prefix + "components", bitmapAt, record.components.back()});
    }
    (names.isDownstream ? record.minVersion : record.setVersion) =
        decodeText(reader.bytes(names.version, versionLength), encoding);
    if (names.isDownstream && (record.optionFlags & kHasMinVersionStamp) != 0) {
      record.minVersionStamp = reader.number32("minVersionStamp");
    }
    for (std::size_t count = 0; count < descriptorCount; ++count) {
      reader.setPrefix(prefix + nameOf("descriptors", count, "."));
      record.descriptors.push_back(readDescriptor(reader));
    }
    reader.setPrefix(prefix);
    record.packageData = copyOf(reader.bytes("packageData", dataLength));
    record.referenceManifest = copyOf(reader.bytes("manifest", manifestLength));
    if (reader.left() != 0) {
      reader.refuseAt(
          start, prefix + "length",
          "is " + hex(length) + ", but the record's fields take " + hex(length - reader.left()));
    }
    return record;
  }

  void readComponents() {
    const std::size_t count = m_reader.number16("componentCount");
    for (std::size_t index = 0; index < count; ++index) {
      m_reader.setPrefix(nameOf("components", index, "."));
      m_package.components.push_back(readComponent());
    }
    m_reader.setPrefix({});
  }

  PldmComponent readComponent() {
    PldmComponent component;
    component.classification = m_reader.number16("classification");
    component.identifier = m_reader.number16("identifier");
    component.comparisonStamp = m_reader.number32("stamp");
    component.options = m_reader.number16("options");
    component.activation = m_reader.number16("activation");
    m_locationsAt.push_back(m_reader.position());
    component.location = m_reader.number32("location");
    checkLocation(component.location);
    component.size = m_reader.number32("size");
    checkSize(component);
    const TextEncoding encoding = readTextType(m_reader, "versionType");
    const std::size_t versionLength = m_reader.number8("versionLength");
    component.version = decodeText(m_reader.bytes("version", versionLength), encoding);
    if (m_package.format >= kFormatWithOpaqueData) {
      const std::size_t opaqueLength = m_reader.number32("opaqueLength");
      component.opaqueData = copyOf(m_reader.bytes("opaque", opaqueLength));
    }
    return component;
  }

  void checkLocation(std::size_t location) const {
    if (location < m_package.headerEnd) {
      m_reader.refuse("location", "is " + hex(location) + ", inside the header, which ends at " +
                                      hex(m_package.headerEnd));
    }
    if (location > m_bytes.size()) {
      m_reader.refuse("location", "is " + hex(location) + ", outside the file, which ends at " +
                                      hex(m_bytes.size()));
    }
  }

  void checkSize(const PldmComponent& component) const {
    if (component.size == 0) {
      m_reader.refuse("size", "is 0x0, so there is nothing to write");
    }
    if (component.size > m_bytes.size() - component.location) {
      m_reader.refuse("size", "is " + hex(component.size) + ", but only " +
                                  hex(m_bytes.size() - component.location) + " bytes follow " +
                                  hex(component.location) + " in the file: is it cut off?");
    }
  }

  void checkSelections() const {
    const std::size_t count = m_package.components.size();
    if (m_bitmapBits < count) {
      m_reader.refuseAt(
          m_bitmapBitsAt, "bitmapBits",
          "is " + hex(m_bitmapBits) + ", too small for " + std::to_string(count) + " components");
    }
    for (const Selection& selection : m_selections) {
      if (selection.last >= count) {
        m_reader.refuseAt(selection.offset, selection.field,
                          "has the bit of " + nameOf("components", selection.last, "") +
                              ", but the package has " + std::to_string(count));
      }
    }
  }

  void checkPlaces() const {
    std::vector<std::size_t> order(m_package.components.size());
    for (std::size_t index = 0; index < order.size(); ++index) {
      order[index] = index;
    }
    std::sort(order.begin(), order.end(), [this](std::size_t one, std::size_t other) {
      return m_package.components[one].location < m_package.components[other].location;
    });
    for (std::size_t place = 1; place < order.size(); ++place) {
      const PldmComponent& before = m_package.components[order[place - 1]];
      const PldmComponent& component = m_package.components[order[place]];
      if (component.location < before.location + before.size) {
        m_reader.refuseAt(m_locationsAt[order[place]],
                          nameOf("components", order[place], ".location"),
                          "is " + hex(component.location) + ", inside " +
                              nameOf("components", order[place - 1], "") + ", which ends at " +
                              hex(before.location + before.size));
      }
    }
  }

  void checkPayload() {
    if (m_package.format < kFormatWithPayloadChecksum) {
      return;
    }
    const std::size_t at = m_package.headerEnd - kChecksumSize;
    m_package.payloadChecksum = sumAt(at);
    const std::uint32_t actual = crc32Of(m_bytes.subspan(m_package.headerEnd));
    if (*m_package.payloadChecksum != actual) {
      m_reader.refuseAt(at, "payloadChecksum",
                        "is " + hex(*m_package.payloadChecksum) +
                            ", but the bytes behind the header have " + hex(actual) +
                            ": the file is damaged");
    }
  }

  Bytes m_bytes;
  ByteReader m_reader;
  PldmPackage m_package;
  std::size_t m_sizeAt = 0;
  std::size_t m_headerSize = 0;
  std::size_t m_bitmapBitsAt = 0;
  std::size_t m_bitmapBits = 0;
  std::vector<Selection> m_selections;
  std::vector<std::size_t> m_locationsAt;
};

}  // namespace

std::uint32_t PldmDescriptor::toNumber() const {
  constexpr std::size_t kMost = 4;
  std::uint32_t number = 0;
  for (std::size_t place = 0; data.size() <= kMost && place < data.size(); ++place) {
    number |= std::uint32_t{data[place]} << place * kBitsOfByte;
  }
  return number;
}

bool isPldmPackage(Bytes bytes) {
  return std::any_of(kIdentifiers.begin(), kIdentifiers.end(), [bytes](const Identifier& known) {
    return bytes.size() >= known.size() && std::equal(known.begin(), known.end(), bytes.begin());
  });
}

PldmPackage parsePldmPackage(Bytes bytes) {
  PackageParser parser(bytes);
  try {
    parser.parse();
  } catch (const FieldFault& fault) {
    PldmPackage package;
    package.defect = fault.defect();
    return package;
  }
  return parser.takePackage();
}

std::string kernelRefusalOf(const PldmPackage& package) {
  constexpr std::uint8_t kKernelFormat = 1;
  if (package.format == kKernelFormat) {
    return {};
  }
  return "the package has format " + std::to_string(package.format) +
         ", and the kernel takes format " + std::to_string(kKernelFormat) + " alone";
}

}  // namespace ma
