// A module that uses of the core library what that makes on first use, and of the agents an update.

#include <chrono>
#include <windows.h>

#include "Os/FileCalls.h"
#include "Os/QuorvelConfig.h"
#include "core/CimBroker.h"
#include "tests/modules/Windows/SmallHost.h"

namespace {

[[maybe_unused]] const bool s_isUsed =
    (static_cast<void>(core::GetCimBroker()),
     static_cast<void>(utils::QuorvelConfig::getInstance()->getTimeout()), true);

}  // namespace

// Updates the first port and waits for the end, and makes a call of a file system that comes back
// when the event `answer` is set. Returns whether the update was made, and the call given up.
extern "C" __declspec(dllexport) bool useModules(const char* uri, void* answer) {
  os::FileCalls calls(std::chrono::milliseconds(1));
  const os::FileAnswer away =
      calls.makeAt("a server", [answer] { WaitForSingleObject(answer, INFINITE); });
  const test::Installation result = test::install(uri);
  return away == os::FileAnswer::GivenUp && result.job &&
         test::awaitEnd(*result.job) == "state 7, error ''";
}
