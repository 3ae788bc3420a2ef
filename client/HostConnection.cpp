#include "client/HostConnection.h"

#include <algorithm>
#include <charconv>
#include <set>
#include <utility>

#include "Utils/Exception.h"
#include "cim/MethodSignatures.h"
#include "cimxml/RequestWriter.h"
#include "client/Fault.h"
#include "client/HostClasses.h"
#include "client/HostErrors.h"
#include "client/HostValues.h"
#include "client/ServedClasses.h"
#include "client/Texts.h"
#include "core/ClassDeclaration.h"

namespace client {
namespace {

constexpr std::chrono::milliseconds kPollInterval{250};
// An interrupt counts when a look is over.
constexpr std::chrono::seconds kLookTimeout{4};
// Long enough for a service that is started anew.
constexpr std::chrono::seconds kPatience{15};

struct KeyType {
  std::string_view name;
  cimxml::KeyBinding::Kind kind;
};

// What the keys of other types are written as.
constexpr KeyType kKeyTypes[] = {
    {"string", cimxml::KeyBinding::Kind::String},
    {"datetime", cimxml::KeyBinding::Kind::String},
    {"char16", cimxml::KeyBinding::Kind::String},
    {"boolean", cimxml::KeyBinding::Kind::Boolean},
    {"reference", cimxml::KeyBinding::Kind::Reference},
};

cimxml::KeyBinding::Kind keyKindOf(std::string_view type) {
  for (const auto& [name, kind] : kKeyTypes) {
    if (name == type) {
      return kind;
    }
  }
  return cimxml::KeyBinding::Kind::Numeric;
}

cimxml::ObjectName parsePath(const std::string& path) {
  try {
    cimxml::ObjectName name = cimxml::parseObjectPath(path);
    if (name.isInstance) {
      return name;
    }
  } catch (const utils::ESyntaxError&) {
    // said below
  }
  throw Fault("'" + path +
                  "' is no object path; write CLASS.KEY=VALUE,... as 'quorvel instances' " +
                  "prints it",
              Fault::Kind::Usage);
}

}  // namespace

HostConnection::HostConnection(Options options, Send send)
    : m_options(std::move(options)), m_send(std::move(send)) {}

ServingAgents HostConnection::getClasses() {
  Message message = beginOperation("EnumerateClasses");
  cimxml::appendBooleanParameter(message.body, "DeepInheritance", true);
  cimxml::appendBooleanParameter(message.body, "LocalOnly", true);
  cimxml::appendBooleanParameter(message.body, "IncludeQualifiers", false);
  cimxml::appendBooleanParameter(message.body, "IncludeClassOrigin", false);
  const cimxml::Response response = exchange(std::move(message));
  demandSuccess(response);
  std::set<std::string, core::NameLess> superclasses;
  for (const cimxml::ClassValue& declaration : response.classes) {
    superclasses.insert(declaration.superclass);
  }
  ServingAgents classes;
  for (const cimxml::ClassValue& declaration : response.classes) {
    if (!superclasses.contains(declaration.name)) {
      classes[declaration.name] = {};
    }
  }
  return classes;
}

std::optional<ClassDescription> HostConnection::findClass(const std::string& className) {
  Message message = beginOperation("GetClass");
  cimxml::appendClassNameParameter(message.body, "ClassName", className);
  cimxml::appendBooleanParameter(message.body, "LocalOnly", false);
  cimxml::appendBooleanParameter(message.body, "IncludeQualifiers", true);
  const cimxml::Response response = exchange(std::move(message));
  if (isError(response, cimxml::StatusCode::InvalidClass) ||
      isError(response, cimxml::StatusCode::NotFound)) {
    return std::nullopt;
  }
  demandSuccess(response);
  if (response.classes.empty()) {
    return std::nullopt;
  }
  return describeClass(response.classes.front());
}

std::optional<Instances> HostConnection::findInstances(const std::string& className) {
  Message message = beginOperation("EnumerateInstances");
  cimxml::appendClassNameParameter(message.body, "ClassName", className);
  cimxml::appendBooleanParameter(message.body, "LocalOnly", false);
  cimxml::appendBooleanParameter(message.body, "DeepInheritance", true);
  cimxml::appendBooleanParameter(message.body, "IncludeQualifiers", false);
  cimxml::appendBooleanParameter(message.body, "IncludeClassOrigin", false);
  const cimxml::Response response = exchange(std::move(message));
  if (isError(response, cimxml::StatusCode::InvalidClass)) {
    return std::nullopt;
  }
  demandSuccess(response);
  Instances instances;
  for (const cimxml::InstanceValue& instance : response.instances) {
    instances.push_back(snapshotOf(instance));
  }
  return instances;
}

std::optional<InstanceSnapshot> HostConnection::findInstance(const std::string& path) {
  return getInstance(path, {});
}

std::optional<InstanceSnapshot> HostConnection::lookAgain(const std::string& path) {
  return getInstance(path, kLookTimeout);
}

std::optional<InstanceSnapshot> HostConnection::getInstance(const std::string& path,
                                                            std::chrono::milliseconds timeout) {
  const cimxml::ObjectName name = readPath(path);
  Message message = beginOperation("GetInstance");
  message.timeout = timeout;
  cimxml::appendInstanceNameParameter(message.body, "InstanceName", name, m_options.nameSpace);
  cimxml::appendBooleanParameter(message.body, "LocalOnly", false);
  cimxml::appendBooleanParameter(message.body, "IncludeQualifiers", false);
  cimxml::appendBooleanParameter(message.body, "IncludeClassOrigin", false);
  const cimxml::Response response = exchange(std::move(message));
  if (isError(response, cimxml::StatusCode::NotFound) ||
      isError(response, cimxml::StatusCode::InvalidClass)) {
    return std::nullopt;
  }
  demandSuccess(response);
  if (response.instances.empty()) {
    return std::nullopt;
  }
  return snapshotOf(response.instances.front(), name);
}

Instances HostConnection::findReferencing(const std::string& path) {
  Message message = beginOperation("References");
  cimxml::appendInstanceNameParameter(message.body, "ObjectName", readPath(path),
                                      m_options.nameSpace);
  cimxml::appendBooleanParameter(message.body, "IncludeQualifiers", false);
  cimxml::appendBooleanParameter(message.body, "IncludeClassOrigin", false);
  const cimxml::Response response = exchange(std::move(message));
  demandSuccess(response);
  Instances instances;
  for (const cimxml::InstanceValue& instance : response.instances) {
    instances.push_back(snapshotOf(instance));
  }
  std::stable_sort(instances.begin(), instances.end(),
                   [](const InstanceSnapshot& left, const InstanceSnapshot& right) {
                     return left.className < right.className;
                   });
  return instances;
}

MethodAnswer HostConnection::invoke(const std::string& path, const std::string& method,
                                    core::CimPropertyList& in, core::CimPropertyList& out,
                                    const OnStart& onStart) {
  const cimxml::ObjectName target = readPath(path);
  Message message{method, m_options.nameSpace + ":" + cimxml::toObjectPath(target), true,
                  std::to_string(++m_lastId), ""};
  cimxml::beginMethodRequest(message.body, message.id, m_options.nameSpace, method, target);
  appendArguments(message.body, in);
  cimxml::endMethodRequest(message.body);
  if (onStart) {
    onStart();
  }
  const cimxml::Response response = exchange(std::move(message));
  if (isError(response, cimxml::StatusCode::NotFound) ||
      isError(response, cimxml::StatusCode::InvalidClass)) {
    refuseMissing(*this, path);
  }
  demandSuccess(response);

  MethodAnswer answer;
  const std::string text = response.returnValue.value_or("");
  const auto [stop, error] =
      std::from_chars(text.data(), text.data() + text.size(), answer.returnValue);
  if (error != std::errc() || stop != text.data() + text.size()) {
    refuseAnswer(m_options.address, "the answer to " + method + " has no return value");
  }
  answer.returnText = cim::describeReturn(method, answer.returnValue);
  answer.jobPath = jobPathOf(response.outputs);
  answer.outputs = outputsOf(response.outputs, out);
  return answer;
}

std::string HostConnection::watchCommand(const std::string& jobId) const {
  return m_options.command + " watch " + quoteForShell(jobId);
}

std::chrono::milliseconds HostConnection::pollInterval() const {
  return kPollInterval;
}

std::chrono::milliseconds HostConnection::patience() const {
  return kPatience;
}

// ---- messages

HostConnection::Message HostConnection::beginOperation(const std::string& operation) {
  Message message{operation, m_options.nameSpace, false, std::to_string(++m_lastId), ""};
  cimxml::beginOperationRequest(message.body, message.id, m_options.nameSpace, operation);
  return message;
}

cimxml::Response HostConnection::exchange(Message message) {
  if (!message.isExtrinsic) {
    cimxml::endOperationRequest(message.body);
  }
  http::ClientResponse answer;
  try {
    // A method that starts something must not start it twice; the operations only ask.
    answer = m_send(fieldsFor(message), message.body, {!message.isExtrinsic, message.timeout});
  } catch (const http::ClientFault& fault) {
    if (message.isExtrinsic && fault.mayBeDone()) {
      throw Fault(fault.what() + (" The host may have carried out " + message.name) +
                  " all the same: before you try again, look at its jobs:\n  " + m_options.command +
                  " jobs");
    }
    if (fault.kind() == http::ClientFault::Kind::Connection) {
      throw PassingFault(fault.what());
    }
    throw Fault(fault.what());
  }
  demandAnswered(m_options.address, answer);
  try {
    cimxml::Response response = cimxml::parseResponse(answer.body);
    if (response.messageId != message.id || response.isExtrinsic != message.isExtrinsic ||
        !core::isSameName(response.name, message.name)) {
      refuseAnswer(m_options.address, "the answer belongs to another request");
    }
    return response;
  } catch (const cimxml::ResponseFault& fault) {
    refuseAnswer(m_options.address, fault.what());
  }
}

http::Client::Fields HostConnection::fieldsFor(const Message& message) const {
  http::Client::Fields fields = {{"Content-Type", "application/xml; charset=\"utf-8\""},
                                 {"Accept", "application/xml, text/xml"},
                                 {"CIMOperation", "MethodCall"},
                                 {"CIMMethod", encodeForField(message.name)},
                                 {"CIMObject", encodeForField(message.object)}};
  if (!m_options.address.user.empty()) {
    fields.emplace_back("Authorization", toBasicLogin(m_options.address.user, m_options.password));
  }
  return fields;
}

void HostConnection::demandSuccess(const cimxml::Response& response) const {
  if (response.error) {
    refuseError(*response.error, m_options.nameSpace);
  }
}

// ---- paths

cimxml::ObjectName HostConnection::readPath(const std::string& path) {
  cimxml::ObjectName name = parsePath(path);
  name.nameSpace.clear();
  correctKinds(name);
  return name;
}

// A text in quotes that reads as a path may be a string all the same, and a string may come without
// quotes: only the class tells. Strings in quotes, as nearly all keys are, need no such question.
void HostConnection::correctKinds(cimxml::ObjectName& name) {
  for (cimxml::KeyBinding& key : name.keys) {
    if (key.kind == cimxml::KeyBinding::Kind::String) {
      continue;
    }
    const std::vector<cimxml::ClassValue::Property>& properties =
        getClass(name.className).properties;
    const auto declared = std::find_if(properties.begin(), properties.end(),
                                       [&key](const cimxml::ClassValue::Property& property) {
                                         return core::isSameName(property.name, key.name);
                                       });
    if (declared == properties.end()) {
      continue;
    }
    const bool wasReference = key.kind == cimxml::KeyBinding::Kind::Reference;
    const cimxml::KeyBinding::Kind kind = keyKindOf(declared->type);
    if (kind == cimxml::KeyBinding::Kind::Reference) {
      if (wasReference) {
        correctKinds(key.reference.at(0));
      }
      continue;
    }
    if (wasReference) {
      key.text = cimxml::toObjectPath(key.reference.at(0));
      key.reference.clear();
    }
    key.kind = kind;
  }
}

const cimxml::ClassValue& HostConnection::getClass(const std::string& className) {
  const auto known = m_classes.find(className);
  if (known != m_classes.end()) {
    return known->second;
  }
  Message message = beginOperation("GetClass");
  cimxml::appendClassNameParameter(message.body, "ClassName", className);
  cimxml::appendBooleanParameter(message.body, "LocalOnly", false);
  cimxml::appendBooleanParameter(message.body, "IncludeQualifiers", false);
  cimxml::Response response = exchange(std::move(message));
  if (!isError(response, cimxml::StatusCode::InvalidClass) &&
      !isError(response, cimxml::StatusCode::NotFound)) {
    demandSuccess(response);
  }
  cimxml::ClassValue& declaration = m_classes[className];
  if (!response.classes.empty()) {
    declaration = std::move(response.classes.front());
  }
  return declaration;
}

// ---- arguments

void HostConnection::appendArguments(cimxml::Buffer& out, core::CimPropertyList& arguments) {
  core::CimPropertyList::Iterator cursor = arguments.iterator();
  for (const core::CimProperty* argument = cursor.first(); argument != nullptr;
       argument = cursor.next()) {
    if (argument->getType() == core::kCimReference) {
      appendReference(out, *argument);
    } else {
      cimxml::appendArgument(out, *argument);
    }
  }
}

void HostConnection::appendReference(cimxml::Buffer& out, const core::CimProperty& argument) {
  if (argument.isNull()) {
    cimxml::appendReferenceArgument(out, argument.getName(), nullptr, m_options.nameSpace);
    return;
  }
  const cimxml::ObjectName target = readPath(argument.toString());
  cimxml::appendReferenceArgument(out, argument.getName(), &target, m_options.nameSpace);
}

}  // namespace client
