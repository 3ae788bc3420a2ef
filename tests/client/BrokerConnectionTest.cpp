#include <gmock/gmock.h>

#include "client/BrokerConnection.h"
#include "client/Fault.h"
#include "core/CimPropertyRef.h"
#include "core/ClassDeclarer.h"
#include "tests/client/FakeService.h"
#include "tests/support/LogCapture.h"

namespace {

using client::PropertySnapshot;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;

constexpr const char* kPath = "Thing.InstanceID=\"a\"";

class Link : public test::FakeInstance {
 public:
  explicit Link(const std::string& target) : FakeInstance("Link", "to " + target) {
    Target.setText(target);
  }

  core::CimPropertyRef Target{"Target", this};
};

class BrokerConnectionTest : public testing::Test {
 protected:
  BrokerConnectionTest() {
    m_things.add(std::make_unique<test::FakeInstance>("Thing", "a"));
    m_second.serve("Thing");
    m_broker.addAgent(&m_first);
    m_broker.addAgent(&m_second);
  }

  core::CimBroker m_broker;
  test::FakeAgent m_first{"First"};
  test::FakeAgent m_second{"Second"};
  test::FakeProvider& m_things = m_first.serve("Thing");
  test::FakeProvider& m_links = m_first.serve("Link");
  client::BrokerConnection m_connection{m_broker};
};

TEST_F(BrokerConnectionTest, NamesEachClassOnceWithItsAgents) {
  EXPECT_THAT(m_connection.getClasses(),
              ElementsAre(Pair("Link", ElementsAre("First")),
                          Pair("Thing", ElementsAre("First", "Second"))));
}

TEST_F(BrokerConnectionTest, CopiesInstances) {
  const client::Instances instances = m_connection.findInstances("Thing").value();
  m_things.clear();
  ASSERT_THAT(instances, SizeIs(1));
  EXPECT_EQ(instances[0].className, "Thing");
  EXPECT_EQ(instances[0].path, kPath);
  ASSERT_THAT(instances[0].properties, SizeIs(1));
  EXPECT_EQ(instances[0].properties[0].name, "InstanceID");
  EXPECT_EQ(instances[0].value<std::string>("InstanceID"), "a");
  EXPECT_EQ(instances[0].value<std::string>("Other", "none"), "none");
}

TEST_F(BrokerConnectionTest, TellsNoInstancesFromNoClass) {
  EXPECT_THAT(m_connection.findInstances("Link").value(), IsEmpty());
  EXPECT_FALSE(m_connection.findInstances("Nothing"));
}

TEST_F(BrokerConnectionTest, FindsAnInstanceByItsPath) {
  EXPECT_EQ(m_connection.findInstance(kPath).value().path, kPath);
  EXPECT_FALSE(m_connection.findInstance("Thing.InstanceID=\"b\""));
}

TEST_F(BrokerConnectionTest, FindsWhatRefersToAnInstance) {
  m_links.add(std::make_unique<Link>(kPath));
  m_links.add(std::make_unique<Link>("Thing.InstanceID=\"b\""));
  const client::Instances links = m_connection.findReferencing(kPath);
  ASSERT_THAT(links, SizeIs(1));
  EXPECT_EQ(links[0].value<std::string>("Target"), kPath);
  EXPECT_EQ(links[0].properties[1].kind, PropertySnapshot::Kind::Reference);
}

TEST_F(BrokerConnectionTest, CallsAMethodAndGivesItsOutputs) {
  auto service = std::make_unique<test::FakeService>();
  service->characteristics = {7, 9};
  const std::string path = service->getPath();
  m_first.serve("Orvex_SoftwareInstallationService").add(std::move(service));
  core::CimPropertyUint16_arr characteristics("InstallCharacteristics", nullptr);
  core::CimPropertyList in;
  core::CimPropertyList out;
  out.add(&characteristics);
  const client::MethodAnswer answer =
      m_connection.invoke(path, "CheckSoftwareIdentity", in, out, {});
  EXPECT_EQ(answer.returnValue, 0U);
  ASSERT_THAT(answer.outputs, SizeIs(1));
  EXPECT_EQ(answer.outputs[0].value, client::Value(std::vector<int>{7, 9}));
}

TEST_F(BrokerConnectionTest, CallsNoMethodOfAnInstanceThatIsNotThere) {
  core::CimPropertyList none;
  try {
    static_cast<void>(m_connection.invoke("Thing.InstanceID=\"b\"", "M", none, none, {}));
    FAIL() << "called a method of nothing";
  } catch (const client::Fault& fault) {
    EXPECT_STREQ(fault.what(),
                 "there is no instance Thing.InstanceID=\"b\"; 'quorvel instances Thing' shows "
                 "what there is");
  }
}

// Serves classes below one that it declares only: Base, then Second and First.
class DeclaringAgent : public test::FakeAgent, public core::ClassDeclarer {
 public:
  DeclaringAgent() : FakeAgent("Declaring") {
    m_second.add(std::make_unique<test::FakeInstance>("Second_Part", "2"));
    m_first.add(std::make_unique<test::FakeInstance>("First_Part", "1"));
  }

