#include "tests/support/PldmBuilder.h"

#include <algorithm>
#include <stdexcept>
#include <string_view>

namespace test {
namespace {

using namespace std::string_view_literals;

// Of the formats 1 to 4.
constexpr std::string_view kIdentifiers[] = {
    "\xf0\x18\x87\x8c\xcb\x7d\x49\x43\x98\x00\xa0\x2f\x05\x9a\xca\x02"sv,
    "\x12\x44\xd2\x64\x8d\x7d\x47\x18\xa0\x30\xfc\x8a\x56\x58\x7d\x5a"sv,
    "\x31\x19\xce\x2f\xe8\x0a\x4a\x99\xaf\x6d\x46\xf8\xb1\x21\xf6\xbf"sv,
    "\x7b\x29\x1c\x99\x6d\xb6\x42\x08\x80\x1b\x02\x02\x6e\x46\x3c\x78"sv,
};

Bytes bytesOf(std::string_view text) {
  return {text.begin(), text.end()};
}

Bytes littleEndian(std::uint64_t value, std::size_t size) {
  Bytes bytes;
  for (std::size_t place = 0; place < size; ++place) {
    bytes.push_back(static_cast<std::uint8_t>(value >> 8 * place & 0xFF));
  }
  return bytes;
}

std::uint32_t crcOf(const Bytes& bytes, std::size_t begin, std::size_t end) {
  std::uint32_t remainder = 0xFFFFFFFF;
  for (std::size_t at = begin; at < end; ++at) {
    remainder ^= bytes[at];
    for (int bit = 0; bit < 8; ++bit) {
      remainder = (remainder & 1) != 0 ? remainder >> 1 ^ 0xEDB88320 : remainder >> 1;
    }
  }
  return ~remainder;
}

std::string element(const char* list, std::size_t index) {
  return list + ("[" + std::to_string(index) + "].");
}

}  // namespace

PldmDevice::PldmDevice(std::uint16_t vendor, std::uint16_t device) {
  descriptor(0x0000, littleEndian(vendor, 2));
  descriptor(0x0100, littleEndian(device, 2));
}

PldmDevice& PldmDevice::subsystem(std::uint16_t vendor, std::uint16_t device) {
  descriptor(0x0101, littleEndian(vendor, 2));
  return descriptor(0x0102, littleEndian(device, 2));
}

PldmDevice& PldmDevice::descriptor(std::uint16_t type, Bytes data) {
  m_descriptors.push_back({type, std::nullopt, std::move(data)});
  return *this;
}

PldmDevice& PldmDevice::vendorDefined(PldmText title, Bytes data) {
  m_descriptors.push_back({0xFFFF, std::move(title), std::move(data)});
  return *this;
}

PldmDevice& PldmDevice::takes(std::vector<std::size_t> components) {
  m_components = std::move(components);
  return *this;
}

PldmDevice& PldmDevice::options(std::uint32_t flags) {
  m_options = flags;
  return *this;
}

PldmDevice& PldmDevice::version(PldmText version) {
  m_version = std::move(version);
  return *this;
}

PldmDevice& PldmDevice::minVersionStamp(std::uint32_t stamp) {
  m_stamp = stamp;
  m_options |= 1;
  return *this;
}

PldmDevice& PldmDevice::packageData(Bytes data) {
  m_packageData = std::move(data);
  return *this;
}

PldmDevice& PldmDevice::manifest(Bytes data) {
  m_manifest = std::move(data);
  return *this;
}

PldmImage& PldmImage::identifier(std::uint16_t identifier) {
  m_identifier = identifier;
  return *this;
}

PldmImage& PldmImage::version(PldmText version) {
  m_version = std::move(version);
  return *this;
}

PldmImage& PldmImage::classification(std::uint16_t classification) {
  m_classification = classification;
  return *this;
}

PldmImage& PldmImage::stamp(std::uint32_t stamp) {
  m_stamp = stamp;
  return *this;
}

PldmImage& PldmImage::options(std::uint16_t options) {
  m_options = options;
  return *this;
}

PldmImage& PldmImage::activation(std::uint16_t activation) {
  m_activation = activation;
  return *this;
}

PldmImage& PldmImage::opaque(Bytes data) {
  m_opaque = std::move(data);
  return *this;
}

PldmBuilder& PldmBuilder::version(PldmText version) {
  m_version = std::move(version);
  return *this;
}

PldmBuilder& PldmBuilder::releaseTime(Bytes time) {
  m_releaseTime = std::move(time);
  return *this;
}

PldmBuilder& PldmBuilder::add(const PldmDevice& device) {
  m_devices.push_back(device);
  return *this;
}

PldmBuilder& PldmBuilder::addDownstream(const PldmDevice& device) {
  m_downstream.push_back(device);
  return *this;
}

PldmBuilder& PldmBuilder::add(const PldmImage& image) {
  m_images.push_back(image);
  return *this;
}

PldmBuilder& PldmBuilder::bitmapBits(std::size_t bits) {
  m_bitmapBits = bits;
  return *this;
}

PldmBuilder& PldmBuilder::withCommonIdentifier() {
  m_hasCommonIdentifier = true;
  return *this;
}

PldmBuilder& PldmBuilder::withSizeOfHeaderAlone() {
  m_hasSizeOfHeaderAlone = true;
  return *this;
}

PldmBuilder& PldmBuilder::gap(Bytes gap) {
  m_gap = std::move(gap);
  return *this;
}

PldmBuilder& PldmBuilder::breakField(const std::string& field, std::uint64_t value) {
  m_broken.emplace_back(field, value);
  return *this;
}

// Puts the fields of a package one behind the other.
class PldmLayout {
 public:
  explicit PldmLayout(const PldmBuilder& from) : m_from(from) {}

