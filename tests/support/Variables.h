// The environment of the test program. To be changed while the test has one thread. Defined per
// platform.

#ifndef ORVEX_TESTS_SUPPORT_VARIABLES_H_
#define ORVEX_TESTS_SUPPORT_VARIABLES_H_

#include <string>

namespace test {

void setVariable(const std::string& name, const std::string& value);
void unsetVariable(const std::string& name);

}  // namespace test

#endif  // ORVEX_TESTS_SUPPORT_VARIABLES_H_
