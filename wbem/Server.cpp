#include "wbem/Server.h"

#include <cstdint>
#include <exception>
#include <optional>
#include <set>
#include <span>
#include <string_view>
#include <utility>
#include <variant>

#include "Utils/Log.h"
#include "Utils/Mutex.h"
#include "cim/JobState.h"
#include "cimxml/AnswerWriter.h"
#include "cimxml/Characters.h"
#include "core/CimPropertyTypes.h"
#include "core/ClassDeclaration.h"
#include "query/Query.h"
#include "wbem/MethodOperations.h"
#include "wbem/Namespaces.h"
#include "wbem/Operations.h"
#include "wbem/PullEnumerations.h"
#include "wbem/ShownClasses.h"
#include "wbem/StartedJobs.h"
#include "wbem/Status.h"

namespace wbem {
namespace {

constexpr utils::LogSource kLog{"WbemServer"};

constexpr const char* kJobClass = "CIM_ConcreteJob";
constexpr const char* kNotSeen = "not known: the method has read another file than it was given";
// Classes that no agent tells of and requests have named.
constexpr std::size_t kMostNamed = 1000;
constexpr const char* kSuccess = "CIM_ERR_SUCCESS";

// Of what a client sent, in the text of an error and in a record: there may be a whole message.
constexpr std::size_t kMostBytesTold = 2048;

bool isRunning(core::CimInstance& job) {
  const core::CimProperty* property = job.getProperty("JobState");
  if (property == nullptr || property->isNull() || property->getType() != core::kCimUint16) {
    return false;
  }
  const std::uint16_t state = static_cast<const core::CimPropertyUint16*>(property)->getValue();
  return !cim::hasEnded(cim::JobState{state});
}

void demandOperator(const Caller& caller, const std::string& action) {
  if (caller.role != Role::Operator) {
    throw StatusFault(Status::AccessDenied,
                      "user '" + caller.user + "' may read only; " + action + " needs an operator");
  }
}

std::string tell(std::string_view text) {
  return cimxml::shorten(text, kMostBytesTold);
}

bool isQuery(const cimxml::Parameter& parameter) {
  return std::holds_alternative<std::string>(parameter.value) &&
         (core::isSameName(parameter.name, "Query") ||
          core::isSameName(parameter.name, "FilterQuery"));
}

// Returns the instance that is to be modified, as a record names it; empty where none is named.
std::string describeModified(const cimxml::Request& request) {
  const cimxml::Parameter* parameter = request.find("ModifiedInstance");
  const auto* instance =
      parameter != nullptr ? std::get_if<cimxml::InstanceValue>(&parameter->value) : nullptr;
  return instance != nullptr ? cimxml::describeObject(instance->name) : std::string();
}

// The record of an attempt, written when the attempt is over, however it ends.
class Attempt {
 public:
  Attempt(Audit& audit, const Caller& caller, std::string action, std::string target)
      : m_audit(audit),
        m_record{caller,
                 std::move(action),
                 std::string(cimxml::getStatusName(Status::Failed)) + ": no answer",
                 std::move(target),
                 {}} {}
  Attempt(const Attempt&) = delete;
  Attempt& operator=(const Attempt&) = delete;
  ~Attempt() { m_audit.write(m_record); }

  void setResult(std::string result) { m_record.result = std::move(result); }
  void setInstallation(const Installation& installation) {
    m_record.details = toDetails(installation);
  }

 private:
  Audit& m_audit;
  AuditRecord m_record;
};

}  // namespace

struct Server::Implementation {
  Implementation(core::CimBroker& theBroker, Audit& theAudit, Options theOptions)
      : broker(theBroker),
        audit(theAudit),
        options(std::move(theOptions)),
        enumerations(options.clock),
        startedJobs(theBroker, theAudit) {}

  // Returns the namespaces with the classes of all agents.
  std::shared_ptr<const Namespaces> getNamespaces() {
    const utils::ScopedLock lock(namespacesMutex);
    if (namespaces == nullptr || !namespaces->isUpToDate(broker)) {
      namespaces = std::make_shared<const Namespaces>(broker, options.nameSpace, namedClasses);
      reportSilentAgents();
    }
    return namespaces;
  }

  void reportSilentAgents() ORVEX_REQUIRES(namespacesMutex) {
    for (const core::CimAgent* agent : namespaces->silentAgents()) {
      if (reportedAgents.insert(agent).second) {
        utils::logError(kLog, "wbem::Server::getNamespaces",
                        "Agent '%s' declares none of its classes; clients see of them what their "
                        "instances show, and no methods",
                        agent->getName().c_str());
      }
    }
  }

  // Returns the same, with the classes that the request names.
  std::shared_ptr<const Namespaces> getNamespaces(const cimxml::Request& request) {
    noteName(request.target.className);
    for (const cimxml::Parameter& parameter : request.parameters) {
      if (const auto* name = std::get_if<cimxml::ObjectName>(&parameter.value)) {
        noteName(name->className);
      } else if (isQuery(parameter)) {
        noteName(query::findFromClass(std::get<std::string>(parameter.value)));
      }
    }
    return getNamespaces();
  }

