// Debian's client for CIM-XML, which knows nothing of this host, against the real program.

#include <gmock/gmock.h>
#include <initializer_list>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/daemon/Posix/QuorveldFixture.h"
#include "tests/support/Regex.h"
#include "tests/support/WaitUntil.h"

namespace {

using test::ContainsRegex;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

const std::string kAnna = "anna:secret";  // an operator
const std::string kBert = "bert:secret";  // a reader

class WbemcliTest : public test::QuorveldFixture {
 protected:
  void SetUp() override {
    addAdapter("0000:03:00", writeRom("installed.rom", {pxe(2)}), 2);
    m_rom = writeRom("new.rom", {pxe(3)});
  }

  // Expects what the client says of a refusal.
  static void expectRefused(const test::ProgramResult& result, const std::string& text) {
    EXPECT_THAT(result.errors, HasSubstr(text));
    EXPECT_EQ(result.output, "");
  }

  std::string m_rom;
};

// By plain HTTP without a login, and as an operator over HTTPS.
class WbemcliOperationTest : public WbemcliTest, public testing::WithParamInterface<bool> {
 protected:
  void serve() {
    if (GetParam()) {
      startWithTls(writeUsers());
      useTls();
      logIn(kAnna);
    } else {
      start();
    }
  }
};

INSTANTIATE_TEST_SUITE_P(, WbemcliOperationTest, testing::Bool(),
                         [](const auto& tls) { return tls.param ? "Https" : "Http"; });

TEST_P(WbemcliOperationTest, EnumeratesInstances) {
  serve();
  const std::string ports = ask({"-nl", "ei"}, "Orvex_EthernetPort");
  EXPECT_THAT(ports, AllOf(HasSubstr("/root/DCIM/zolan:" + port() + "\n"),
                           HasSubstr("/root/DCIM/zolan:" + port("0000:03:00.1") + "\n"),
                           HasSubstr("\n-DeviceID=\"0000:03:00.0\"\n")));
}

TEST_P(WbemcliOperationTest, EnumeratesTheInstancesOfSubclasses) {
  serve();
  const std::string names = ask({"ein"}, "CIM_ManagedElement");
  EXPECT_THAT(names, AllOf(HasSubstr(port()), HasSubstr(service())));
}

TEST_P(WbemcliOperationTest, EnumeratesInstanceNames) {
  serve();
  const std::string place =
      "127.0.0.1:" + std::to_string(daemon().port(GetParam() ? "https" : "http")) +
      "/root/DCIM/zolan:";
  EXPECT_EQ(ask({"ein"}, "Orvex_EthernetPort"),
            place + port() + "\n" + place + port("0000:03:00.1") + "\n");
}

TEST_P(WbemcliOperationTest, GetsAnInstance) {
  serve();
  EXPECT_EQ(propertyOf(port("0000:03:00.1"), "DeviceID"), "\"0000:03:00.1\"");
  EXPECT_EQ(propertyOf(service(), "Name"), "\"Orvex:FirmwareUpdate\"");
  expectRefused(wbemcli({"gi"}, port("0000:09:00.0")), "(6) CIM_ERR_NOT_FOUND");
}

TEST_P(WbemcliOperationTest, GetsAClass) {
  serve();
  EXPECT_THAT(ask({"-nl", "-t", "gc"}, "Orvex_EthernetPort"),
              AllOf(HasSubstr(":Orvex_EthernetPort\n"), ContainsRegex("\n-DeviceID#="),
                    ContainsRegex("\n-OperationalStatus\\[\\]=")));
  expectRefused(wbemcli({"gc"}, "Orvex_Nothing"), "(6) CIM_ERR_NOT_FOUND");
  expectRefused(wbemcli({"ein"}, "Orvex_Nothing"), "(5) CIM_ERR_INVALID_CLASS");
}

TEST_P(WbemcliOperationTest, GetsWhatAClassIs) {
  serve();
  const test::ProgramResult shown = wbemcli({"-nl", "-dx", "gc"}, "CIM_ConcreteJob");
  EXPECT_EQ(shown.exitStatus, 0);
  EXPECT_THAT(shown.output + shown.errors,
              AllOf(HasSubstr("<VALUE>A job that can be followed by its state.</VALUE>"),
                    HasSubstr("<VALUE>Starting</VALUE><VALUE>Running</VALUE>")));
  EXPECT_THAT(shown.output, ContainsRegex("\n-JobState="));
}

TEST_P(WbemcliOperationTest, EnumeratesClassNames) {
  serve();
  EXPECT_THAT(ask({"ecn"}, ""),
              AllOf(HasSubstr(":Orvex_EthernetPort\n"), HasSubstr(":CIM_ManagedElement\n"),
                    HasSubstr(":Orvex_SoftwareInstallationService\n")));
}

TEST_P(WbemcliOperationTest, FollowsAssociations) {
  serve();
  EXPECT_THAT(ask({"ain"}, service()),
              AllOf(HasSubstr("Orvex_SoftwareInstallationServiceCapabilities.InstanceID="),
                    HasSubstr(port())));
  EXPECT_THAT(ask({"-nl", "ai"}, service()),
              AllOf(HasSubstr("\n-SupportedInstallOptions=3,5,32768\n"),
                    HasSubstr("\n-DeviceID=\"0000:03:00.0\"\n")));
  EXPECT_THAT(ask({"rin"}, service()), AllOf(HasSubstr(":Orvex_ElementCapabilities."),
                                             HasSubstr(":Orvex_ServiceAffectsElement.")));
  EXPECT_THAT(ask({"-nl", "ri"}, service()),
              AllOf(HasSubstr(":Orvex_ElementCapabilities."), HasSubstr("\n-Capabilities=")));
}

TEST_P(WbemcliOperationTest, FollowsChosenAssociations) {
  serve();
  const std::string names = ask({"-ac", "Orvex_ElementCapabilities", "ain"}, service());
  EXPECT_THAT(names, AllOf(HasSubstr("Orvex_SoftwareInstallationServiceCapabilities."),
                           Not(HasSubstr("Orvex_EthernetPort"))));
}

TEST_P(WbemcliOperationTest, FindsEveryClassByTheNameOfItsStandard) {
  serve();
  for (const auto& [standard, own] : std::initializer_list<std::pair<const char*, const char*>>{
           {"CIM_EthernetPort", "Orvex_EthernetPort"},
           {"CIM_NetworkPort", "Orvex_EthernetPort"},
           {"CIM_PortController", "Orvex_PortController"},
           {"CIM_SoftwareIdentity", "Orvex_SoftwareIdentity"},
           {"CIM_ElementSoftwareIdentity", "Orvex_ElementSoftwareIdentity"},
           {"CIM_UnitaryComputerSystem", "Orvex_ComputerSystem"},
           {"CIM_SystemDevice", "Orvex_SystemDevice"},
           {"CIM_ControlledBy", "Orvex_ControlledBy"},
           {"CIM_HostedService", "Orvex_HostedService"},
           {"CIM_InstalledSoftwareIdentity", "Orvex_InstalledSoftwareIdentity"},
           {"CIM_ElementConformsToProfile", "Orvex_EthernetPortConformsToProfile"}}) {
    EXPECT_THAT(ask({"ein"}, standard), HasSubstr(std::string(":") + own + ".")) << standard;
  }
}

TEST_P(WbemcliOperationTest, UpdatesAnAdapter) {
  serve();
  const std::string job = startUpdate(m_rom);
  EXPECT_TRUE(test::waitUntil([&] { return propertyOf(job, "JobState") == "7"; }));
  EXPECT_EQ(propertyOf(job, "PercentComplete"), "100");
  EXPECT_EQ(propertyOf(job, "ErrorCode"), "0");
  EXPECT_EQ(flash(), test::readBytes(m_rom));
}

TEST_F(WbemcliTest, ShowsAnUpdateThatRuns) {
  const std::string rom = addSlowAdapter("0000:04:00");
  start();
  const std::string answer =
      ask({"cm"}, service(),
          {"InstallFromURI.URI=\"" + uriOf(rom) + "\",Target=" + port("0000:04:00.0") +
           R"(,InstallOptions=5,InstallOptionsValues="")"});
  EXPECT_THAT(answer, HasSubstr("InstallFromURI: 4096"));
  EXPECT_THAT(ask({"ein"}, "CIM_ConcreteJob"), HasSubstr(":Orvex_ConcreteJob.InstanceID="));
  EXPECT_TRUE(
      test::waitUntil([this, &rom] { return flash("0000-04-00") == test::readBytes(rom); }));
}

// Returns the object paths that the client printed, without the place.
std::set<std::string> pathsIn(const std::string& output) {
  constexpr std::string_view kBeforeClass = ":Orvex_";
  std::set<std::string> paths;
  std::istringstream lines(output);
  for (std::string line; std::getline(lines, line);) {
    const std::size_t at = line.find(kBeforeClass);
    if (at != std::string::npos) {
      paths.insert(line.substr(at + 1));
    }
  }
  return paths;
}

TEST_F(WbemcliTest, WalksFromThePortProfileToEveryInstance) {
  start();
  std::set<std::string> reached{
      "Orvex_RegisteredProfile.InstanceID=\"Orvex:EthernetPort_Profile\""};
  std::vector<std::string> next(reached.begin(), reached.end());
  while (!next.empty()) {
    const std::string path = std::move(next.back());
    next.pop_back();
    for (const std::string& other : pathsIn(ask({"ain"}, path))) {
      if (reached.insert(other).second) {
        next.push_back(other);
      }
    }
  }
  EXPECT_EQ(reached, pathsIn(ask({"ein"}, "CIM_ManagedElement")));
  EXPECT_THAT(reached, testing::Contains(port()));
  EXPECT_THAT(reached, testing::Contains(service()));
}

TEST_F(WbemcliTest, IsAskedForALogin) {
  startWithTls(writeUsers());
  expectRefused(wbemcli({"ein"}, "Orvex_EthernetPort"), "Username/password required");
  for (const char* const user : {"anna:wrong", "carl:secret"}) {
    logIn(user);
    expectRefused(wbemcli({"ein"}, "Orvex_EthernetPort"), "Invalid username/password");
  }
  useTls();
  logIn("");
  expectRefused(wbemcli({"ein"}, "Orvex_EthernetPort"), "Username/password required");
}

TEST_F(WbemcliTest, ReadsAsAReaderAndChangesNothing) {
  startWithTls(writeUsers());
  useTls();
  logIn(kBert);
  EXPECT_THAT(ask({"ein"}, "Orvex_EthernetPort"), HasSubstr(port()));
  const test::Bytes before = flash();
  const test::ProgramResult result =
      wbemcli({"cm"}, service(),
              {"InstallFromURI.URI=\"" + uriOf(m_rom) + "\",Target=" + port() +
               R"(,InstallOptions=5,InstallOptionsValues="")"});
  expectRefused(result, "(2) CIM_ERR_ACCESS_DENIED");
  EXPECT_EQ(ask({"ein"}, "CIM_ConcreteJob"), "");
  EXPECT_EQ(flash(), before);
}

TEST_F(WbemcliTest, RefusesAServerWithAnotherCertificate) {
  startWithTls(writeUsers());
  const test::ProgramResult result = test::runProgram(
      "/usr/bin/wbemcli",
      {"ein", "https://" + kAnna + "@127.0.0.1:" + std::to_string(daemon().port("https")) +
                  "/root/DCIM/zolan:Orvex_EthernetPort"});
  EXPECT_THAT(result.output + result.errors, ContainsRegex("[Cc]ertificate|SSL"));
  EXPECT_THAT(result.output, Not(HasSubstr("DeviceID")));
}

}  // namespace
