#include <gmock/gmock.h>
#include <memory>
#include <new>
#include <span>
#include <stdexcept>
#include <string>
#include <utility>

#include "core/CimPropertyRef.h"
#include "core/CimPropertyTypes.h"
#include "core/FirmwareReader.h"
#include "core/OwningPropertyList.h"
#include "tests/client/FakeAgent.h"
#include "wbem/Installation.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using wbem::describeInstallation;
using wbem::Installation;

class InstallationTest : public testing::Test {
 protected:
  void addTarget(const std::string& path) {
    m_arguments.add<core::CimPropertyRef>("Target").setText(path);
  }
  void addOptions() {
    m_arguments.add<core::CimPropertyUint16_arr>("InstallOptions").setValue({5, 3, 32768});
    m_arguments.add<core::CimPropertyString_arr>("InstallOptionsValues")
        .setValue({"", "", "IMG_PXE+IMG_UEFI"});
  }

  core::OwningPropertyList m_arguments;
};

TEST_F(InstallationTest, IsReadOffTheArgumentsOfAUri) {
  m_arguments.add<core::CimPropertyString>("URI").setValue("FILE:///srv/a b.rom");
  addTarget("Orvex_EthernetPort.SystemName=\"lab\",DeviceID=\"0000:03:00.0\"");
  addOptions();
  const auto installation = describeInstallation("InstallFromURI", m_arguments.list());
  ASSERT_TRUE(installation);
  EXPECT_EQ(installation->file, "/srv/a b.rom");
  EXPECT_EQ(installation->adapter, "0000:03:00.0");
  EXPECT_EQ(installation->options, "5, 3, 32768=IMG_PXE+IMG_UEFI");
}

TEST_F(InstallationTest, IsReadOffTheArgumentsOfASoftwareIdentity) {
  m_arguments.add<core::CimPropertyRef>("Source").setText(
      "Orvex_SoftwareIdentity.InstanceID=\"Orvex:FirmwareFile:/srv/b.rom\"");
  const auto installation = describeInstallation("InstallFromSoftwareIdentity", m_arguments.list());
  ASSERT_TRUE(installation);
  EXPECT_EQ(installation->file, "/srv/b.rom");
  EXPECT_EQ(installation->adapter, "");
}

TEST_F(InstallationTest, IsNoneOfAnotherMethod) {
  EXPECT_FALSE(describeInstallation("CheckSoftwareIdentity", m_arguments.list()));
  EXPECT_FALSE(describeInstallation("RequestStateChange", m_arguments.list()));
}

TEST_F(InstallationTest, ReadsAFileAsACheckDoes) {
  EXPECT_EQ(wbem::findFile("InstallFromURI", m_arguments.list()), "");
  m_arguments.add<core::CimPropertyRef>("Source").setText(
      "Orvex_SoftwareIdentity.InstanceID=\"Orvex:FirmwareFile:/srv/b.rom\"");
  for (const char* const method : {"InstallFromSoftwareIdentity", "CheckSoftwareIdentity"}) {
    EXPECT_EQ(wbem::findFile(method, m_arguments.list()), "/srv/b.rom");
  }
  EXPECT_EQ(wbem::findFile("RequestStateChange", m_arguments.list()), "");
}

TEST_F(InstallationTest, TakesArgumentsAsTheyCome) {
  m_arguments.add<core::CimPropertyString>("URI").setValue("http://elsewhere/x");
  addTarget("no path");
  const auto installation = describeInstallation("InstallFromURI", m_arguments.list());
  ASSERT_TRUE(installation);
  EXPECT_EQ(installation->file, "http://elsewhere/x");
  EXPECT_EQ(installation->adapter, "");
}

