#include "client/BrokerConnection.h"

#include <algorithm>
#include <utility>

#include "client/ServedClasses.h"
#include "client/Snapshot.h"
#include "core/CimPath.h"

namespace client {
namespace {

constexpr std::chrono::milliseconds kPollInterval{100};

bool refersTo(const InstanceSnapshot& instance, const std::string& path) {
  return std::any_of(instance.properties.begin(), instance.properties.end(),
                     [&path](const PropertySnapshot& property) {
                       return property.kind == PropertySnapshot::Kind::Reference &&
                              property.value == Value(path);
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

std::optional<Instances> BrokerConnection::findInstances(const std::string& className) {
  if (!getClasses().contains(className)) {
    return std::nullopt;
  }
  const core::CimBroker::Request request(m_broker);
  Instances instances;
  for (core::CimInstance* instance : m_broker.getInstances(className)) {
    instances.push_back(snapshotOf(*instance));
  }
  return instances;
}

std::optional<InstanceSnapshot> BrokerConnection::findInstance(const std::string& path) {
  const core::CimBroker::Request request(m_broker);
  core::CimInstance* instance = m_broker.getInstanceByPath(core::CimPath(path));
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
  core::CimInstance* instance = m_broker.getInstanceByPath(core::CimPath(path));
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

}  // namespace client
