// Every command against a host gives what it gives in process.

#include <csignal>
#include <fstream>
#include <nlohmann/json.hpp>

#include "tests/cli/Posix/HostFixture.h"
#include "tests/support/Regex.h"

namespace {

using test::ContainsRegex;
using test::MatchesRegex;
using test::OutputTo;
using test::ProgramResult;
using test::RunningQuorvel;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

constexpr const char* kAdapter = "0000:03:00";
constexpr const char* kJob = "Orvex:FirmwareUpdate@Job#1";

class HostCommandsTest : public test::HostFixture {
 protected:
  // Returns the object path of the first instance of a class.
  [[nodiscard]] std::string pathOf(const std::string& className) const {
    return runJson({"instances", className})[0]["path"];
  }
};

TEST_F(HostCommandsTest, ShowInstancesAsInProcess) {
  addAdapter(kAdapter, writeRom("both.rom", {pxe(1), uefi(2)}), 2);
  startHost();
  for (const char* className :
       {"Orvex_EthernetPort", "Orvex_PortController", "Orvex_SoftwareIdentity",
        "Orvex_ElementSoftwareIdentity", "Orvex_SoftwareInstallationService",
        "Orvex_SoftwareInstallationServiceCapabilities", "Orvex_RegisteredProfile",
        "Orvex_ServiceAffectsElement", "Orvex_ConcreteJob"}) {
    expectSame({"instances", className});
    expectSame({"instances", className, "--all"});
    expectSame({"instances", className, "--json", "--all"});
    expectSame({"instances", className, "--names"});
    expectSame({"instances", className, "--json", "--names"});
  }
  // Classes above those that are served, and a name in another case.
  for (const char* className : {"CIM_LogicalDevice", "CIM_ManagedElement", "CIM_ConcreteJob",
                                "orvex_ethernetport", "cim_dependency"}) {
    expectSame({"instances", className, "--json", "--all"});
  }
  expectSame({"instances", "Nothing"}, 1);
}

TEST_F(HostCommandsTest, DescribeClassesAsInProcess) {
  startHost();
  for (const char* className :
       {"Orvex_EthernetPort", "orvex_concretejob", "Orvex_SoftwareInstallationService",
        "Orvex_ElementSoftwareIdentity", "Orvex_RegisteredProfile", "CIM_Dependency",
        "CIM_ManagedElement"}) {
    expectSame({"describe", className});
    expectSame({"describe", className, "--json"});
  }
  expectSame({"describe", "CIM_ConcreteJob", "JobState"});
  expectSame({"describe", "CIM_ConcreteJob", "Colour"}, 1);
  expectSame({"describe", "Nothing"}, 1);
  expectSame({"describe", "<Nothing/>"}, 1);
}

TEST_F(HostCommandsTest, QueryAsInProcess) {
  addAdapter(kAdapter, writeRom("both.rom", {pxe(1), uefi(2)}), 2);
  startHost();
  for (const char* query :
       {"SELECT * FROM CIM_LogicalDevice", "SELECT DeviceID, Name FROM Orvex_EthernetPort",
        "SELECT * FROM Orvex_EthernetPort WHERE DeviceID LIKE '%1' OR NOT ANY OperationalStatus = "
        "2",
        "SELECT InstanceID FROM CIM_ManagedElement WHERE InstanceID IS NOT NULL",
        "SELECT * FROM CIM_Dependency WHERE CIM_Dependency ISA Orvex_ServiceAffectsElement",
        "SELECT * FROM CIM_ConcreteJob WHERE JobState < 7"}) {
    expectSame({"query", query});
    expectSame({"query", query, "--json", "--all", "--names"});
  }
  expectSame({"query", "SELECT * FROM Orvex_EthernetPort WHERE DeviceID LIKE '.*1'", "--language",
              "DMTF:CQL", "--json"});
  expectSame({"query", "SELECT *\nFROM Orvex_EthernetPort WHERE DeviceID = 'x"}, 2);
  expectSame({"query", "SELECT * FROM CIM_Job ORDER BY Name"}, 2);
  expectSame({"query", "SELECT * FROM CIM_Job", "--language", "SQL"}, 2);
  expectSame({"query", "SELECT * FROM Nothing"}, 1);
}

TEST_F(HostCommandsTest, ShowAssociationsAsInProcess) {
  addPxeAdapter(kAdapter, 2);
  startHost();
  for (const char* className : {"Orvex_PortController", "Orvex_SoftwareInstallationService",
                                "Orvex_RegisteredProfile", "Orvex_ElementSoftwareIdentity"}) {
    expectSame({"associations", pathOf(className)});
    expectSame({"associations", pathOf(className), "--json"});
  }
  expectSame({"associations", "Orvex_PortController.DeviceID=\"none\""}, 1);
  expectSame(
      {"associations", "orvex_registeredprofile.instanceid=\"Orvex:SoftwareUpdate_Profile\""});
  expectSame({"associations", "orvex_registeredprofile.instanceid=\"none\""}, 1);
  expectSame({"associations", pathOf("Orvex_RegisteredProfile") + ",instanceid=\"none\""}, 1);
  expectSame({"associations", "CIM_ConcreteJob.InstanceID=\"1\""}, 1);
  expectSame({"associations", "Nothing.Id=\"1\""}, 1);
  expectSame({"associations", "rubbish"}, 2);
}

TEST_F(HostCommandsTest, ListTheClassesWithoutAgents) {
  startHost();
  const Json here = runJson({"classes"});
  const Json there = runJson(onHost({"classes"}));
  ASSERT_EQ(there.size(), here.size());
  for (std::size_t i = 0; i < here.size(); ++i) {
    EXPECT_EQ(there[i]["class"], here[i]["class"]);
    EXPECT_THAT(there[i]["agents"], IsEmpty());
  }
  EXPECT_THAT(run(onHost({"classes"})).output, testing::StartsWith("CLASS\nOrvex_"));
}

TEST_F(HostCommandsTest, ListAdaptersAsOnTheHostItself) {
  addAdapter(kAdapter, writeRom("both.rom", {pxe(1), uefi(2)}), 2);
  startHost();
  EXPECT_EQ(run(onHost({"adapters"})).output, run({"adapters"}).output);
  const Json here = runJson({"adapters"});
  const Json adapters = runJson(onHost({"adapters"}));
  EXPECT_EQ(adapters[0]["pci"], kAdapter);
  EXPECT_EQ(adapters[0]["ports"][1]["identifier"], "0000:03:00.1");
  EXPECT_EQ(adapters[0]["components"][1]["version"], "2.0");
  EXPECT_EQ(adapters[0]["components"][1]["digest"], here[0]["components"][1]["digest"]);
  EXPECT_EQ(adapters[0]["ports"], here[0]["ports"]);
  for (const char* field : {"name", "vendorId", "deviceId", "updatable"}) {
    EXPECT_EQ(adapters[0][field], here[0][field]) << field;
  }
}

TEST_F(HostCommandsTest, InstallFromIdentitiesAndWarnOfChecks) {
  addPxeAdapter(kAdapter);
  const std::string file = writeRom("fw/new.rom", {pxe(3)});
  const std::string agents = path("agents.conf").string();
  std::ofstream(agents) << "FWFilePath = " << path("fw").string() << '\n';
  startHost("config = " + agents + "\n");
  const ProgramResult listed = run(onHost({"identities"}));
  EXPECT_EQ(listed.output, run({"identities", "--config", agents}).output);
  EXPECT_THAT(listed.output, HasSubstr("newer"));
  EXPECT_EQ(run(onHost({"update", kAdapter, "--identity", "new.rom"})).exitStatus, 0);
  EXPECT_EQ(flash(), test::readBytes(file));
  const ProgramResult compared = run(onHost({"check", kAdapter, "new.rom"}));
  EXPECT_EQ(compared.exitStatus, 0);
  EXPECT_EQ(compared.output, file + " can be installed on 0000:03:00: same\n");
  EXPECT_EQ(compared.errors, "");
  EXPECT_EQ(
      runJson(onHost({"check", "0000:03:00.0", "new.rom"})),
      Json(
          {{"returnValue", 0}, {"returnText", "Completed with No Error"}, {"comparison", "same"}}));
  // Nothing is reserved.
  EXPECT_EQ(run(onHost({"update", kAdapter, file})).exitStatus, 0);
  const ProgramResult checked = run(onHost({"check", kAdapter, "new.rom", "--reserve"}));
  EXPECT_EQ(checked.exitStatus, 0);
  EXPECT_EQ(checked.output, run({"check", kAdapter, "new.rom", "--config", agents}).output);
  EXPECT_THAT(checked.errors, HasSubstr("reserved for this installation"));
  EXPECT_THAT(run(onHost({"update", kAdapter, file})).errors,
              AllOf(HasSubstr("refused: 6, Target In Use"), HasSubstr("a check has reserved")));
}

TEST_F(HostCommandsTest, UpdateWithProgressAndListTheJob) {
  const std::string rom = addSlowAdapter(kAdapter);
  startHost();
  EXPECT_THAT(run(onHost({"jobs"})).output, HasSubstr("no job since it was started"));
  const ProgramResult result = run(onHost({"update", kAdapter, rom}));
  EXPECT_EQ(result.exitStatus, 0) << result.errors;
  EXPECT_THAT(result.output, MatchesRegex("(updating 0000:03:00: [0-9]+ %, 00:0[0-9]\n)+"
                                          "Completed: 0000:03:00 is updated \\(00:0[0-9]\\)\n"));
  EXPECT_THAT(result.output, ContainsRegex(": [1-9][0-9]? %"));
  EXPECT_EQ(flash(), test::readBytes(rom));
  EXPECT_THAT(run(onHost({"jobs"})).output,
              MatchesRegex("JOB +STATE +DONE +ELAPSED +ERROR\n"
                           "Orvex:FirmwareUpdate@Job#1  Completed  100 %  00:0[0-9]\n"));
  const Json jobs = runJson(onHost({"jobs"}));
  ASSERT_THAT(jobs, SizeIs(1));
  EXPECT_EQ(jobs[0]["id"], kJob);
  EXPECT_EQ(jobs[0]["stateText"], "Completed");
  EXPECT_EQ(runJson(onHost({"watch", "1"}))["job"]["JobState"], 7);
}

TEST_F(HostCommandsTest, TakeARelativeImageFromWhereTheyRun) {
  addPxeAdapter(kAdapter);
  startHost();
  const std::string file = writeRom("new.rom", {pxe(3)});
  const std::string relative =
      std::filesystem::relative(file, std::filesystem::current_path()).string();
  EXPECT_EQ(run(onHost({"update", kAdapter, relative})).exitStatus, 0);
  EXPECT_EQ(flash(), test::readBytes(file));
  EXPECT_THAT(run(onHost({"update", kAdapter, "missing.rom"})).errors,
              AllOf(HasSubstr("refused: 5, Invalid Parameter"),
                    HasSubstr(std::filesystem::absolute("missing.rom").string())));
}

TEST_F(HostCommandsTest, InvokeAMethodAndFollowItsJob) {
  addPxeAdapter(kAdapter);
  startHost();
  const std::string file = writeRom("new.rom", {pxe(3)});
  const Json document =
      runJson(onHost({"invoke", pathOf("Orvex_SoftwareInstallationService"), "InstallFromURI",
                      "URI=" + uriOf(file), "Target=" + pathOf("Orvex_EthernetPort"),
                      "InstallOptions=5", "InstallOptionsValues="}));
  EXPECT_EQ(document["returnValue"], 4096);
  EXPECT_EQ(document["job"]["path"], std::string("Orvex_ConcreteJob.InstanceID=\"") + kJob + "\"");
  EXPECT_EQ(document["job"]["properties"]["JobState"], 7);
  EXPECT_THAT(run(onHost({"invoke", pathOf("Orvex_EthernetPort"), "Dance"})).errors,
              HasSubstr("CIM_ERR_METHOD_NOT_FOUND"));
}

TEST_F(HostCommandsTest, InvokeAMethodInAnyCase) {
  addPxeAdapter(kAdapter);
  startHost();
  const std::string file = writeRom("new.rom", {pxe(3)});
  EXPECT_EQ(runJson(onHost({"invoke", pathOf("Orvex_SoftwareInstallationService"), "installfromuri",
                            "URI=" + uriOf(file), "Target=" + pathOf("Orvex_EthernetPort"),
                            "InstallOptions=5", "InstallOptionsValues="}))["returnValue"],
            4096);
}

TEST_F(HostCommandsTest, LeaveAnUpdateToTheHostWhenTheyAreInterrupted) {
  const std::string rom = addSlowAdapter(kAdapter);
  startHost();
  RunningQuorvel quorvel(onHost({"update", kAdapter, rom}), OutputTo::Pipe, environment());
  ASSERT_TRUE(quorvel.awaitOutput("updating"));
  quorvel.signal(SIGTERM);
  const ProgramResult result = quorvel.finish();
  EXPECT_EQ(result.exitStatus, 1);
  EXPECT_EQ(result.errors,
            "quorvel: interrupted: the job goes on in the host; to follow it again:\n  quorvel "
            "--host " +
                address() + " watch '" + kJob + "'\n");
  const ProgramResult watched = run(onHost({"watch", kJob}));
  EXPECT_EQ(watched.exitStatus, 0) << watched.errors;
  EXPECT_THAT(watched.output,
              AllOf(HasSubstr(std::string(kJob) + ": 100 %"), HasSubstr("Completed: the job ")));
  EXPECT_EQ(flash(), test::readBytes(rom));
}

TEST_F(HostCommandsTest, TellThatAJobFailed) {
  const std::string rom = addSlowAdapter(kAdapter);
  describe("0000-03-00",
           {{"faults", {{"write", {{"atPercent", 10}, {"code", 17}, {"text", "Stuck"}}}}}});
  startHost();
  EXPECT_EQ(run(onHost({"update", kAdapter, rom})).exitStatus, 1);
  const ProgramResult watched = run(onHost({"watch", "1"}));
  EXPECT_EQ(watched.exitStatus, 1);
  EXPECT_THAT(watched.errors, AllOf(HasSubstr("failed: Exception, error 17: Stuck"),
                                    HasSubstr("'quorvel --host " + address() + " adapters'")));
  EXPECT_THAT(run(onHost({"jobs"})).output, HasSubstr("Exception"));
}

}  // namespace
