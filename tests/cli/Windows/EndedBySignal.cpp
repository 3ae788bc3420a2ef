#include "tests/cli/EndedBySignal.h"

namespace test {

// What the C runtime gives a process that it ends for a signal.
constexpr int kExitStatus = 3;

bool EndedBySignal::operator()(int status) const {
  return m_signal != 0 && status == kExitStatus;
}

}  // namespace test
