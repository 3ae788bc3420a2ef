#include <filesystem>
#include <gmock/gmock.h>
#include <string>

#include "Utils/Exception.h"
#include "core/CimBroker.h"
#include "host/ModuleLoader.h"
#include "tests/support/Posix/ChildProcess.h"
#include "tests/support/Programs.h"

namespace {

namespace fs = std::filesystem;

const std::string kModuleDirectory = QUORVEL_TEST_MODULE_DIR;

TEST(LoadModules, BringsOneAgentOfEachModule) {
  // In a process of its own, since modules stay loaded.
  test::ChildProcess child([](test::ChildProcess::Link&) {
    host::loadModules(kModuleDirectory);
    const std::vector<core::CimAgent*> agents = core::GetCimBroker().getAgents();
    return agents.size() == 2 && agents[0]->getName() == "Software Inventory" &&
                   agents[1]->getName() == "Software Update"
               ? 0
               : 1;
  });
  EXPECT_EQ(child.wait(), 0);
}

TEST(LoadModules, RefusesToLoadThemTwice) {
  test::ChildProcess child([](test::ChildProcess::Link&) {
    host::loadModules(kModuleDirectory);
    try {
      host::loadModules(kModuleDirectory);
    } catch (const utils::Exception&) {
      return core::GetCimBroker().getAgents().size() == 2 ? 0 : 2;
    }
    return 1;
  });
  EXPECT_EQ(child.wait(), 0);
}

TEST(GetModuleDirectory, StandsBesideTheProgramsDirectory) {
  const fs::path program = test::programBeside("host_test");
  EXPECT_EQ(host::getModuleDirectory(), program.parent_path().parent_path() / "lib" / "quorvel");
  EXPECT_EQ(host::getModuleDirectory(), fs::path(kModuleDirectory));
}

}  // namespace
