#include <filesystem>
#include <gmock/gmock.h>
#include <string>

#include "Os/SharedLibrary.h"
#include "Utils/Exception.h"
#include "core/CimBroker.h"
#include "host/ModuleLoader.h"
#include "tests/Os/Platform.h"
#include "tests/support/TempDirectory.h"
#include "tests/support/Throws.h"

namespace {

namespace fs = std::filesystem;

using test::ThrowsExactly;
using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

auto loading(const fs::path& path) {
  return [path] { host::loadModule(path); };
}

TEST(LoadModule, NamesALibraryThatIsNotThere) {
  const test::TempDirectory directory;
  const fs::path path = directory.path() / (std::string("Missing") + os::sharedLibrarySuffix());
  EXPECT_THAT(loading(path), ThrowsExactly<utils::Exception>(AllOf(
                                 StartsWith("Could not load the library '" + path.string() + "': "),
                                 HasSubstr(test::kLibraryIsMissing))));
}

TEST(LoadModule, NamesAFileThatIsNoLibrary) {
  const test::TempDirectory directory;
  const fs::path path =
      directory.write(std::string("Text") + os::sharedLibrarySuffix(), std::string("no library"));
  EXPECT_THAT(loading(path), ThrowsExactly<utils::Exception>(StartsWith(
                                 "Could not load the library '" + path.string() + "': ")));
}

TEST(LoadModule, RefusesALibraryThatRegistersNoAgent) {
  const std::size_t before = core::GetCimBroker().getAgents().size();
  const fs::path path = fs::absolute(QUORVEL_TEST_IDLE_MODULE);
  EXPECT_THAT(loading(path),
              ThrowsExactly<utils::Exception>("The module '" + path.string() +
                                              "' was loaded but registered no agent. The system "
                                              "log tells why."));
  EXPECT_EQ(core::GetCimBroker().getAgents().size(), before);
}

TEST(LoadModules, SaysWhichModuleOfADirectoryIsMissing) {
  const test::TempDirectory directory;
  EXPECT_THAT([&directory] { host::loadModules(directory.path()); },
              ThrowsExactly<utils::Exception>(HasSubstr(std::string("OrvexSoftwareInventoryAgent") +
                                                        os::sharedLibrarySuffix())));
}

}  // namespace
