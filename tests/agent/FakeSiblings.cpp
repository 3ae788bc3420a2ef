#include "tests/agent/FakeSiblings.h"

#include <algorithm>
#include <map>
#include <utility>

#include "agent/Orvex_ConcreteJob.h"
#include "agent/Orvex_SoftwareInstallationService.h"
#include "agent/Orvex_SoftwareInstallationServiceCapabilities.h"
#include "cim/CIM_RegisteredProfile.h"
#include "core/CimBroker.h"
#include "core/InstanceProvider.h"
#include "inventory/Orvex_EthernetPort.h"
#include "inventory/Orvex_PortController.h"
#include "inventory/Orvex_SoftwareIdentity.h"
#include "inventory/Orvex_SoftwareIdentityResource.h"

namespace test {
namespace {

constexpr utils::LogSource kLog{"FakeSiblings"};

class FakePort final : public Orvex_EthernetPort {
 public:
  FakePort(std::string identity, std::string className)
      : m_identity(std::move(identity)), m_className(std::move(className)) {}
  [[nodiscard]] std::string getClassName() const override { return m_className; }
  [[nodiscard]] std::string getIdentity() const override { return m_identity; }

 private:
  const std::string m_identity;
  const std::string m_className;
};

class FakeController final : public Orvex_PortController {
 public:
  FakeController(std::vector<std::string> ports, std::string className)
      : m_ports(std::move(ports)), m_className(std::move(className)) {}
  [[nodiscard]] std::string getClassName() const override { return m_className; }
  [[nodiscard]] bool ownsPort(const Orvex_EthernetPort& port) const override {
    return std::find(m_ports.begin(), m_ports.end(), port.getIdentity()) != m_ports.end();
  }

 private:
  const std::vector<std::string> m_ports;
  const std::string m_className;
};

class FakeSoftwareIdentity final : public Orvex_SoftwareIdentity {
 public:
  explicit FakeSoftwareIdentity(const Software& software)
      : m_identity(software.identity),
        m_imageKind(software.imageKind),
        m_className(software.className) {
    TargetTypes.setValue(software.targetTypes);
  }
  [[nodiscard]] std::string getClassName() const override { return m_className; }
  [[nodiscard]] std::string getIdentity() const override { return m_identity; }
  [[nodiscard]] std::uint32_t getImageKind() const override { return m_imageKind; }

  core::CimPropertyString DeviceID{"DeviceID", this};

 private:
  const std::string m_identity;
  const std::uint32_t m_imageKind;
  const std::string m_className;
};

class FakeResource final : public Orvex_SoftwareIdentityResource {
 public:
  FakeResource(std::string fileId, const std::string& uri) : m_fileId(std::move(fileId)) {
    AccessInfo.setValue(uri);
  }
  [[nodiscard]] std::string getFirmwareFileID() const override { return m_fileId; }

  core::CimPropertyString DeviceID{"DeviceID", this};

 private:
  const std::string m_fileId;
};

class FakeProfile final : public CIM_RegisteredProfile {
 public:
  explicit FakeProfile(const std::string& instanceId) {
    InstanceID.setValue(instanceId);
    InstanceID.setKey();
  }
  [[nodiscard]] std::string getClassName() const override { return "Orvex_RegisteredProfile"; }
};

class FakeProvider final : public core::InstanceProvider {
 public:
  explicit FakeProvider(const std::string& className)
      : InstanceProvider(className, {kLog, "test::FakeProvider::getInstances"}) {}

  using InstanceProvider::instances;

 protected:
  void refresh() override {}
};

class FakeAgent final : public core::CimAgent {
 public:
  FakeAgent() : CimAgent("Siblings") {}

  // The broker asks this first, of every agent and for every class.
  [[nodiscard]] bool hasClass(std::string className) override {
    m_requests.push_back(className);
    return CimAgent::hasClass(className);
  }

  std::vector<std::string> takeRequests() { return std::exchange(m_requests, {}); }

  // Returns the served instances of the class, which is served from now on.
  core::InstanceList& instancesOf(const std::string& className) {
    core::InstanceList*& instances = m_instances[className];
    if (instances == nullptr) {
      auto provider = std::make_unique<FakeProvider>(className);
      instances = &provider->instances();
      getClasses().add(provider.release());
    }
    return *instances;
  }

  void clear() {
    for (const auto& [className, instances] : m_instances) {
      instances->clear();
    }
  }

 private:
  std::map<std::string, core::InstanceList*> m_instances;
  std::vector<std::string> m_requests;
};

FakeAgent& agent() {
  static FakeAgent* const added = [] {
    static FakeAgent agent;
    core::GetCimBroker().addAgent(&agent);
    return &agent;
  }();
  return *added;
}

// Serves an instance whose key is its place.
template <class Instance>
std::string addNumbered(FakeSiblings& siblings, std::unique_ptr<Instance> instance) {
  const std::size_t place = agent().instancesOf(instance->getClassName()).size();
  instance->DeviceID.setValue(std::to_string(place));
  instance->DeviceID.setKey();
  return siblings.add(std::move(instance));
}

// Serves an instance that fills its properties itself.
template <class Instance>
std::string addFilled(FakeSiblings& siblings) {
  auto instance = std::make_unique<Instance>();
  instance->setPropertyValues();
  return siblings.add(std::move(instance));
}

}  // namespace

FakeSiblings::FakeSiblings() {
  static_cast<void>(agent());
}

FakeSiblings::~FakeSiblings() {
  agent().clear();
}

std::string FakeSiblings::addPort(const std::string& identity, const std::string& className) {
  return addNumbered(*this, std::make_unique<FakePort>(identity, className));
}

std::string FakeSiblings::addController(const std::vector<std::string>& ports,
                                        const std::string& className) {
  return addNumbered(*this, std::make_unique<FakeController>(ports, className));
}

std::string FakeSiblings::addSoftwareIdentity(const Software& software) {
  return addNumbered(*this, std::make_unique<FakeSoftwareIdentity>(software));
}

std::string FakeSiblings::addResource(const std::string& fileId, const std::string& uri) {
  return addNumbered(*this, std::make_unique<FakeResource>(fileId, uri));
}

std::string FakeSiblings::addRegisteredProfile(const std::string& instanceId) {
  return add(std::make_unique<FakeProfile>(instanceId));
}

std::string FakeSiblings::addJob(const std::string& target) {
  const auto number =
      static_cast<std::uint32_t>(agent().instancesOf(Orvex_ConcreteJob::kClassName).size() + 1);
  auto job = std::make_unique<Orvex_ConcreteJob>(target, number, agent::VerifiedImage{});
  job->InstanceID.setValue("Orvex:" + job->getInstanceId());
  job->InstanceID.setKey();
  return add(std::move(job));
}

std::string FakeSiblings::addService() {
  return addFilled<Orvex_SoftwareInstallationService>(*this);
}

std::string FakeSiblings::addCapabilities() {
  return addFilled<Orvex_SoftwareInstallationServiceCapabilities>(*this);
}

std::string FakeSiblings::add(std::unique_ptr<core::CimInstance> instance) {
  const std::string path = instance->getPath();
  agent().instancesOf(instance->getClassName()).add(instance.get());
  static_cast<void>(instance.release());
  return path;
}

void FakeSiblings::clear(const std::string& className) {
  agent().instancesOf(className).clear();
}

std::vector<std::string> FakeSiblings::takeRequests() {
  return agent().takeRequests();
}

}  // namespace test