TEST_F(InstallationTest, TellsWhatIsKnownInItsOrder) {
  Installation installation;
  EXPECT_THAT(toDetails(installation), IsEmpty());
  installation.job = "Job#1";
  installation.adapter = "0000:03:00.0";
  installation.oldVersions = std::string(100'000, 'x');
  const auto details = toDetails(installation);
  EXPECT_THAT(details, ElementsAre(Pair("adapter", "0000:03:00.0"),
                                   Pair("old", testing::EndsWith("...")), Pair("job", "Job#1")));
  EXPECT_LT(details[1].second.size(), 4000u);
}

// A component of an adapter, or a firmware file.
class FakeSoftware final : public test::FakeInstance {
 public:
  FakeSoftware(const std::string& name, unsigned kind, const std::string& type,
               const std::string& version)
      : FakeInstance("Orvex_SoftwareIdentity", name) {
    Name.setValue(name);
    ImageKind.setValue(kind);
    TargetTypes.setValue({type});
    VersionString.setValue(version);
  }

  core::CimPropertyString Name{"Name", this};
  core::CimPropertyUint32 ImageKind{"ImageKind", this};
  core::CimPropertyString_arr TargetTypes{"TargetTypes", this};
  core::CimPropertyString VersionString{"VersionString", this};
};

class InstalledTest : public testing::Test {
 protected:
  InstalledTest() {
    m_broker.addAgent(&m_agent);
    add("0000:03:00/0", 2, "IMG_PXE", "0.1");
    add("0000:03:00/1", 2, "IMG_UEFI", "1.2");
    add("0001:03:00/0", 2, "IMG_PXE", "7.0");
    add("0000:03:0/0", 2, "IMG_PXE", "8.0");
    add("0000:03:00/file", 4, "IMG_PXE", "9.0");
    add("/srv/new.rom", 4, "IMG_PXE", "0.2");
  }

  void add(const std::string& name, unsigned kind, const std::string& type,
           const std::string& version) {
    m_software.add(std::make_unique<FakeSoftware>(name, kind, type, version));
  }

  core::CimBroker m_broker;
  test::FakeAgent m_agent;
  test::FakeProvider& m_software = m_agent.serve("Orvex_SoftwareIdentity");
};

TEST_F(InstalledTest, AreTheComponentsOfTheAdapter) {
  EXPECT_EQ(wbem::describeInstalled(m_broker, "0000:03:00"), "IMG_PXE 0.1, IMG_UEFI 1.2");
  EXPECT_EQ(wbem::describeInstalled(m_broker, "0000:03:00.1"), "IMG_PXE 0.1, IMG_UEFI 1.2");
  EXPECT_EQ(wbem::describeInstalled(m_broker, "0001:03:00.0"), "IMG_PXE 7.0");
  EXPECT_EQ(wbem::describeInstalled(m_broker, "0000:04:00"), "");
  EXPECT_EQ(wbem::describeInstalled(m_broker, ""), "");
}

TEST_F(InstalledTest, StandBesideThoseOfTheFile) {
  Installation installation;
  installation.adapter = "0001:03:00.0";
  installation.file = "/srv/new.rom";
  wbem::fillInVersions(m_broker, installation);
  EXPECT_EQ(installation.oldVersions, "IMG_PXE 7.0");
  EXPECT_EQ(installation.newVersions, "IMG_PXE 0.2");
  installation.file = "/elsewhere/new.rom";
  wbem::fillInVersions(m_broker, installation);
  EXPECT_EQ(installation.newVersions, "");
}

// Has no memory for any content.
class FailingReader final : public test::FakeAgent, public core::FirmwareReader {
 public:
  [[nodiscard]] std::string describeFirmware(
      std::span<const std::uint8_t> /*content*/) const override {
    throw std::bad_alloc();
  }
};

class FakeReader final : public test::FakeAgent, public core::FirmwareReader {
 public:
  explicit FakeReader(std::string known) : m_known(std::move(known)) {}

  [[nodiscard]] std::string describeFirmware(std::span<const std::uint8_t> content) const override {
    if (content.empty()) {
      throw std::runtime_error("no content");
    }
    return std::string(content.begin(), content.end()) == m_known ? "IMG_PXE 0.3" : "";
  }

 private:
  const std::string m_known;
};

TEST_F(InstalledTest, AreToldByAnotherAgentWhereOneFails) {
  FailingReader first;
  FakeReader second("new");
  m_broker.addAgent(&first);
  m_broker.addAgent(&second);
  const auto describe = [this](const std::string& content) {
    Installation installation;
    wbem::fillInContent(m_broker,
                        {reinterpret_cast<const std::uint8_t*>(content.data()), content.size()},
                        installation);
    return installation.newVersions;
  };
  EXPECT_EQ(describe("new"), "IMG_PXE 0.3");
  EXPECT_EQ(describe("another"), std::string("not known: ") + std::bad_alloc().what());
}

TEST_F(InstalledTest, AreThoseOfTheContentWhereAnAgentKnowsIt) {
  FakeReader first("another");
  FakeReader second("new");
  m_broker.addAgent(&first);
  m_broker.addAgent(&second);
  Installation installation;
  installation.newVersions = "IMG_PXE 0.2";
  const auto fillIn = [&](const std::string& content) {
    wbem::fillInContent(m_broker,
                        {reinterpret_cast<const std::uint8_t*>(content.data()), content.size()},
                        installation);
    return installation.newVersions;
  };
  EXPECT_EQ(fillIn("unknown"), "IMG_PXE 0.2");
  EXPECT_EQ(fillIn("new"), "IMG_PXE 0.3");
  EXPECT_EQ(fillIn(""), "not known: no content");
}

TEST_F(InstalledTest, AreNotKnownWhereTheyCannotBeTold) {
  m_software.onEnumeration = [] { throw std::runtime_error("no adapters"); };
  EXPECT_EQ(wbem::describeInstalled(m_broker, "0000:03:00"), "not known: no adapters");
}

TEST(Installed, IsNothingWhereNobodyServesIt) {
  core::CimBroker broker;
  EXPECT_EQ(wbem::describeInstalled(broker, "0000:03:00"), "");
}

}  // namespace
