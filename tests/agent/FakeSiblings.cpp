#include "tests/agent/FakeSiblings.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "core/CimBroker.h"
#include "core/InstanceProvider.h"
#include "inventory/Orvex_EthernetPort.h"
#include "inventory/Orvex_PortController.h"
#include "inventory/Orvex_SoftwareIdentity.h"

namespace test {
namespace {

constexpr utils::LogSource kLog{"FakeSiblings"};

class FakePort final : public Orvex_EthernetPort {
 public:
  explicit FakePort(std::string identity) : m_identity(std::move(identity)) {}
  [[nodiscard]] std::string getIdentity() const override { return m_identity; }

 private:
  const std::string m_identity;
};

class FakeController final : public Orvex_PortController {
 public:
  explicit FakeController(std::vector<std::string> ports) : m_ports(std::move(ports)) {}
  [[nodiscard]] bool ownsPort(const Orvex_EthernetPort& port) const override {
    return std::find(m_ports.begin(), m_ports.end(), port.getIdentity()) != m_ports.end();
  }

 private:
  const std::vector<std::string> m_ports;
};

class FakeSoftwareIdentity final : public Orvex_SoftwareIdentity {
 public:
  [[nodiscard]] std::string getIdentity() const override { return "firmware"; }
  [[nodiscard]] std::uint32_t getImageKind() const override { return kFirmwareImage; }

  core::CimPropertyString DeviceID{"DeviceID", this};
};

class FakeProvider final : public core::InstanceProvider {
 public:
  explicit FakeProvider(const char* className)
      : InstanceProvider(className, {kLog, "test::FakeProvider::getInstances"}) {}

  using InstanceProvider::instances;

 protected:
  void refresh() override {}
};

class FakeAgent final : public core::CimAgent {
 public:
  FakeAgent()
      : CimAgent("Siblings"),
        ports(addProvider(Orvex_EthernetPort::kClassName)),
        controllers(addProvider(Orvex_PortController::kClassName)),
        identities(addProvider(Orvex_SoftwareIdentity::kClassName)) {}

  core::InstanceList& ports;
  core::InstanceList& controllers;
  core::InstanceList& identities;

 private:
  core::InstanceList& addProvider(const char* className) {
    auto provider = std::make_unique<FakeProvider>(className);
    core::InstanceList& instances = provider->instances();
    getClasses().add(provider.release());
    return instances;
  }
};

FakeAgent& agent() {
  static FakeAgent* const added = [] {
    static FakeAgent agent;
    core::GetCimBroker().addAgent(&agent);
    return &agent;
  }();
  return *added;
}

template <class Instance>
std::string serve(core::InstanceList& list, std::unique_ptr<Instance> instance) {
  instance->DeviceID.setValue(std::to_string(list.size()));
  instance->DeviceID.setKey();
  const std::string path = instance->getPath();
  list.add(instance.release());
  return path;
}

}  // namespace

FakeSiblings::FakeSiblings() {
  static_cast<void>(agent());
}

FakeSiblings::~FakeSiblings() {
  for (core::InstanceList* list : {&agent().ports, &agent().controllers, &agent().identities}) {
    list->clear();
  }
}

std::string FakeSiblings::addPort(const std::string& identity) {
  return serve(agent().ports, std::make_unique<FakePort>(identity));
}

std::string FakeSiblings::addController(const std::vector<std::string>& ports) {
  return serve(agent().controllers, std::make_unique<FakeController>(ports));
}

std::string FakeSiblings::addSoftwareIdentity() {
  return serve(agent().identities, std::make_unique<FakeSoftwareIdentity>());
}

}  // namespace test
