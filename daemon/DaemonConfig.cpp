#include "daemon/DaemonConfig.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <filesystem>
#include <initializer_list>
#include <iterator>
#include <set>
#include <sstream>
#include <string_view>
#include <system_error>

#include "Os/QuorvelConfig.h"
#include "Utils/Conversions.h"
#include "cimxml/Ports.h"
#include "daemon/Addresses.h"
#include "platform/Posix/PrivateFile.h"

namespace quorveld {
namespace {

constexpr const char* kLoopback = "127.0.0.1";

constexpr std::uint32_t kMostConnections = 65'536;
constexpr std::uint32_t kLeastBodyBytes = 1024;
constexpr std::uint32_t kMostBodyBytes = 1024 * 1024 * 1024;
constexpr std::uint32_t kLeastAnswerBytes = 1024 * 1024;
constexpr std::uint32_t kMostAnswerBytes = 4'294'967'295;
constexpr std::uint32_t kMostSeconds = 86'400;
constexpr std::size_t kMostFileBytes = 1024 * 1024;

constexpr std::pair<const char*, AuthenticationKind> kAuthentications[] = {
    {"local", AuthenticationKind::Local},
    {"none", AuthenticationKind::None},
    {"pam", AuthenticationKind::Pam},
    {"file", AuthenticationKind::File},
};

// One line, with its place for messages.
struct Line {
  std::string place;
  std::string value;
};

std::uint32_t demandNumber(const Line& line, std::uint32_t least, std::uint32_t most) {
  std::uint32_t number = 0;
  const char* const begin = line.value.data();
  const char* const end = begin + line.value.size();
  const auto [stop, error] = std::from_chars(begin, end, number);
  if (error != std::errc() || stop != end || number < least || number > most) {
    throw ConfigurationFault(line.place + "'" + line.value + "' is no whole number from " +
                             std::to_string(least) + " to " + std::to_string(most) + "; write one");
  }
  return number;
}

AuthenticationKind demandAuthentication(const Line& line) {
  for (const auto& [name, kind] : kAuthentications) {
    if (line.value == name) {
      return kind;
    }
  }
  throw ConfigurationFault(line.place + "'" + line.value +
                           "' is no way to log in; write local, pam, file or none");
}

std::string demandLogLevel(const Line& line) {
  return std::to_string(demandNumber(line, 0, 3));
}

// The daemon has no directory of its own, so a relative path would mean something else each time.
std::string demandPath(const Line& line) {
  if (!line.value.starts_with('/')) {
    throw ConfigurationFault(line.place + "'" + line.value +
                             "' is no absolute path; write one that begins with /");
  }
  return line.value;
}

std::vector<std::string> demandNames(const Line& line) {
  std::istringstream text(line.value);
  std::vector<std::string> names{std::istream_iterator<std::string>(text), {}};
  if (std::find(names.begin(), names.end(), "@") != names.end()) {
    throw ConfigurationFault(line.place + "'@' names no group; write @GROUP without a space");
  }
  return names;
}

struct Setting {
  const char* name;
  bool isRepeatable;
  void (*apply)(DaemonConfig&, const Line&);
};

constexpr Setting kSettings[] = {
    {"listen", true,
     [](DaemonConfig& config, const Line& line) {
       config.listen.push_back(demandEndpoint(line.place, line.value));
     }},
    {"certificate", false,
     [](DaemonConfig& config, const Line& line) { config.certificate = demandPath(line); }},
    {"key", false, [](DaemonConfig& config, const Line& line) { config.key = demandPath(line); }},
    {"authentication", false,
     [](DaemonConfig& config, const Line& line) {
       config.authentication = demandAuthentication(line);
     }},
    {"password-file", false,
     [](DaemonConfig& config, const Line& line) { config.passwordFile = demandPath(line); }},
    {"operators", false,
     [](DaemonConfig& config, const Line& line) { config.operators = demandNames(line); }},
    {"readers", false,
     [](DaemonConfig& config, const Line& line) { config.readers = demandNames(line); }},
    {"adapters", false,
     [](DaemonConfig& config, const Line& line) { config.adapters = demandPath(line); }},
    {"config", false,
     [](DaemonConfig& config, const Line& line) { config.agentConfig = demandPath(line); }},
    {"module", true,
     [](DaemonConfig& config, const Line& line) { config.modules.push_back(demandPath(line)); }},
    {"log-level", false,
     [](DaemonConfig& config, const Line& line) { config.logLevel = demandLogLevel(line); }},
    {"max-connections", false,
     [](DaemonConfig& config, const Line& line) {
       config.maxConnections = demandNumber(line, 1, kMostConnections);
     }},
    {"max-connections-per-address", false,
     [](DaemonConfig& config, const Line& line) {
       config.maxConnectionsPerAddress = demandNumber(line, 1, kMostConnections);
     }},
    {"max-body", false,
     [](DaemonConfig& config, const Line& line) {
       config.maxBodyBytes = demandNumber(line, kLeastBodyBytes, kMostBodyBytes);
     }},
    {"max-answers", false,
     [](DaemonConfig& config, const Line& line) {
       config.maxAnswerBytes = demandNumber(line, kLeastAnswerBytes, kMostAnswerBytes);
     }},
    {"request-timeout", false,
     [](DaemonConfig& config, const Line& line) {
       config.requestTimeout = std::chrono::seconds(demandNumber(line, 1, kMostSeconds));
     }},
    {"idle-timeout", false,
     [](DaemonConfig& config, const Line& line) {
       config.idleTimeout = std::chrono::seconds(demandNumber(line, 1, kMostSeconds));
     }},
};

const Setting& demandSetting(const std::string& place, const std::string& name) {
  std::string known;
  for (const Setting& setting : kSettings) {
    if (name == setting.name) {
      return setting;
    }
    known += (known.empty() ? "" : ", ") + std::string(setting.name);
  }
  throw ConfigurationFault(place + "there is no setting '" + name + "'; the settings are " + known);
}

void applyLine(DaemonConfig& config, const std::string& place, const std::string& text,
               std::set<std::string>& seen) {
  const std::size_t sign = text.find('=');
  if (sign == std::string::npos) {
    throw ConfigurationFault(place + "'" + text + "' is no setting; write NAME = VALUE");
  }
  const std::string name = utils::trim(text.substr(0, sign));
  const Setting& setting = demandSetting(place, name);
  const Line line{place + name + ": ", utils::trim(text.substr(sign + 1))};
  if (line.value.empty()) {
    throw ConfigurationFault(line.place +
                             "there is no value; write one, or put a # before the line");
  }
  if (!seen.insert(name).second && !setting.isRepeatable) {
    throw ConfigurationFault(line.place + "is set a second time; leave one of the lines out");
  }
  setting.apply(config, line);
}

bool isOfThisMachine(const http::Endpoint& endpoint) {
  return !endpoint.path.empty() || isLoopbackAddress(endpoint.address);
}

bool isLoopbackOnly(const DaemonConfig& config) {
  return std::all_of(config.listen.begin(), config.listen.end(), isOfThisMachine);
}

void demandTogether(const std::string& one, const char* oneName, const std::string& other,
                    const char* otherName) {
  if (!one.empty() && other.empty()) {
    throw ConfigurationFault(std::string(oneName) + " '" + one + "' is set without a " + otherName +
                             "; set both for HTTPS, or none");
  }
}

void completeListen(DaemonConfig& config, const Privileges& privileges) {
  demandTogether(config.certificate, "certificate", config.key, "key");
  demandTogether(config.key, "key", config.certificate, "certificate");
  if (config.listen.empty()) {
    config.listen.push_back({kLoopback, cimxml::kHttpPort, false});
    if (!config.certificate.empty()) {
      config.listen.push_back({kLoopback, cimxml::kHttpsPort, true});
    }
    const bool isLocal =
        config.authentication.value_or(AuthenticationKind::Local) == AuthenticationKind::Local;
    if (isLocal && privileges.mayUseDefaultSocket) {
      config.listen.push_back({"", 0, false, DaemonConfig::kDefaultSocket});
    }
  }
  for (const http::Endpoint& endpoint : config.listen) {
    if (endpoint.isTls && config.certificate.empty()) {
      throw ConfigurationFault("listen: https:" + endpoint.text() +
                               " needs a certificate; set certificate and key");
    }
    if (!endpoint.isTls && !isOfThisMachine(endpoint)) {
      throw ConfigurationFault("listen: " + endpoint.text() +
                               " would send passwords over the network in the clear; listen on "
                               "https:" +
                               endpoint.text() + ", or on a loopback address");
    }
  }
}

// A setting that not every way to log in uses.
void demandUse(bool isSet, const char* name, const DaemonConfig& config,
               std::initializer_list<AuthenticationKind> kinds, const char* kindNames) {
  if (isSet && std::find(kinds.begin(), kinds.end(), *config.authentication) == kinds.end()) {
    throw ConfigurationFault(std::string(name) + " is set, but nobody logs in by it; set " +
                             "authentication = " + kindNames + ", or leave it out");
  }
}

void completeAuthentication(DaemonConfig& config, const Privileges& privileges) {
  if (!config.authentication) {
    if (!isLoopbackOnly(config)) {
      throw ConfigurationFault(
          "authentication is not set, and the host would listen on a network; set authentication "
          "= pam or authentication = file");
    }
    config.authentication = AuthenticationKind::Local;
  }
  using Kind = AuthenticationKind;
  demandUse(!config.passwordFile.empty(), "password-file", config, {Kind::File}, "file");
  demandUse(!config.operators.empty(), "operators", config, {Kind::Local, Kind::Pam},
            "local or pam");
  demandUse(!config.readers.empty(), "readers", config, {Kind::Pam}, "pam");
  switch (*config.authentication) {
    case AuthenticationKind::Local:
      if (!isLoopbackOnly(config)) {
        throw ConfigurationFault(
            "authentication = local knows the users of this machine alone; set pam or file, or "
            "listen on a loopback address");
      }
      break;
    case AuthenticationKind::None:
      if (!isLoopbackOnly(config)) {
        throw ConfigurationFault(
            "authentication = none would let everybody on the network replace firmware; set pam "
            "or file, or listen on a loopback address");
      }
      if (privileges.isRoot) {
        throw ConfigurationFault(
            "authentication = none would let every user and program of this machine replace "
            "firmware as root; set local, or run quorveld as a user of its own");
      }
      break;
    case AuthenticationKind::Pam:
      if (config.operators.empty() && config.readers.empty()) {
        throw ConfigurationFault(
            "authentication = pam lets nobody in; name users or @groups in operators, in readers "
            "or in both");
      }
      break;
    case AuthenticationKind::File:
      if (config.passwordFile.empty()) {
        throw ConfigurationFault("authentication = file needs a password-file; set its path");
      }
      break;
  }
}

}  // namespace

http::Endpoint demandEndpoint(const std::string& place, const std::string& text) {
  const std::optional<http::Endpoint> endpoint = parseEndpoint(text);
  if (!endpoint) {
    throw ConfigurationFault(place + "'" + text +
                             "' is no address to listen on; write ADDRESS:PORT, "
                             "https:ADDRESS:PORT or unix:PATH, as 127.0.0.1:5988, https:[::]:5989 "
                             "or unix:/run/orvex/quorveld.sock");
  }
  return *endpoint;
}

DaemonConfig readDaemonConfig(const std::string& path) {
  try {
    return parseDaemonConfig(
        path, platform::readPrivateFile(path, platform::Privacy::Secret, kMostFileBytes).content);
  } catch (const platform::PrivateFileFault& fault) {
    throw ConfigurationFault(std::string("the configuration file ") + fault.what());
  }
}

DaemonConfig parseDaemonConfig(const std::string& path, const std::string& content) {
  std::istringstream file(content);
  DaemonConfig config;
  std::set<std::string> seen;
  std::string text;
  for (unsigned number = 1; std::getline(file, text); ++number) {
    const std::string line = utils::trim(text.substr(0, text.find('\r')));
    if (!line.empty() && !line.starts_with('#')) {
      applyLine(config, path + ":" + std::to_string(number) + ": ", line, seen);
    }
  }
  return config;
}

DaemonConfig readDefaultDaemonConfig(const std::string& path) {
  std::error_code error;
  const std::filesystem::file_status status = std::filesystem::status(path, error);
  return status.type() == std::filesystem::file_type::not_found ? DaemonConfig{}
                                                                : readDaemonConfig(path);
}

void demandPrivateAgentSettings(const DaemonConfig& config) {
  const std::string path =
      config.agentConfig.empty() ? utils::QuorvelConfig::kDefaultPath : config.agentConfig;
  const std::optional<platform::FileStamp> stamp = platform::findStamp(path);
  if (!stamp) {
    return;  // whoever uses it says so
  }
  try {
    platform::demandPrivate(path, *stamp, platform::Privacy::Unchanged);
  } catch (const platform::PrivateFileFault& fault) {
    throw ConfigurationFault(std::string("config: ") + fault.what());
  }
}

void completeConfig(DaemonConfig& config, const Privileges& privileges) {
  completeListen(config, privileges);
  completeAuthentication(config, privileges);
}

}  // namespace quorveld
