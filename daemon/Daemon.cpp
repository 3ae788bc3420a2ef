#include "daemon/Daemon.h"

#include <algorithm>
#include <boost/asio/ip/host_name.hpp>
#include <chrono>
#include <exception>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <thread>
#include <utility>

#include "Os/Environment.h"
#include "Os/QuorvelConfig.h"
#include "Utils/Exception.h"
#include "Utils/Log.h"
#include "Utils/Printable.h"
#include "core/CimBroker.h"
#include "daemon/ActionNames.h"
#include "daemon/AuditQueue.h"
#include "daemon/Authentication.h"
#include "daemon/CimXmlHandler.h"
#include "daemon/JobsEnd.h"
#include "daemon/LimitedLog.h"
#include "daemon/LoginGate.h"
#include "daemon/PasswordFile.h"
#include "daemon/PeriodicTask.h"
#include "daemon/Posix/LargeBlocks.h"
#include "daemon/Posix/LibraryLog.h"
#include "daemon/Posix/LocalAuthenticator.h"
#include "daemon/Posix/PamAuthenticator.h"
#include "daemon/Posix/Privileges.h"
#include "daemon/Posix/ServiceManager.h"
#include "daemon/Posix/SocketOwner.h"
#include "daemon/Posix/StopSignals.h"
#include "daemon/Posix/SystemLogAudit.h"
#include "host/MachineName.h"
#include "host/ModuleLoader.h"
#include "http/Server.h"
#include "wbem/Server.h"

namespace quorveld {
namespace {

constexpr utils::LogSource kLog{"Daemon"};

// How soon records of what has come to its end are written.
constexpr std::chrono::milliseconds kRecordsPeriod{500};

// The CIM server as the handler of HTTP requests sees it.
class WbemService final : public CimXmlHandler::Service {
 public:
  explicit WbemService(wbem::Server& server) : m_server(server) {}

  void answer(const cimxml::Request& request, const wbem::Caller& caller,
              std::string& out) override {
    m_server.answer(request, caller, out);
  }
  [[nodiscard]] unsigned countRunningJobs() override { return m_server.countRunningJobs(); }

