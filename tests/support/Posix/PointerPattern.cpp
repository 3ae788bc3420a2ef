#include "tests/support/PointerPattern.h"

namespace test {

const std::string kPointerPattern = "0x[0-9a-f]+";

}  // namespace test
