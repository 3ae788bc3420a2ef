// A thousand adapters, one of which has an update that its dead process left to be done.

#ifndef ORVEX_TESTS_TORTURE_CROWD_H_
#define ORVEX_TESTS_TORTURE_CROWD_H_

namespace test {

// Throws std::runtime_error unless one query does what was left, touches no other adapter, and
// makes a bounded number of system calls for each.
void demandThatOneQuerySettles();

}  // namespace test

#endif  // ORVEX_TESTS_TORTURE_CROWD_H_
