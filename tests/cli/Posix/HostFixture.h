// A test that runs the program `quorvel` against a host of its own, on the test's adapters.

#ifndef ORVEX_TESTS_CLI_POSIX_HOSTFIXTURE_H_
#define ORVEX_TESTS_CLI_POSIX_HOSTFIXTURE_H_

#include <memory>
#include <string>

#include "tests/cli/Posix/RunningQuorvel.h"
#include "tests/support/QuorvelFixture.h"

namespace test {

class HostFixture : public QuorvelFixture {
 protected:
  // Starts a host on a free port of this machine with these settings (lines NAME = VALUE), and
  // waits until it listens. `scheme` is http or https.
  void startHost(const std::string& settings = "", const std::string& scheme = "http");
  // The same with a file of users: reader and admin, an operator, whose passwords are "secret".
  void startHostWithUsers(const std::string& settings = "", const std::string& scheme = "http");

  // Writes a certificate for 127.0.0.1 and returns the settings that name it; it vouches for
  // itself.
  std::string makeCertificate();

  // Returns the address of the host, with a user where one is given.
  [[nodiscard]] std::string address(const std::string& user = "") const;
  // Returns the arguments with the host in front of them.
  [[nodiscard]] Arguments onHost(const Arguments& arguments, const std::string& user = "") const;

  // Expects that a command prints the same in process and over the host.
  void expectSame(const Arguments& arguments, int exitStatus = 0) const;

  // Makes a file that holds the password and returns its path.
  [[nodiscard]] std::string passwordFile(const std::string& password) const;

 private:
  std::unique_ptr<RunningQuorvel> m_host;
  std::string m_scheme;
  std::string m_place;  // "127.0.0.1:41234"
};

}  // namespace test

#endif  // ORVEX_TESTS_CLI_POSIX_HOSTFIXTURE_H_
