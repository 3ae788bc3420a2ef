#include <filesystem>
#include <gmock/gmock.h>

#include "Utils/Log.h"
#include "client/BrokerConnection.h"
#include "client/Fault.h"
#include "client/Identities.h"
#include "tests/client/FakeInventory.h"
#include "tests/support/CurrentDirectory.h"
#include "tests/support/TempDirectory.h"

namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;
using testing::SizeIs;

constexpr utils::LogSource kLog{"IdentitiesTest"};

class IdentitiesTest : public testing::Test {
 protected:
  IdentitiesTest() { m_broker.addAgent(&m_inventory); }

  client::IdentityList read() { return client::readIdentities(m_connection); }

  // Returns the InstanceID of the identity that a text names, or the message of the fault.
  std::string find(const std::string& text) {
    const client::IdentityList list = read();
    try {
      return client::findIdentity(list, text).instanceId;
    } catch (const client::Fault& fault) {
      EXPECT_EQ(fault.kind(), client::Fault::Kind::Refused);
      return fault.what();
    }
  }

  // Returns the states of the files, each "FILE ADAPTER STATE".
  std::vector<std::string> compare() {
    std::vector<std::string> states;
    for (const auto& [identity, adapters] : client::compareFiles(m_connection, read().identities)) {
      for (const auto& [adapter, state] : adapters) {
        states.push_back(identity.name + " " + adapter + " " + state);
      }
    }
    return states;
  }

  void logWhenEnumerated(const std::vector<std::string>& messages) {
    m_inventory.identities().onEnumeration = [messages] {
      for (const std::string& message : messages) {
        utils::logError(kLog, "find", "%s", message.c_str());
      }
    };
  }

  core::CimBroker m_broker;
  client::BrokerConnection m_connection{m_broker};
  test::FakeInventory m_inventory;
};

TEST_F(IdentitiesTest, AreReadWithWhatTheyTell) {
  test::FakeIdentity& file = m_inventory.addFile("/fw/a.rom");
  file.VersionString.setValue("1.2+1.3");
  file.TargetTypes.setValue({"IMG_PXE", "IMG_UEFI"});
  file.IdentityInfoType.setValue({"Orvex:PCIDevice", "Other", "Orvex:PCIDevice"});
  file.IdentityInfoValue.setValue({"1af4:1041", "x", "8086:100e"});
  const client::IdentityList list = read();
  ASSERT_THAT(list.identities, SizeIs(1));
  const client::Identity& identity = list.identities[0];
  EXPECT_EQ(identity.path, "Orvex_SoftwareIdentity.InstanceID=\"Orvex:FirmwareFile:/fw/a.rom\"");
  EXPECT_EQ(identity.instanceId, "Orvex:FirmwareFile:/fw/a.rom");
  EXPECT_EQ(identity.name, "/fw/a.rom");
  EXPECT_EQ(identity.version, "1.2+1.3");
  EXPECT_THAT(identity.types, ElementsAre("IMG_PXE", "IMG_UEFI"));
  EXPECT_THAT(identity.devices, ElementsAre("1af4:1041", "8086:100e"));
  EXPECT_TRUE(identity.isFile);
}

TEST_F(IdentitiesTest, MayLackPropertiesAndBeOfAnotherKind) {
  m_inventory.addComponent("0000:03:00/0").IdentityInfoType.setValue({"Orvex:PCIDevice"});
  const client::IdentityList list = read();
  ASSERT_THAT(list.identities, SizeIs(1));
  EXPECT_THAT(
      list.identities[0],
      AllOf(Field(&client::Identity::version, ""), Field(&client::Identity::types, IsEmpty()),
            Field(&client::Identity::devices, IsEmpty()), Field(&client::Identity::isFile, false)));
}

TEST_F(IdentitiesTest, ComeWithWhatWasSaidAboutOtherFilesEachOnce) {
  logWhenEnumerated({"File 'b' is left out: 100 % rubbish", "other", "other"});
  EXPECT_THAT(read().skipped, ElementsAre("File 'b' is left out: 100 % rubbish", "other"));
}

TEST_F(IdentitiesTest, AreRefusedWhenNobodyServesThem) {
  core::CimBroker broker;
  client::BrokerConnection connection(broker);
  EXPECT_THROW(static_cast<void>(client::readIdentities(connection)), client::Fault);
}

