#include "tests/support/RomBuilder.h"

#include <algorithm>
#include <numeric>
#include <random>
#include <stdexcept>
#include <utility>

namespace test {
namespace {

// Where the builder puts things in an image.
constexpr std::size_t kPcir = 0x1C;
constexpr std::size_t kPnp = 0x40;
constexpr std::size_t kManufacturer = 0x60;
constexpr std::size_t kProduct = 0x80;
constexpr std::size_t kFillerBlock = 0xC0;
constexpr std::size_t kDeviceList = 0xD1;
constexpr std::size_t kBody = 0x100;
constexpr std::size_t kMaxProduct = 60;
constexpr std::size_t kMostDevicesInHeader = 20;
constexpr std::size_t kLongDeviceList = kBody + 0x10;

void put16(Bytes& bytes, std::size_t at, std::size_t value) {
  bytes.at(at) = static_cast<std::uint8_t>(value & 0xFF);
  bytes.at(at + 1) = static_cast<std::uint8_t>(value >> 8 & 0xFF);
}

void putText(Bytes& bytes, std::size_t at, const std::string& text) {
  std::copy(text.begin(), text.end(), bytes.begin() + static_cast<std::ptrdiff_t>(at));
}

std::uint8_t sumOf(const Bytes& bytes, std::size_t at, std::size_t count) {
  const auto first = bytes.begin() + static_cast<std::ptrdiff_t>(at);
  const unsigned sum = std::accumulate(first, first + static_cast<std::ptrdiff_t>(count), 0U);
  return static_cast<std::uint8_t>(sum & 0xFF);
}

void subtract(std::uint8_t& byte, std::uint8_t amount) {
  byte = static_cast<std::uint8_t>((byte - amount) & 0xFF);
}

void apply(Bytes& bytes, RomDamage damage) {
  switch (damage) {
    case RomDamage::Signature:
      bytes[0] = 0x56;
      break;
    case RomDamage::PcirPointerOutside:
      put16(bytes, 0x18, 0xFFF0);
      break;
    case RomDamage::PcirPointerInHeader:
      put16(bytes, 0x18, 0x04);
      break;
    case RomDamage::PcirSignature:
      putText(bytes, kPcir, "PCIX");
      break;
    case RomDamage::PcirTooShort:
      put16(bytes, kPcir + 0x0A, 0x17);
      break;
    case RomDamage::PcirEndsOutside:
      put16(bytes, kPcir + 0x0A, 0xFFFF);
      break;
    case RomDamage::LengthZero:
      put16(bytes, kPcir + 0x10, 0);
      break;
    case RomDamage::LengthBeyondFile:
      put16(bytes, kPcir + 0x10, 0xFFFF);
      break;
    case RomDamage::HeaderLength:
      ++bytes[2];
      break;
    case RomDamage::EfiSignature:
      bytes[4] = 0xF2;
      break;
    case RomDamage::DeviceListOutside:
      bytes[kPcir + 0x0C] = 3;
      put16(bytes, kPcir + 0x08, 0xFFFE);
      break;
    case RomDamage::DeviceListUnended:
      bytes[kPcir + 0x0C] = 3;
      put16(bytes, kPcir + 0x08, bytes.size() - 3 - kPcir);
      put16(bytes, bytes.size() - 3, 0x1041);
      break;
    case RomDamage::PnpSum:
      ++bytes[kPnp + 9];
      break;
    case RomDamage::PnpTooShort:
      bytes[kPnp + 5] = 1;
      break;
    case RomDamage::PnpOutside:
      bytes[kPnp + 5] = 0xFF;
      break;
    case RomDamage::ByteSum:
      ++bytes[kBody];
      break;
    case RomDamage::NoLastBit:
    case RomDamage::EarlyLastBit:
      bytes[kPcir + 0x15] ^= 0x80;
      break;
  }
}

}  // namespace

RomImage& RomImage::device(std::uint16_t vendor, std::uint16_t device) {
  m_vendor = vendor;
  m_device = device;
  return *this;
}

RomImage& RomImage::deviceList(std::vector<std::uint16_t> devices) {
  m_deviceList = std::move(devices);
  return *this;
}

RomImage& RomImage::version(std::uint8_t majorRevision, std::uint8_t minorRevision) {
  m_revision = static_cast<std::uint16_t>(majorRevision << 8 | minorRevision);
  return *this;
}

RomImage& RomImage::units(std::uint16_t units) {
  m_units = units;
  return *this;
}

RomImage& RomImage::product(std::string product) {
  if (product.size() > kMaxProduct) {
    throw std::invalid_argument("product string too long");
  }
  m_product = std::move(product);
  return *this;
}

RomImage& RomImage::withoutPnp() {
  m_hasPnp = false;
  return *this;
}

RomImage& RomImage::seed(std::uint32_t seed) {
  m_seed = seed;
  return *this;
}

RomImage& RomImage::padding(std::size_t count, std::uint8_t value) {
  m_paddingCount = count;
  m_paddingValue = value;
  return *this;
}

RomImage& RomImage::withFillerByte() {
  m_hasFillerByte = true;
  return *this;
}

Bytes RomImage::build(bool isLast, const RomDamage* damage) const {
  Bytes bytes(std::size_t{m_units} * 512);
  fillBody(bytes);
  layHeader(bytes);
  layPcir(bytes, isLast);
  if (m_hasPnp) {
    layPnp(bytes);
  }
  if (damage != nullptr && *damage != RomDamage::ByteSum) {
    apply(bytes, *damage);
  }
  putSumRight(bytes);
  if (damage != nullptr && *damage == RomDamage::ByteSum) {
    apply(bytes, *damage);
  }
  return bytes;
}

void RomImage::fillBody(Bytes& bytes) const {
  std::mt19937 random(m_seed);
  std::generate(bytes.begin() + kBody, bytes.end(),
                [&] { return static_cast<std::uint8_t>(random() & 0xFF); });
  std::fill_n(bytes.rbegin() + 1, m_paddingCount, m_paddingValue);
  bytes.back() = 0;
}

void RomImage::layHeader(Bytes& bytes) const {
  put16(bytes, 0x00, 0xAA55);
  put16(bytes, 0x18, kPcir);
  if (m_codeType == 3) {
    put16(bytes, 0x02, m_units);
    put16(bytes, 0x04, 0x0EF1);
    put16(bytes, 0x08, 11);
    put16(bytes, 0x0A, 0x8664);
    put16(bytes, 0x16, kBody);
    putText(bytes, kBody, "MZ");
    return;
  }
  bytes[0x02] = static_cast<std::uint8_t>(m_units & 0xFF);
  bytes[0x03] = 0xE9;
  put16(bytes, 0x04, kBody - 0x06);
  if (m_hasFillerByte) {
    put16(bytes, 0x10, kFillerBlock);
    putText(bytes, kFillerBlock, "iPXE");
  }
}

void RomImage::layPnp(Bytes& bytes) const {
  put16(bytes, 0x1A, kPnp);
  putText(bytes, kPnp, "$PnP");
  bytes[kPnp + 0x04] = 1;
  bytes[kPnp + 0x05] = 2;
  put16(bytes, kPnp + 0x0E, kManufacturer);
  putText(bytes, kManufacturer, "Maker of test images");
  put16(bytes, kPnp + 0x10, kProduct);
  putText(bytes, kProduct, m_product);
  bytes[kPnp + 0x12] = 2;
  bytes[kPnp + 0x15] = 0xF4;
  subtract(bytes[kPnp + 0x09], sumOf(bytes, kPnp, 0x20));
}

void RomImage::layPcir(Bytes& bytes, bool isLast) const {
  putText(bytes, kPcir, "PCIR");
  put16(bytes, kPcir + 0x04, m_vendor);
  put16(bytes, kPcir + 0x06, m_device);
  const bool isRevision3 = m_codeType != 3 || !m_deviceList.empty();
  put16(bytes, kPcir + 0x0A, isRevision3 ? 0x1C : 0x18);
  bytes[kPcir + 0x0C] = isRevision3 ? 3 : 0;
  bytes[kPcir + 0x0F] = 2;
  put16(bytes, kPcir + 0x10, m_units);
  put16(bytes, kPcir + 0x12, m_revision);
  bytes[kPcir + 0x14] = m_codeType;
  bytes[kPcir + 0x15] = isLast ? 0x80 : 0x00;
  if (!m_deviceList.empty()) {
    const std::size_t start =
        m_deviceList.size() > kMostDevicesInHeader ? kLongDeviceList : kDeviceList;
    put16(bytes, kPcir + 0x08, start - kPcir);
    for (std::size_t index = 0; index < m_deviceList.size(); ++index) {
      put16(bytes, start + 2 * index, m_deviceList[index]);
    }
    put16(bytes, start + 2 * m_deviceList.size(), 0);
  }
}

void RomImage::putSumRight(Bytes& bytes) const {
  const std::uint8_t sum = sumOf(bytes, 0, bytes.size());
  subtract(m_hasFillerByte ? bytes[0x06] : bytes.back(), sum);
}

RomBuilder& RomBuilder::add(const RomImage& image) {
  m_images.push_back(image);
  return *this;
}

RomBuilder& RomBuilder::damage(std::size_t image, RomDamage damage) {
  m_damages[image] = damage;
  return *this;
}

RomBuilder& RomBuilder::trailing(std::size_t count, std::uint8_t value) {
  m_trailing.insert(m_trailing.end(), count, value);
  return *this;
}

Bytes RomBuilder::build() const {
  Bytes rom;
  for (std::size_t index = 0; index < m_images.size(); ++index) {
    const auto damage = m_damages.find(index);
    const Bytes image = m_images[index].build(
        index + 1 == m_images.size(), damage == m_damages.end() ? nullptr : &damage->second);
    rom.insert(rom.end(), image.begin(), image.end());
  }
  rom.insert(rom.end(), m_trailing.begin(), m_trailing.end());
  return rom;
}

}  // namespace test