 private:
  wbem::Server& m_server;
};

// Puts what concerns the agents in force, before their modules are loaded. To be called while there
// is one thread: nothing else may read the environment meanwhile.
void applyAgentSettings(const DaemonConfig& config) {
  host::nameMachine();
  if (!config.logLevel.empty()) {
    os::setEnvironment("ZOLAN_Quorvel_LOG_LEVEL", config.logLevel);
  }
  if (!config.adapters.empty()) {
    os::setEnvironment("ORVEX_ADAPTERS", config.adapters);
  }
  if (!config.agentConfig.empty()) {
    std::error_code error;
    if (std::filesystem::is_directory(config.agentConfig, error) ||
        !std::ifstream(config.agentConfig).is_open()) {
      throw ConfigurationFault("config: '" + config.agentConfig +
                               "' cannot be read; check the path and its permissions");
    }
    // Never destroyed: the modules' objects may ask it until the process has ended.
    static auto& settings = *new std::unique_ptr<utils::QuorvelConfig>;
    settings = std::make_unique<utils::QuorvelConfig>(config.agentConfig);
  }
}

void loadAgents(const DaemonConfig& config) {
  if (config.modules.empty()) {
    host::loadModules(host::getModuleDirectory());
  }
  for (const std::string& module : config.modules) {
    // A name without a folder would be looked for among the system's libraries.
    host::loadModule(std::filesystem::absolute(module));
  }
}

std::unique_ptr<Authenticator> makeAuthenticator(const DaemonConfig& config) {
  switch (config.authentication.value_or(AuthenticationKind::Local)) {
    case AuthenticationKind::Local:
      break;
    case AuthenticationKind::None:
      return std::make_unique<NoAuthenticator>();
    case AuthenticationKind::Pam:
      if (!isLibraryLogInForce()) {
        utils::logError(kLog, "quorveld::makeAuthenticator",
                        "A system log that does not read will hold up logins by PAM");
      }
      return std::make_unique<PamAuthenticator>(
          PamAuthenticator::Roles{config.operators, config.readers});
    case AuthenticationKind::File:
      return std::make_unique<PasswordFileAuthenticator>(config.passwordFile);
  }
  return std::make_unique<LocalAuthenticator>(config.operators);
}

std::string findHostName() {
  boost::system::error_code error;
  const std::string name = boost::asio::ip::host_name(error);
  return error || name.empty() ? "localhost" : name;
}

http::ServerOptions toServerOptions(const DaemonConfig& config) {
  http::ServerOptions options;
  const bool isLocal = config.authentication == AuthenticationKind::Local;
  // Neither logins that are held up nor messages that wait for their turn take the last threads.
  options.threads += isLocal ? unsigned{LocalAuthenticator::kMostInLine} : LoginGate::kMostInLine;
  options.threads += CimXmlHandler::kMostAnswering;
  options.endpoints = config.listen;
  // Where users log in, those of a local socket are told apart all the same, so that none of them
  // takes another one's share.
  options.findUser = isLocal ? findClient : findLocalClient;
  if (isLocal ||
      std::any_of(config.listen.begin(), config.listen.end(),
                  [](const http::Endpoint& endpoint) { return !endpoint.path.empty(); })) {
    options.trustedUsers = findTrustedUsers();
  }
  options.certificateFile = config.certificate;
  options.keyFile = config.key;
  options.maxConnections = config.maxConnections;
  options.maxConnectionsPerAddress = config.maxConnectionsPerAddress;
  options.maxBodyBytes = config.maxBodyBytes;
  options.maxAnswerBytes = config.maxAnswerBytes;
  options.requestTimeout = config.requestTimeout;
  options.idleTimeout = config.idleTimeout;
  return options;
}

// Returns where the server listens, as a person reads it.
std::string announce(const http::Server& server, std::ostream& out) {
  std::string list;
  for (const http::Endpoint& endpoint : server.endpoints()) {
    const std::string scheme = !endpoint.path.empty() ? ""
                               : endpoint.isTls       ? "https://"
                                                      : "http://";
    const std::string place = scheme + endpoint.text();
    out << "quorveld: listening on " << place << '\n';
    list += (list.empty() ? "" : ", ") + place;
  }
  out << "quorveld: serving" << std::endl;
  return list;
}

void finishJobs(wbem::Server& server, const ServiceManager& manager) {
  // A job whose end is counted has its record, too.
  waitForJobs(
      [&server] {
        const unsigned running = server.countRunningJobs();
        server.recordEndedJobs();
        return running;
      },
      [&manager](unsigned running) {
        const std::string text = "Waiting for the end of " + std::to_string(running) +
                                 " running update" + (running == 1 ? "" : "s");
        utils::logDebug(kLog, "quorveld::finishJobs", "%s", text.c_str());
        manager.tellStatus(text);
      },
      [&manager] {
        manager.tellAlive();
        std::this_thread::sleep_for(kJobsPeriod);
      });
}

// An agent that cannot declare its classes does not keep the others from being served.
ActionNames findActionNames() {
  try {
    return ActionNames(*core::GetCimBroker().getSchema());
  } catch (const std::exception& fault) {
    utils::logError(kLog, "quorveld::findActionNames",
                    "The audit tells the methods of the agents not apart: %s", fault.what());
    return ActionNames(core::CimSchema());
  }
}

// So that what became of a write whose writer was killed is in the log, whether a client asks or
// not.
void lookAtAdapters() {
  constexpr const char* kAdapterClass = "Orvex_PortController";
  try {
    static_cast<void>(core::GetCimBroker().getInstances(kAdapterClass));
  } catch (const std::exception& fault) {
    utils::logError(kLog, "quorveld::lookAtAdapters", "The adapters cannot be listed: %s",
                    fault.what());
  }
}

void serve(const DaemonConfig& config, const ServiceManager& manager, std::ostream& out) {
  // All before anything that may start a thread.
  giveLargeBlocksBack();
  const StopSignals signals;
  // Never destroyed: the modules' objects may log until the process has ended.
  static auto& log = *new LimitedLog;
  applyAgentSettings(config);
  if (config.authentication == AuthenticationKind::Local &&
      std::any_of(config.listen.begin(), config.listen.end(),
                  [](const http::Endpoint& endpoint) { return endpoint.path.empty(); })) {
    checkTcpClients();
  }
  // May ask the system on a thread of its own who this process runs as.
  const std::unique_ptr<Authenticator> authenticator = makeAuthenticator(config);
  loadAgents(config);
  lookAtAdapters();

  SystemLogAudit systemLog;
  const ActionNames names = findActionNames();
  AuditQueue audit(systemLog, [&names](const std::string& action) { return names.find(action); });
  wbem::Server::Options options;
  options.nameSpace = utils::QuorvelConfig::getInstance()->getNamespace();
  options.host = findHostName();
  wbem::Server cimServer(core::GetCimBroker(), audit, options);
  WbemService service(cimServer);
  LoginGate gate(*authenticator, audit);
  http::ServerOptions serverOptions = toServerOptions(config);
  CimXmlHandler handler(service, gate, QUORVEL_VERSION, serverOptions.trustedUsers);
  serverOptions.onSweep = [&manager] { manager.tellAlive(); };
  http::Server httpServer(std::move(serverOptions), handler);

  manager.tellReady("Serving on " + announce(httpServer, out));
  const StopSignals::Delivery delivery(signals, [&httpServer, &manager] {
    manager.tellStopping("Answering what is under way");
    httpServer.stop();
  });
  {
    const PeriodicTask records(kRecordsPeriod, [&cimServer] {
      log.writeCounts();
      cimServer.recordEndedJobs();
    });
    httpServer.run();
  }
  // Nobody can start another one now.
  finishJobs(cimServer, manager);
  log.writeAllCounts();
}

}  // namespace

ExitStatus runDaemon(int argc, const char* const* argv, std::ostream& out, std::ostream& err) {
  const ServiceManager manager;
  const auto refuse = [&](const std::exception& fault) {
    err << "quorveld: " << utils::toPrintableLines(fault.what()) << '\n';
    manager.tellStatus(fault.what());
    return ExitStatus::Usage;
  };
  try {
    const CommandLine commandLine = readCommandLine(argc, argv, out, err);
    if (!commandLine.config) {
      return commandLine.status;
    }
    serve(*commandLine.config, manager, out);
    return ExitStatus::Done;
  } catch (const ConfigurationFault& fault) {
    return refuse(fault);
  } catch (const http::SetupFault& fault) {
    return refuse(fault);
  } catch (const std::exception& fault) {
    manager.tellStatus(fault.what());
    throw;
  }
}

}  // namespace quorveld
