#include <nlohmann/json.hpp>

#include "tests/support/QuorvelFixture.h"
#include "tests/support/Regex.h"

namespace {

using test::ProgramResult;
using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

class ClassesCommandTest : public test::QuorvelFixture {
 protected:
  [[nodiscard]] Json agentsOf(const std::string& className) const {
    for (const Json& entry : runJson({"classes"})) {
      if (entry["class"] == className) {
        return entry["agents"];
      }
    }
    return "not served";
  }
};

TEST_F(ClassesCommandTest, ListsEachClassWithItsAgents) {
  const ProgramResult result = run({"classes"});
  EXPECT_EQ(result.exitStatus, 0);
  EXPECT_EQ(result.errors, "");
  EXPECT_THAT(result.output, StartsWith("CLASS "));
  EXPECT_THAT(result.output, test::ContainsRegex("\nOrvex_ConcreteJob +Software Update\n"));
  EXPECT_THAT(result.output, test::ContainsRegex("\nOrvex_EthernetPort +Software Inventory\n"));
}

TEST_F(ClassesCommandTest, NamesEveryAgentOfAClassInTheOrderOfTheBroker) {
  const Json profiles = runJson({"instances", "Orvex_RegisteredProfile"});
  ASSERT_THAT(profiles, testing::SizeIs(2));
  const bool isUpdateFirst =
      profiles[0]["properties"]["InstanceID"] == "Orvex:SoftwareUpdate_Profile";
  EXPECT_EQ(agentsOf("Orvex_RegisteredProfile"),
            isUpdateFirst ? Json::array({"Software Update", "Software Inventory"})
                          : Json::array({"Software Inventory", "Software Update"}));
}

TEST_F(ClassesCommandTest, ListsThemInAlphabeticalOrder) {
  std::vector<std::string> names;
  for (const Json& entry : runJson({"classes"})) {
    names.push_back(entry["class"]);
  }
  EXPECT_THAT(names, AllOf(testing::SizeIs(testing::Ge(12)), testing::WhenSorted(names)));
}

TEST_F(ClassesCommandTest, TakesNoArguments) {
  expectUsageFault({"classes", "Orvex_EthernetPort"},
                   AllOf(HasSubstr("Orvex_EthernetPort"), HasSubstr("quorvel classes --help")));
}

}  // namespace
