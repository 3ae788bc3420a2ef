#include "client/BrokerConnection.h"

#include <algorithm>
#include <memory>
#include <set>
#include <utility>

#include "client/ServedClasses.h"
#include "client/Snapshot.h"
#include "core/ClassDeclaration.h"
#include "core/ClassTexts.h"

namespace client {
namespace {

constexpr std::chrono::milliseconds kPollInterval{100};

using ServedNames = std::set<std::string, core::NameLess>;

ServedNames readServedNames(const core::CimBroker& broker) {
  ServedNames names;
  for (const core::CimAgent* agent : broker.getAgents()) {
    for (std::string& name : agent->getClassNames()) {
      names.insert(std::move(name));
    }
  }
  return names;
}

bool refersTo(const InstanceSnapshot& instance, const std::string& path) {
  return std::any_of(instance.properties.begin(), instance.properties.end(),
                     [&path](const PropertySnapshot& property) {
                       const std::string* const target = property.value.text();
                       return property.kind == PropertySnapshot::Kind::Reference &&
                              target != nullptr && *target == path;
                     });
}

}  // namespace

ServingAgents BrokerConnection::getClasses() {
  ServingAgents result;
  for (const core::CimAgent* agent : m_broker.getAgents()) {
    for (const std::string& name : agent->getClassNames()) {
      result[name].push_back(agent->getName());
    }
  }
  return result;
}

std::optional<ClassDescription> BrokerConnection::findClass(const std::string& className) {
  const std::shared_ptr<const core::CimSchema> schema = m_broker.getSchema();
  const core::ClassDeclaration* const declaration = schema->find(className);
  if (declaration == nullptr) {
    return std::nullopt;
  }
  return describeClass(*schema, core::getClassTexts(m_broker), *declaration);
}

std::optional<Instances> BrokerConnection::findInstances(const std::string& className) {
  const std::optional<std::vector<std::string>> served = findServedBelow(className);
  if (!served) {
    return std::nullopt;
  }
  const core::CimBroker::Request request(m_broker);
  Instances instances;
  for (const std::string& name : *served) {
    for (core::CimInstance* instance : m_broker.getInstances(name)) {
      instances.push_back(snapshotOf(*instance));
    }
  }
  return instances;
}

std::optional<InstanceSnapshot> BrokerConnection::findInstance(const std::string& path) {
  const core::CimBroker::Request request(m_broker);
  core::CimInstance* instance = m_broker.getInstanceByPath(toServedPath(path));
  if (instance == nullptr) {
    return std::nullopt;
  }
  return snapshotOf(*instance);
}

std::optional<InstanceSnapshot> BrokerConnection::lookAgain(const std::string& path) {
  return findInstance(path);
}

Instances BrokerConnection::findReferencing(const std::string& path) {
  const core::CimBroker::Request request(m_broker);
  Instances referencing;
  for (const auto& [className, agents] : getClasses()) {
    for (core::CimInstance* instance : m_broker.getInstances(className)) {
      InstanceSnapshot snapshot = snapshotOf(*instance);
      if (refersTo(snapshot, path)) {
        referencing.push_back(std::move(snapshot));
      }
    }
  }
  return referencing;
}

MethodAnswer BrokerConnection::invoke(const std::string& path, const std::string& method,
                                      core::CimPropertyList& in, core::CimPropertyList& out,
                                      const OnStart& onStart) {
  const core::CimBroker::Request request(m_broker);
  core::CimInstance* instance = m_broker.getInstanceByPath(toServedPath(path));
  if (instance == nullptr) {
    refuseMissing(*this, path);
  }
  if (onStart) {
    onStart();
  }
  return callMethod(*instance, method, in, out);
}

std::string BrokerConnection::watchCommand(const std::string& /*jobId*/) const {
  return "";
}

std::chrono::milliseconds BrokerConnection::pollInterval() const {
  return kPollInterval;
}

// An agent need not declare what it serves: such a class has no others below it.
std::optional<std::vector<std::string>> BrokerConnection::findServedBelow(
    const std::string& className) const {
  const ServedNames served = readServedNames(m_broker);
  const std::shared_ptr<const core::CimSchema> schema = m_broker.getSchema();
  std::vector<std::string> found;
  const auto addServed = [&](const std::string& name) {
    if (const auto entry = served.find(name); entry != served.end()) {
      found.push_back(*entry);
    }
  };
  addServed(className);
  for (const core::ClassDeclaration* below : schema->getDescendants(className)) {
    addServed(below->name);
  }
  return !found.empty() || schema->find(className) != nullptr ? std::optional(std::move(found))
                                                              : std::nullopt;
}

// The broker itself compares the letters of names. A path that names a key twice, in two spellings,
// is that of no instance: it stays as it is, and the broker finds nothing.
core::CimPath BrokerConnection::toServedPath(const std::string& text) const {
  const core::CimPath given(text);
  const std::string& className = given.getClassName();
  const ServedNames served = readServedNames(m_broker);
  const auto name = served.find(className);
  core::CimPath path = name != served.end() && *name != className
                           ? core::CimPath(*name + given.getModelPath().substr(className.size()))
                           : given;
  const std::shared_ptr<const core::CimSchema> schema = m_broker.getSchema();
  const core::ClassDeclaration* const declaration = schema->find(className);
  if (declaration == nullptr) {
    return path;
  }
  for (const auto& [key, value] : given) {
    const core::PropertyDeclaration* const property = declaration->findProperty(key);
    if (property == nullptr || property->name == key) {
      continue;
    }
    path.erase(key);
    if (!path.emplace(property->name, value).second) {
      return given;
    }
  }
  return path;
}

}  // namespace client
