#include "core/CimBroker.h"

#include <algorithm>

#include "Utils/Assert.h"

namespace core {
namespace {

constexpr utils::LogSource kLog{"CimBroker"};

bool hasKeys(CimInstance& instance, const CimPath& path) {
  std::size_t keys = 0;
  CimPropertyList::Iterator cursor = instance.getProperties().iterator();
  for (CimProperty* property = cursor.first(); property != nullptr; property = cursor.next()) {
    if (property->isKey()) {
      const auto wanted = path.find(property->getName());
      if (wanted == path.end() || wanted->second != property->toString()) {
        return false;
      }
      ++keys;
    }
  }
  return keys == path.size();
}

}  // namespace

CimBroker::Request::Request(CimBroker& broker) : m_lock(broker.m_requestLock) {}

CimBroker::Request::~Request() = default;

CimBroker::CimBroker() = default;

CimBroker::~CimBroker() = default;

void CimBroker::addAgent(CimAgent* agent) {
  ORVEX_ASSERT(kLog, agent != NULL);
  const utils::ScopedLock lock(m_agentsLock);
  m_agents.push_back(agent);
  m_schema.reset();
}

std::vector<CimAgent*> CimBroker::getAgents() const {
  const utils::ScopedLock lock(m_agentsLock);
  return m_agents;
}

std::shared_ptr<const CimSchema> CimBroker::getSchema() {
  const utils::ScopedLock lock(m_agentsLock);
  if (m_schema == nullptr) {
    const auto schema = std::make_shared<CimSchema>();
    for (const CimAgent* agent : m_agents) {
      agent->declareClasses(*schema);
    }
    m_schema = schema;
  }
  return m_schema;
}

std::vector<CimInstance*> CimBroker::getInstances(const std::string& className) {
  const Request request(*this);
  std::vector<CimInstance*> instances;
  for (CimAgent* agent : getAgents()) {
    if (agent->hasClass(className)) {
      InstanceList::Iterator cursor = agent->getInstances(className);
      for (CimInstance* instance = cursor.first(); instance != nullptr; instance = cursor.next()) {
        instances.push_back(instance);
      }
    }
  }
  return instances;
}

CimInstance* CimBroker::getInstanceByPath(const CimPath& path) {
  const std::vector<CimInstance*> instances = getInstances(path.getClassName());
  const auto found =
      std::find_if(instances.begin(), instances.end(),
                   [&path](CimInstance* instance) { return hasKeys(*instance, path); });
  return found != instances.end() ? *found : nullptr;
}

CimBroker& GetCimBroker() {
  // Never destroyed: agents of modules outlive every object with a destructor of this library.
  static auto* broker = new CimBroker;
  return *broker;
}

}  // namespace core
