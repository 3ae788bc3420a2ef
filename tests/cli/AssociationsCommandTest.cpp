#include <nlohmann/json.hpp>

#include "tests/support/QuorvelFixture.h"

namespace {

using test::ProgramResult;
using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

constexpr const char* kProfile =
    "Orvex_RegisteredProfile.InstanceID=\"Orvex:SoftwareUpdate_Profile\"";

class AssociationsCommandTest : public test::QuorvelFixture {
 protected:
  // Returns the object path of an instance of the class, the first one.
  [[nodiscard]] std::string pathOf(const std::string& className) const {
    return runJson({"instances", className})[0]["path"];
  }
  [[nodiscard]] std::string service() const { return pathOf("Orvex_SoftwareInstallationService"); }
};

TEST_F(AssociationsCommandTest, ShowsWhatRefersToAnInstanceAndLeadsFurther) {
  const ProgramResult result = run({"associations", kProfile});
  EXPECT_EQ(result.exitStatus, 0);
  EXPECT_EQ(result.errors, "");
  EXPECT_THAT(result.output,
              HasSubstr(std::string(kProfile) +
                        "\n\nis the ConformantStandard of Orvex_ElementConformsToProfile:\n"
                        "  ManagedElement = " +
                        service() + "\n"));
}

TEST_F(AssociationsCommandTest, GathersWhatOneRoleLeadsTo) {
  addPxeAdapter("0000:03:00", 2);
  const std::string port = "CreationClassName=\"Orvex_EthernetPort\",DeviceID=\"0000:03:00.";
  const std::string output = run({"associations", service()}).output;
  EXPECT_THAT(output, AllOf(HasSubstr("of Orvex_ServiceAffectsElement:\n  AffectedElement = "
                                      "Orvex_PortController."),
                            HasSubstr(port + "0\"\n  AffectedElement = Orvex_EthernetPort."),
                            HasSubstr(port + "1\"\n")));
}

TEST_F(AssociationsCommandTest, ShowsWhereAnAssociationItselfLeads) {
  addPxeAdapter("0000:03:00");
  const std::string output = run({"associations", pathOf("Orvex_ServiceAffectsElement")}).output;
  EXPECT_THAT(
      output,
      AllOf(HasSubstr("\n\nrefers to:\n  AffectedElement  = " + pathOf("Orvex_PortController") +
                      "\n  AffectingElement = " + service() + "\n"),
            HasSubstr("\n\nNothing refers to this instance.\n")));
}

TEST_F(AssociationsCommandTest, PrintsADocumentWhosePathsLeadOn) {
  addPxeAdapter("0000:03:00");
  const Json document = runJson({"associations", pathOf("Orvex_PortController")});
  EXPECT_EQ(document["path"], pathOf("Orvex_PortController"));
  EXPECT_THAT(document["references"], IsEmpty());
  Json found;
  for (const Json& association : document["associations"]) {
    if (association["class"] == "Orvex_ServiceAffectsElement") {
      found = association;
    }
  }
  EXPECT_EQ(found["role"], "AffectedElement");
  EXPECT_EQ(found["others"], Json::array({{{"role", "AffectingElement"}, {"path", service()}}}));
  const Json further = runJson({"associations", found["path"]});
  EXPECT_THAT(further["references"], SizeIs(2));
  EXPECT_EQ(runJson({"associations", further["references"][1]["path"]})["path"], service());
}

TEST_F(AssociationsCommandTest, SaysThatNothingRefersToAnInstance) {
  addPxeAdapter("0000:03:00");
  const std::string association = pathOf("Orvex_ControlledBy");
  const ProgramResult result = run({"associations", association});
  EXPECT_EQ(result.exitStatus, 0);
  EXPECT_EQ(result.output, association +
                               "\n\nrefers to:\n  Antecedent = " + pathOf("Orvex_PortController") +
                               "\n  Dependent  = " + pathOf("Orvex_EthernetPort") +
                               "\n\nNothing refers to this instance.\n");
  EXPECT_THAT(runJson({"associations", association})["associations"], IsEmpty());
}

TEST_F(AssociationsCommandTest, ShowsNoServiceForAPortThatCannotBeUpdated) {
  addPxeAdapter("0000:03:00");
  const std::string port = pathOf("Orvex_EthernetPort");
  EXPECT_THAT(run({"associations", port}).output, HasSubstr("Orvex_ServiceAffectsElement"));
  describe("0000-03-00", {{"updatable", false}});
  EXPECT_THAT(run({"associations", port}).output,
              AllOf(HasSubstr("of Orvex_ControlledBy:"),
                    testing::Not(HasSubstr("Orvex_ServiceAffectsElement"))));
}

TEST_F(AssociationsCommandTest, RefusesWhatIsNoInstance) {
  expectUsageFault({"associations"}, HasSubstr("OBJECTPATH is required"));
  expectUsageFault({"associations", "nonsense"}, HasSubstr("'nonsense' is no object path"));
  expectUsageFault({"associations", "A.b=c,"}, HasSubstr("'A.b=c,' is no object path"));
  expectFailure({"associations", "Nope.a=b", "--json"}, HasSubstr("no class 'Nope' is served"));
  expectFailure({"associations", "Orvex_EthernetPort.DeviceID=\"1\""},
                HasSubstr("there is no instance Orvex_EthernetPort.DeviceID=\"1\""));
}

}  // namespace
