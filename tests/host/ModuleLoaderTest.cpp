#include <filesystem>
#include <gmock/gmock.h>
#include <string>

#include "Os/SharedLibrary.h"
#include "Utils/Exception.h"
#include "core/CimBroker.h"
#include "host/ModuleLoader.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/TempDirectory.h"
#include "tests/support/Throws.h"

namespace {

namespace fs = std::filesystem;

using test::ThrowsExactly;
using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

const std::string kModuleDirectory = QUORVEL_TEST_MODULE_DIR;

auto loading(const fs::path& path) {
  return [path] { host::loadModule(path.string()); };
}

TEST(LoadModule, NamesALibraryThatIsNotThere) {
  const test::TempDirectory directory;
  const fs::path path = directory.path() / "Missing.so";
  EXPECT_THAT(loading(path), ThrowsExactly<utils::Exception>(AllOf(
                                 StartsWith("Could not load the library '" + path.string() + "': "),
                                 HasSubstr("No such file"))));
}

TEST(LoadModule, NamesAFileThatIsNoLibrary) {
  const test::TempDirectory directory;
  const fs::path path = directory.write("Text.so", std::string("no library"));
  EXPECT_THAT(loading(path), ThrowsExactly<utils::Exception>(StartsWith(
                                 "Could not load the library '" + path.string() + "': ")));
}

TEST(LoadModule, RefusesALibraryThatRegistersNoAgent) {
  const std::size_t before = core::GetCimBroker().getAgents().size();
  const std::string path = QUORVEL_TEST_IDLE_MODULE;
  EXPECT_THAT(loading(path),
              ThrowsExactly<utils::Exception>("The module '" + path +
                                              "' was loaded but registered no agent. The system "
                                              "log tells why."));
  EXPECT_EQ(core::GetCimBroker().getAgents().size(), before);
}

TEST(LoadModules, SaysWhichModuleOfADirectoryIsMissing) {
  const test::TempDirectory directory;
  EXPECT_THAT([&directory] { host::loadModules(directory.path().string()); },
              ThrowsExactly<utils::Exception>(HasSubstr(std::string("OrvexSoftwareInventoryAgent") +
                                                        os::sharedLibrarySuffix())));
}

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
  EXPECT_EQ(fs::path(host::getModuleDirectory()),
            program.parent_path().parent_path() / "lib" / "quorvel");
  EXPECT_EQ(fs::path(host::getModuleDirectory()), fs::path(kModuleDirectory));
}

}  // namespace
