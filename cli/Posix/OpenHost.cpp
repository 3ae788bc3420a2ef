#include "cli/OpenHost.h"

#include <fstream>
#include <utility>

#include "Os/QuorvelConfig.h"
#include "Utils/Printable.h"
#include "cli/Posix/Password.h"
#include "cli/Posix/PasswordPrompt.h"
#include "client/Fault.h"
#include "client/HostConnection.h"
#include "client/HostHttp.h"
#include "client/Texts.h"

namespace cli {
namespace {

void demandSafeLogin(const client::HostAddress& address) {
  if (address.isLoginReadable() && !address.isLoopback()) {
    throw client::Fault("--host: over http anybody on the network could read the password of " +
                            address.user +
                            "; use https, or http to this machine itself (127.0.0.1)",
                        client::Fault::Kind::Usage);
  }
}

void demandReadable(const std::string& caFile) {
  if (!caFile.empty() && !std::ifstream(caFile).is_open()) {
    throw client::Fault(
        "--cacert: '" + caFile + "' cannot be read; check the path and its permissions",
        client::Fault::Kind::Usage);
  }
}

std::string demandPassword(const client::HostAddress& address, const GlobalOptions& options) {
  if (std::optional<std::string> password = findPassword(options.passwordFile)) {
    return std::move(*password);
  }
  std::optional<std::string> typed = askPassword(
      utils::toPrintable("Password of " + address.user + " for " + address.url() + ": "));
  if (!typed) {
    throw client::Fault("there is no terminal to ask for the password of " + address.user +
                            "; give it by --password-file, or by the environment variable "
                            "QUORVEL_PASSWORD",
                        client::Fault::Kind::Usage);
  }
  return std::move(*typed);
}

// The options as a user has to give them again.
std::string commandFor(const GlobalOptions& options) {
  const std::pair<const char*, const std::string&> given[] = {
      {" --host ", options.host},
      {" --password-file ", options.passwordFile},
      {" --cacert ", options.caFile},
      {" --namespace ", options.nameSpace},
  };
  std::string command = "quorvel";
  for (const auto& [option, value] : given) {
    if (!value.empty()) {
      command += option + client::quoteForShell(value);
    }
  }
  return command;
}

}  // namespace

std::unique_ptr<client::Connection> openHost(const GlobalOptions& options) {
  const client::HostAddress address = client::parseHostAddress(options.host);
  demandSafeLogin(address);
  demandReadable(options.caFile);
  client::HostConnection::Send send = client::openHttp(address, options.caFile);
  std::string password = address.user.empty() ? "" : demandPassword(address, options);
  return std::make_unique<client::HostConnection>(
      client::HostConnection::Options{
          address, std::move(password),
          options.nameSpace.empty() ? utils::QuorvelConfig::kDefaultNamespace : options.nameSpace,
          commandFor(options)},
      std::move(send));
}

}  // namespace cli
