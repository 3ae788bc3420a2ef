// The inventory agent, played by a test: ports, controllers and something that is neither.

#ifndef ORVEX_TESTS_AGENT_FAKESIBLINGS_H_
#define ORVEX_TESTS_AGENT_FAKESIBLINGS_H_

#include <string>
#include <vector>

namespace test {

// The agent stays with the broker for the life of the process; what it serves is the test's.
class FakeSiblings {
 public:
  // Adds the agent to the broker where that was not done.
  FakeSiblings();
  FakeSiblings(const FakeSiblings&) = delete;
  FakeSiblings& operator=(const FakeSiblings&) = delete;
  ~FakeSiblings();

  // Each returns the object path of what it adds.

  // A port with this identity text, which may be empty.
  std::string addPort(const std::string& identity);
  // A controller that owns the ports with these identities.
  std::string addController(const std::vector<std::string>& ports);
  // An instance of another class.
  std::string addSoftwareIdentity();
};

}  // namespace test

#endif  // ORVEX_TESTS_AGENT_FAKESIBLINGS_H_
