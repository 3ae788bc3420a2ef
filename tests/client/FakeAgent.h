// An agent with one class whose instances the test makes, and a job class whose jobs move on at
// each look.

#ifndef ORVEX_TESTS_CLIENT_FAKEAGENT_H_
#define ORVEX_TESTS_CLIENT_FAKEAGENT_H_

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "core/CimAgent.h"
#include "core/CimPropertyTypes.h"
#include "core/InstanceProvider.h"

namespace test {

// An instance of a class that is named by the test, with one key.
class FakeInstance : public core::CimInstance {
 public:
  FakeInstance(std::string className, const std::string& id) : m_className(std::move(className)) {
    InstanceID.setKey();
    InstanceID.setValue(id);
  }

  [[nodiscard]] std::string getClassName() const override { return m_className; }

  core::CimPropertyString InstanceID{"InstanceID", this};

 private:
  const std::string m_className;
};

// A job that takes the next of its states at each enumeration and stays in the last.
class FakeJob : public FakeInstance {
 public:
  struct Look {
    std::uint16_t state;
    std::uint16_t percent;
  };

  explicit FakeJob(std::vector<Look> looks)
      : FakeInstance("Orvex_ConcreteJob", "job 1"), m_looks(std::move(looks)) {
    ErrorCode.setValue(0);
    ErrorDescription.setValue("");
  }

  void moveOn() {
    JobState.setValue(m_looks[m_next].state);
    PercentComplete.setValue(m_looks[m_next].percent);
    m_next = std::min(m_next + 1, m_looks.size() - 1);
  }

  core::CimPropertyUint16 JobState{"JobState", this};
  core::CimPropertyUint16 PercentComplete{"PercentComplete", this};
  core::CimPropertyUint16 ErrorCode{"ErrorCode", this};
  core::CimPropertyString ErrorDescription{"ErrorDescription", this};

 private:
  const std::vector<Look> m_looks;
  std::size_t m_next = 0;
};

// Serves instances that it owns; `onEnumeration` runs before each enumeration.
class FakeProvider : public core::InstanceProvider {
 public:
  explicit FakeProvider(const std::string& className)
      : InstanceProvider(className, {{"FakeAgent"}, "test::FakeProvider::getInstances"}) {}

  void add(std::unique_ptr<core::CimInstance> instance) { instances().add(instance.release()); }
  // Deletes all instances.
  void clear() { instances().clear(); }

  std::function<void()> onEnumeration = [] {};

 protected:
  void refresh() override { onEnumeration(); }
};

class FakeAgent : public core::CimAgent {
 public:
  explicit FakeAgent(const std::string& name = "Fake") : CimAgent(name) {}

  // Returns the provider, which the agent owns.
  FakeProvider& serve(const std::string& className) {
    auto* provider = new FakeProvider(className);
    getClasses().add(provider);
    return *provider;
  }
};

}  // namespace test

#endif  // ORVEX_TESTS_CLIENT_FAKEAGENT_H_
