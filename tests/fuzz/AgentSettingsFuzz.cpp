// Any file is read as the agents' settings; what is wrong with it is said of its lines, and not
// without end.

#include <cstdlib>
#include <string>
#include <sys/mman.h>
#include <unistd.h>
#include <vector>

#include "Os/SettingsStore.h"
#include "platform/Posix/Descriptor.h"
#include "tests/fuzz/Fuzz.h"

namespace {

constexpr utils::SettingName kKnown[] = {{"", "Timeout", true}, {"", "FWFilePath", false}};
constexpr std::size_t kMostProblems = 100;

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const platform::Descriptor file(memfd_create("settings", MFD_CLOEXEC));
  if (!file.isOpen() || ::write(file.get(), data, size) != static_cast<ssize_t>(size)) {
    std::abort();
  }
  const std::string path = "/proc/self/fd/" + std::to_string(file.get());
  const utils::SettingsStore store(path);
  std::uint32_t number = 0;
  std::string text;
  static_cast<void>(store.read(kKnown[0], number));
  static_cast<void>(store.read(kKnown[1], text));
  const std::vector<std::string> problems = store.findProblems(kKnown);
  test::require(problems.size() <= kMostProblems, "problems come to an end");
  for (const std::string& problem : problems) {
    test::require(problem.starts_with(path), "a problem says where it is");
  }
  return 0;
}
