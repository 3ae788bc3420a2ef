// A host on this machine that answers what the test says, and the programs that ask it.

#ifndef ORVEX_TESTS_CLI_POSIX_FAKEHOST_H_
#define ORVEX_TESTS_CLI_POSIX_FAKEHOST_H_

#include <functional>
#include <ostream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "cimxml/Request.h"
#include "cli/Program.h"
#include "http/Server.h"

namespace test {

class FakeHost : private http::Handler {
 public:
  // Returns what stands in the response element: "<IRETURNVALUE>...". Runs on a thread of the host.
  using Answer = std::function<std::string(const cimxml::Request&)>;

  explicit FakeHost(Answer answer) : m_answer(std::move(answer)) {}
  FakeHost(const FakeHost&) = delete;
  FakeHost& operator=(const FakeHost&) = delete;
  ~FakeHost() override {
    m_server.stop();
    m_thread.join();
  }

  [[nodiscard]] std::string address() const {
    return "http://" + m_server.endpoints().at(0).text();
  }

  // Runs the program with these arguments against the host and returns its exit status.
  int run(std::vector<std::string> arguments, std::ostream& out, std::ostream& err) const {
    arguments.insert(arguments.begin(), {"quorvel", "--host", address()});
    std::vector<const char*> pointers;
    for (const std::string& argument : arguments) {
      pointers.push_back(argument.c_str());
    }
    return cli::runProgram(static_cast<int>(pointers.size()), pointers.data(), out, err);
  }

 private:
  void handle(http::Request& request, http::Response& response) override {
    const cimxml::Request asked = cimxml::parseRequest(request.body());
    const std::string element = asked.isExtrinsic ? "METHODRESPONSE" : "IMETHODRESPONSE";
    response.contentType = "application/xml";
    response.body = "<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><MESSAGE ID=\"" + asked.messageId +
                    "\" PROTOCOLVERSION=\"1.0\"><SIMPLERSP><" + element + " NAME=\"" + asked.name +
                    "\">" + m_answer(asked) + "</" + element + "></SIMPLERSP></MESSAGE></CIM>";
  }

  static http::ServerOptions onLoopback() {
    http::ServerOptions options;
    options.endpoints = {{"127.0.0.1", 0, false}};
    return options;
  }

  const Answer m_answer;
  http::Server m_server{onLoopback(), *this};
  std::thread m_thread{[this] { m_server.run(); }};
};

}  // namespace test

#endif  // ORVEX_TESTS_CLI_POSIX_FAKEHOST_H_