TEST_F(IdentitiesTest, AreFoundByPathInstanceIdAndName) {
  m_inventory.addFile("/fw/a.rom");
  m_inventory.addFile("/fw/b.rom");
  for (const char* text :
       {"/fw/b.rom", "b.rom", "Orvex:FirmwareFile:/fw/b.rom",
        "Orvex_SoftwareIdentity.InstanceID=\"Orvex:FirmwareFile:/fw/b.rom\"",
        "root/cimv2:Orvex_SoftwareIdentity.InstanceID=\"Orvex:FirmwareFile:/fw/b.rom\""}) {
    EXPECT_EQ(find(text), "Orvex:FirmwareFile:/fw/b.rom") << text;
  }
}

TEST_F(IdentitiesTest, AreFoundByAnotherPathToTheSameFile) {
  const test::TempDirectory directory;
  const std::filesystem::path file = directory.write("a.rom", std::string("x"));
  const test::CurrentDirectory elsewhere(directory.write("b/b.rom", std::string()).parent_path());
  m_inventory.addFile(file.string());
  const std::string found = "Orvex:FirmwareFile:" + file.string();
  EXPECT_EQ(find(std::filesystem::relative(file).string()), found);
  EXPECT_EQ(find((directory.path() / "." / "a.rom").string()), found);
}

TEST_F(IdentitiesTest, OfComponentsAreFoundByInstanceIdAndPathOnly) {
  m_inventory.addComponent("0000:03:00/0");
  const std::string id = "Orvex:InstalledFirmware:0000:03:00/0";
  EXPECT_EQ(find(id), id);
  EXPECT_EQ(find("Orvex_SoftwareIdentity.InstanceID=\"" + id + "\""), id);
  EXPECT_EQ(find("0000:03:00/0"),
            "there is no software identity '0000:03:00/0'; no firmware file was found ('quorvel "
            "identities' says where it looks)");
}

TEST_F(IdentitiesTest, AreListedWhenATextNamesNone) {
  m_inventory.addFile("/fw/a.rom");
  m_inventory.addComponent("0000:03:00/0");
  m_inventory.addFile("/fw/b.rom");
  logWhenEnumerated({"File '/fw/c.rom' is left out: it is rubbish"});
  for (const char* text :
       {"c.rom", "", "rom", "/fw/a.rom/", "/fw", "Orvex_SoftwareIdentity.InstanceID=\"c\"",
        "Orvex_PortController.InstanceID=\"Orvex:FirmwareFile:/fw/b.rom\""}) {
    EXPECT_EQ(find(text), std::string("there is no software identity '") + text +
                              "'; the firmware files are:\n  /fw/a.rom\n  /fw/b.rom\n"
                              "  skipped: File '/fw/c.rom' is left out: it is rubbish");
  }
}

TEST_F(IdentitiesTest, AreListedWhenATextNamesSeveral) {
  m_inventory.addFile("/fw/a.rom");
  m_inventory.addFile("/old/a.rom");
  m_inventory.addFile("/old/b.rom");
  EXPECT_EQ(find("a.rom"),
            "'a.rom' names several software identities; name one of:\n  /fw/a.rom\n  /old/a.rom");
  EXPECT_EQ(find("/old/a.rom"), "Orvex:FirmwareFile:/old/a.rom");
}

TEST_F(IdentitiesTest, AreComparedWithEveryAdapter) {
  test::FakeDevice& third = m_inventory.addAdapter("0000:03:00");
  m_inventory.addAdapter("0000:04:00");
  test::FakeIdentity& a = m_inventory.addFile("/fw/a.rom");
  m_inventory.compare(m_inventory.addComponent("0000:03:00/0"), third, "installed");
  m_inventory.addFile("/fw/b.rom");
  m_inventory.compare(a, third, "newer");
  EXPECT_THAT(compare(),
              ElementsAre("/fw/a.rom 0000:03:00 newer", "/fw/a.rom 0000:04:00 not for it",
                          "/fw/b.rom 0000:03:00 not for it", "/fw/b.rom 0000:04:00 not for it"));
}

TEST_F(IdentitiesTest, AreListedWithoutAdapters) {
  m_inventory.addFile("/fw/a.rom");
  const auto files = client::compareFiles(m_connection, read().identities);
  ASSERT_THAT(files, SizeIs(1));
  EXPECT_THAT(files[0].adapters, IsEmpty());
}

}  // namespace
