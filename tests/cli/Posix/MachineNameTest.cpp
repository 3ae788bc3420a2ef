// What machines are called that only their system names.

#include <climits>
#include <nlohmann/json.hpp>
#include <sched.h>
#include <string>
#include <unistd.h>

#include "tests/support/Posix/ChildProcess.h"
#include "tests/support/QuorvelFixture.h"

namespace {

constexpr int kNotPossible = 77;

class MachineNameTest : public test::QuorvelFixture {
 protected:
  // Returns what a service calls the machine whose environment has no name.
  [[nodiscard]] std::string systemName() const {
    std::vector<test::EnvironmentChange> changes = environment();
    changes.push_back({"COMPUTERNAME", std::nullopt});
    const test::ProgramResult result =
        test::runProgram(test::programBeside("quorvel"),
                         {"instances", "Orvex_SoftwareInstallationService", "--json"}, changes);
    const Json document = Json::parse(result.output, nullptr, false);
    return document.is_array() && document.size() == 1
               ? document[0]["properties"].value("SystemName", "none")
               : result.errors;
  }
  // Answers whether a machine of that name is called so; there is one as long as a process runs.
  [[nodiscard]] int nameOf(const std::string& machine) const {
    if (::unshare(CLONE_NEWUTS) != 0 && ::unshare(CLONE_NEWUSER | CLONE_NEWUTS) != 0) {
      return kNotPossible;
    }
    if (::sethostname(machine.c_str(), machine.size()) != 0) {
      return kNotPossible;
    }
    return systemName() == machine ? 0 : 1;
  }
};

TEST_F(MachineNameTest, AreTwoOfTwoMachines) {
  const std::string longest(HOST_NAME_MAX, 'h');
  for (const std::string& name :
       {std::string("server1"), std::string("server2.example"), longest}) {
    test::ChildProcess machine([&](test::ChildProcess::Link&) { return nameOf(name); });
    const int answer = machine.wait();
    if (answer == kNotPossible) {
      GTEST_SKIP() << "this system lets nobody name a machine";
    }
    EXPECT_EQ(answer, 0) << name;
  }
}

TEST_F(MachineNameTest, AreThoseOfTheEnvironmentWhereItHasOne) {
  EXPECT_EQ(
      runJson({"instances", "Orvex_SoftwareInstallationService"})[0]["properties"]["SystemName"],
      "lab");
}

}  // namespace
