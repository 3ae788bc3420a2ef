#include "tests/support/Variables.h"

#include <stdlib.h>

namespace test {

void setVariable(const std::string& name, const std::string& value) {
  _putenv_s(name.c_str(), value.c_str());
}

void unsetVariable(const std::string& name) {
  _putenv_s(name.c_str(), "");
}

}  // namespace test
