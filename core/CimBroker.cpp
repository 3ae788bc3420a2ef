#include "core/CimBroker.h"

#include <algorithm>

#include "Utils/Assert.h"
#include "core/ClassDeclarer.h"

namespace core {
namespace {

constexpr utils::LogSource kLog{"CimBroker"};

bool hasKeys(const std::vector<CimProperty*>& properties, const CimPath& path) {
  std::size_t keys = 0;
  for (const CimProperty* property : properties) {
    if (property->isKey()) {
      const auto wanted = path.find(property->getName());
      if (wanted == path.end() || !property->hasText(wanted->second)) {
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

CimAgent* CimBroker::findAgent(std::size_t index) const {
  const utils::ScopedLock lock(m_agentsLock);
  return index < m_agents.size() ? m_agents[index] : nullptr;
}

std::shared_ptr<const CimSchema> CimBroker::getSchema() {
  const utils::ScopedLock lock(m_agentsLock);
  if (m_schema == nullptr) {
    const auto schema = std::make_shared<CimSchema>();
    for (const CimAgent* agent : m_agents) {
      if (const auto* declarer = dynamic_cast<const ClassDeclarer*>(agent)) {
        declarer->declareClasses(*schema);
      }
    }
    m_schema = schema;
  }
  return m_schema;
}

std::vector<CimInstance*> CimBroker::getInstances(const std::string& className) {
  const Request request(*this);
  std::vector<CimInstance*> instances;
  for (std::size_t index = 0; CimAgent* agent = findAgent(index); ++index) {
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
  std::vector<CimProperty*> properties;
  const auto found = std::find_if(instances.begin(), instances.end(), [&](CimInstance* instance) {
    instance->getProperties().copyTo(properties);
    return hasKeys(properties, path);
  });
  return found != instances.end() ? *found : nullptr;
}

CimBroker& GetCimBroker() {
  // Never destroyed: agents of modules outlive every object with a destructor of this library.
  static auto* broker = new CimBroker;
  return *broker;
}

}  // namespace core
