#include <nlohmann/json.hpp>

#include "tests/support/QuorvelFixture.h"

namespace {

using test::ProgramResult;
using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

class InvokeCommandTest : public test::QuorvelFixture {
 protected:
  // Returns the object path of the service, or of an instance by its DeviceID.
  [[nodiscard]] std::string pathOf(const std::string& className,
                                   const std::string& identifier = "") const {
    for (const Json& instance : runJson({"instances", className})) {
      if (instance["properties"].value("DeviceID", "") == identifier) {
        return instance["path"];
      }
    }
    return "not found";
  }
  [[nodiscard]] std::string service() const { return pathOf("Orvex_SoftwareInstallationService"); }
  [[nodiscard]] std::string port() const { return pathOf("Orvex_EthernetPort", "0000:03:00.0"); }

  [[nodiscard]] Arguments call(const Arguments& arguments) const {
    Arguments result{"invoke", service(), "InstallFromURI"};
    result.insert(result.end(), arguments.begin(), arguments.end());
    return result;
  }
  [[nodiscard]] Arguments install(const std::string& rom, const std::string& options) const {
    return call({"URI=" + uriOf(rom), "Target=" + port(), "InstallOptions=" + options,
                 "InstallOptionsValues="});
  }
};

TEST_F(InvokeCommandTest, CallsAMethodAndWaitsForItsJob) {
  addPxeAdapter("0000:03:00");
  const std::string rom = writeRom("new.rom", {pxe(3)});
  const ProgramResult result = run(install(rom, "5"));
  EXPECT_EQ(result.exitStatus, 0) << result.errors;
  EXPECT_THAT(result.output,
              AllOf(StartsWith("Return value: 4096 (Method Parameters Checked - Job Started)\n"
                               "Job: Orvex_ConcreteJob.InstanceID=\"Orvex:FirmwareUpdate@Job#1\"\n"
                               "waiting for the job: "),
                    EndsWith("Job ended: Completed\n")));
  EXPECT_EQ(test::readBytes(adapters() / "0000-03-00" / "flash.rom"), test::readBytes(rom));
}

TEST_F(InvokeCommandTest, AnswersWithADocument) {
  addPxeAdapter("0000:03:00");
  const Json document = runJson(install(writeRom("new.rom", {pxe(3)}), "5"));
  EXPECT_EQ(document["returnValue"], 4096);
  EXPECT_EQ(document["returnText"], "Method Parameters Checked - Job Started");
  EXPECT_THAT(document["outputs"], IsEmpty());
  EXPECT_EQ(document["job"]["path"], "Orvex_ConcreteJob.InstanceID=\"Orvex:FirmwareUpdate@Job#1\"");
  EXPECT_EQ(document["job"]["properties"]["JobState"], 7);
}

TEST_F(InvokeCommandTest, PassesArraysOn) {
  addPxeAdapter("0000:03:00");
  const std::string older = writeRom("older.rom", {pxe(1)});
  const Json refused = runJson(install(older, "5"), 1);
  EXPECT_EQ(refused["returnValue"], 4099);
  EXPECT_EQ(refused["job"], nullptr);
  EXPECT_EQ(runJson(install(older, "3,5"))["returnValue"], 4096);
}

TEST_F(InvokeCommandTest, GivesTheReasonOfARefusal) {
  addPxeAdapter("0000:03:00");
  const std::string older = writeRom("older.rom", {pxe(1)});
  const ProgramResult result = run(install(older, "5"));
  EXPECT_EQ(result.exitStatus, 1);
  EXPECT_EQ(result.output, "Return value: 4099 (Downgrade/reinstall not supported)\n");
  EXPECT_EQ(result.errors, "quorvel: InstallFromURI refused: Downgrade was detected for " +
                               uriOf(older) + ". Try to use FORCE_INSTALL option.\n");
}

TEST_F(InvokeCommandTest, FailsWhenTheJobFails) {
  addPxeAdapter("0000:03:00");
  describe("0000-03-00",
           {{"faults", {{"write", {{"atPercent", 40}, {"code", 17}, {"text", "Stuck"}}}}}});
  const ProgramResult result = run(install(writeRom("new.rom", {pxe(3)}), "5"));
  EXPECT_EQ(result.exitStatus, 1);
  EXPECT_THAT(result.output, EndsWith("Job ended: Exception, error 17: Stuck\n"));
}

TEST_F(InvokeCommandTest, TellsMissingFromNullArguments) {
  expectFailure(call({}), HasSubstr("EUnspecifiedError:Expected URI argument"));
  expectFailure(call({"URI=", "Target=a.b=c", "InstallOptions=5", "InstallOptionsValues="}),
                HasSubstr("EUnspecifiedError:URI argument is set to NULL. It is not allowed"));
}

TEST_F(InvokeCommandTest, LeavesPathsInArgumentsToTheMethod) {
  expectFailure(
      call({"URI=file:///x", "Target=nonsense", "InstallOptions=5", "InstallOptionsValues="}),
      HasSubstr("ESyntaxError:"));
}

TEST_F(InvokeCommandTest, RefusesArgumentsWithoutSense) {
  expectUsageFault(call({"InstallOptions=5,70000"}),
                   HasSubstr("argument InstallOptions: '70000' is no whole number"));
  expectUsageFault(call({"Color=blue"}), HasSubstr("takes no argument 'Color'; it takes URI"));
  expectUsageFault(call({"URI"}), HasSubstr("write NAME=VALUE"));
  expectUsageFault({"invoke", "nonsense", "InstallFromURI"}, HasSubstr("is no object path"));
}

TEST_F(InvokeCommandTest, LetsTheInstanceRefuseAnUnknownMethod) {
  expectFailure({"invoke", service(), "Dance", "Steps=3"},
                HasSubstr("ENotSupported:Method Dance is not support by "
                          "Orvex_SoftwareInstallationService class"));
}

TEST_F(InvokeCommandTest, SaysWhenThereIsNoSuchInstance) {
  expectFailure({"invoke", "Orvex_EthernetPort.DeviceID=\"1\"", "Dance"},
                HasSubstr("there is no instance Orvex_EthernetPort.DeviceID=\"1\""));
  expectFailure({"invoke", "Nope.a=b", "Dance", "--json"}, HasSubstr("no class 'Nope'"));
}

}  // namespace