  PldmFile lay() {
    layStart();
    layRecords("devices", m_from.m_devices);
    if (m_from.m_format >= 2) {
      layRecords("downstream", m_from.m_downstream);
    }
    number("componentCount", 2, m_from.m_images.size());
    for (std::size_t index = 0; index < m_from.m_images.size(); ++index) {
      layImage(index);
    }
    number("headerChecksum", 4, 0);
    if (m_from.m_format >= 4) {
      number("payloadChecksum", 4, 0);
    }
    const std::size_t headerEnd = m_file.bytes.size();
    const bool isAlone = m_from.m_format >= 4 && m_from.m_hasSizeOfHeaderAlone;
    set("headerSize", headerEnd - (isAlone ? 4 : 0));
    layContents();
    breakFields(false);
    sum("headerChecksum", 0, m_file.offsetOf("headerChecksum"));
    if (m_from.m_format >= 4) {
      sum("payloadChecksum", headerEnd, m_file.bytes.size());
    }
    breakFields(true);
    return m_file;
  }

 private:
  void layStart() {
    const std::size_t identifier = m_from.m_hasCommonIdentifier ? 1 : m_from.m_format;
    put("identifier", bytesOf(kIdentifiers[std::clamp<std::size_t>(identifier, 1, 4) - 1]));
    number("format", 1, m_from.m_format);
    number("headerSize", 2, 0);
    put("releaseTime", m_from.m_releaseTime);
    const std::size_t needed = (m_from.m_images.size() + 7) / 8 * 8;
    m_bitmap = Bytes(m_from.m_bitmapBits.value_or(needed) / 8);
    number("bitmapBits", 2, m_from.m_bitmapBits.value_or(needed));
    number("versionType", 1, m_from.m_version.type);
    number("versionLength", 1, m_from.m_version.bytes.size());
    put("version", bytesOf(m_from.m_version.bytes));
  }

  void layRecords(const char* list, const std::vector<PldmDevice>& records) {
    const bool isDownstream = &records == &m_from.m_downstream;
    number(isDownstream ? "downstreamCount" : "deviceCount", 1, records.size());
    for (std::size_t index = 0; index < records.size(); ++index) {
      const std::size_t start = m_file.bytes.size();
      m_prefix = element(list, index);
      layRecord(records[index], isDownstream);
      set(m_prefix + "length", m_file.bytes.size() - start);
    }
    m_prefix.clear();
  }

