// An interrupt while a command still asks for what it needs to start something in a host.

#include <csignal>
#include <cstdlib>
#include <gtest/gtest.h>
#include <iostream>
#include <unistd.h>

#include "tests/cli/EndedBySignal.h"
#include "tests/cli/Posix/FakeHost.h"

namespace {

constexpr const char* kPort = "Orvex_EthernetPort";
constexpr const char* kService = "Orvex_SoftwareInstallationService";

std::string instanceOf(const std::string& className) {
  return "<VALUE.NAMEDINSTANCE><INSTANCENAME CLASSNAME=\"" + className +
         "\"><KEYBINDING NAME=\"DeviceID\"><KEYVALUE VALUETYPE=\"string\">0000:03:00.0</KEYVALUE>"
         "</KEYBINDING></INSTANCENAME><INSTANCE CLASSNAME=\"" +
         className +
         "\"><PROPERTY NAME=\"DeviceID\" TYPE=\"string\"><VALUE>0000:03:00.0</VALUE></PROPERTY>"
         "</INSTANCE></VALUE.NAMEDINSTANCE>";
}

// Returns the class or the operation that a request is about.
std::string subjectOf(const cimxml::Request& request) {
  const cimxml::Parameter* className = request.find("ClassName");
  return className != nullptr ? std::get<cimxml::ObjectName>(className->value).className
                              : request.name;
}

// Runs a command against a host that interrupts this process when it is asked about the subject,
// and ends it where a method is called all the same.
[[noreturn]] void runInterrupted(const std::string& subject, std::vector<std::string> arguments) {
  std::signal(SIGINT, SIG_DFL);  // whoever started the test may have it ignored
  const test::FakeHost host([&](const cimxml::Request& request) -> std::string {
    if (request.isExtrinsic) {
      std::cerr << "called " << request.name << std::endl;
      _exit(3);
    }
    const std::string asked = subjectOf(request);
    if (asked == subject) {
      kill(getpid(), SIGINT);
    }
    if (request.name == "GetClass") {
      return "<IRETURNVALUE><CLASS NAME=\"" + asked + "\"/></IRETURNVALUE>";
    }
    return "<IRETURNVALUE>" + instanceOf(asked) + "</IRETURNVALUE>";
  });
  std::_Exit(host.run(std::move(arguments), std::cout, std::cerr));
}

class InterruptedStartDeathTest : public testing::Test {
 protected:
  InterruptedStartDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

TEST_F(InterruptedStartDeathTest, StartsNoUpdate) {
  for (const char* subject : {kPort, kService}) {
    EXPECT_EXIT(runInterrupted(subject, {"update", "0000:03:00.0", "/new.rom"}),
                test::EndedBySignal(SIGINT), "")
        << subject;
  }
}

TEST_F(InterruptedStartDeathTest, CallsNoMethod) {
  EXPECT_EXIT(runInterrupted("Thing", {"invoke", "Thing.Number=1", "Dance"}),
              test::EndedBySignal(SIGINT), "");
}

}  // namespace
