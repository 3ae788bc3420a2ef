// How many allocations a test can refuse an update at least, which are fewer where a program's
// operator new is not that of its libraries. Somewhat below what they are: far fewer would mean
// that the test no longer reaches what it is about.

#ifndef ORVEX_TESTS_AGENT_LEASTALLOCATIONS_H_
#define ORVEX_TESTS_AGENT_LEASTALLOCATIONS_H_

namespace test {

// Of the thread of a job, from its first sleep on. Defined per platform.
extern const int kLeastOfJobThread;
// Of whoever makes a job. Defined per platform.
extern const int kLeastOfNewJob;

}  // namespace test

#endif  // ORVEX_TESTS_AGENT_LEASTALLOCATIONS_H_