  // Takes note of a class that an agent serves without having told of it.
  void noteName(const std::string& className) {
    if (className.empty() || getNamespaces()->agents().schema().find(className) != nullptr ||
        !ShownClasses::isServed(broker, className)) {
      return;
    }
    const utils::ScopedLock lock(namespacesMutex);
    if (namedClasses.size() < kMostNamed && namedClasses.insert(className).second) {
      namespaces = nullptr;
    }
  }

  // Runs `run`; a failure becomes an error in the place of what was appended. Returns what the
  // audit is told.
  template <class Run>
  std::string attempt(std::string& out, Run run) {
    const std::size_t start = out.size();
    try {
      return run();
    } catch (const std::exception& error) {
      const Status status = toStatus(error);
      const std::string description = tell(error.what());
      out.resize(start);
      cimxml::appendError(out, status, description);
      return std::string(cimxml::getStatusName(status)) + ": " + description;
    }
  }

  std::string runOperation(const Operation* operation, const cimxml::Request& request,
                           const Caller& caller, std::string& out) {
    if (operation == nullptr) {
      throw StatusFault(Status::NotSupported, "operation " + request.name + " is not offered");
    }
    if (operation->isChange) {
      demandOperator(caller, request.name);
    }
    const std::shared_ptr<const Namespaces> all = getNamespaces(request);
    const Namespace& nameSpace = all->demand(request.nameSpace);
    const OperationParameters parameters(request, operation->parameters);
    operation->run(
        {request, caller, parameters, broker, *all, nameSpace, options.host, enumerations, out});
    return kSuccess;
  }

  void answerOperation(const cimxml::Request& request, const Caller& caller, std::string& out) {
    const Operation* operation = findOperation(request.name);
    std::optional<Attempt> change;
    if (operation != nullptr && operation->isChange) {
      change.emplace(audit, caller, std::string(operation->name), describeModified(request));
    }
    cimxml::beginOperationAnswer(out, request.messageId, request.name);
    std::string result =
        attempt(out, [&] { return runOperation(operation, request, caller, out); });
    cimxml::endOperationAnswer(out);
    if (change) {
      change->setResult(std::move(result));
    }
  }

  void answerMethod(const cimxml::Request& request, const Caller& caller, std::string& out) {
    Invocation invocation;
    recordMethod(request, caller, out, invocation);
    // Its record is written, so that of its end comes behind it.
    if (invocation.installation && !invocation.job.empty()) {
      startedJobs.add(caller, invocation.job, *invocation.installation);
    }
  }

  void recordMethod(const cimxml::Request& request, const Caller& caller, std::string& out,
                    Invocation& invocation) {
    Attempt change(audit, caller, tell(request.name), cimxml::describeObject(request.target));
    cimxml::beginMethodAnswer(out, request.messageId, request.name);
    change.setResult(attempt(out, [&] {
      demandOperator(caller, request.name);
      invokeMethod(request, broker, *getNamespaces(request), out, invocation);
      return std::to_string(*invocation.returnValue);
    }));
    cimxml::endMethodAnswer(out);
    if (invocation.installation) {
      describeFile(invocation);
      change.setInstallation(*invocation.installation);
    }
  }

  // What is hashed are the bytes that the method was handed, however the file has changed since; it
  // is worth it where they are installed.
  void describeFile(Invocation& invocation) {
    if (invocation.file == nullptr) {
      return;
    }
    const std::span<const std::uint8_t> content = invocation.file->content();
    if (!content.empty()) {
      fillInContent(broker, content, *invocation.installation);
    }
    if (!invocation.job.empty()) {
      invocation.installation->sha256 =
          invocation.file->isTaken() ? audit.digest(content) : kNotSeen;
    }
    invocation.file.reset();  // there may be megabytes of it
  }

  core::CimBroker& broker;
  Audit& audit;
  const Options options;
  PullEnumerations enumerations;
  StartedJobs startedJobs;

  utils::Mutex namespacesMutex;
  std::shared_ptr<const Namespaces> namespaces ORVEX_GUARDED_BY(namespacesMutex);
  std::set<std::string> namedClasses ORVEX_GUARDED_BY(namespacesMutex);
  std::set<const core::CimAgent*> reportedAgents ORVEX_GUARDED_BY(namespacesMutex);
};

Server::Server(core::CimBroker& broker, Audit& audit, Options options)
    : m_implementation(std::make_unique<Implementation>(broker, audit, std::move(options))) {}

Server::~Server() = default;

void Server::answer(const cimxml::Request& request, const Caller& caller, std::string& out) {
  m_implementation->enumerations.dropExpired();
  if (request.isExtrinsic) {
    m_implementation->answerMethod(request, caller, out);
  } else {
    m_implementation->answerOperation(request, caller, out);
  }
}

void Server::recordEndedJobs() {
  m_implementation->startedJobs.recordEnds();
}

unsigned Server::countRunningJobs() {
  const std::shared_ptr<const Namespaces> namespaces = m_implementation->getNamespaces();
  const Namespace& agents = namespaces->agents();
  unsigned count = 0;
  if (agents.schema().find(kJobClass) == nullptr) {
    return count;
  }
  const core::CimBroker::Request request(m_implementation->broker);
  for (const ServedClass* served : agents.demandServedBelow(kJobClass)) {
    served->visitInstances([&count](core::CimInstance& job) {
      count += isRunning(job) ? 1 : 0;
      return true;
    });
  }
  return count;
}

}  // namespace wbem
