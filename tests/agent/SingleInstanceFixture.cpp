#include "tests/agent/SingleInstanceFixture.h"

#include <utility>
#include <vector>

namespace test {

SingleInstanceFixture::SingleInstanceFixture(std::unique_ptr<core::CimClass> provider,
                                             EnumerationNames names)
    : m_names(std::move(names)), m_provider(std::move(provider)) {}

core::CimInstance& SingleInstanceFixture::enumerate() {
  m_log.clear();
  const std::vector<core::CimInstance*> instances = instancesOf(*m_provider);
  EXPECT_EQ(instances.size(), 1u);
  return *instances.at(0);
}

void SingleInstanceFixture::expectServedUnder(const std::string& className) {
  EXPECT_EQ(m_provider->getName(), className);
  EXPECT_EQ(enumerate().getClassName(), className);
}

void SingleInstanceFixture::expectTheFirstInstanceIsKept() {
  core::CimInstance* const first = &enumerate();
  const std::vector<NamedValue> values = filledProperties(*first);
  EXPECT_EQ(&enumerate(), first);
  EXPECT_EQ(filledProperties(*first), values);
}

void SingleInstanceFixture::expectRecords() {
  enumerate();
  expectEnumeration(m_log, m_names, {"getInstance", "create new instance", "return 1"});
  enumerate();
  expectEnumeration(m_log, m_names, {"getInstance", "return 1"});
}

}  // namespace test
