// The job class, played by a test. Constructing one makes it the current ConcreteJobFactory.

#ifndef ORVEX_TESTS_AGENT_FAKEJOBFACTORY_H_
#define ORVEX_TESTS_AGENT_FAKEJOBFACTORY_H_

#include <functional>
#include <string>
#include <vector>

#include "agent/ConcreteJobFactory.h"

namespace test {

class FakeJobFactory : public ConcreteJobFactory {
 public:
  struct Request {
    std::string target;
    std::string uri;
    std::vector<std::uint16_t> installOptions;
    std::vector<std::string> installOptionsValues;
    bool create = false;
  };

  std::int32_t verifyOrCreateNewJob(const std::string& target, const std::string& uri,
                                    const std::vector<std::uint16_t>& installOptions,
                                    const std::vector<std::string>& installOptionsValues,
                                    core::CimInstance*& job, bool create) override {
    requests.push_back({target, uri, installOptions, installOptionsValues, create});
    if (fault) {
      fault();
    }
    job = created;
    return result;
  }

  std::int32_t result = 0;
  core::CimInstance* created = nullptr;
  // Called by a request; throws.
  std::function<void()> fault;
  std::vector<Request> requests;
};

}  // namespace test

#endif  // ORVEX_TESTS_AGENT_FAKEJOBFACTORY_H_
