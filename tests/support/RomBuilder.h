// Builds PCI Expansion ROM chains for tests, sound or damaged in one chosen way.

#ifndef ORVEX_TESTS_SUPPORT_ROMBUILDER_H_
#define ORVEX_TESTS_SUPPORT_ROMBUILDER_H_

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace test {

using Bytes = std::vector<std::uint8_t>;

// One way in which an image is wrong. Byte sums are put right afterwards, so that each damage is
// the only one, except where the sum is the damage.
enum class RomDamage {
  Signature,
  PcirPointerOutside,
  PcirPointerInHeader,
  PcirSignature,
  PcirTooShort,
  PcirEndsOutside,
  LengthZero,
  LengthBeyondFile,
  HeaderLength,
  EfiSignature,
  DeviceListOutside,
  DeviceListUnended,
  PnpSum,
  PnpTooShort,
  PnpOutside,
  ByteSum,
  NoLastBit,
  EarlyLastBit,
};

// One image, described step by step; every setter returns the image itself. Images of two units of
// 512 bytes, version 1.0, for 1af4:1041, unless something else is said.
class RomImage {
 public:
  static RomImage legacy() { return RomImage(0); }
  static RomImage efi() { return RomImage(3); }
  static RomImage ofCodeType(std::uint8_t codeType) { return RomImage(codeType); }

  RomImage& device(std::uint16_t vendor, std::uint16_t device);
  // More than 20 take the place of the body, which must be large enough (see units).
  RomImage& deviceList(std::vector<std::uint16_t> devices);
  RomImage& version(std::uint8_t majorRevision, std::uint8_t minorRevision);
  RomImage& units(std::uint16_t units);
  // The product string of the $PnP header, at most 60 characters; legacy images have "Boot".
  RomImage& product(std::string product);
  RomImage& withoutPnp();
  // What the body is filled with: images of different seeds differ.
  RomImage& seed(std::uint32_t seed);
  // The bytes at the end, before the sum byte; 32 of 0xFF by default.
  RomImage& padding(std::size_t count, std::uint8_t value);
  // The private block and the sum byte at 0x06 that network boot ROMs are often built with.
  RomImage& withFillerByte();

 private:
  friend class RomBuilder;

  explicit RomImage(std::uint8_t codeType) : m_codeType(codeType), m_hasPnp(codeType == 0) {}

  [[nodiscard]] Bytes build(bool isLast, const RomDamage* damage) const;
  void fillBody(Bytes& bytes) const;
  void layHeader(Bytes& bytes) const;
  void layPnp(Bytes& bytes) const;
  void layPcir(Bytes& bytes, bool isLast) const;
  void putSumRight(Bytes& bytes) const;

  std::uint8_t m_codeType;
  std::uint16_t m_vendor = 0x1AF4;
  std::uint16_t m_device = 0x1041;
  std::vector<std::uint16_t> m_deviceList;
  std::uint16_t m_revision = 0x0100;
  std::uint16_t m_units = 2;
  bool m_hasPnp;
  std::string m_product = "Boot";
  std::uint32_t m_seed = 1;
  std::size_t m_paddingCount = 32;
  std::uint8_t m_paddingValue = 0xFF;
  bool m_hasFillerByte = false;
};

class RomBuilder {
 public:
  RomBuilder& add(const RomImage& image);
  // Damages the image of that index.
  RomBuilder& damage(std::size_t image, RomDamage damage);
  // Adds bytes behind the last image.
  RomBuilder& trailing(std::size_t count, std::uint8_t value);

  [[nodiscard]] Bytes build() const;

 private:
  std::vector<RomImage> m_images;
  std::map<std::size_t, RomDamage> m_damages;
  Bytes m_trailing;
};

}  // namespace test

#endif  // ORVEX_TESTS_SUPPORT_ROMBUILDER_H_
