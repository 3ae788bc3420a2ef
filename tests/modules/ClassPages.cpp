// Prints docs/classes.md: what the agents serve on an example machine. For
// scripts/generate-class-pages, and for the test that the page is current.

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <exception>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Os/Environment.h"
#include "cim/MethodSignatures.h"
#include "core/CimBroker.h"
#include "core/ClassQualifiers.h"
#include "core/ClassTexts.h"
#include "core/ValueNames.h"
#include "tests/modules/Client.h"
#include "tests/modules/Firmware.h"
#include "tests/modules/ModuleHost.h"

namespace {

using test::firmware;
using test::InstanceReport;
using test::PropertyReport;

constexpr const char* kIntroduction = R"(# The served classes

What a management client finds, class by class: the properties in their order with type, key, the
values of one instance, numbers with their names, and what the property is. The page is printed by the running agents; `scripts/generate-class-pages`
writes it anew, and a test fails when it is out of date. The names of all values (`ValueMap` and `Values`) are
in [cim.mof](../schema/cim.mof) and [orvex.mof](../schema/orvex.mof); a client reads them from a class
(GetClass with qualifiers), as `quorvel describe CLASS` does.

The example machine is `server1` with one two-port adapter and one firmware file, after an update from
that file. Its name, directories and times stand for others. Properties without a value are `NULL`.
)";

constexpr std::pair<std::string_view, std::string_view> kPurposes[] = {
    {"Orvex_EthernetPort",
     "A port of an Ethernet adapter. Can be the target of an update. What is not known of its link "
     "is "
     "`NULL`, as everywhere. Own properties: `BootType` is what the machine boots from through it "
     "(0 "
     "none, 1 PXE, 2 iSCSI, 3 FCoE, 4 UEFI; `NULL` where the driver does not tell), "
     "`InterfaceNames` what the operating system calls it."},
    {"Orvex_PortController",
     "An Ethernet adapter. Can be the target of an update, which then goes through its first "
     "port. `ElementName` is what its maker calls it. Own properties: the PCI ids, part and serial "
     "number, the driver, and whether its firmware can be replaced, with the reason where it "
     "cannot "
     "and that is known. While `IsBeingWritten`, what is told is what was last known."},
    {"Orvex_RegisteredProfile",
     "A management profile that an agent implements: where a client begins. There is one for the "
     "Ethernet ports and one for software update."},
    {"Orvex_SoftwareIdentity",
     "A firmware image that can be installed (`ImageKind` 4: a file in one of the directories of "
     "`FWFilePath`), or what an adapter holds (`ImageKind` 2): a component in its flash, or a "
     "version that its driver says is running or stored. The numbers of the version are filled "
     "where "
     "its text is numbers with dots between them. An `IdentityInfoValue` of the type "
     "`Orvex:PCIDevice` is a PCI vendor and device, with those of the subsystem where they are "
     "known "
     "(`8086:1592 sub 8086:0002`); of `Orvex:Digest`, the FNV-1a digest of the bytes."},
    {"Orvex_SoftwareIdentityResource",
     "The file of a firmware image. `AccessInfo` is its URI, which `InstallFromURI` takes."},
    {"Orvex_ElementSoftwareIdentity",
     "What a piece of software is to an adapter. `Comparison` is `installed`, `running`, `stored`, "
     "`newer`, `same`, `same version` (in other bytes), `older`, `other types`, `not updatable` or "
     "`unknown`. An image that is not for an adapter has no association with it. "
     "`ElementSoftwareStatus` says it in the numbers of DMTF: 2 Current (running), 3 Next "
     "(stored), 6 "
     "Installed, 8 Available (an image that could be installed); `UpgradeCondition` is 3 (by the "
     "owner) where the adapter's firmware can be replaced, and 5 where it cannot."},
    {"Orvex_ComputerSystem",
     "The machine. Its keys are what `SystemCreationClassName` and `SystemName` of devices and of "
     "the "
     "service say."},
    {"Orvex_SystemDevice", "The adapters and their ports are parts of the machine."},
    {"Orvex_ControlledBy",
     "A port belongs to its adapter. `DeviceNumber` is that of its PCI function."},
    {"Orvex_HostedService",
     "The installation service runs on the machine. There is none while nobody serves the "
     "service."},
    {"Orvex_InstalledSoftwareIdentity", "What the adapters of the machine hold."},
    {"Orvex_EthernetPortConformsToProfile",
     "The ports conform to the Ethernet port profile: they are its central instances, from which a "
     "client reaches everything else."},
    {"Orvex_HostedResource", "The firmware files are on the machine."},
    {"Orvex_ResourceForSoftwareIdentity", "A firmware image is in a file."},
    {"Orvex_SoftwareInstallationService",
     "The one service through which firmware is updated. Its methods return the codes of "
     "[command-line.md](command-line.md); 4096 means that a job was started."},
    {"Orvex_SoftwareInstallationServiceCapabilities", "What the service accepts."},
    {"Orvex_ElementCapabilities", "The service has its capabilities."},
    {"Orvex_ElementConformsToProfile", "The service conforms to the software update profile."},
    {"Orvex_ReferencedProfile",
     "The software update profile builds on the Ethernet port profile. There is none while nobody "
     "serves the latter."},
    {"Orvex_ServiceAffectsElement",
     "What the service can update: each adapter with an updatable port, these ports, and the "
     "firmware "
     "images that can be installed."},
    {"Orvex_ConcreteJob",
     "An update that was started. It stays listed until the process ends. `JobState` is a number "
     "of "
     "the DMTF schema: 7 is completed, 10 is failed (Exception)."},
    {"Orvex_AffectedJobElement", "A job changes an adapter and all of its ports."},
    {"Orvex_OwningJobElement", "The service owns its jobs."},
};

