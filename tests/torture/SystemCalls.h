// The system calls that the libraries of this process make for the files of one folder: counted,
// failing, or the last thing that the process does.
//
// The program defines the calls that files go through (open, read, write, fsync, rename, unlink and
// so on) itself, which every shared library of the process then uses. They do what the system's do,
// until a plan is set. For a process with one thread; a child made by fork has a plan of its own.

#ifndef ORVEX_TESTS_TORTURE_SYSTEMCALLS_H_
#define ORVEX_TESTS_TORTURE_SYSTEMCALLS_H_

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace test {

enum class CallFault {
  NoSpace,      // the call fails with ENOSPC
  InputOutput,  // with EIO
  Interrupted,  // with EINTR, once
  ShortWrite,   // a write takes the half of its bytes; other calls do what they do
  Kill,         // the process is killed before the call
};

struct CallPlan {
  // What happens at which call; none where `call` is not reached.
  std::uint64_t call = ~std::uint64_t{0};
  CallFault fault = CallFault::InputOutput;
  // The bytes that writes take together before the disk is full, for ever; nothing: any number.
  std::optional<std::uint64_t> room;
};

// What a call did to the files of the folder.
struct Change {
  enum class Kind { Make, Write, SyncFile, SyncFolder, Rename, Remove };
  Kind kind{};
  std::string path;   // of a rename the new one
  std::string from;   // of a rename the old one
  std::string bytes;  // that were written behind the others
};

// Watches the calls for what is in a folder from now on. The count starts at 0.
void watchSystemCalls(const std::string& folder, const CallPlan& plan);
// Watches them no more, and keeps what was seen.
void ignoreSystemCalls();

// Returns what the calls changed that were done, in their order.
[[nodiscard]] const std::vector<Change>& watchedChanges();

// Returns how many calls there were, and how many bytes were written.
[[nodiscard]] std::uint64_t watchedCalls();
[[nodiscard]] std::uint64_t watchedBytes();

}  // namespace test

#endif  // ORVEX_TESTS_TORTURE_SYSTEMCALLS_H_
