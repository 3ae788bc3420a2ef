#include <gmock/gmock.h>

#include "client/BrokerConnection.h"
#include "client/Fault.h"
#include "client/ServedClasses.h"
#include "core/ClassDeclarer.h"
#include "tests/client/FakeAgent.h"

namespace {

using testing::IsEmpty;
using testing::SizeIs;

// Declares a class that it does not serve, above one that it does.
class DeclaringAgent : public test::FakeAgent, public core::ClassDeclarer {
 public:
  using FakeAgent::FakeAgent;

  void declareClasses(core::CimSchema& schema) const override {
    schema.add({"Base", "", false, {}, {}});
    schema.add({"A", "Base", false, {}, {}});
  }
};

class ServedClassesTest : public testing::Test {
 protected:
  ServedClassesTest() {
    m_first.serve("B");
    m_second.serve("B");
    m_second.serve("A").add(std::make_unique<test::FakeInstance>("A", "1"));
    m_broker.addAgent(&m_first);
    m_broker.addAgent(&m_second);
  }

  std::string faultOf(const std::string& path) {
    try {
      return "found " + client::demandInstance(m_connection, core::CimPath(path)).path;
    } catch (const client::Fault& fault) {
      return fault.what();
    }
  }

  core::CimBroker m_broker;
  client::BrokerConnection m_connection{m_broker};
  test::FakeAgent m_first{"First"};
  DeclaringAgent m_second{"Second"};
};

TEST_F(ServedClassesTest, AreListedWhenAnotherIsAskedFor) {
  EXPECT_THAT(client::demandInstances(m_connection, "A"), SizeIs(1));
  EXPECT_THAT(client::getInstances(m_connection, "C"), IsEmpty());
  EXPECT_THROW(static_cast<void>(client::demandInstances(m_connection, "C")), client::Fault);
  EXPECT_EQ(faultOf("C.InstanceID=\"1\""),
            "no class 'C' is served here; the classes are:\n  A\n  B");
}

TEST_F(ServedClassesTest, HaveTheInstanceOfAPathOrSaySo) {
  EXPECT_EQ(faultOf("A.InstanceID=\"1\""), "found A.InstanceID=\"1\"");
  EXPECT_EQ(faultOf("A.InstanceID=\"2\""),
            "there is no instance A.InstanceID=\"2\"; 'quorvel instances A' shows what there is");
  EXPECT_EQ(faultOf("a.InstanceID=\"2\""),
            "there is no instance a.InstanceID=\"2\"; 'quorvel instances a' shows what there is");
}

TEST_F(ServedClassesTest, MissAnInstanceOfAClassAboveThemAndNoClass) {
  EXPECT_THAT(client::demandInstances(m_connection, "Base"), SizeIs(1));
  EXPECT_EQ(faultOf("Base.InstanceID=\"1\""),
            "there is no instance Base.InstanceID=\"1\"; 'quorvel instances Base' shows what there "
            "is");
}

TEST(ObjectPathText, IsReadOrRefusedAsWrongUsage) {
  EXPECT_EQ(client::parseObjectPath("A.InstanceID=\"1\"").getClassName(), "A");
  try {
    static_cast<void>(client::parseObjectPath("A"));
    FAIL() << "read a path without keys";
  } catch (const client::Fault& fault) {
    EXPECT_EQ(fault.kind(), client::Fault::Kind::Usage);
    EXPECT_STREQ(fault.what(),
                 "'A' is no object path; write CLASS.KEY=VALUE,... as 'quorvel instances' prints "
                 "it");
  }
}

TEST_F(ServedClassesTest, AreDescribedOrListed) {
  const auto descriptionFault = [this](const char* className) -> std::string {
    try {
      return "described " + client::demandClass(m_connection, className).name;
    } catch (const client::Fault& fault) {
      return fault.what();
    }
  };
  EXPECT_EQ(descriptionFault("base"), "described Base");
  EXPECT_EQ(descriptionFault("C"), "no class 'C' is served here; the classes are:\n  A\n  B");
  EXPECT_EQ(descriptionFault("b"),
            "class 'b' is served, but its agent does not declare what it is");
}

}  // namespace
