#include <gmock/gmock.h>

#include "midapi/PldmRoms.h"
#include "tests/support/PldmBuilder.h"
#include "tests/support/RomBuilder.h"

namespace {

using ma::PldmRom;
using test::Bytes;
using test::PldmBuilder;
using test::PldmImage;
using test::RomBuilder;
using test::RomDamage;
using test::RomImage;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using utils::FirmwareType;
using utils::FirmwareVersionInfo;

std::vector<PldmRom> romsOf(const PldmBuilder& builder) {
  const Bytes bytes = builder.build().bytes;
  const ma::PldmPackage package = ma::parsePldmPackage(bytes);
  EXPECT_TRUE(package.isValid()) << package.defect->toString();
  return ma::findOptionRoms(package, bytes);
}

Bytes twoImages() {
  return RomBuilder()
      .add(RomImage::legacy().version(2, 17))
      .add(RomImage::ofCodeType(1))
      .add(RomImage::efi().version(5, 1))
      .build();
}

TEST(PldmRoms, AreFoundAmongTheComponents) {
  const std::vector<PldmRom> roms = romsOf(PldmBuilder()
                                               .add(PldmImage(Bytes(600, 0x11)))
                                               .add(PldmImage(twoImages()))
                                               .add(PldmImage(Bytes({0x55})))
                                               .add(PldmImage(twoImages())));
  ASSERT_EQ(roms.size(), 2U);
  EXPECT_EQ(roms[0].component, 1U);
  EXPECT_EQ(roms[1].component, 3U);
  ASSERT_TRUE(roms[0].chain.isValid()) << roms[0].chain.defect->toString();
  EXPECT_THAT(ma::firmwareOf(roms[0].chain),
              ElementsAre(FirmwareVersionInfo{FirmwareType::Pxe, {2, 17}},
                          FirmwareVersionInfo{FirmwareType::Uefi, {5, 1}}));
}

TEST(PldmRoms, MayBePadded) {
  const std::vector<PldmRom> roms = romsOf(
      PldmBuilder().add(PldmImage(RomBuilder().add(RomImage::efi()).trailing(700, 0xFF).build())));
  ASSERT_EQ(roms.size(), 1U);
  EXPECT_TRUE(roms[0].chain.isValid());
}

TEST(PldmRoms, HaveTheirDefects) {
  const std::vector<PldmRom> roms = romsOf(PldmBuilder().add(
      PldmImage(RomBuilder().add(RomImage::efi()).damage(0, RomDamage::ByteSum).build())));
  ASSERT_EQ(roms.size(), 1U);
  EXPECT_THAT(roms[0].chain.defect->toString(), HasSubstr("byte sum"));
  EXPECT_THAT(ma::firmwareOf(roms[0].chain), IsEmpty());
}

TEST(PldmRoms, AreNotThereInADefectivePackage) {
  EXPECT_THAT(ma::findOptionRoms(ma::parsePldmPackage({}), {}), IsEmpty());
}

}  // namespace