  void declareClasses(core::CimSchema& schema) const override {
    const core::PropertyDeclaration key{"InstanceID", core::kCimString, true, "", "Base_Part"};
    schema.add({"Base_Part", "", false, {key}, {}});
    schema.add({"Second_Part", "Base_Part", false, {key}, {}});
    schema.add({"First_Part", "Base_Part", false, {key}, {}});
    schema.add({"Empty_Part", "", false, {key}, {}});
  }

 private:
  test::FakeProvider& m_first = serve("First_Part");
  test::FakeProvider& m_second = serve("Second_Part");
};

class BrokerConnectionWithSchemaTest : public BrokerConnectionTest {
 protected:
  BrokerConnectionWithSchemaTest() { m_broker.addAgent(&m_declaring); }

  DeclaringAgent m_declaring;
};

TEST_F(BrokerConnectionWithSchemaTest, FindsTheInstancesOfTheClassesBelowInTheOrderOfTheSchema) {
  const client::Instances instances = m_connection.findInstances("Base_Part").value();
  ASSERT_THAT(instances, SizeIs(2));
  EXPECT_EQ(instances[0].className, "Second_Part");
  EXPECT_EQ(instances[1].className, "First_Part");
}

TEST_F(BrokerConnectionWithSchemaTest, HasNoInstancesOfAClassThatIsDeclaredAlone) {
  EXPECT_THAT(m_connection.findInstances("Empty_Part").value(), IsEmpty());
}

TEST_F(BrokerConnectionWithSchemaTest, FindsWhatThereIsToSayOfAClass) {
  const std::optional<client::ClassDescription> base = m_connection.findClass("base_part");
  ASSERT_TRUE(base);
  EXPECT_EQ(base->name, "Base_Part");
  EXPECT_TRUE(base->properties.at(0).isKey);
  EXPECT_FALSE(m_connection.findClass("Thing"));
  EXPECT_FALSE(m_connection.findClass(""));
}

TEST_F(BrokerConnectionWithSchemaTest, TakesNamesInAnyCase) {
  EXPECT_THAT(m_connection.findInstances("thing").value(), SizeIs(1));
  EXPECT_THAT(m_connection.findInstances("base_part").value(), SizeIs(2));
  const std::string path = "First_Part.InstanceID=\"1\"";
  EXPECT_EQ(m_connection.findInstance("first_PART.INSTANCEID=\"1\"").value().path, path);
  EXPECT_FALSE(m_connection.findInstance("first_part.InstanceID=\"2\""));
  EXPECT_FALSE(m_connection.findInstance("Base_Part.InstanceID=\"1\""));
}

TEST_F(BrokerConnectionWithSchemaTest, FindsNothingByAPathThatNamesAKeyTwice) {
  for (const char* keys :
       {"InstanceID=\"1\",instanceid=\"none\"", "instanceid=\"none\",InstanceID=\"1\"",
        "INSTANCEID=\"1\",instanceid=\"none\"", "InstanceID=\"1\",instanceid=\"1\""}) {
    EXPECT_FALSE(m_connection.findInstance(std::string("First_Part.") + keys)) << keys;
    EXPECT_FALSE(m_connection.findInstance(std::string("first_part.") + keys)) << keys;
  }
}

TEST_F(BrokerConnectionWithSchemaTest, ReadsAPathOnceWhereItsClassIsSpeltAsServed) {
  const test::LogCapture log;
  EXPECT_TRUE(m_connection.findInstance("First_Part.instanceid=\"1\""));
  EXPECT_THAT(log.messages("core::CimPath::CimPath"),
              ElementsAre("Creating path First_Part.instanceid=\"1\""));
}

TEST_F(BrokerConnectionTest, IsThatOfThisProcess) {
  EXPECT_FALSE(m_connection.isRemote());
  EXPECT_EQ(m_connection.watchCommand("1"), "");
  EXPECT_GT(m_connection.pollInterval().count(), 0);
}

}  // namespace
