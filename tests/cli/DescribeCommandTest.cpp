#include <algorithm>
#include <nlohmann/json.hpp>

#include "tests/support/QuorvelFixture.h"

namespace {

using test::ProgramResult;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class DescribeCommandTest : public test::QuorvelFixture {};

TEST_F(DescribeCommandTest, ShowsWhatAClassAndItsElementsAre) {
  const ProgramResult result = run({"describe", "cim_concretejob"});
  EXPECT_EQ(result.exitStatus, 0);
  EXPECT_EQ(result.errors, "");
  EXPECT_THAT(result.output,
              AllOf(StartsWith("CIM_ConcreteJob : CIM_Job, version 2.41.0\n"
                               "  A job that can be followed by its state.\n\n"),
                    HasSubstr("\nstring InstanceID, key\n  Identifies the job among all"),
                    HasSubstr("\nuint16 PercentComplete, in Percent\n"),
                    HasSubstr("\nuint32 RequestStateChange()\n  Asks that the job start"),
                    HasSubstr("\n  returns 0 = Completed with No Error, 1 = Not Supported, "),
                    HasSubstr("\n  uint16 RequestedState, in\n    What the job shall do.\n"
                              "    2 = Start, ")));
}

TEST_F(DescribeCommandTest, ShowsTheElementThatIsNamedAlone) {
  EXPECT_EQ(run({"describe", "Orvex_ConcreteJob", "jobstate"}).output,
            "Orvex_ConcreteJob : CIM_ConcreteJob, version 1.0.0\n"
            "  An update that was started; it stays listed until the process ends.\n"
            "\n"
            "uint16 JobState\n"
            "  How far the job has come: whether it waits, runs, or has ended and how.\n"
            "  2 = New, 3 = Starting, 4 = Running, 5 = Suspended, 6 = Shutting Down, "
            "7 = Completed, 8 = Terminated, 9 = Killed, 10 = Exception, 11 = Service, "
            "12 = Query Pending\n");
  EXPECT_THAT(
      run({"describe", "CIM_Dependency", "Antecedent"}).output,
      AllOf(StartsWith("CIM_Dependency, abstract, association, version 2.41.0\n"),
            HasSubstr("\nCIM_ManagedElement REF Antecedent, key\n"), Not(HasSubstr("Dependent,"))));
}

TEST_F(DescribeCommandTest, PrintsOneDocument) {
  const Json document = runJson({"describe", "Orvex_SoftwareInstallationService"});
  EXPECT_EQ(document["class"], "Orvex_SoftwareInstallationService");
  EXPECT_EQ(document["superclass"], "CIM_SoftwareInstallationService");
  EXPECT_EQ(document["isAbstract"], false);
  const Json& methods = document["methods"];
  const auto method = std::find_if(methods.begin(), methods.end(), [](const Json& candidate) {
    return candidate["name"] == "InstallFromURI";
  });
  ASSERT_NE(method, methods.end());
  EXPECT_EQ((*method)["returns"][0],
            Json({{"value", "0"}, {"name", "Job Completed with No Error"}}));
  EXPECT_EQ((*method)["parameters"][0]["isOutput"], true);
  EXPECT_EQ((*method)["parameters"][0]["type"], "CIM_ConcreteJob REF");
  EXPECT_EQ((*method)["parameters"][1]["units"], nullptr);
}

TEST_F(DescribeCommandTest, TellsWhatThereIsInsteadOfWhatThereIsNot) {
  expectFailure({"describe", "CIM_Toaster"},
                AllOf(HasSubstr("no class 'CIM_Toaster' is served here; the classes are:"),
                      HasSubstr("\n  Orvex_ConcreteJob\n")));
  expectFailure(
      {"describe", "CIM_ConcreteJob", "Colour"},
      AllOf(HasSubstr("class CIM_ConcreteJob has no property or method 'Colour'; it has:"),
            HasSubstr("\n  JobState\n"), HasSubstr("\n  RequestStateChange()\n")));
}

TEST_F(DescribeCommandTest, NeedsAClass) {
  expectUsageFault({"describe"}, HasSubstr("CLASS is required"));
}

}  // namespace