constexpr const char* kTime = "20260102030405.000000+000";
constexpr const char* kInterval = "00000000000012.000000:000";

std::string_view purposeOf(const std::string& className) {
  const auto found = std::find_if(std::begin(kPurposes), std::end(kPurposes),
                                  [&](const auto& entry) { return entry.first == className; });
  if (found == std::end(kPurposes)) {
    throw std::runtime_error("tests/modules/ClassPages.cpp does not say what " + className + " is");
  }
  return found->second;
}

std::string typeName(std::uint32_t code) {
  const auto type = static_cast<core::CimType>(code);
  return std::string(core::getTypeName(type)) + (core::isArray(type) ? "[]" : "");
}

class ClassPages {
 public:
  // Sets the example machine up.
  ClassPages() {
    os::setEnvironment("COMPUTERNAME", "server1");
    m_host.makeAdapter(test::kAdapter, firmware(2));
    static_cast<void>(m_host.offer("card.rom", firmware(3)));
    m_host.load();
    m_schema = core::GetCimBroker().getSchema();
    m_texts = core::getClassTexts(core::GetCimBroker());
    const std::string image = "file://" + m_host.firmwarePath("card.rom").generic_string();
    if (m_host.install(test::kFirstPort, image) != cim::kJobStarted ||
        m_host.awaitEnd() != test::kCompleted) {
      throw std::runtime_error("the update of the example failed");
    }
  }

  void print() const {
    std::cout << kIntroduction << "\n| class | agent |\n|---|---|\n";
    for (const std::string& name : test::servedClasses()) {
      std::cout << "| [" << name << "](#" << toAnchor(name) << ") | " << agentsOf(name) << " |\n";
    }
    for (const std::string& name : test::servedClasses()) {
      printClass(name);
    }
  }

 private:
  static std::string toAnchor(std::string name) {
    std::transform(name.begin(), name.end(), name.begin(),
                   [](unsigned char sign) { return static_cast<char>(std::tolower(sign)); });
    return name;
  }

  static std::string agentsOf(const std::string& className) {
    std::string names;
    for (core::CimAgent* agent : core::GetCimBroker().getAgents()) {
      if (agent->hasClass(className)) {
        names += (names.empty() ? "" : ", ") + agent->getName();
      }
    }
    return names;
  }

