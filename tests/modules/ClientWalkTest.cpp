// The walk of a management client from the registered profile to a job that it started. The client
// knows class names and object paths only; each path that it follows must lead to an instance.

#include <gmock/gmock.h>
#include <map>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/modules/Client.h"
#include "tests/modules/Firmware.h"
#include "tests/modules/ModuleHost.h"

namespace {

using test::firmware;
using test::InstanceReport;
using test::kAdapter;
using test::kCompleted;
using test::kFirstPort;
using test::kSecondPort;
using testing::ElementsAre;

class ClientWalk : public testing::Test {
 protected:
  ClientWalk() {
    m_host.makeAdapter(kAdapter, firmware(2));
    m_host.load();
  }

  // Returns the instances that the associations of the class lead to from an instance.
  static std::vector<InstanceReport> follow(const std::string& association, const std::string& from,
                                            const InstanceReport& instance, const std::string& to) {
    std::vector<InstanceReport> others;
    for (const InstanceReport& one : test::enumerate(association)) {
      if (one.get(from) == instance.path) {
        const auto other = test::resolve(one.get(to));
        if (!other) {
          throw std::runtime_error(one.path + " leads nowhere");
        }
        others.push_back(*other);
      }
    }
    return others;
  }

  // The same where there is one.
  static InstanceReport followOne(const std::string& association, const std::string& from,
                                  const InstanceReport& instance, const std::string& to) {
    const std::vector<InstanceReport> others = follow(association, from, instance, to);
    EXPECT_EQ(others.size(), 1u) << association;
    return others.at(0);
  }

  static std::vector<std::string> pathsOf(const std::vector<InstanceReport>& instances) {
    std::vector<std::string> paths;
    for (const InstanceReport& instance : instances) {
      paths.push_back(instance.path);
    }
    return paths;
  }

  static InstanceReport findProfile(const std::string& registeredName) {
    for (const InstanceReport& profile : test::enumerate("Orvex_RegisteredProfile")) {
      if (profile.get("RegisteredName") == registeredName) {
        return profile;
      }
    }
    throw std::runtime_error("no profile " + registeredName);
  }

  test::ModuleHost m_host;
};

TEST_F(ClientWalk, LeadsFromTheProfileToTheJob) {
  const std::string image = m_host.offer("new.rom", firmware(3));

  const InstanceReport profile = findProfile("Software Update Profile");
  const InstanceReport portProfile =
      followOne("Orvex_ReferencedProfile", "Dependent", profile, "Antecedent");
  EXPECT_EQ(portProfile.get("RegisteredName"), "Ethernet Port Profile");

  const InstanceReport service =
      followOne("Orvex_ElementConformsToProfile", "ConformantStandard", profile, "ManagedElement");
  EXPECT_EQ(service.get("Name"), "Orvex:FirmwareUpdate");

  const InstanceReport capabilities =
      followOne("Orvex_ElementCapabilities", "ManagedElement", service, "Capabilities");
  EXPECT_EQ(capabilities.get("InstanceID"), "Orvex:Capabilities@FirmwareUpdate");

  const std::string controller = m_host.pathOf("Orvex_PortController", kAdapter);
  const std::string firstPort = m_host.portPath(kFirstPort);
  const std::string secondPort = m_host.portPath(kSecondPort);
  const std::vector<InstanceReport> affected =
      follow("Orvex_ServiceAffectsElement", "AffectingElement", service, "AffectedElement");
  EXPECT_THAT(pathsOf(affected), ElementsAre(controller, firstPort, secondPort, image));

  test::IdentityArguments arguments;
  arguments.options.setValue({5});
  arguments.source.setText(affected.at(3).path);
  arguments.target.setText(affected.at(0).path);
  ASSERT_EQ(m_host.call("InstallFromSoftwareIdentity", arguments.all()), 4096u);
  EXPECT_EQ(m_host.awaitEnd(), kCompleted);
  const auto job = test::resolve(m_host.jobPath());
  ASSERT_TRUE(job);

  EXPECT_EQ(followOne("Orvex_OwningJobElement", "OwnedElement", *job, "OwningElement").path,
            service.path);
  EXPECT_THAT(
      pathsOf(follow("Orvex_AffectedJobElement", "AffectingElement", *job, "AffectedElement")),
      ElementsAre(controller, firstPort, secondPort));
  EXPECT_EQ(m_host.flash(kAdapter), firmware(3));
}

// All instances there are, and the associations between them, which lead both ways.
class Machine {
 public:
  Machine() {
    for (const std::string& className : test::servedClasses()) {
      for (const InstanceReport& instance : test::enumerate(className)) {
        add(instance);
      }
    }
  }

  [[nodiscard]] const std::set<std::string>& elements() const { return m_elements; }

  // Returns what a walk from an element comes to, the element included.
  [[nodiscard]] std::set<std::string> reachedFrom(const std::string& element) const {
    std::set<std::string> reached{element};
    std::vector<std::string> next{element};
    while (!next.empty()) {
      const auto found = m_neighbours.find(next.back());
      next.pop_back();
      if (found != m_neighbours.end()) {
        for (const std::string& path : found->second) {
          if (reached.insert(path).second) {
            next.push_back(path);
          }
        }
      }
    }
    return reached;
  }

 private:
  void add(const InstanceReport& instance) {
    const std::vector<std::string> ends = instance.references();
    if (ends.empty()) {
      m_elements.insert(instance.path);
    }
    for (const std::string& end : ends) {
      m_neighbours[end].insert(ends.begin(), ends.end());
    }
  }

  std::set<std::string> m_elements;
  std::map<std::string, std::set<std::string>> m_neighbours;
};

TEST_F(ClientWalk, LeadsFromEachElementToEveryOther) {
  static_cast<void>(m_host.offer("new.rom", firmware(3)));
  // For no adapter here, and with no type that can be asked for.
  static_cast<void>(m_host.offer(
      "foreign.rom", test::RomBuilder().add(test::RomImage::ofCodeType(1).device(1, 2)).build()));
  ASSERT_EQ(m_host.install(kFirstPort, m_host.makeImage(firmware(3))), 4096u);
  ASSERT_EQ(m_host.awaitEnd(), kCompleted);

  const Machine machine;
  // Jobs of other tests of this process stay.
  EXPECT_EQ(machine.elements().size(), 14u + test::enumerate("Orvex_ConcreteJob").size());
  for (const std::string& element : machine.elements()) {
    EXPECT_EQ(machine.reachedFrom(element), machine.elements()) << element;
  }
}

}  // namespace
