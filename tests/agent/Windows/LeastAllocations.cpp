#include "tests/agent/LeastAllocations.h"

namespace test {

const int kLeastOfJobThread = 2;
const int kLeastOfNewJob = 10;

}  // namespace test