  void printClass(const std::string& name) const {
    std::cout << "\n## " << name << "\n\n" << purposeOf(name) << "\n";
    printSuperclasses(name);
    const InstanceReport instance = test::enumerate(name).at(0);
    std::cout << "\n```\n" << stable(instance.path) << "\n```\n";
    std::cout << "\n| property | type | key | example | what it is |\n|---|---|---|---|---|\n";
    const core::ClassDeclaration& declaration = *m_schema->find(name);
    const core::ClassQualifiers qualifiers(*m_schema, m_texts);
    for (const PropertyReport& property : instance.properties) {
      std::cout << "| " << property.name << " | " << typeName(property.type) << " | "
                << (property.isKey ? "key" : "") << " | `" << exampleOf(property) << "`";
      const core::ClassQualifiers::List list =
          qualifiers.ofProperty(declaration, *declaration.findProperty(property.name));
      std::cout << nameOf(property, list) << " | "
                << core::findTexts(list, core::QualifierName::Description).at(0) << " |\n";
    }
    printMethods(name);
  }

  void printSuperclasses(const std::string& name) const {
    std::string line = "\nDerived from";
    for (const core::ClassDeclaration* superclass : m_schema->getSuperclasses(name)) {
      line += " `" + superclass->name + "`,";
    }
    line.back() = '.';
    std::cout << line << "\n";
  }

  // Those that the instances offer.
  void printMethods(const std::string& name) const {
    core::CimBroker& broker = core::GetCimBroker();
    const core::CimBroker::Request request(broker);
    const core::CimInstance& instance = *broker.getInstances(name).first();
    std::string rows;
    for (const core::MethodDeclaration& method : m_schema->find(name)->methods) {
      if (instance.offersMethod(method.name)) {
        rows += rowsOf(method);
      }
    }
    if (!rows.empty()) {
      std::cout << "\n| method | parameter | type | |\n|---|---|---|---|\n" << rows;
    }
  }

  static std::string rowsOf(const core::MethodDeclaration& method) {
    std::string rows;
    for (const core::ParameterDeclaration& parameter : method.parameters) {
      const bool isInput = parameter.direction == core::ParameterDirection::In;
      rows += "| " + method.name + " | " + parameter.name + " | " + typeName(parameter.type) +
              " | " + (isInput ? "in" : "out") + " |\n";
    }
    return rows;
  }

  std::string exampleOf(const PropertyReport& property) const {
    if (property.isNull) {
      return "NULL";
    }
    if (property.type == core::kCimDatetime) {
      // DSP0004: the 22nd character of an interval is a colon.
      return property.value.at(21) == ':' ? kInterval : kTime;
    }
    const std::string value = stable(property.value);
    return property.type == core::kCimString ? "\"" + value + "\"" : value;
  }

  // Returns the name of a number in parentheses, nothing where it has none.
  static std::string nameOf(const PropertyReport& property,
                            const core::ClassQualifiers::List& list) {
    const auto type = static_cast<core::CimType>(property.type);
    const std::vector<core::ValueName> values = core::findValueNames(list);
    if (property.isNull || type == core::kCimString || values.empty()) {
      return {};
    }
    std::string text;
    for (const std::int64_t number : test::numbersIn(property.value)) {
      text += (text.empty() ? " (" : ", ") + std::string(core::findValueName(values, number));
    }
    return text.empty() ? text : text + ")";
  }

  // Returns the text without what differs from run to run.
  std::string stable(std::string text) const {
    const std::string directory = m_host.directory().generic_string();
    for (std::size_t at = text.find(directory); at != std::string::npos;
         at = text.find(directory)) {
      text.replace(at, directory.size(), "/srv");
    }
    return text;
  }

  test::ModuleHost m_host;
  std::shared_ptr<const core::CimSchema> m_schema;
  core::ClassTexts m_texts;
};

}  // namespace

int main() {
  try {
    ClassPages().print();
  } catch (const std::exception& error) {
    std::cerr << "class_pages: " << error.what() << '\n';
    return 1;
  }
  return 0;
}
