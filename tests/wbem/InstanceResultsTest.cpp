#include <chrono>
#include <cstddef>
#include <gmock/gmock.h>
#include <string>
#include <vector>

#include "tests/wbem/ServerFixture.h"
#include "wbem/InstanceResults.h"

namespace {

using test::deviceName;
using wbem::Form;

class InstanceResults : public testing::Test {
 protected:
  // A broker with the agent.
  struct ModelBroker : core::CimBroker {
    ModelBroker() { addAgent(&agent); }
    test::ModelAgent agent;
  };

  InstanceResults() { m_device.Name.setValue("x"); }

  // Returns what the device is written as.
  std::string write(Form form, int times = 1, bool passesOver = false) {
    std::string out = "before ";
    wbem::InstanceResults results(m_call, form, m_choice, out);
    if (passesOver) {
      results.passOverRepeated();
    }
    for (int i = 0; i < times; ++i) {
      results.add(m_namespaces.agents(), *m_namespaces.agents().findServed("Test_Device"),
                  m_device);
    }
    m_ends = results.ends();
    return out.substr(7);
  }

  ModelBroker m_broker;
  wbem::Namespaces m_namespaces{m_broker, "root/test"};
  cimxml::Request m_request;
  wbem::Caller m_caller;
  wbem::OperationParameters m_parameters{m_request, {}};
  std::string m_host = "server1";
  wbem::PullEnumerations m_enumerations{std::chrono::steady_clock::now};
  std::string m_answer;
  wbem::OperationCall m_call{m_request, m_caller,       m_parameters,
                             m_broker,  m_namespaces,   m_namespaces.agents(),
                             m_host,    m_enumerations, m_answer};
  wbem::PropertyChoice m_choice{{}, cimxml::NameSet({"Name"})};
  test::Device m_device{"a", 1};
  std::vector<std::size_t> m_ends;
};

constexpr const char* kInstance =
    "<INSTANCE CLASSNAME=\"Test_Device\"><PROPERTY NAME=\"Name\" TYPE=\"string\"><VALUE>x</VALUE>"
    "</PROPERTY></INSTANCE>";

TEST_F(InstanceResults, HaveTheFormThatTheOperationWants) {
  const std::string name = deviceName("a", 1);
  const std::string path = test::fullPath("test", name);
  EXPECT_EQ(write(Form::Instance), kInstance);
  EXPECT_EQ(write(Form::NamedInstance),
            "<VALUE.NAMEDINSTANCE>" + name + kInstance + "</VALUE.NAMEDINSTANCE>");
  EXPECT_EQ(write(Form::InstanceName), name);
  EXPECT_EQ(write(Form::ObjectWithPath),
            "<VALUE.OBJECTWITHPATH>" + path + kInstance + "</VALUE.OBJECTWITHPATH>");
  EXPECT_EQ(write(Form::ObjectPath), "<OBJECTPATH>" + path + "</OBJECTPATH>");
  EXPECT_EQ(write(Form::InstanceWithPath),
            "<VALUE.INSTANCEWITHPATH>" + path + kInstance + "</VALUE.INSTANCEWITHPATH>");
  EXPECT_EQ(write(Form::InstancePath), path);
}

TEST_F(InstanceResults, TellWhereEachEnds) {
  const std::string out = write(Form::InstanceName, 3);
  const std::size_t length = deviceName("a", 1).size();
  EXPECT_EQ(out.size(), 3 * length);
  EXPECT_THAT(m_ends, testing::ElementsAre(7 + length, 7 + 2 * length, 7 + 3 * length));
}

TEST_F(InstanceResults, AreWrittenOnceWhereThatIsWanted) {
  EXPECT_EQ(write(Form::ObjectPath, 3, true), write(Form::ObjectPath));
  EXPECT_EQ(m_ends.size(), 1U);
  EXPECT_EQ(write(Form::ObjectWithPath, 2, true), write(Form::ObjectWithPath));
}

TEST_F(InstanceResults, OfClassesThatTakeTurnsHaveTheFormatOfTheirClass) {
  const wbem::Namespace& agents = m_namespaces.agents();
  test::Port port("p", 1);
  std::string out;
  wbem::InstanceResults results(m_call, Form::Instance, m_choice, out);
  for (int i = 0; i < 2; ++i) {
    results.add(agents, *agents.findServed("Test_Device"), m_device);
    results.add(agents, *agents.findServed("Test_Port"), port);
  }
  const std::string both = kInstance + std::string(
                                           "<INSTANCE CLASSNAME=\"Test_Port\"><PROPERTY "
                                           "NAME=\"Name\" TYPE=\"string\"></PROPERTY>"
                                           "</INSTANCE>");
  EXPECT_EQ(out, both + both);
}

TEST_F(InstanceResults, OfClassesHaveTheirPath) {
  std::string out;
  wbem::InstanceResults results(m_call, Form::ObjectPath, m_choice, out);
  results.addClass(m_namespaces.agents().demandClass("Test_Port"));
  EXPECT_EQ(out,
            "<OBJECTPATH><CLASSPATH><NAMESPACEPATH><HOST>server1</HOST><LOCALNAMESPACEPATH>"
            "<NAMESPACE NAME=\"root\"/><NAMESPACE NAME=\"test\"/></LOCALNAMESPACEPATH>"
            "</NAMESPACEPATH><CLASSNAME NAME=\"Test_Port\"/></CLASSPATH></OBJECTPATH>");
}

}  // namespace
