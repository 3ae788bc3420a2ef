#include <algorithm>
#include <gmock/gmock.h>
#include <string>
#include <vector>

#include "midapi/Kernel/FirmwareCheck.h"
#include "tests/support/PldmBuilder.h"
#include "tests/support/RomBuilder.h"

namespace {

using ma::driverOf;
using ma::FirmwareTarget;
using ma::FirmwareVersions;
using ma::ImageComparison;
using ma::NamedVersion;
using ma::Preparation;
using ma::PrepareStatus;
using test::Bytes;
using test::PldmBuilder;
using test::PldmDevice;
using test::PldmImage;
using test::RomBuilder;
using test::RomDamage;
using test::RomImage;
using testing::AllOf;
using testing::ElementsAre;
using testing::Field;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;
using utils::FirmwareType;

constexpr std::uint16_t kUndi = 5;
constexpr std::uint16_t kMgmt = 6;

testing::Matcher<Preparation> Refuses(PrepareStatus status,
                                      const testing::Matcher<std::string>& reason) {
  return AllOf(Field("status", &Preparation::status, status),
               Field("reason", &Preparation::reason, reason));
}

testing::Matcher<Preparation> Accepts() {
  return Refuses(PrepareStatus::Ok, IsEmpty());
}

Bytes pxeAndUefi() {
  return RomBuilder().add(RomImage::legacy()).add(RomImage::efi()).build();
}

PldmImage undi(const std::string& version) {
  return PldmImage(pxeAndUefi()).identifier(kUndi).version({version});
}
PldmImage mgmt(const std::string& version) {
  return PldmImage(Bytes(600, 0x11)).identifier(kMgmt).version({version});
}

// For the adapter, which is 1af4:1041 sub 1af4:1100.
PldmDevice ours(std::vector<std::size_t> components = {0, 1}) {
  return PldmDevice(0x1AF4, 0x1041).takes(std::move(components));
}

PldmBuilder package(const std::string& undiVersion, const std::string& mgmtVersion) {
  return PldmBuilder().add(ours()).add(undi(undiVersion)).add(mgmt(mgmtVersion));
}

class FirmwareCheck : public testing::Test {
 protected:
  void useDriver(const std::string& name, bool hasDevlink) {
    m_driverName = name;
    m_target.driver = &driverOf(name, hasDevlink);
    m_target.driverName = m_driverName;
  }
  void trust() { m_target.isTrusted = true; }
  void holdRom(const Bytes& rom) {
    m_rom = rom;
    m_target.rom = m_rom;
  }
  void hold(std::vector<FirmwareVersions> versions) {
    m_versions = std::move(versions);
    m_target.versions = m_versions;
  }

  Preparation prepare(const Bytes& file, const std::vector<FirmwareType>& types = {}) {
    m_prepared.assign(file.size(), 0);
    Preparation preparation = prepareFirmware(m_target, file, m_prepared, types);
    m_prepared.resize(preparation.filled);
    return preparation;
  }
  Preparation prepare(const PldmBuilder& file, const std::vector<FirmwareType>& types = {}) {
    return prepare(file.build().bytes, types);
  }
  ImageComparison compare(const PldmBuilder& file) const {
    return compareFirmware(m_target, file.build().bytes);
  }

