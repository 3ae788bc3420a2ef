// A test that runs the program `quorveld` on virtual adapters of its own.

#ifndef ORVEX_TESTS_DAEMON_POSIX_QUORVELDFIXTURE_H_
#define ORVEX_TESTS_DAEMON_POSIX_QUORVELDFIXTURE_H_

#include <cstdint>
#include <memory>
#include <string>
#include <sys/types.h>
#include <vector>

#include "platform/Posix/Descriptor.h"
#include "tests/support/QuorvelFixture.h"

namespace test {

// The program as a process beside the test. One that still runs at destruction is killed.
class RunningQuorveld {
 public:
  // Returns when the program has said where it listens, or has ended. Throws std::system_error.
  RunningQuorveld(const std::vector<std::string>& arguments,
                  const std::vector<EnvironmentChange>& environment);
  RunningQuorveld(const RunningQuorveld&) = delete;
  RunningQuorveld& operator=(const RunningQuorveld&) = delete;
  ~RunningQuorveld();

  // Returns the port of the first address with that scheme ("http", "https"), 0 for none.
  [[nodiscard]] std::uint16_t port(const std::string& scheme = "http") const;
  // Returns what it has said on standard output before it served.
  [[nodiscard]] const std::string& output() const { return m_output; }

  void signal(int number) const;
  [[nodiscard]] bool isRunning();
  // Waits for its end. Returns its exit status: 128 and the signal's number when a signal ended it.
  [[nodiscard]] int wait();

 private:
  pid_t m_process = 0;  // 0 once it is gone
  int m_status = 0;
  platform::Descriptor m_out;
  std::string m_output;
};

class QuorveldFixture : public QuorvelFixture {
 protected:
  static constexpr const char* kNamespace = "root/DCIM/zolan";
  static constexpr const char* kKeys =
      R"(SystemCreationClassName="CIM_UnitaryComputerSystem",SystemName="lab",)";

  // Starts the program, on a free port where no arguments are given, with a configuration of the
  // test's own; `settings` are its lines.
  void start(const std::string& settings = "");
  // The same with a certificate that was made for it, over HTTPS beside HTTP.
  void startWithTls(const std::string& settings = "");

  [[nodiscard]] RunningQuorveld& daemon() { return *m_daemon; }

  // Writes a file with the users anna, an operator, and bert, a reader, whose passwords are
  // "secret", and returns the settings by which they log in.
  [[nodiscard]] std::string writeUsers() const;

  // Runs Debian's client. `object` is "CLASS..." in the namespace of the agents.
  [[nodiscard]] ProgramResult wbemcli(std::vector<std::string> arguments, const std::string& object,
                                      const std::vector<std::string>& more = {}) const;
  // Returns its output, having expected it to succeed.
  [[nodiscard]] std::string ask(const std::vector<std::string>& arguments,
                                const std::string& object,
                                const std::vector<std::string>& more = {}) const;
  // Has the following calls go over HTTPS, with the certificate checked.
  void useTls() { m_isTls = true; }
  // Has the following calls log in, as "USER:PASSWORD".
  void logIn(const std::string& login) { m_login = login; }

  // Object paths without their namespace.
  [[nodiscard]] static std::string service();
  [[nodiscard]] static std::string port(const std::string& deviceId = "0000:03:00.0");

  // Has the client start an update from a file, and returns the object path of its job.
  [[nodiscard]] std::string startUpdate(const std::string& rom) const;
  // Returns a property of an instance, as the client prints it: 7, "text".
  [[nodiscard]] std::string propertyOf(const std::string& object, const std::string& name) const;

  // Sends bytes over a connection of their own, and returns all that comes back until the server
  // closes it.
  [[nodiscard]] std::string exchange(const std::string& bytes) const;
  [[nodiscard]] std::string health() const;

 private:
  [[nodiscard]] std::string writeSettings(const std::string& settings) const;
  void launch(const std::vector<std::string>& arguments);

  TempDirectory m_files;
  std::unique_ptr<RunningQuorveld> m_daemon;
  bool m_isTls = false;
  std::string m_login;
};

}  // namespace test

#endif  // ORVEX_TESTS_DAEMON_POSIX_QUORVELDFIXTURE_H_
