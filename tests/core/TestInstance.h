// Instances and providers that tests of the object model are made of.

#ifndef ORVEX_TESTS_CORE_TESTINSTANCE_H_
#define ORVEX_TESTS_CORE_TESTINSTANCE_H_

#include <string>
#include <utility>
#include <vector>

#include "core/CimClass.h"
#include "core/CimInstance.h"
#include "core/CimPropertyTypes.h"
#include "core/InstanceList.h"

namespace test {

// An instance of a class of the test's choice with a key, Name, and a property that is none.
class Instance : public core::CimInstance {
 public:
  explicit Instance(const std::string& name = "", std::string className = "Test_Thing")
      : m_className(std::move(className)) {
    Name.setKey();
    Name.setValue(name);
  }
  // Counts its destruction in `deaths`.
  Instance(const std::string& name, int& deaths) : Instance(name) { m_deaths = &deaths; }
  ~Instance() override {
    if (m_deaths != nullptr) {
      ++*m_deaths;
    }
  }

  [[nodiscard]] std::string getClassName() const override { return m_className; }

  core::CimPropertyString Name{"Name", this};
  core::CimPropertyUint16 Size{"Size", this};

 private:
  std::string m_className;
  int* m_deaths = nullptr;
};

// A provider that serves what the test put into its list.
class Provider : public core::CimClass {
 public:
  explicit Provider(std::string name) : m_name(std::move(name)) {}
  // Enters its name into `deaths` when it dies.
  Provider(std::string name, std::vector<std::string>& deaths)
      : m_name(std::move(name)), m_deaths(&deaths) {}
  ~Provider() override {
    if (m_deaths != nullptr) {
      m_deaths->push_back(m_name);
    }
  }

  // Adds an instance and returns it.
  Instance* serve(const std::string& instanceName) {
    auto* instance = new Instance(instanceName, m_name);
    m_instances.add(instance);
    return instance;
  }

  [[nodiscard]] std::string getName() const override { return m_name; }
  [[nodiscard]] core::InstanceList::Iterator getInstances() override {
    return m_instances.iterator(false);
  }

 private:
  std::string m_name;
  core::InstanceList m_instances;
  std::vector<std::string>* m_deaths = nullptr;
};

// Returns what a walk with the cursor yields.
template <class Cursor>
auto walk(Cursor cursor) {
  std::vector<decltype(cursor.first())> elements;
  for (auto* element = cursor.first(); element != nullptr; element = cursor.next()) {
    elements.push_back(element);
  }
  return elements;
}

}  // namespace test

#endif  // ORVEX_TESTS_CORE_TESTINSTANCE_H_
