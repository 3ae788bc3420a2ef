#include "tests/agent/LeastAllocations.h"

namespace test {

const int kLeastOfJobThread = 40;
const int kLeastOfNewJob = 100;

}  // namespace test
