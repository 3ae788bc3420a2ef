// An agent that serves adapters, firmware files and installed components as the test makes them.

#ifndef ORVEX_TESTS_CLIENT_FAKEINVENTORY_H_
#define ORVEX_TESTS_CLIENT_FAKEINVENTORY_H_

#include <cstdint>
#include <memory>
#include <string>

#include "core/CimPropertyRef.h"
#include "tests/client/FakeAgent.h"

namespace test {

class FakeDevice : public FakeInstance {
 public:
  FakeDevice(const std::string& className, const std::string& identifier)
      : FakeInstance(className, identifier) {
    DeviceID.setValue(identifier);
  }

  core::CimPropertyString DeviceID{"DeviceID", this};
};

class FakeIdentity : public FakeInstance {
 public:
  FakeIdentity(const std::string& id, const std::string& name, std::uint32_t imageKind)
      : FakeInstance("Orvex_SoftwareIdentity", id) {
    Name.setValue(name);
    ImageKind.setValue(imageKind);
  }

  core::CimPropertyString Name{"Name", this};
  core::CimPropertyString VersionString{"VersionString", this};
  core::CimPropertyString_arr TargetTypes{"TargetTypes", this};
  core::CimPropertyString_arr IdentityInfoType{"IdentityInfoType", this};
  core::CimPropertyString_arr IdentityInfoValue{"IdentityInfoValue", this};
  core::CimPropertyUint32 ImageKind{"ImageKind", this};
};

class FakeComparison : public FakeInstance {
 public:
  FakeComparison(core::CimInstance& identity, core::CimInstance& adapter, const std::string& state)
      : FakeInstance("Orvex_ElementSoftwareIdentity", identity.getPath() + adapter.getPath()) {
    Antecedent.setTarget(&identity);
    Dependent.setTarget(&adapter);
    Comparison.setValue(state);
  }

  core::CimPropertyRef Antecedent{"Antecedent", this};
  core::CimPropertyRef Dependent{"Dependent", this};
  core::CimPropertyString Comparison{"Comparison", this};
};

class FakeInventory : public FakeAgent {
 public:
  // Each returns what it added, which the agent owns.
  FakeDevice& addAdapter(const std::string& identifier) {
    return add(m_adapters, std::make_unique<FakeDevice>("Orvex_PortController", identifier));
  }
  FakeIdentity& addFile(const std::string& path) {
    constexpr std::uint32_t kFirmwareFile = 4;
    return add(m_identities,
               std::make_unique<FakeIdentity>("Orvex:FirmwareFile:" + path, path, kFirmwareFile));
  }
  FakeIdentity& addComponent(const std::string& place) {
    constexpr std::uint32_t kComponent = 2;
    return add(m_identities, std::make_unique<FakeIdentity>("Orvex:InstalledFirmware:" + place,
                                                            place, kComponent));
  }
  FakeComparison& compare(FakeIdentity& identity, FakeDevice& adapter, const std::string& state) {
    return add(m_comparisons, std::make_unique<FakeComparison>(identity, adapter, state));
  }

  [[nodiscard]] FakeProvider& adapters() { return m_adapters; }
  [[nodiscard]] FakeProvider& identities() { return m_identities; }

 private:
  template <class Instance>
  static Instance& add(FakeProvider& provider, std::unique_ptr<Instance> instance) {
    Instance& added = *instance;
    provider.add(std::move(instance));
    return added;
  }

  FakeProvider& m_adapters = serve("Orvex_PortController");
  FakeProvider& m_identities = serve("Orvex_SoftwareIdentity");
  FakeProvider& m_comparisons = serve("Orvex_ElementSoftwareIdentity");
};

}  // namespace test

#endif  // ORVEX_TESTS_CLIENT_FAKEINVENTORY_H_
