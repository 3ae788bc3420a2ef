// The classes of the Software Update Profile, through the loaded modules.

#include <algorithm>
#include <gmock/gmock.h>
#include <string>
#include <vector>

#include "core/CimPath.h"
#include "tests/modules/Client.h"
#include "tests/modules/Firmware.h"
#include "tests/modules/ModuleHost.h"

namespace {

using test::enumerate;
using test::firmware;
using test::InstanceReport;
using test::kAdapter;
using test::kCompleted;
using test::kFirstPort;
using test::kOtherAdapter;
using test::kOtherPort;
using test::kSecondPort;
using testing::ElementsAre;
using testing::IsEmpty;

class Profile : public testing::Test {
 protected:
  Profile() {
    m_host.makeAdapter(kAdapter, firmware(2));
    m_host.makeAdapter(kOtherAdapter, firmware(2));
    m_host.load();
  }

  std::string controllerPath(const std::string& adapter) const {
    return m_host.pathOf("Orvex_PortController", adapter);
  }

  // Updates the port. The job is the one that the host knows then.
  void update(const std::string& port) {
    ASSERT_EQ(m_host.install(port, m_host.makeImage(firmware(3))), 4096u);
    ASSERT_EQ(m_host.awaitEnd(), kCompleted);
  }

  // Returns what the associations of the class that lead to the host's job say of the other end.
  std::vector<std::string> othersOfJob(const std::string& className, const std::string& job,
                                       const std::string& other) const {
    std::vector<std::string> others;
    for (const InstanceReport& association : enumerate(className)) {
      if (association.get(job) == m_host.jobPath()) {
        others.push_back(association.get(other));
      }
    }
    return others;
  }

  test::ModuleHost m_host;
};

TEST_F(Profile, AffectsEachControllerAndItsPortsInOrder) {
  EXPECT_THAT(enumerate("Orvex_ServiceAffectsElement", "AffectedElement"),
              ElementsAre(controllerPath(kAdapter), m_host.portPath(kFirstPort),
                          m_host.portPath(kSecondPort), controllerPath(kOtherAdapter),
                          m_host.portPath(kOtherPort), m_host.portPath("0000:04:00.1")));
}

TEST_F(Profile, AffectsNothingOfAnAdapterThatCannotBeUpdated) {
  m_host.describe(kAdapter, "\"updatable\": false");
  EXPECT_THAT(enumerate("Orvex_ServiceAffectsElement", "AffectedElement"),
              ElementsAre(controllerPath(kOtherAdapter), m_host.portPath(kOtherPort),
                          m_host.portPath("0000:04:00.1")));
}

TEST_F(Profile, AffectsTheFirmwareImagesThatAreOffered) {
  const std::string image = m_host.offer("a.rom", firmware(3));
  const std::vector<std::string> affected =
      enumerate("Orvex_ServiceAffectsElement", "AffectedElement");
  ASSERT_EQ(affected.size(), 7u);
  EXPECT_EQ(affected.back(), image);
}

TEST_F(Profile, ConnectsAJobWithTheWholeAdapterAndTheService) {
  update(kSecondPort);
  EXPECT_THAT(othersOfJob("Orvex_AffectedJobElement", "AffectingElement", "AffectedElement"),
              ElementsAre(controllerPath(kAdapter), m_host.portPath(kFirstPort),
                          m_host.portPath(kSecondPort)));
  EXPECT_THAT(othersOfJob("Orvex_OwningJobElement", "OwnedElement", "OwningElement"),
              ElementsAre(m_host.onlyPathOf("Orvex_SoftwareInstallationService")));
}

TEST_F(Profile, KeepsTheOwnerOfAJobWhoseAdapterIsGone) {
  update(kFirstPort);
  std::filesystem::remove_all(m_host.flashPath(kAdapter).parent_path());
  EXPECT_THAT(othersOfJob("Orvex_AffectedJobElement", "AffectingElement", "AffectedElement"),
              IsEmpty());
  EXPECT_EQ(othersOfJob("Orvex_OwningJobElement", "OwnedElement", "OwningElement").size(), 1u);
}

TEST_F(Profile, IsRegisteredBesideThatOfThePortsInTheOrderOfTheAgents) {
  EXPECT_THAT(enumerate("Orvex_RegisteredProfile", "InstanceID"),
              ElementsAre("Orvex:EthernetPort_Profile", "Orvex:SoftwareUpdate_Profile"));
}

TEST_F(Profile, RefersToThatOfThePorts) {
  const std::vector<InstanceReport> references = enumerate("Orvex_ReferencedProfile");
  ASSERT_EQ(references.size(), 1u);
  EXPECT_EQ(references[0].get("Antecedent"),
            "Orvex_RegisteredProfile.InstanceID=\"Orvex:EthernetPort_Profile\"");
  EXPECT_EQ(references[0].get("Dependent"),
            "Orvex_RegisteredProfile.InstanceID=\"Orvex:SoftwareUpdate_Profile\"");
}

TEST_F(Profile, IsConformedToOnceHoweverOftenItIsAsked) {
  EXPECT_EQ(enumerate("Orvex_ElementConformsToProfile").size(), 1u);
  EXPECT_EQ(enumerate("Orvex_ElementConformsToProfile").size(), 1u);
  EXPECT_EQ(enumerate("Orvex_ElementCapabilities").size(), 1u);
  EXPECT_EQ(enumerate("Orvex_ElementCapabilities").size(), 1u);
}

TEST_F(Profile, HasPathsThatParseBackAndLeadToTheirInstances) {
  static_cast<void>(m_host.offer("a.rom", firmware(3)));
  update(kFirstPort);
  for (const std::string& className : test::servedClasses()) {
    const std::vector<InstanceReport> instances = enumerate(className);
    EXPECT_THAT(instances, testing::Not(IsEmpty())) << className;
    for (const InstanceReport& instance : instances) {
      const core::CimPath path(instance.path);
      EXPECT_EQ(path.getClassName(), className);
      for (const auto& [key, value] : path) {
        EXPECT_EQ(value, instance.get(key)) << instance.path;
      }
      const auto found = test::resolve(instance.path);
      ASSERT_TRUE(found) << instance.path;
      EXPECT_EQ(found->path, instance.path);
    }
  }
}

}  // namespace
