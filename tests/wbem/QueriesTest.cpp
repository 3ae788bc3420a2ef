#include <gmock/gmock.h>
#include <string>
#include <vector>

#include "tests/wbem/ServerFixture.h"
#include "wbem/Queries.h"

namespace {

using test::className;
using test::deviceName;
using test::fullPath;
using test::given;
using test::IsError;
using test::objectName;
using testing::_;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

// Enumerations that a query narrows down.
class Filters : public test::ServerFixture {
 protected:
  std::string enumerate(const std::string& language, const std::string& filter,
                        const std::string& name = "Test_Device") {
    return ask("OpenEnumerateInstancePaths",
               {given("ClassName", className(name)), given("FilterQueryLanguage", language),
                given("FilterQuery", filter), given("MaxObjectCount", "9")});
  }

  const std::string m_first = fullPath("test", deviceName("a", 1));
  const std::string m_second = fullPath("test", deviceName("b", 2));
  const std::string m_port = fullPath("test", deviceName("p", 1, "Test_Port"));
};

TEST_F(Filters, NarrowDownByAConditionAboutTheClass) {
  EXPECT_THAT(enumerate("DMTF:FQL", "slot = 1"), StartsWith(test::returned(m_first + m_port)));
  EXPECT_THAT(enumerate("dmtf:fql", "InstanceID LIKE '[bp]'"),
              StartsWith(test::returned(m_second + m_port)));
  EXPECT_THAT(enumerate("DMTF:FQL", "Slot > 5"), StartsWith(test::returned("")));
}

TEST_F(Filters, NarrowDownByAQuery) {
  EXPECT_THAT(enumerate("WQL", "SELECT * FROM Test_Port"), StartsWith(test::returned(m_port)));
  EXPECT_THAT(enumerate("DMTF:CQL", "SELECT * FROM CIM_ManagedElement WHERE Test_Device::Slot = 2"),
              StartsWith(test::returned(m_second)));
}

TEST_F(Filters, NarrowDownWhatIsAssociated) {
  const std::vector<cimxml::Parameter> parameters = {
      given("InstanceName", objectName("Test_Device.InstanceID=\"a\",Slot=1")),
      given("FilterQueryLanguage", "DMTF:FQL"), given("FilterQuery", "Speed > 1"),
      given("MaxObjectCount", "9")};
  EXPECT_THAT(ask("OpenAssociatorInstancePaths", parameters), StartsWith(test::returned(m_port)));
  EXPECT_THAT(ask("OpenAssociatorInstances", parameters),
              AllOf(HasSubstr("<VALUE>25000000000</VALUE>"), Not(HasSubstr("Test_Profile"))));
  EXPECT_THAT(ask("OpenReferenceInstances",
                  {given("InstanceName", objectName("Test_Device.InstanceID=\"a\",Slot=1")),
                   given("FilterQueryLanguage", "DMTF:FQL"),
                   given("FilterQuery", "Kind = 'beside'"), given("MaxObjectCount", "9")}),
              AllOf(HasSubstr("beside"), Not(HasSubstr("owns"))));
}

TEST_F(Filters, MayBeEmpty) {
  EXPECT_THAT(enumerate("", ""), StartsWith(test::returned(m_first + m_second + m_port)));
}

TEST_F(Filters, AreRefusedWithThePlace) {
  EXPECT_THAT(
      enumerate("DMTF:FQL", "Slto = 1"),
      IsError(15,
              "line 1, column 1: class Test_Device has no property &apos;Slto&apos;; did you "
              "mean Slot?"));
  EXPECT_THAT(enumerate("DMTF:FQL", ""), IsError(15, _));
  EXPECT_THAT(enumerate("DMTF:FQL", "Slot + 1 = 2"), IsError(29, HasSubstr("calculated")));
  EXPECT_THAT(enumerate("WQL", "SELECT Slot FROM Test_Port"), IsError(15, HasSubstr("SELECT *")));
  EXPECT_THAT(enumerate("WQL", "SELECT * FROM Test_Prt"), IsError(5, HasSubstr("column 15")));
  EXPECT_THAT(enumerate("DMTF:FQL", "Slot = 1", "Test_No"), IsError(5, _));
}

TEST_F(Filters, NeedALanguageThatIsOffered) {
  EXPECT_THAT(
      enumerate("", "Slot = 1"),
      IsError(14,
              "query language &apos;&apos; is not offered; there are DMTF:FQL, WQL and DMTF:CQL"));
  EXPECT_THAT(enumerate("SQL", ""), IsError(14, _));
}

}  // namespace
