#include "core/CimBroker.h"

#include <utility>

#include "Utils/Assert.h"
#include "Utils/Lasting.h"
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

// Walks what several agents serve of one class, one behind the other.
class JoinedCursor : public InstanceList::IteratorImplementation {
 public:
  explicit JoinedCursor(std::vector<InstanceList::Iterator> cursors)
      : m_cursors(std::move(cursors)) {}

  CimInstance* next() override {
    if (!m_isBegun) {
      return first();
    }
    if (m_current == m_cursors.size()) {
      return nullptr;
    }
    CimInstance* const instance = m_cursors[m_current].next();
    return instance != nullptr ? instance : firstFrom(m_current + 1);
  }

  CimInstance* first() override {
    m_isBegun = true;
    return firstFrom(0);
  }

  std::size_t count() override {
    std::size_t counted = 0;
    for (InstanceList::Iterator& cursor : m_cursors) {
      counted += cursor.count();
    }
    return counted;
  }

  std::unique_ptr<InstanceList::IteratorImplementation> clone() override {
    return std::make_unique<JoinedCursor>(m_cursors);
  }

 private:
  // Goes to the first instance of the first cursor from that number on that has one.
  CimInstance* firstFrom(std::size_t number) {
    for (m_current = number; m_current < m_cursors.size(); ++m_current) {
      if (CimInstance* const instance = m_cursors[m_current].first()) {
        return instance;
      }
    }
    return nullptr;
  }

  std::vector<InstanceList::Iterator> m_cursors;
  std::size_t m_current = 0;  // behind the last one at the end
  bool m_isBegun = false;
};

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

InstanceList::Iterator CimBroker::getInstances(const std::string& className) {
  std::vector<InstanceList::Iterator> cursors;
  for (std::size_t index = 0; CimAgent* agent = findAgent(index); ++index) {
    if (agent->hasClass(className)) {
      cursors.push_back(agent->getInstances(className));
    }
  }
  if (cursors.size() == 1) {
    return std::move(cursors.front());
  }
  return InstanceList::Iterator(std::make_unique<JoinedCursor>(std::move(cursors)));
}

CimInstance* CimBroker::getInstanceByPath(const CimPath& path) {
  std::vector<CimProperty*> properties;
  for (CimInstance* instance : getInstances(path.getClassName())) {
    instance->getProperties().copyTo(properties);
    if (hasKeys(properties, path)) {
      return instance;
    }
  }
  return nullptr;
}

CimBroker& GetCimBroker() {
  // Not destroyed before the library goes: agents of modules outlive every static object.
  static CimBroker* const broker = [] {
    utils::destroyAtUnload([] { delete &GetCimBroker(); });
    return new CimBroker;
  }();
  return *broker;
}

}  // namespace core
