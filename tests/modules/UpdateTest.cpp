// Whole updates and refusals, through the loaded modules.

#include <functional>
#include <gmock/gmock.h>
#include <numeric>
#include <string>
#include <vector>

#include "tests/modules/Firmware.h"
#include "tests/modules/ModuleHost.h"
#include "tests/support/RomParser.h"

namespace {

using test::Bytes;
using test::firmware;
using test::kAdapter;
using test::kCompleted;
using test::kFirstPort;
using test::kOtherAdapter;
using test::kSecondPort;
using test::ParsedRom;
using test::parseRom;
using test::pxeImage;
using test::RomBuilder;
using test::RomDamage;
using test::RomImage;
using test::uefiImage;
using testing::ElementsAre;
using utils::FirmwareType;

constexpr std::uint16_t kForce = 3;
constexpr std::uint16_t kTypes = 32768;

class Update : public testing::Test {
 protected:
  Update() {
    m_host.makeAdapter(kAdapter, m_old);
    m_host.makeAdapter(kOtherAdapter, m_old);
    m_host.load();
  }

  // Installs an image in the first port. Returns what the method returns.
  std::uint32_t install(const Bytes& image, const std::vector<std::uint16_t>& furtherOptions = {},
                        const std::vector<std::string>& values = {}) {
    return m_host.install(kFirstPort, m_host.makeImage(image), furtherOptions, values);
  }

  void expectRefusal(std::uint32_t expected, const Bytes& image,
                     const std::vector<std::uint16_t>& furtherOptions = {}) {
    EXPECT_EQ(install(image, furtherOptions), expected);
    EXPECT_FALSE(m_host.hasNewJob());
    EXPECT_EQ(m_host.flash(kAdapter), m_old);
  }

  void expectUpdate(const Bytes& image, const std::vector<std::uint16_t>& furtherOptions = {}) {
    ASSERT_EQ(install(image, furtherOptions), 4096u);
    EXPECT_EQ(m_host.awaitEnd(), kCompleted);
    EXPECT_EQ(m_host.flash(kAdapter), image);
  }

