#include <gmock/gmock.h>
#include <ostream>

#include "client/Associations.h"
#include "client/BrokerConnection.h"
#include "client/Fault.h"
#include "core/CimPropertyRef.h"
#include "tests/client/FakeAgent.h"

namespace client {

bool operator==(const Reference& left, const Reference& right) {
  return left.role == right.role && left.path == right.path;
}

void PrintTo(const Reference& reference, std::ostream* out) {
  *out << reference.role << " -> " << reference.path;
}

}  // namespace client

namespace {

using client::Association;
using client::Reference;
using testing::AllOf;
using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;

constexpr const char* kA = "Thing.InstanceID=\"a\"";
constexpr const char* kB = "Thing.InstanceID=\"b\"";

class Link : public test::FakeInstance {
 public:
  using FakeInstance::FakeInstance;

  core::CimPropertyRef Left{"Left", this};
  core::CimPropertyRef Right{"Right", this};
};

class AssociationsTest : public testing::Test {
 protected:
  AssociationsTest() {
    m_broker.addAgent(&m_agent);
    m_things.onEnumeration = [this] { rebuildThings(); };
    m_things.onEnumeration();
  }

  // Makes every thing anew, as a provider does whose enumeration ends the life of earlier
  // instances.
  void rebuildThings() {
    m_things.clear();
    for (const char* id : {"a", "b"}) {
      m_things.add(std::make_unique<test::FakeInstance>("Thing", id));
    }
  }

  // Adds an association that leads to things, each named by its path; an empty one is NULL.
  void link(test::FakeProvider& provider, const std::string& className, const std::string& id,
            const std::string& left, const std::string& right) {
    auto association = std::make_unique<Link>(className, id);
    if (!left.empty()) {
      association->Left.setText(left);
    }
    if (!right.empty()) {
      association->Right.setText(right);
    }
    provider.add(std::move(association));
  }

  client::ObjectReferences find(const std::string& path) {
    return client::findReferences(m_connection, core::CimPath(path));
  }

  core::CimBroker m_broker;
  client::BrokerConnection m_connection{m_broker};
  test::FakeAgent m_agent;
  test::FakeProvider& m_links = m_agent.serve("Link");
  test::FakeProvider& m_bonds = m_agent.serve("Bond");
  test::FakeProvider& m_things = m_agent.serve("Thing");
};

auto isAssociation(const std::string& path, const std::string& role,
                   const testing::Matcher<std::vector<Reference>>& others) {
  return AllOf(Field(&Association::path, path), Field(&Association::role, role),
               Field(&Association::others, others));
}

TEST_F(AssociationsTest, AreThoseOfAnyClassThatReferToTheInstance) {
  link(m_links, "Link", "1", kA, kB);
  link(m_links, "Link", "2", kB, kB);
  link(m_bonds, "Bond", "3", kB, kA);
  const client::ObjectReferences object = find(kA);
  EXPECT_EQ(object.path, kA);
  EXPECT_THAT(object.own, IsEmpty());
  EXPECT_THAT(
      object.associations,
      ElementsAre(
          isAssociation("Bond.InstanceID=\"3\"", "Right", ElementsAre(Reference{"Left", kB})),
          isAssociation("Link.InstanceID=\"1\"", "Left", ElementsAre(Reference{"Right", kB}))));
  EXPECT_EQ(object.associations[0].className, "Bond");
}

TEST_F(AssociationsTest, ComeOnceForEachReferenceThatLeadsThere) {
  link(m_links, "Link", "1", kA, kA);
  EXPECT_THAT(
      find(kA).associations,
      ElementsAre(
          isAssociation("Link.InstanceID=\"1\"", "Left", ElementsAre(Reference{"Right", kA})),
          isAssociation("Link.InstanceID=\"1\"", "Right", ElementsAre(Reference{"Left", kA}))));
}

TEST_F(AssociationsTest, LeadNowhereWhereAReferenceIsNull) {
  link(m_links, "Link", "1", kA, "");
  EXPECT_THAT(find(kA).associations,
              ElementsAre(isAssociation("Link.InstanceID=\"1\"", "Left", IsEmpty())));
}

TEST_F(AssociationsTest, TellTheReferencesOfAnAssociationItself) {
  link(m_links, "Link", "1", kA, kB);
  link(m_bonds, "Bond", "2", "Link.InstanceID=\"1\"", kA);
  const client::ObjectReferences object = find("Link.InstanceID=\"1\"");
  EXPECT_THAT(object.own, ElementsAre(Reference{"Left", kA}, Reference{"Right", kB}));
  EXPECT_THAT(object.associations, ElementsAre(isAssociation("Bond.InstanceID=\"2\"", "Left",
                                                             ElementsAre(Reference{"Right", kA}))));
}

TEST_F(AssociationsTest, AreNoneWhereNothingRefersToTheInstance) {
  link(m_links, "Link", "1", kB, kB);
  EXPECT_THAT(find(kA).associations, IsEmpty());
}

TEST_F(AssociationsTest, CopyWhatTheNextEnumerationInvalidates) {
  m_links.onEnumeration = [this] {
    m_links.clear();
    auto association = std::make_unique<Link>("Link", "1");
    core::InstanceList::Iterator things = m_broker.getInstances("Thing");
    association->Left.setTarget(things.first());
    association->Right.setTarget(things.next());
    m_links.add(std::move(association));
  };
  const client::ObjectReferences object = find(kA);
  EXPECT_THAT(object.associations, ElementsAre(isAssociation("Link.InstanceID=\"1\"", "Left",
                                                             ElementsAre(Reference{"Right", kB}))));
}

TEST_F(AssociationsTest, AreRefusedForAnInstanceThatIsNotThere) {
  EXPECT_THROW(static_cast<void>(find("Thing.InstanceID=\"c\"")), client::Fault);
  EXPECT_THROW(static_cast<void>(find("Nothing.InstanceID=\"a\"")), client::Fault);
}

}  // namespace
