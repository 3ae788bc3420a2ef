#include "cli/OpenHost.h"

#include <fstream>
#include <utility>

#include "cli/HostConnection.h"
#include "cli/Password.h"
#include "cli/Posix/PasswordPrompt.h"
#include "cli/TextTable.h"

namespace cli {
namespace {

constexpr const char* kDefaultNameSpace = "root/DCIM/zolan";
constexpr const char* kTarget = "/cimom";

bool isLoginReadable(const HostAddress& address) {
  return !address.user.empty() && !address.isTls;
}

void demandSafeLogin(const HostAddress& address) {
  if (isLoginReadable(address) && !address.isLoopback()) {
    throw Fault("--host: over http anybody on the network could read the password of " +
                    address.user + "; use https, or http to this machine itself (127.0.0.1)",
                ExitStatus::Usage);
  }
}

void demandReadable(const std::string& caFile) {
  if (!caFile.empty() && !std::ifstream(caFile).is_open()) {
    throw Fault("--cacert: '" + caFile + "' cannot be read; check the path and its permissions",
                ExitStatus::Usage);
  }
}

std::string demandPassword(const HostAddress& address, const GlobalOptions& options) {
  if (std::optional<std::string> password = findPassword(options.passwordFile)) {
    return std::move(*password);
  }
  std::optional<std::string> typed =
      askPassword("Password of " + toPrintable(address.user) + " for " + address.url() + ": ");
  if (!typed) {
    throw Fault("there is no terminal to ask for the password of " + address.user +
                    "; give it by --password-file, or by the environment variable "
                    "QUORVEL_PASSWORD",
                ExitStatus::Usage);
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
      command += option + quoteForShell(value);
    }
  }
  return command;
}

std::shared_ptr<http::Client> makeClient(const HostAddress& address, const GlobalOptions& options) {
  http::ClientOptions clientOptions;
  clientOptions.host = address.host;
  clientOptions.port = address.port;
  clientOptions.isTls = address.isTls;
  clientOptions.caFile = options.caFile;
  clientOptions.mustBeLoopback = isLoginReadable(address);
  try {
    return std::make_shared<http::Client>(std::move(clientOptions));
  } catch (const http::ClientFault& fault) {
    throw Fault(fault.what(), ExitStatus::Usage);
  }
}

}  // namespace

std::unique_ptr<Connection> openHost(const GlobalOptions& options) {
  const HostAddress address = parseHostAddress(options.host);
  demandSafeLogin(address);
  demandReadable(options.caFile);
  const std::shared_ptr<http::Client> client = makeClient(address, options);
  std::string password = address.user.empty() ? "" : demandPassword(address, options);
  return std::make_unique<HostConnection>(
      HostConnection::Options{address, std::move(password),
                              options.nameSpace.empty() ? kDefaultNameSpace : options.nameSpace,
                              commandFor(options)},
      [client](const http::Client::Fields& fields, const std::string& body,
               const http::SendOptions& sendOptions) {
        return client->send("POST", kTarget, fields, body, sendOptions);
      });
}

}  // namespace cli