  void layRecord(const PldmDevice& record, bool isDownstream) {
    const std::string version = isDownstream ? "minVersion" : "setVersion";
    number("length", 2, 0);
    number("descriptorCount", 1, record.m_descriptors.size());
    number("optionFlags", 4, record.m_options);
    number(version + "Type", 1, record.m_version.type);
    number(version + "Length", 1, record.m_version.bytes.size());
    number("packageDataLength", 2, record.m_packageData.size());
    if (m_from.m_format >= 4) {
      number("manifestLength", 4, record.m_manifest.size());
    }
    Bytes bitmap = m_bitmap;
    for (const std::size_t component : record.m_components) {
      std::uint8_t& byte = bitmap.at(component / 8);
      byte = static_cast<std::uint8_t>(byte | 1 << component % 8);
    }
    put("components", bitmap);
    put(version, bytesOf(record.m_version.bytes));
    if (isDownstream && record.m_stamp) {
      number("minVersionStamp", 4, *record.m_stamp);
    }
    const std::string prefix = m_prefix;
    for (std::size_t index = 0; index < record.m_descriptors.size(); ++index) {
      m_prefix = prefix + element("descriptors", index);
      layDescriptor(record.m_descriptors[index]);
    }
    m_prefix = prefix;
    put("packageData", record.m_packageData);
    if (m_from.m_format >= 4) {
      put("manifest", record.m_manifest);
    }
  }

  void layDescriptor(const PldmDevice::Descriptor& descriptor) {
    const std::size_t titleSize = descriptor.title ? 2 + descriptor.title->bytes.size() : 0;
    number("type", 2, descriptor.type);
    number("length", 2, titleSize + descriptor.data.size());
    if (descriptor.title) {
      number("titleType", 1, descriptor.title->type);
      number("titleLength", 1, descriptor.title->bytes.size());
      put("title", bytesOf(descriptor.title->bytes));
    }
    put("data", descriptor.data);
  }

  void layImage(std::size_t index) {
    const PldmImage& image = m_from.m_images[index];
    m_prefix = element("components", index);
    number("classification", 2, image.m_classification);
    number("identifier", 2, image.m_identifier);
    number("stamp", 4, image.m_stamp);
    number("options", 2, image.m_options);
    number("activation", 2, image.m_activation);
    number("location", 4, 0);
    number("size", 4, image.m_content.size());
    number("versionType", 1, image.m_version.type);
    number("versionLength", 1, image.m_version.bytes.size());
    put("version", bytesOf(image.m_version.bytes));
    if (m_from.m_format >= 3) {
      number("opaqueLength", 4, image.m_opaque.size());
      put("opaque", image.m_opaque);
    }
    m_prefix.clear();
  }

  void layContents() {
    for (std::size_t index = 0; index < m_from.m_images.size(); ++index) {
      append(m_from.m_gap);
      set(element("components", index) + "location", m_file.bytes.size());
      put(element("components", index) + "content", m_from.m_images[index].m_content);
    }
  }

  void breakFields(bool isOfChecksums) {
    for (const auto& [field, value] : m_from.m_broken) {
      if (!m_file.fields.contains(field)) {
        throw std::invalid_argument("the package has no field " + field);
      }
      if (field.ends_with("Checksum") == isOfChecksums) {
        set(field, value);
      }
    }
  }

  void sum(const std::string& field, std::size_t begin, std::size_t end) {
    set(field, crcOf(m_file.bytes, begin, end));
  }

  void number(const std::string& field, std::size_t size, std::uint64_t value) {
    put(field, littleEndian(value, size));
  }

  void put(const std::string& field, const Bytes& bytes) {
    m_file.fields[m_prefix + field] = {m_file.bytes.size(), bytes.size()};
    append(bytes);
  }

  void append(const Bytes& bytes) {
    m_file.bytes.insert(m_file.bytes.end(), bytes.begin(), bytes.end());
  }

  void set(const std::string& field, std::uint64_t value) {
    const PldmFile::Field place = m_file.fields.at(field);
    const Bytes bytes = littleEndian(value, std::min<std::size_t>(place.size, sizeof value));
    std::copy(bytes.begin(), bytes.end(),
              m_file.bytes.begin() + static_cast<std::ptrdiff_t>(place.offset));
  }

  const PldmBuilder& m_from;
  PldmFile m_file;
  Bytes m_bitmap;
  std::string m_prefix;
};

PldmFile PldmBuilder::build() const {
  return PldmLayout(*this).lay();
}

}  // namespace test
