#include <nlohmann/json.hpp>

#include "tests/support/QuorvelFixture.h"

namespace {

using test::ProgramResult;
using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

class QueryCommandTest : public test::QuorvelFixture {
 protected:
  void SetUp() override { addPxeAdapter("0000:03:00", 2); }
};

TEST_F(QueryCommandTest, PrintsTheSelectedPropertiesOfWhatMatches) {
  const ProgramResult result =
      run({"query", "SELECT DeviceID FROM CIM_LogicalDevice WHERE DeviceID LIKE '0000:03:00._'"});
  EXPECT_EQ(result.exitStatus, 0);
  EXPECT_EQ(result.errors, "");
  EXPECT_THAT(result.output, AllOf(HasSubstr("Orvex_EthernetPort."),
                                   HasSubstr("\n  DeviceID = \"0000:03:00.1\"\n"),
                                   Not(HasSubstr("OperationalStatus"))));
}

TEST_F(QueryCommandTest, PrintsADocument) {
  const Json found =
      runJson({"query",
               "SELECT * FROM Orvex_EthernetPort WHERE DeviceID = '0000:03:00.1' AND "
               "ANY OperationalStatus = 2"});
  ASSERT_THAT(found, SizeIs(1));
  EXPECT_EQ(found[0]["properties"]["DeviceID"], "0000:03:00.1");
  EXPECT_EQ(found, Json::array({runJson({"instances", "Orvex_EthernetPort"})[1]}));
}

TEST_F(QueryCommandTest, PrintsNullPropertiesWhenAsked) {
  const char* const query = "SELECT ElementName FROM Orvex_SoftwareInstallationService";
  EXPECT_THAT(runJson({"query", query})[0]["properties"], IsEmpty());
  EXPECT_TRUE(runJson({"query", query, "--all"})[0]["properties"].at("ElementName").is_null());
}

TEST_F(QueryCommandTest, TakesEitherLanguage) {
  const char* const query = "SELECT DeviceID FROM Orvex_EthernetPort WHERE DeviceID LIKE '.*1'";
  EXPECT_THAT(runJson({"query", query, "--language", "DMTF:CQL"}), SizeIs(1));
  EXPECT_THAT(runJson({"query", query}), IsEmpty());
  EXPECT_EQ(run({"query", query, "--language", "wql"}).output, "no instance matches\n");
}

TEST_F(QueryCommandTest, SaysWhereAQueryIsWrong) {
  expectUsageFault({"query", "SELECT * FORM x"},
                   HasSubstr("quorvel: the query is refused: line 1, column 10: FROM is expected, "
                             "and here is FORM\n"));
  expectUsageFault({"query", "SELECT * FROM Orvex_EthernetPort WHERE DeviceId2 = 'x'"},
                   HasSubstr("did you mean DeviceID?"));
  expectUsageFault({"query", "SELECT * FROM CIM_Job", "--language", "SQL"},
                   HasSubstr("query language 'SQL' is not offered; there are WQL and DMTF:CQL"));
  expectFailure({"query", "SELECT * FROM Orvex_EthernetPrt"},
                HasSubstr("there is no class 'Orvex_EthernetPrt'; did you mean "));
}

}  // namespace
