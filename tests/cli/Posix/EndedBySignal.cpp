#include "tests/cli/EndedBySignal.h"

#include <sys/wait.h>

namespace test {

bool EndedBySignal::operator()(int status) const {
  return WIFSIGNALED(status) && WTERMSIG(status) == m_signal;
}

}  // namespace test
