// An update on a machine that loses its power behind any of its calls.

#ifndef ORVEX_TESTS_TORTURE_POWERLOSS_H_
#define ORVEX_TESTS_TORTURE_POWERLOSS_H_

#include <cstdint>
#include <string>

#include "tests/torture/Disk.h"
#include "tests/torture/Victim.h"

namespace test {

// How often the adapter was found with the firmware of before, and with the new one.
struct LossCounts {
  std::uint64_t olds = 0;
  std::uint64_t news = 0;
};

// Updates the adapter once, and then has it be what a disk may have kept of that behind each call,
// in several ways. Throws std::runtime_error where it is not whole then, where an update that was
// done is lost, and where the next one does not tidy up; `doing` says where that was.
[[nodiscard]] LossCounts losePower(Victim& victim, Disk::Random& random, std::string& doing);

}  // namespace test

#endif  // ORVEX_TESTS_TORTURE_POWERLOSS_H_