  std::string m_driverName = "ice";
  Bytes m_rom = pxeAndUefi();
  std::vector<FirmwareVersions> m_versions = {{"fw.undi", "1.0.0", "1.0.0"},
                                              {"fw.mgmt", "7.1.0", "7.1.0"}};
  FirmwareTarget m_target{{0x1AF4, 0x1041, 0x1AF4, 0x1100},
                          &driverOf("ice", true),
                          m_driverName,
                          false,
                          "",
                          m_rom,
                          true,
                          m_versions};
  Bytes m_prepared;
};

// ---- packages ----

TEST_F(FirmwareCheck, TakesAPackageAsItIs) {
  const Bytes file = package("1.1.0", "7.2.0").build().bytes;
  EXPECT_THAT(prepare(file), Accepts());
  EXPECT_EQ(m_prepared, file);
}

TEST_F(FirmwareCheck, TakesTheVersionsThatThereAre) {
  EXPECT_THAT(prepare(package("1.0.0", "7.1.0")), Accepts());
}

TEST_F(FirmwareCheck, RefusesADamagedPackage) {
  Bytes file = package("1.1.0", "7.2.0").build().bytes;
  file.resize(file.size() - 1);
  EXPECT_THAT(prepare(file), Refuses(PrepareStatus::InvalidImage,
                                     StartsWith("the firmware package is damaged: components[1]")));
  EXPECT_THAT(prepare(package("1.1.0", "7.2.0").breakField("headerChecksum", 1)),
              Refuses(PrepareStatus::InvalidImage, HasSubstr("headerChecksum")));
  EXPECT_THAT(m_prepared, IsEmpty());
}

// The kernel does not look at it, and would write it.
TEST_F(FirmwareCheck, RefusesAChangedByteOfAnOptionRomInAPackage) {
  test::PldmFile file = package("1.1.0", "7.2.0").build();
  file.bytes[file.offsetOf("components[0].content") + 700] ^= 1;
  EXPECT_THAT(prepare(file.bytes),
              Refuses(PrepareStatus::InvalidImage,
                      AllOf(StartsWith("the option ROM in the package's component 0 is damaged: "),
                            HasSubstr("byte sum"))));
}

TEST_F(FirmwareCheck, RefusesAPackageForOtherDevices) {
  EXPECT_THAT(prepare(PldmBuilder()
                          .add(PldmDevice(0x8086, 0x1592).subsystem(0x8086, 2).takes({0}))
                          .add(PldmDevice(0x8086, 0x1592).subsystem(0x8086, 2).takes({0}))
                          .add(PldmDevice(0x1AF4, 0x1041).subsystem(0x1AF4, 0x1101).takes({0}))
                          .add(undi("1.1.0"))),
              Refuses(PrepareStatus::NotForAdapter,
                      "the file is for 1af4:1041 sub 1af4:1101, 8086:1592 sub 8086:0002, and the "
                      "adapter is 1af4:1041 sub 1af4:1100"));
  EXPECT_THAT(prepare(PldmBuilder().add(undi("1.1.0"))),
              Refuses(PrepareStatus::NotForAdapter, "the firmware package is for no device"));
}

TEST_F(FirmwareCheck, NamesTheFirstOfManyDevices) {
  PldmBuilder file;
  for (std::uint16_t device = 1; device <= 6; ++device) {
    file.add(PldmDevice(0x8086, device).takes({0}));
  }
  EXPECT_THAT(prepare(file.add(undi("1.1.0"))),
              Refuses(PrepareStatus::NotForAdapter,
                      HasSubstr("8086:0001, 8086:0002, 8086:0003, 8086:0004 and 2 others, and")));
}

TEST_F(FirmwareCheck, RefusesARecordThatDoesNotSayDevicesUnlessTheDriverIsTrusted) {
  const PldmBuilder file = PldmBuilder().add(PldmDevice(0x1AF4, 0).takes({0})).add(undi("1.1.0"));
  EXPECT_THAT(prepare(file),
              Refuses(PrepareStatus::NotForAdapter,
                      "the file does not say which devices it is for; if its driver's own check is "
                      "enough, name ice in the setting TrustDriverCheck"));
  trust();
  EXPECT_THAT(prepare(file), Accepts());
}

// It is the one that the kernel takes.
TEST_F(FirmwareCheck, JudgesTheFirstRecordThatMatches) {
  const PldmBuilder file =
      PldmBuilder().add(PldmDevice(0, 0).takes({0})).add(ours({0})).add(undi("1.1.0"));
  EXPECT_THAT(prepare(file), Refuses(PrepareStatus::NotForAdapter,
                                     StartsWith("the file does not say which devices")));
}

TEST_F(FirmwareCheck, RefusesARecordWithoutComponents) {
  EXPECT_THAT(prepare(PldmBuilder().add(ours({})).add(undi("1.1.0"))),
              Refuses(PrepareStatus::NotForAdapter,
                      "the firmware package has no component for the adapter"));
}

TEST_F(FirmwareCheck, RefusesAPackageThatTheKernelRefuses) {
  EXPECT_THAT(prepare(PldmBuilder(2).add(ours({0})).add(undi("1.1.0"))),
              Refuses(PrepareStatus::NotForAdapter,
                      "the package has format 2, and the kernel takes format 1 alone"));
}

TEST_F(FirmwareCheck, RefusesAPackageForADriverThatTakesNone) {
  useDriver("hinic", true);
  EXPECT_THAT(prepare(package("1.1.0", "7.2.0")),
              Refuses(PrepareStatus::NotForAdapter,
                      "the file is of the format \"PLDM firmware package\", which the adapter's "
                      "driver hinic does not take"));
}

TEST_F(FirmwareCheck, TakesAPackageForADriverThatIsNotInTheTableAndHasDevlink) {
  useDriver("testnic", true);
  EXPECT_THAT(prepare(package("1.1.0", "7.2.0")), Accepts());
}

TEST_F(FirmwareCheck, TellsWhyTheAdapterCannotBeUpdated) {
  m_target.whyNotUpdatable = "no driver is bound to it";
  EXPECT_THAT(prepare(package("0.9.0", "7.2.0"), {FirmwareType::Iscsi}),
              Refuses(PrepareStatus::NotUpdatable, "no driver is bound to it"));
  EXPECT_THAT(m_prepared, IsEmpty());
}

// What the adapter could take is no matter then.
TEST_F(FirmwareCheck, TellsSoAlsoOfADriverThatTakesNothing) {
  useDriver("e1000e", false);
  m_target.whyNotUpdatable = "its driver writes no firmware";
  EXPECT_THAT(prepare(package("1.1.0", "7.2.0")),
              Refuses(PrepareStatus::NotUpdatable, "its driver writes no firmware"));
  EXPECT_THAT(prepare(pxeAndUefi()),
              Refuses(PrepareStatus::NotUpdatable, "its driver writes no firmware"));
  EXPECT_THAT(prepare(PldmBuilder().add(PldmDevice(0x8086, 1).takes({0})).add(undi("1.1.0"))),
              Refuses(PrepareStatus::NotForAdapter, StartsWith("the file is for 8086:0001")));
}

TEST_F(FirmwareCheck, TakesAPackageWholeWhereItHasTheTypesThatAreAskedFor) {
  const Bytes file = package("1.1.0", "7.2.0").build().bytes;
  EXPECT_THAT(prepare(file, {FirmwareType::Pxe}), Accepts());
  EXPECT_EQ(m_prepared, file);
  EXPECT_THAT(prepare(file, {FirmwareType::Pxe, FirmwareType::Uefi, FirmwareType::None}),
              Accepts());
}

TEST_F(FirmwareCheck, RefusesTypesThatThePackageLacks) {
  const Bytes file = package("1.1.0", "7.2.0").build().bytes;
  EXPECT_THAT(prepare(file, {FirmwareType::Pxe, FirmwareType::Iscsi}),
              Refuses(PrepareStatus::TypesDiffer,
                      "the file's images for the adapter are IMG_PXE, IMG_UEFI, and IMG_iSCSI, "
                      "IMG_PXE is asked for"));
  EXPECT_EQ(m_prepared, file);
  EXPECT_THAT(prepare(file, {FirmwareType::None}),
              Refuses(PrepareStatus::TypesDiffer,
                      "the file's images for the adapter are IMG_PXE, IMG_UEFI, and none is asked "
                      "for"));
}

TEST_F(FirmwareCheck, CountsTheTypesOfTheMatchingRecordAlone) {
  EXPECT_THAT(prepare(PldmBuilder().add(ours({1})).add(undi("1.1.0")).add(mgmt("7.2.0")),
                      {FirmwareType::Pxe}),
              Refuses(PrepareStatus::TypesDiffer,
                      "the file's images for the adapter are none, and IMG_PXE is asked for"));
}

TEST_F(FirmwareCheck, RefusesTheFirstComponentThatIsOlder) {
  const Bytes file = package("0.9.9", "7.0.0").build().bytes;
  EXPECT_THAT(prepare(file),
              Refuses(PrepareStatus::Downgrade,
                      "fw.undi 0.9.9 of the file is older than 1.0.0 of the adapter"));
  EXPECT_EQ(m_prepared, file);
  EXPECT_THAT(prepare(package("1.10.0", "7.0.9")),
              Refuses(PrepareStatus::Downgrade,
                      "fw.mgmt 7.0.9 of the file is older than 7.1.0 of the adapter"));
}

TEST_F(FirmwareCheck, ComparesWithWhatIsStoredWhateverRuns) {
  hold({{"fw.undi", "9.0.0", "1.0.0"}, {"fw.mgmt", "9.0.0", "7.1.0"}});
  EXPECT_THAT(prepare(package("1.1.0", "7.2.0")), Accepts());
  EXPECT_THAT(prepare(package("1.1.0", "7.0.0")),
              Refuses(PrepareStatus::Downgrade, HasSubstr("older than 7.1.0")));
}

TEST_F(FirmwareCheck, ComparesWithWhatRunsWhereNothingIsToldOfTheFlash) {
  hold({{"fw.undi", "9.0.0", "1.0.0"}, {"fw.mgmt", "7.1.0", ""}});
  EXPECT_THAT(prepare(package("1.1.0", "0.1")),
              Refuses(PrepareStatus::Downgrade, HasSubstr("fw.mgmt 0.1 of the file is older than "
                                                          "7.1.0 of the adapter")));
  EXPECT_THAT(prepare(package("1.1.0", "7.2.0")), Accepts());
  EXPECT_EQ(compare(package("1.0.0", "7.2.0")), ImageComparison::Newer);
  hold({{"fw.undi", "9.0.0", ""}});
  EXPECT_THAT(prepare(package("1.1.0", "0.1")),
              Refuses(PrepareStatus::Downgrade, HasSubstr("older than 9.0.0")));
}

TEST_F(FirmwareCheck, TakesAnyVersionForNewerThanWhatWasErased) {
  hold({{"fw.undi", "9.0.0", "", true}, {"fw.mgmt", "9.0.0", "", true}});
  EXPECT_THAT(prepare(package("1.1.0", "7.2.0")), Accepts());
  EXPECT_EQ(compare(package("1.0.0", "7.1.0")), ImageComparison::Newer);
}

TEST_F(FirmwareCheck, DoesNotCompareComponentsWithoutAName) {
  EXPECT_THAT(prepare(PldmBuilder().add(ours({0})).add(undi("0.1").identifier(77))), Accepts());
}

TEST_F(FirmwareCheck, FailsWhereThereIsNoRoom) {
  const Bytes file = package("1.1.0", "7.2.0").build().bytes;
  Bytes buffer(file.size() - 1);
  EXPECT_THAT(prepareFirmware(m_target, file, buffer, {}),
              Refuses(PrepareStatus::InternalFault, "the buffer is smaller than the file"));
}

// ---- option ROMs ----

TEST_F(FirmwareCheck, TakesAnOptionRomForDriversThatTakeThem) {
  EXPECT_THAT(prepare(pxeAndUefi()),
              Refuses(PrepareStatus::NotForAdapter, HasSubstr("\"option ROM\"")));
  for (const char* driver : {"testnic", "cxgb4"}) {
    useDriver(driver, true);
    EXPECT_THAT(prepare(pxeAndUefi()), Accepts()) << driver;
    EXPECT_EQ(m_prepared, pxeAndUefi());
  }
}

TEST_F(FirmwareCheck, SelectsImagesOfAnOptionRom) {
  useDriver("testnic", true);
  EXPECT_THAT(prepare(pxeAndUefi(), {FirmwareType::Uefi}), Accepts());
  EXPECT_EQ(m_prepared, RomBuilder().add(RomImage::efi()).build());
}

TEST_F(FirmwareCheck, RefusesADamagedOptionRom) {
  EXPECT_THAT(
      prepare(RomBuilder().add(RomImage::efi()).damage(0, RomDamage::ByteSum).build()),
      Refuses(PrepareStatus::InvalidImage,
              AllOf(StartsWith("the option ROM is damaged: image 0"), HasSubstr("byte sum"))));
}

TEST_F(FirmwareCheck, RefusesAnOptionRomForOtherDevices) {
  useDriver("testnic", true);
  EXPECT_THAT(prepare(RomBuilder().add(RomImage::efi().device(0x10EC, 0x8139)).build()),
              Refuses(PrepareStatus::NotForAdapter,
                      "the file is for 10ec:8139, and the adapter is 1af4:1041 sub 1af4:1100"));
}

TEST_F(FirmwareCheck, RefusesAnOptionRomOfOtherTypes) {
  useDriver("testnic", true);
  const Bytes file = RomBuilder().add(RomImage::efi()).build();
  EXPECT_THAT(
      prepare(file),
      Refuses(PrepareStatus::TypesDiffer,
              "the file's images for the adapter are IMG_UEFI, and the adapter has IMG_PXE, "
              "IMG_UEFI"));
  EXPECT_EQ(m_prepared, file);
  EXPECT_THAT(prepare(file, {FirmwareType::Pxe}),
              Refuses(PrepareStatus::TypesDiffer,
                      "the file's images for the adapter are IMG_UEFI, and IMG_PXE is asked for"));
}

TEST_F(FirmwareCheck, SaysWhereTheAdaptersOptionRomIsNotKnown) {
  useDriver("testnic", true);
  holdRom({});
  m_target.isRomKnown = false;
  EXPECT_THAT(prepare(pxeAndUefi()),
              Refuses(PrepareStatus::TypesDiffer, StartsWith("the adapter's option ROM cannot be "
                                                             "read")));
}

TEST_F(FirmwareCheck, RefusesAnOlderOptionRom) {
  useDriver("testnic", true);
  holdRom(RomBuilder().add(RomImage::efi().version(2, 1)).build());
  EXPECT_THAT(prepare(RomBuilder().add(RomImage::efi().version(2, 0)).build()),
              Refuses(PrepareStatus::Downgrade,
                      "IMG_UEFI 2.0 of the file is older than 2.1 of the adapter"));
}

// ---- what says nothing of itself ----

TEST_F(FirmwareCheck, RefusesBytesThatAreNothing) {
  EXPECT_THAT(prepare(Bytes()), Refuses(PrepareStatus::InvalidImage, "the file is empty"));
  EXPECT_THAT(prepare(Bytes(600, 0x11)),
              Refuses(PrepareStatus::InvalidImage, "the file is of no known firmware format"));
  useDriver("ionic", true);
  EXPECT_THAT(prepare(Bytes(600, 0x11)),
              Refuses(PrepareStatus::NotForAdapter,
                      "the file does not say which devices it is for; if its driver's own check is "
                      "enough, name ionic in the setting TrustDriverCheck"));
  trust();
  EXPECT_THAT(prepare(Bytes()), Refuses(PrepareStatus::InvalidImage, "the file is empty"));
  EXPECT_THAT(prepare(Bytes(600, 0x11)), Accepts());
}

TEST_F(FirmwareCheck, TakesAContainerForATrustedDriverAlone) {
  const std::string mark = "MLNX.MFA2.XZ.00!";
  Bytes file(mark.begin(), mark.end());
  file.resize(4096);
  trust();
  EXPECT_THAT(prepare(file), Refuses(PrepareStatus::NotForAdapter,
                                     HasSubstr("\"MFA2 container\", which the adapter's driver")));
  useDriver("mlx5_core", true);
  EXPECT_THAT(prepare(file), Accepts());
  EXPECT_EQ(m_prepared, file);
  EXPECT_THAT(
      prepare(file, {FirmwareType::Pxe}),
      Refuses(PrepareStatus::TypesDiffer, "the file does not say which types its images have"));
  m_target.isTrusted = false;
  EXPECT_THAT(prepare(file), Refuses(PrepareStatus::NotForAdapter,
                                     HasSubstr("name mlx5_core in the setting TrustDriverCheck")));
}

// ---- comparisons and plans ----

TEST_F(FirmwareCheck, ComparesPackagesByTheirVersions) {
  EXPECT_EQ(compare(package("1.0.0", "7.1.0")), ImageComparison::SameVersion);
  EXPECT_EQ(compare(package("1.0.0", "7.2.0")), ImageComparison::Newer);
  EXPECT_EQ(compare(package("0.9.0", "7.2.0")), ImageComparison::Older);
  hold({});
  EXPECT_EQ(compare(package("1.0.0", "7.2.0")), ImageComparison::Unknown);
}

TEST_F(FirmwareCheck, ComparesWhatIsRefused) {
  EXPECT_EQ(compareFirmware(m_target, Bytes()), ImageComparison::NotForAdapter);
  m_target.whyNotUpdatable = "no";
  EXPECT_EQ(compare(package("1.0.0", "7.2.0")), ImageComparison::NotUpdatable);
}

TEST_F(FirmwareCheck, ComparesOptionRomsByTheirBytes) {
  useDriver("testnic", true);
  EXPECT_EQ(compareFirmware(m_target, pxeAndUefi()), ImageComparison::SameContent);
  EXPECT_EQ(
      compareFirmware(m_target,
                      RomBuilder().add(RomImage::legacy().seed(9)).add(RomImage::efi()).build()),
      ImageComparison::SameVersion);
}

TEST_F(FirmwareCheck, PlansWhatTheMatchingRecordNames) {
  const ma::FlashPlan plan = planFlash(m_target, package("1.1.0", "7.2.0").build().bytes);
  EXPECT_EQ(plan.bytes, pxeAndUefi().size() + 600);
  EXPECT_THAT(plan.versions,
              ElementsAre(NamedVersion{"fw.undi", "1.1.0"}, NamedVersion{"fw.mgmt", "7.2.0"}));
  const ma::FlashPlan ofOne = planFlash(
      m_target, PldmBuilder().add(ours({1})).add(undi("1.1.0")).add(mgmt("7.2.0")).build().bytes);
  EXPECT_EQ(ofOne.bytes, 600U);
  EXPECT_THAT(ofOne.versions, ElementsAre(NamedVersion{"fw.mgmt", "7.2.0"}));
}

TEST_F(FirmwareCheck, PlansOneVersionForEachName) {
  const PldmBuilder file = PldmBuilder().add(ours({0, 1})).add(mgmt("7.2.0")).add(mgmt("7.3.0"));
  EXPECT_THAT(planFlash(m_target, file.build().bytes).versions,
              ElementsAre(NamedVersion{"fw.mgmt", "7.3.0"}));
}

TEST_F(FirmwareCheck, PlansOtherFilesByTheirSize) {
  EXPECT_EQ(planFlash(m_target, pxeAndUefi()).bytes, pxeAndUefi().size());
  EXPECT_THAT(planFlash(m_target, pxeAndUefi()).versions, IsEmpty());
}

}  // namespace
