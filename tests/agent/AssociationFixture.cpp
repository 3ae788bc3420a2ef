#include "tests/agent/AssociationFixture.h"

#include <utility>

#include "tests/support/Throws.h"

namespace test {

AssociationFixture::AssociationFixture(std::unique_ptr<core::CimClass> provider,
                                       EnumerationNames names, std::string first,
                                       std::string second)
    : m_names(std::move(names)),
      m_first(std::move(first)),
      m_second(std::move(second)),
      m_ownedProvider(std::move(provider)) {}

std::vector<Ends> AssociationFixture::enumerate() {
  m_log.clear();
  return enumerateEnds(m_provider, m_first, m_second);
}

std::vector<Targets> AssociationFixture::enumerateTargets() {
  return test::enumerateTargets(m_provider, m_first, m_second);
}

std::vector<std::string> AssociationFixture::requests() {
  m_siblings.takeRequests();
  static_cast<void>(m_provider.getInstances());
  return m_siblings.takeRequests();
}

void AssociationFixture::expectRecords(const std::vector<std::string>& messages) const {
  expectEnumeration(m_log, m_names, messages);
}

void AssociationFixture::expectReferencesOnly() {
  const std::vector<core::CimInstance*> associations = instancesOf(m_provider);
  EXPECT_THAT(associations, testing::Not(testing::IsEmpty()));
  for (core::CimInstance* association : associations) {
    EXPECT_THAT(filledProperties(*association),
                testing::ElementsAre(testing::Key(m_first), testing::Key(m_second)));
  }
}

void AssociationFixture::expectRefusal(const std::string& condition) {
  EXPECT_THAT([this] { static_cast<void>(enumerate()); },
              ThrowsExactly<utils::Exception>(IsAssertion(m_names.source, condition)));
  expectRecords({"getInstances"});
}

void AssociationFixture::expectRefusalEmptiesTheList(const std::string& condition) {
  core::InstanceList::Iterator cursor = m_provider.getInstances();
  EXPECT_NE(cursor.first(), nullptr);
  m_siblings.addService();
  expectRefusal(condition);
  EXPECT_EQ(cursor.first(), nullptr);
}

}  // namespace test
