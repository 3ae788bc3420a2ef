// What an enumeration of a provider yields, asks for and logs.

#ifndef ORVEX_TESTS_AGENT_ENUMERATION_H_
#define ORVEX_TESTS_AGENT_ENUMERATION_H_

#include <gmock/gmock.h>
#include <string>
#include <utility>
#include <vector>

#include "core/CimClass.h"
#include "tests/agent/FakeMidApi.h"
#include "tests/agent/FakeSiblings.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Throws.h"

namespace test {

// A property's name and its value as text: "{1, 2}" for an array, "false" for a truth value.
using NamedValue = std::pair<std::string, std::string>;

// Returns the properties in force that are not null.
[[nodiscard]] std::vector<NamedValue> filledProperties(core::CimInstance& instance);
// Returns the names of the properties that are marked as keys, in order.
[[nodiscard]] std::vector<std::string> keyNames(core::CimInstance& instance);

// Returns all instances that the provider yields.
[[nodiscard]] std::vector<core::CimInstance*> instancesOf(core::CimClass& provider);

// The two instances that an association connects: their object paths, or themselves.
using Ends = std::pair<std::string, std::string>;
using Targets = std::pair<core::CimInstance*, core::CimInstance*>;

// Enumerates. Expects of each association that its path names both ends and nothing else, and that
// the broker finds each end by that.
[[nodiscard]] std::vector<Ends> enumerateEnds(core::CimClass& provider, const std::string& first,
                                              const std::string& second);
// The same for ends whose paths may be alike, without the expectations.
[[nodiscard]] std::vector<Targets> enumerateTargets(core::CimClass& provider,
                                                    const std::string& first,
                                                    const std::string& second);

// What the records of a provider's enumerations have in common.
struct EnumerationNames {
  std::string source;
  // The timed block; empty: named as the function that logs.
  std::string block = {};
};

// Expects that one enumeration was logged with just these messages, and a timed block that begins
// behind the first of them.
void expectEnumeration(const LogCapture& log, const EnumerationNames& names,
                       const std::vector<std::string>& messages);

// A provider whose one instance is made by the first enumeration.
template <class Provider, class Instance>
class SingleInstanceTest : public testing::Test {
 protected:
  explicit SingleInstanceTest(EnumerationNames names) : m_names(std::move(names)) {}

  // Returns the one instance that an enumeration yields.
  Instance& enumerate() {
    m_log.clear();
    const std::vector<core::CimInstance*> instances = instancesOf(m_provider);
    EXPECT_EQ(instances.size(), 1u);
    return dynamic_cast<Instance&>(*instances.at(0));
  }

  void expectServedUnder(const std::string& className) {
    EXPECT_EQ(m_provider.getName(), className);
    EXPECT_EQ(enumerate().getClassName(), className);
  }

  void expectTheFirstInstanceIsKept() {
    const Instance* const first = &enumerate();
    EXPECT_EQ(&enumerate(), first);
  }

  void expectRecords() {
    enumerate();
    expectEnumeration(m_log, m_names, {"getInstance", "create new instance", "return 1"});
    enumerate();
    expectEnumeration(m_log, m_names, {"getInstance", "return 1"});
  }

  LogCapture m_log;
  Provider m_provider;

 private:
  const EnumerationNames m_names;
};

// A provider of associations, with the names of the two references that they have.
template <class Provider>
class AssociationTest : public testing::Test {
 protected:
  AssociationTest(EnumerationNames names, std::string first, std::string second)
      : m_names(std::move(names)), m_first(std::move(first)), m_second(std::move(second)) {}

  std::vector<Ends> enumerate() {
    m_log.clear();
    return enumerateEnds(m_provider, m_first, m_second);
  }

  std::vector<Targets> enumerateTargets() {
    return test::enumerateTargets(m_provider, m_first, m_second);
  }

  // Returns the classes that an enumeration asks for.
  std::vector<std::string> requests() {
    m_siblings.takeRequests();
    static_cast<void>(m_provider.getInstances());
    return m_siblings.takeRequests();
  }

  // Of the last enumeration.
  void expectRecords(const std::vector<std::string>& messages) const {
    expectEnumeration(m_log, m_names, messages);
  }

  // Expects of each association that it holds its two references and nothing else.
  void expectReferencesOnly() {
    const std::vector<core::CimInstance*> associations = instancesOf(m_provider);
    EXPECT_THAT(associations, testing::Not(testing::IsEmpty()));
    for (core::CimInstance* association : associations) {
      EXPECT_THAT(filledProperties(*association),
                  testing::ElementsAre(testing::Key(m_first), testing::Key(m_second)));
    }
  }

  void expectRefusal(const std::string& condition) {
    EXPECT_THAT([this] { static_cast<void>(enumerate()); },
                ThrowsExactly<utils::Exception>(IsAssertion(m_names.source, condition)));
    expectRecords({"getInstances"});
  }

  // Expects that an enumeration that is refused leaves nothing of the one before.
  void expectRefusalEmptiesTheList(const std::string& condition) {
    core::InstanceList::Iterator cursor = m_provider.getInstances();
    EXPECT_NE(cursor.first(), nullptr);
    m_siblings.addService();
    expectRefusal(condition);
    EXPECT_EQ(cursor.first(), nullptr);
  }

  LogCapture m_log;
  FakeMidApi m_midApi;
  FakeSiblings m_siblings;
  Provider m_provider;

 private:
  const EnumerationNames m_names;
  const std::string m_first;
  const std::string m_second;
};

}  // namespace test

#endif  // ORVEX_TESTS_AGENT_ENUMERATION_H_
