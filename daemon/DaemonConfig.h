// The settings of the daemon: its own file, apart from that of the agents.
//
// Lines are `name = value`; an empty line and one that begins with # are left out. What a name
// means stands in packaging/linux/quorveld.conf.

#ifndef ORVEX_DAEMON_DAEMONCONFIG_H_
#define ORVEX_DAEMON_DAEMONCONFIG_H_

#include <chrono>
#include <cstddef>
#include <exception>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "http/Endpoint.h"

namespace quorveld {

// A setting that cannot be put in force: what() says where it stands, what is wrong with it, and
// what to do.
class ConfigurationFault final : public std::exception {
 public:
  explicit ConfigurationFault(std::string text) : m_text(std::move(text)) {}
  [[nodiscard]] const char* what() const noexcept override { return m_text.c_str(); }

 private:
  std::string m_text;
};

enum class AuthenticationKind { Local, None, Pam, File };

// An empty text or list is a setting that was not made.
struct DaemonConfig {
  static constexpr const char* kDefaultPath = "/etc/quorveld.conf";
  static constexpr const char* kDefaultSocket = "/run/orvex/quorveld.sock";

  std::vector<http::Endpoint> listen;
  std::string certificate;
  std::string key;
  std::optional<AuthenticationKind> authentication;
  std::string passwordFile;
  std::vector<std::string> operators;  // users and @groups, for local users and PAM
  std::vector<std::string> readers;
  std::string adapters;
  std::string agentConfig;
  std::vector<std::string> modules;
  std::string logLevel;
  std::size_t maxConnections = 128;
  std::size_t maxConnectionsPerAddress = 64;
  std::size_t maxBodyBytes = 1024 * 1024;
  std::size_t maxAnswerBytes = 64 * 1024 * 1024;
  std::chrono::seconds requestTimeout{30};
  std::chrono::seconds idleTimeout{60};
};

// Reads a file that has to be there and private: it names the commands and files that the host
// trusts. Throws ConfigurationFault.
[[nodiscard]] DaemonConfig readDaemonConfig(const std::string& path);
// Reads the content of such a file; faults name it by its path. Throws ConfigurationFault.
[[nodiscard]] DaemonConfig parseDaemonConfig(const std::string& path, const std::string& content);
// Reads the file at the default path, whose absence means that nothing is set. Throws
// ConfigurationFault.
[[nodiscard]] DaemonConfig readDefaultDaemonConfig(
    const std::string& path = DaemonConfig::kDefaultPath);

// What completeConfig() needs to know of the process (see Posix/Privileges.h).
struct Privileges {
  bool isRoot = false;
  bool mayUseDefaultSocket = false;  // make a socket at DaemonConfig::kDefaultSocket
};

// Fills in what follows from the rest (where to listen, how users log in) and demands what keeps
// the host safe: no password in the clear on a network, no address of a network without a login,
// nobody who flashes as root unasked. Throws ConfigurationFault.
void completeConfig(DaemonConfig& config, const Privileges& privileges);

// Demands that no other user can write the agents' settings, if they are there: the agents read
// them by themselves. Throws ConfigurationFault.
void demandPrivateAgentSettings(const DaemonConfig& config);

// Reads one listening address as the file and the command line have it. Throws ConfigurationFault,
// whose text begins with `place`.
[[nodiscard]] http::Endpoint demandEndpoint(const std::string& place, const std::string& text);

}  // namespace quorveld

#endif  // ORVEX_DAEMON_DAEMONCONFIG_H_
