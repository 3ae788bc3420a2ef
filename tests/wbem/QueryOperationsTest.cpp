#include <gmock/gmock.h>
#include <string>
#include <vector>

#include "tests/wbem/LookingFixture.h"
#include "wbem/QueryOperations.h"

namespace {

using test::deviceName;
using test::fullPath;
using test::given;
using test::IsError;
using test::returned;
using testing::_;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

// Returns an instance as ExecQuery answers with it.
std::string found(const std::string& id, int slot, const std::string& properties,
                  const std::string& className = "Test_Device") {
  return "<VALUE.OBJECTWITHPATH>" + fullPath("test", deviceName(id, slot, className)) +
         "<INSTANCE CLASSNAME=\"" + className + "\">" + properties +
         "</INSTANCE></VALUE.OBJECTWITHPATH>";
}

std::string property(const std::string& name, const std::string& type, const std::string& value) {
  return "<PROPERTY NAME=\"" + name + "\" TYPE=\"" + type + "\"><VALUE>" + value +
         "</VALUE></PROPERTY>";
}

class QueryOperations : public test::LookingFixture {
 protected:
  std::string query(const std::string& text, const std::string& language = "DMTF:CQL",
                    const std::string& nameSpace = test::kAgentsNamespace) {
    return ask("ExecQuery", {given("QueryLanguage", language), given("Query", text)}, nameSpace);
  }
};

TEST_F(QueryOperations, AnswerWithTheSelectedPropertiesOfWhatMatches) {
  EXPECT_EQ(query("SELECT instanceid FROM Test_Device WHERE Slot = 1"),
            returned(found("a", 1, property("InstanceID", "string", "a")) +
                     found("p", 1, property("InstanceID", "string", "p"), "Test_Port")));
  EXPECT_EQ(query("SELECT Slot FROM test_device WHERE Name LIKE 'first.*'"),
            returned(found("a", 1, property("Slot", "uint16", "1"))));
  EXPECT_EQ(query("SELECT Speed FROM Test_Port WHERE Speed > 24.5e9"),
            returned(found("p", 1, property("Speed", "uint64", "25000000000"), "Test_Port")));
}

TEST_F(QueryOperations, AnswerWithAllPropertiesForAStar) {
  EXPECT_THAT(query("SELECT * FROM Test_Device WHERE Test_Device ISA Test_Port"),
              AllOf(StartsWith("<IRETURNVALUE><VALUE.OBJECTWITHPATH>"),
                    HasSubstr("<PROPERTY NAME=\"Speed\""), HasSubstr("<PROPERTY NAME=\"Name\""),
                    Not(HasSubstr("\"Test_Device\""))));
}

TEST_F(QueryOperations, AnswerWithNothingWhereNothingMatches) {
  EXPECT_EQ(query("SELECT * FROM Test_Device WHERE Slot = 99"), returned(""));
  EXPECT_EQ(query("SELECT * FROM Test_Device WHERE NOT Name = 'x' AND Slot = 2"), returned(""));
}

TEST_F(QueryOperations, TakeWql) {
  EXPECT_EQ(
      query("select InstanceID from Test_Device where Name like \"first%\" and Slot != 2", "wql"),
      returned(found("a", 1, property("InstanceID", "string", "a"))));
}

TEST_F(QueryOperations, CompareReferences) {
  const std::string link = query(
      R"(SELECT Kind FROM CIM_Dependency WHERE Dependent = 'Test_Port.Slot=1,InstanceID="p"')");
  EXPECT_THAT(
      link,
      IsError(15, HasSubstr("class CIM_Dependency has no property &apos;Kind&apos;; Test_Link "
                            "has it: write Test_Link::Kind")));
  EXPECT_THAT(query(R"(SELECT Test_Link::Kind FROM CIM_Dependency )"
                    R"(WHERE Dependent = 'test_port.Slot=1,InstanceID="p"')"),
              AllOf(HasSubstr("<VALUE>owns</VALUE>"), Not(HasSubstr("beside"))));
}

TEST_F(QueryOperations, AnswerInEachNamespace) {
  EXPECT_THAT(
      query("SELECT Name FROM CIM_Namespace WHERE Name LIKE '.*test'", "DMTF:CQL", test::kInterop),
      AllOf(HasSubstr("<VALUE>root/test</VALUE>"), Not(HasSubstr("root/interop</VALUE>"))));
  EXPECT_THAT(query("SELECT * FROM Test_Device", "WQL", test::kInterop), IsError(5, _));
  EXPECT_THAT(query("SELECT * FROM Test_Device", "WQL", "root/no"), IsError(3, _));
}

TEST_F(QueryOperations, AreForReadersToo) {
  m_caller.role = wbem::Role::Reader;
  EXPECT_THAT(query("SELECT * FROM Test_Port"), StartsWith("<IRETURNVALUE><VALUE.OBJECTWITHPATH>"));
  EXPECT_TRUE(m_audit.records.empty());
}

TEST_F(QueryOperations, RefuseOtherLanguages) {
  EXPECT_THAT(
      query("SELECT * FROM Test_Port", "SQL"),
      IsError(14, "query language &apos;SQL&apos; is not offered; there are WQL and DMTF:CQL"));
  EXPECT_THAT(query("Slot = 1", "DMTF:FQL"), IsError(14, _));
  EXPECT_THAT(query("", std::string(5000, 'x')), IsError(14, HasSubstr("...")));
}

TEST_F(QueryOperations, RefuseWrongQueriesWithThePlace) {
  EXPECT_THAT(query("SELECT * FORM Test_Port"),
              IsError(15, "line 1, column 10: FROM is expected, and here is FORM"));
  EXPECT_THAT(
      query("SELECT * FROM Test_Prt"),
      IsError(
          5, "line 1, column 15: there is no class &apos;Test_Prt&apos;; did you mean Test_Port?"));
  EXPECT_THAT(
      query("SELECT *\nFROM Test_Port WHERE Sped = 1"),
      IsError(15,
              "line 2, column 22: class Test_Port has no property &apos;Sped&apos;; did you mean "
              "Speed?"));
  EXPECT_THAT(query("SELECT * FROM Test_Port ORDER BY Speed"), IsError(15, HasSubstr("ORDER BY")));
  EXPECT_THAT(query(std::string(1024 * 1024, '(')), IsError(15, HasSubstr("16384 bytes")));
}

TEST_F(QueryOperations, RefuseMissingParameters) {
  EXPECT_THAT(ask("ExecQuery"), IsError(4, "parameter QueryLanguage: is required"));
  EXPECT_THAT(ask("ExecQuery", {given("QueryLanguage", "WQL")}),
              IsError(4, "parameter Query: is required"));
  EXPECT_THAT(ask("ExecQuery", {given("Query", "x"), given("PropertyList", "y")}), IsError(4, _));
}

TEST_F(QueryOperations, AnswerWhatAProviderThrows) {
  m_agent.ports.onEnumeration = [] { throw std::runtime_error("no ports"); };
  EXPECT_THAT(query("SELECT * FROM Test_Device"), IsError(1, "no ports"));
}

TEST_F(QueryOperations, HaveTheFilesOfTheirClassesLookedForBeforeTheRequest) {
  query("SELECT * FROM Test_Device");
  ask("OpenQueryInstances",
      {given("FilterQueryLanguage", "WQL"), given("FilterQuery", "SELECT * FROM Test_Port")});
  EXPECT_THAT(m_looking.lookedFor,
              testing::ElementsAre(testing::ElementsAre("Test_Device", "Test_Port"),
                                   testing::ElementsAre("Test_Port")));
}

// An agent that tells of its class when it is asked for it alone.
class HidingAgent final : public core::CimAgent {
 public:
  HidingAgent() : CimAgent("Hiding") {
    m_hidden.add(std::make_unique<test::FakeInstance>("Vendor_Hidden", "h1"));
  }

  bool hasClass(std::string name) override { return name == "Vendor_Hidden"; }
  core::InstanceList::Iterator getInstances(std::string /*name*/) override {
    return m_hidden.getInstances();
  }

 private:
  test::FakeProvider m_hidden{"Vendor_Hidden"};
};

TEST_F(QueryOperations, FindClassesThatNobodyHasToldOf) {
  HidingAgent hiding;
  m_broker.addAgent(&hiding);
  EXPECT_THAT(query("SELECT * FROM Vendor_Hidden WHERE InstanceID = 'h1'"),
              HasSubstr("<VALUE>h1</VALUE>"));
}

}  // namespace
