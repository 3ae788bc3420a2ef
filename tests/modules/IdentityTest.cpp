// Updates and checks by software identity, through the loaded modules.

#include <filesystem>
#include <gmock/gmock.h>
#include <string>
#include <vector>

#include "tests/modules/Client.h"
#include "tests/modules/Firmware.h"
#include "tests/modules/ModuleHost.h"
#include "tests/support/LogCapture.h"

namespace {

using test::Bytes;
using test::firmware;
using test::kAdapter;
using test::kCompleted;
using test::kFirstPort;
using test::kOtherAdapter;
using test::kOtherPort;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kInstall = "Orvex_SoftwareInstallationService::InstallFromSoftwareIdentity";

class Identity : public testing::Test {
 protected:
  Identity() {
    m_host.makeAdapter(kAdapter, m_old);
    m_host.makeAdapter(kOtherAdapter, m_old);
    m_host.load();
  }

  std::uint32_t check(const std::string& port, const std::string& source) {
    return m_host.checkIdentity(port, source, m_characteristics);
  }

  const Bytes m_old = firmware(2);
  const Bytes m_new = firmware(3);
  test::ModuleHost m_host;
  test::LogCapture m_log;
  std::vector<std::uint16_t> m_characteristics;
};

TEST_F(Identity, IsInstalled) {
  const std::string image = m_host.offer("new.rom", m_new);
  ASSERT_EQ(m_host.installIdentity(kFirstPort, image), 4096u);
  EXPECT_EQ(m_host.awaitEnd(), kCompleted);
  EXPECT_EQ(m_host.flash(kAdapter), m_new);
  EXPECT_EQ(m_host.flash(kOtherAdapter), m_old);
  EXPECT_THAT(m_log.messages(kInstall),
              Contains("URI is: file://" + m_host.firmwarePath("new.rom").generic_string()));
  EXPECT_THAT(m_log.messages(kInstall), Contains("TargetTypes are: IMG_PXE+IMG_UEFI"));
}

TEST_F(Identity, OfAnOlderImageIsRefused) {
  EXPECT_EQ(m_host.installIdentity(kFirstPort, m_host.offer("old.rom", firmware(1))), 4099u);
  EXPECT_EQ(m_host.flash(kAdapter), m_old);
}

TEST_F(Identity, OfAComponentThatIsInstalledIsNoImage) {
  const std::string component =
      "Orvex_SoftwareIdentity.InstanceID=\"Orvex:InstalledFirmware:0000:03:00/0\"";
  EXPECT_EQ(m_host.installIdentity(kFirstPort, component), 5u);
  EXPECT_THAT(m_log.messages(kInstall),
              Contains("Firmware Update does not support source '" + component +
                       "'. It is not a proper Firmware Image."));
}

TEST_F(Identity, ThatIsAResourceIsRefused) {
  static_cast<void>(m_host.offer("new.rom", m_new));
  const std::string resource = m_host.onlyPathOf("Orvex_SoftwareIdentityResource");
  EXPECT_EQ(m_host.installIdentity(kFirstPort, resource), 5u);
  EXPECT_THAT(m_log.messages(kInstall),
              Contains("Firmware Update does not support source '" + resource + "'"));
}

TEST_F(Identity, OfAFileThatHasVanishedIsRefused) {
  const std::string image = m_host.offer("new.rom", m_new);
  ASSERT_TRUE(test::resolve(image));
  std::filesystem::remove(m_host.firmwarePath("new.rom"));
  EXPECT_EQ(m_host.installIdentity(kFirstPort, image), 5u);
  EXPECT_THAT(m_log.messages(kInstall),
              Contains("Firmware Update cannot find instance '" + image + "'"));
  EXPECT_EQ(m_host.flash(kAdapter), m_old);
}

TEST_F(Identity, ThatPassesItsCheckFlashesNothing) {
  EXPECT_EQ(check(kFirstPort, m_host.offer("new.rom", m_new)), 0u);
  EXPECT_THAT(m_characteristics, ElementsAre(7));
  EXPECT_FALSE(m_host.hasNewJob());
  EXPECT_EQ(m_host.flash(kAdapter), m_old);
}

TEST_F(Identity, ThatFailsItsCheckLeavesNothingBehind) {
  EXPECT_EQ(check(kFirstPort, m_host.offer("old.rom", firmware(1))), 4099u);
  EXPECT_THAT(m_characteristics, IsEmpty());
  EXPECT_EQ(m_host.install(kFirstPort, m_host.makeImage(m_new)), 4096u);
  EXPECT_EQ(m_host.awaitEnd(), kCompleted);
}

TEST_F(Identity, ThatPassesItsCheckReservesTheTarget) {
  const std::string image = m_host.offer("new.rom", m_new);
  ASSERT_EQ(check(kFirstPort, image), 0u);
  EXPECT_EQ(m_host.installIdentity(kFirstPort, image), 6u);
  EXPECT_EQ(m_host.install(kFirstPort, m_host.makeImage(m_new)), 6u);
  EXPECT_EQ(m_host.installIdentity(kOtherPort, image), 2u);
  EXPECT_EQ(check(kOtherPort, image), 2u);
  EXPECT_EQ(m_host.flash(kAdapter), m_old);
}

}  // namespace