  const Bytes m_old = firmware(2);
  test::ModuleHost m_host;
};

TEST_F(Update, InstallsAWholeFile) {
  const Bytes image = firmware(3);

  expectUpdate(image);

  EXPECT_TRUE(parseRom(m_host.flash(kAdapter)).isValid());
  EXPECT_EQ(m_host.flash(kOtherAdapter), m_old);
}

TEST_F(Update, MayInstallTheInstalledVersionAgain) {
  expectUpdate(m_old);
}

TEST_F(Update, InstallsTheSelectedImageOnlyAsAValidChain) {
  const Bytes file = RomBuilder()
                         .add(RomImage::legacy().device(0x10EC, 0x8139).units(4))
                         .add(pxeImage(3))
                         .add(uefiImage(3))
                         .build();

  ASSERT_EQ(install(file, {kTypes}, {"", "IMG_PXE"}), 4096u);
  ASSERT_EQ(m_host.awaitEnd(), kCompleted);

  const Bytes flash = m_host.flash(kAdapter);
  const ParsedRom rom = parseRom(flash);
  ASSERT_TRUE(rom.isValid()) << rom;
  EXPECT_THAT(rom.types(), ElementsAre(FirmwareType::Pxe));
  EXPECT_EQ(rom.images[0].version, (utils::FirmwareVersion{3, 0}));
  // The image of the file, but for its last-image bit and the byte that puts its sum right.
  const ParsedRom offered = parseRom(file);
  const auto image = file.begin() + static_cast<std::ptrdiff_t>(offered.images[1].offset);
  ASSERT_EQ(flash.size(), offered.images[1].length);
  EXPECT_EQ(std::inner_product(flash.begin(), flash.end(), image, 0, std::plus<>(),
                               std::not_equal_to<>()),
            2);
}

TEST_F(Update, InstallsTheSelectedImagesInFileOrder) {
  const Bytes file = RomBuilder().add(uefiImage(3)).add(pxeImage(3)).build();

  ASSERT_EQ(install(file, {kTypes}, {"", "IMG_PXE+IMG_UEFI"}), 4096u);
  ASSERT_EQ(m_host.awaitEnd(), kCompleted);

  EXPECT_EQ(m_host.flash(kAdapter), file);
  EXPECT_THAT(parseRom(file).types(), ElementsAre(FirmwareType::Uefi, FirmwareType::Pxe));
}

TEST_F(Update, OfAControllerIsThatOfItsFirstPort) {
  const Bytes image = firmware(3);
  const std::string controller = m_host.pathOf("Orvex_PortController", kOtherAdapter);

  ASSERT_EQ(m_host.install(controller, m_host.makeImage(image)), 4096u);
  ASSERT_EQ(m_host.awaitEnd(), kCompleted);

  EXPECT_EQ(m_host.flash(kOtherAdapter), image);
  EXPECT_EQ(m_host.flash(kAdapter), m_old);
}

TEST_F(Update, ThroughAnyPortIsThatOfTheAdapter) {
  const Bytes image = firmware(3);

  ASSERT_EQ(m_host.install(kSecondPort, m_host.makeImage(image)), 4096u);
  ASSERT_EQ(m_host.awaitEnd(), kCompleted);

  EXPECT_EQ(m_host.flash(kAdapter), image);
}

TEST_F(Update, FollowsAnUpdate) {
  expectUpdate(firmware(3));
  expectUpdate(firmware(4));
}

TEST_F(Update, RecordsTheInstalledTypes) {
  ASSERT_EQ(install(firmware(3), {kTypes}, {"", "IMG_UEFI"}), 4096u);
  ASSERT_EQ(m_host.awaitEnd(), kCompleted);
  EXPECT_THAT(m_host.description(kAdapter), testing::HasSubstr("\"capabilityWord\": 16"));
}

TEST_F(Update, RefusesADowngradeUnlessForced) {
  const Bytes older = firmware(1);
  expectRefusal(4099, older);
  expectUpdate(older, {kForce});
}

TEST_F(Update, RefusesOtherTypesWithoutTheConfigurationsConsent) {
  const Bytes otherTypes = RomBuilder().add(pxeImage(3)).build();
  expectRefusal(4099, otherTypes);
  expectRefusal(4099, otherTypes, {kForce});
  m_host.configure({{"OEMCustomizeable", 0xDFu}});
  expectRefusal(4099, otherTypes, {kForce});
}

TEST_F(Update, AcceptsOtherTypesWithForceAndTheConfigurationsConsent) {
  const Bytes otherTypes = RomBuilder().add(pxeImage(3)).build();
  m_host.configure({{"OEMCustomizeable", 0x20u}});
  expectRefusal(4099, otherTypes);
  expectUpdate(otherTypes, {kForce});
}

TEST_F(Update, RefusesAnImageOfAnotherDevice) {
  expectRefusal(4097, RomBuilder().add(RomImage::legacy().device(0x1AF4, 0x1000)).build());
  expectRefusal(4097, RomBuilder().add(RomImage::legacy().device(0x10EC, 0x1041)).build(),
                {kForce});
}

TEST_F(Update, RefusesADamagedImage) {
  for (const RomDamage damage :
       {RomDamage::Signature, RomDamage::ByteSum, RomDamage::LengthBeyondFile,
        RomDamage::PcirSignature, RomDamage::NoLastBit}) {
    expectRefusal(5, RomBuilder().add(pxeImage(3)).add(uefiImage(3)).damage(1, damage).build(),
                  {kForce});
  }
  expectRefusal(5, {});
}

TEST_F(Update, RefusesAnAdapterThatCannotBeUpdated) {
  m_host.describe(kAdapter, "\"updatable\": false");
  expectRefusal(4106, firmware(3), {kForce});
}

TEST_F(Update, RefusesAnUnknownType) {
  EXPECT_EQ(install(firmware(3), {kTypes}, {"", "img_pxe"}), 5u);
  EXPECT_EQ(m_host.flash(kAdapter), m_old);
}

TEST_F(Update, RefusesTypesThatTheFileLacks) {
  EXPECT_EQ(install(firmware(3), {kTypes}, {"", "IMG_FCoE"}), 4099u);
  EXPECT_EQ(m_host.flash(kAdapter), m_old);
}

TEST_F(Update, LeavesNothingBehindWhenItIsRefused) {
  expectRefusal(5, {});
  expectUpdate(firmware(3));
}

TEST_F(Update, ComesFromTwoModulesWithAnAgentEach) {
  std::vector<std::string> names;
  for (const core::CimAgent* agent : core::GetCimBroker().getAgents()) {
    names.push_back(agent->getName());
  }
  EXPECT_THAT(names, ElementsAre("Software Inventory", "Software Update"));
}

}  // namespace
