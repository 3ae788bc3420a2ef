#include <nlohmann/json.hpp>

#include "tests/support/QuorvelFixture.h"

namespace {

using test::ProgramResult;
using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

constexpr const char* kPortPath =
    "Orvex_EthernetPort.SystemCreationClassName=\"CIM_UnitaryComputerSystem\",SystemName=\"lab\","
    "CreationClassName=\"Orvex_EthernetPort\",DeviceID=\"0000:03:00.0\"";

class InstancesCommandTest : public test::QuorvelFixture {};

TEST_F(InstancesCommandTest, PrintsPathAndPropertiesOfEachInstance) {
  addPxeAdapter("0000:03:00", 2);
  const ProgramResult result = run({"instances", "Orvex_EthernetPort"});
  EXPECT_EQ(result.exitStatus, 0);
  EXPECT_THAT(result.output, StartsWith(std::string(kPortPath) + "\n  "));
  EXPECT_THAT(result.output, HasSubstr("\n\nOrvex_EthernetPort."));
  EXPECT_THAT(result.output, HasSubstr("= \"0000:03:00.1\"\n"));
  EXPECT_THAT(result.output, HasSubstr("= {2}\n"));
  EXPECT_THAT(result.output, Not(HasSubstr("NULL")));
}

TEST_F(InstancesCommandTest, PrintsNullPropertiesWhenAsked) {
  const Arguments arguments{"instances", "Orvex_SoftwareInstallationService", "--all"};
  EXPECT_THAT(run(arguments).output, HasSubstr("ElementName              = NULL\n"));
  const Json properties = runJson(arguments)[0]["properties"];
  EXPECT_TRUE(properties.at("ElementName").is_null());
  EXPECT_FALSE(
      runJson({"instances", "Orvex_SoftwareInstallationService"})[0]["properties"].contains(
          "ElementName"));
}

TEST_F(InstancesCommandTest, PrintsNamesBesideNumbersWhenAsked) {
  addPxeAdapter("0000:03:00", 1);
  const Arguments arguments{"instances", "CIM_LogicalDevice", "--names"};
  EXPECT_THAT(run(arguments).output, AllOf(HasSubstr(" = {2} (OK)\n"),
                                           HasSubstr("ControllerType          = 2 (Ethernet)\n"),
                                           HasSubstr("PortNumber              = 0\n")));
  const Json document = runJson(arguments);
  EXPECT_EQ(
      document[0]["names"],
      Json({{"OperationalStatus", {"OK"}}, {"LinkTechnology", "Ethernet"}, {"BootType", "PXE"}}));
  EXPECT_FALSE(runJson({"instances", "CIM_LogicalDevice"})[0].contains("names"));
}

TEST_F(InstancesCommandTest, PrintsADocument) {
  addPxeAdapter("0000:03:00", 2);
  const Json document = runJson({"instances", "Orvex_EthernetPort"});
  ASSERT_THAT(document, SizeIs(2));
  EXPECT_EQ(document[0]["path"], kPortPath);
  EXPECT_EQ(document[0]["properties"]["DeviceID"], "0000:03:00.0");
  EXPECT_EQ(document[0]["properties"]["OperationalStatus"], Json::array({2}));
}

TEST_F(InstancesCommandTest, SaysWhenThereIsNoInstance) {
  EXPECT_EQ(run({"instances", "Orvex_ConcreteJob"}).output, "Orvex_ConcreteJob has no instances\n");
  EXPECT_THAT(runJson({"instances", "Orvex_ConcreteJob"}), IsEmpty());
}

TEST_F(InstancesCommandTest, TakesAnyCaseAndAClassAboveThoseThatAreServed) {
  addPxeAdapter("0000:03:00", 2);
  const Json ports = runJson({"instances", "Orvex_EthernetPort"});
  EXPECT_EQ(runJson({"instances", "orvex_ethernetport"}), ports);
  EXPECT_EQ(runJson({"instances", "CIM_ConcreteJob"}), Json::array());
  EXPECT_EQ(runJson({"instances", "CIM_LogicalDevice"}).size(), 3U);
}

TEST_F(InstancesCommandTest, ListsTheClassesWhenNobodyServesOne) {
  expectFailure({"instances", "Orvex_EthernetHub"},
                AllOf(HasSubstr("no class 'Orvex_EthernetHub' is served here"),
                      HasSubstr("\n  Orvex_ConcreteJob\n"), HasSubstr("\n  Orvex_EthernetPort\n"),
                      HasSubstr("\n  Orvex_SoftwareInstallationService\n")));
  expectFailure({"instances", "Nope", "--json"}, HasSubstr("no class 'Nope'"));
}

}  // namespace
