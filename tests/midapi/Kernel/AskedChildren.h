// The child processes that asking drivers leaves behind, as a test sees them.

#ifndef ORVEX_TESTS_MIDAPI_KERNEL_ASKEDCHILDREN_H_
#define ORVEX_TESTS_MIDAPI_KERNEL_ASKEDCHILDREN_H_

#include <string>
#include <sys/types.h>
#include <vector>

namespace test {

// While one lives, children whose own parent has ended are those of this process. It ends them when
// it goes.
class AskedChildren {
 public:
  AskedChildren();
  AskedChildren(const AskedChildren&) = delete;
  AskedChildren& operator=(const AskedChildren&) = delete;
  ~AskedChildren();

  // Returns those that live, and those that are dead and not awaited.
  [[nodiscard]] std::vector<pid_t> all() const;

  // Waits for one to end, and returns its exit status as awaitEnd().
  [[nodiscard]] int awaitOne() const;
};

// Returns a line of the process's status file: statusOf(1, "SigCgt").
[[nodiscard]] std::string statusOf(pid_t process, const std::string& field);

// Returns how many files this process has open.
[[nodiscard]] std::size_t countOpenFiles();

}  // namespace test

#endif  // ORVEX_TESTS_MIDAPI_KERNEL_ASKEDCHILDREN_H_
