// The requests of CIM clients that a load is made of, as bytes: written out here, so that a load
// stays the same when the project's own writer of requests changes.

#ifndef ORVEX_BENCH_QUESTIONS_H_
#define ORVEX_BENCH_QUESTIONS_H_

#include <string>
#include <vector>

namespace bench {

// A parameter of an operation: its name and the XML of its value.
struct QuestionParameter {
  std::string name;
  std::string xml;
};

// Returns an HTTP request for an operation in the agents' namespace.
[[nodiscard]] std::string askOperation(const std::string& operation,
                                       const std::vector<QuestionParameter>& parameters);

// Return values of parameters.
[[nodiscard]] std::string className(const std::string& name);
[[nodiscard]] std::string text(const std::string& value);
[[nodiscard]] std::string serviceName();
[[nodiscard]] std::string portName(const std::string& identity);

// Returns an HTTP request that installs a file on a port.
[[nodiscard]] std::string askInstallation(const std::string& uri, const std::string& identity);

}  // namespace bench

#endif  // ORVEX_BENCH_QUESTIONS_H_
