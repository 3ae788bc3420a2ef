#include <gmock/gmock.h>
#include <memory>
#include <string>

#include "tests/wbem/ServerFixture.h"
#include "wbem/InstanceFinder.h"
#include "wbem/Status.h"

namespace {

using test::objectName;
using testing::Property;
using testing::Throws;
using wbem::Status;
using wbem::StatusFault;

class InstanceFinder : public testing::Test {
 protected:
  InstanceFinder() {
    m_broker.addAgent(&m_agent);
    m_namespaces = std::make_unique<wbem::Namespaces>(m_broker, test::kAgentsNamespace);
  }

  // Returns the path of the instance that is found; empty for none.
  std::string find(const cimxml::ObjectName& name) {
    const wbem::InstanceFinder finder(*m_namespaces, m_namespaces->agents(), name);
    const core::CimBroker::Request request(m_broker);
    std::string found;
    const bool isFound =
        finder.find([&found](const wbem::ServedClass& served, core::CimInstance& instance) {
          EXPECT_EQ(served.declaration->name, instance.getClassName());
          found = instance.getPath();
        });
    EXPECT_EQ(isFound, !found.empty());
    return found;
  }

  test::ModelAgent m_agent;
  core::CimBroker m_broker;
  std::unique_ptr<wbem::Namespaces> m_namespaces;
};

TEST_F(InstanceFinder, FindsTheInstanceOfAName) {
  EXPECT_EQ(find(objectName("test_device.slot=2,InstanceID=\"b\"")),
            "Test_Device.InstanceID=\"b\",Slot=2");
  EXPECT_EQ(find(objectName("Test_Device.InstanceID=\"z\",Slot=2")), "");
}

TEST_F(InstanceFinder, FindsNothingOfAClassThatNobodyServes) {
  EXPECT_EQ(find(objectName("CIM_ManagedElement.InstanceID=\"b\"")), "");
}

TEST_F(InstanceFinder, RefusesAClassThatThereIsNot) {
  EXPECT_THAT([this] { find(objectName("No.A=1")); },
              Throws<StatusFault>(Property(&StatusFault::status, Status::InvalidClass)));
}

TEST_F(InstanceFinder, LooksAtTheNamespacesWithinAName) {
  const auto linkOf = [](const std::string& nameSpace, bool isText) {
    cimxml::ObjectName name = objectName(
        "Test_Link.Antecedent=\"" + nameSpace +
        "Test_Device.InstanceID=\\\"a\\\",Slot=1\",Dependent=\"Test_Device.InstanceID=\\\"b\\\","
        "Slot=2\"");
    if (isText) {
      name.keys.front() = {"Antecedent",
                           cimxml::KeyBinding::Kind::String,
                           nameSpace + "Test_Device.InstanceID=\"a\",Slot=1",
                           {}};
    }
    return name;
  };
  for (const bool isText : {false, true}) {
    for (const char* own : {"", "root/test:", "ROOT/Test:", "root/interop:"}) {
      EXPECT_NE(find(linkOf(own, isText)), "") << own;
    }
    EXPECT_EQ(find(linkOf("root/other:", isText)), "");
  }
}

// A client that does not know the class writes a reference as a text.
TEST_F(InstanceFinder, TakesAReferenceThatIsAVeryLongText) {
  const std::string target = "Test_Device.InstanceID=\"" + std::string(512U * 1024U, '"');
  cimxml::ObjectName name = objectName("Test_Link.Antecedent=\"x\",Dependent=\"y\"");
  for (const std::string& text : {target, target + "\",Slot=1"}) {
    name.keys.front().text = text;
    EXPECT_EQ(find(name), "");
  }
}

}  // namespace
