// A small model for the server to serve: devices and ports with links between them, a profile to
// which they conform, and jobs.

#ifndef ORVEX_TESTS_WBEM_MODEL_H_
#define ORVEX_TESTS_WBEM_MODEL_H_

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "cim/CIM_ConcreteJob.h"
#include "cim/CIM_Dependency.h"
#include "cim/CIM_ElementConformsToProfile.h"
#include "cim/CIM_ManagedElement.h"
#include "cim/CIM_RegisteredProfile.h"
#include "core/CimKeys.h"
#include "core/CimPropertyTypes.h"
#include "core/ClassDeclarer.h"
#include "core/DeclareClass.h"
#include "tests/client/FakeAgent.h"

namespace test {

// What the tests make a method do.
using Invocation = std::function<std::uint32_t(
    core::CimPropertyList& in, core::CimPropertyList& out, core::CimInstance** job)>;

class Device : public CIM_ManagedElement {
 public:
  static constexpr const char* kClassName = "Test_Device";
  using Superclass = CIM_ManagedElement;

  template <class Self>
  static auto getKeys(Self& self) {
    return core::keys(self.InstanceID, self.Slot);
  }

  [[nodiscard]] static std::vector<core::MethodDeclaration> getMethods() {
    using enum core::ParameterDirection;
    return {{"Try",
             core::kCimUint32,
             {{"Number", core::kCimUint16, In, ""},
              {"Wide", core::kCimUint64, In, ""},
              {"Small", core::kCimSint8, In, ""},
              {"Flag", core::kCimBoolean, In, ""},
              {"When", core::kCimDatetime, In, ""},
              {"Text", core::kCimString, In, ""},
              {"Numbers", core::kCimUint16Array, In, ""},
              {"Texts", core::kCimStringArray, In, ""},
              {"Peer", core::kCimReference, In, "CIM_ManagedElement"},
              {"Job", core::kCimReference, Job, "CIM_ConcreteJob"},
              {"Answer", core::kCimString, Out, ""},
              {"Answers", core::kCimUint16Array, Out, ""}},
             kClassName},
            {"Unregistered", core::kCimUint32, {}, kClassName}};
  }

  Device() = default;
  Device(const std::string& id, std::uint16_t slot, Invocation* invocation = nullptr)
      : m_invocation(invocation) {
    InstanceID.setValue(id);
    Slot.setValue(slot);
    core::markKeys(*this);
  }

  // To be called by the constructors of what can be invoked.
  void registerMethods() { addMethod("Try", static_cast<Method>(&Device::tryIt)); }

  [[nodiscard]] std::string getClassName() const override { return kClassName; }

  core::CimPropertyUint16 Slot{"Slot", this};
  core::CimPropertyString Name{"Name", this};

 private:
  std::uint32_t tryIt(core::CimPropertyList* in, core::CimPropertyList* out,
                      core::CimInstance** job) {
    return (*m_invocation)(*in, *out, job);
  }

  Invocation* m_invocation = nullptr;
};

class Port : public Device {
 public:
  static constexpr const char* kClassName = "Test_Port";
  using Superclass = Device;

  using Device::Device;

  [[nodiscard]] std::string getClassName() const override { return kClassName; }

  core::CimPropertyUint64 Speed{"Speed", this};
};

class Link : public CIM_Dependency {
 public:
  static constexpr const char* kClassName = "Test_Link";
  using Superclass = CIM_Dependency;

  Link() = default;
  Link(core::CimInstance* antecedent, core::CimInstance* dependent) {
    Antecedent.setTarget(antecedent);
    Dependent.setTarget(dependent);
    core::markKeys(*this);
  }

  [[nodiscard]] std::string getClassName() const override { return kClassName; }

  core::CimPropertyString Kind{"Kind", this};
};

class Profile : public CIM_RegisteredProfile {
 public:
  static constexpr const char* kClassName = "Test_RegisteredProfile";
  using Superclass = CIM_RegisteredProfile;

  explicit Profile(const std::string& id) {
    InstanceID.setValue(id);
    core::markKeys(*this);
  }

  [[nodiscard]] std::string getClassName() const override { return kClassName; }
};

class Conformance : public CIM_ElementConformsToProfile {
 public:
  static constexpr const char* kClassName = "Test_ElementConformsToProfile";
  using Superclass = CIM_ElementConformsToProfile;

  Conformance(core::CimInstance* profile, core::CimInstance* element) {
    ConformantStandard.setTarget(profile);
    ManagedElement.setTarget(element);
    core::markKeys(*this);
  }

  [[nodiscard]] std::string getClassName() const override { return kClassName; }
};

class Job : public CIM_ConcreteJob {
 public:
  static constexpr const char* kClassName = "Test_Job";
  using Superclass = CIM_ConcreteJob;

  Job(const std::string& id, std::uint16_t state) {
    InstanceID.setValue(id);
    JobState.setValue(state);
    core::markKeys(*this);
  }

  [[nodiscard]] std::string getClassName() const override { return kClassName; }
};

// Serves two devices ("a" in slot 1, "b" in slot 2), a port ("p" in slot 1), links a-p and a-b, the
// profile "profile" to which "a" conforms, and one job of each state from 2 to 12.
class ModelAgent : public FakeAgent, public core::ClassDeclarer {
 public:
  ModelAgent() {
    Device& first = add(devices, std::make_unique<Device>("a", std::uint16_t{1}, &invocation));
    first.registerMethods();
    first.Name.setValue("first & best");
    first.Name.setModifyEnabled(true);
    first.Name.setMaxLength(20);
    Device& second = add(devices, std::make_unique<Device>("b", std::uint16_t{2}, &invocation));
    Port& port = add(ports, std::make_unique<Port>("p", std::uint16_t{1}));
    port.Speed.setValue(25'000'000'000);
    add(links, std::make_unique<Link>(&first, &port)).Kind.setValue("owns");
    add(links, std::make_unique<Link>(&first, &second)).Kind.setValue("beside");
    Profile& profile = add(profiles, std::make_unique<Profile>("profile"));
    add(conformances, std::make_unique<Conformance>(&profile, &first));
    for (std::uint16_t state = 2; state <= 12; ++state) {
      add(jobs, std::make_unique<Job>("job " + std::to_string(state), state));
    }
  }

  void declareClasses(core::CimSchema& schema) const override {
    core::declareClass<Device>(schema);
    core::declareClass<Port>(schema);
    core::declareClass<Link>(schema);
    core::declarePlainClasses<Profile, Conformance, Job>(schema);
  }

  // Returns what it added, which the agent owns.
  template <class Instance>
  static Instance& add(FakeProvider& provider, std::unique_ptr<Instance> instance) {
    Instance& added = *instance;
    provider.add(std::move(instance));
    return added;
  }

  FakeProvider& devices = serve(Device::kClassName);
  FakeProvider& ports = serve(Port::kClassName);
  FakeProvider& links = serve(Link::kClassName);
  FakeProvider& profiles = serve(Profile::kClassName);
  FakeProvider& conformances = serve(Conformance::kClassName);
  FakeProvider& jobs = serve(Job::kClassName);

  // What the method Try of device "a" does.
  Invocation invocation = [](core::CimPropertyList&, core::CimPropertyList&, core::CimInstance**) {
    return 0U;
  };
};

}  // namespace test

#endif  // ORVEX_TESTS_WBEM_MODEL_H_
