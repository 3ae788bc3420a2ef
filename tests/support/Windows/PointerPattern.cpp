#include "tests/support/PointerPattern.h"

namespace test {

const std::string kPointerPattern = "[0-9a-fA-F]{16}";

}  // namespace test
