#include "core/InstanceProvider.h"

#include <utility>

#include "Utils/TimeStamp.h"

namespace core {

InstanceProvider::InstanceProvider(std::string className, const EnumerationLog& log)
    : m_className(std::move(className)), m_log(log) {}

InstanceProvider::~InstanceProvider() = default;

std::string InstanceProvider::getName() const {
  return m_className;
}

InstanceList::Iterator InstanceProvider::getInstances() {
  const utils::ScopedLock lock(m_enumeration);
  if (m_log.firstRecord != nullptr) {
    utils::logDebug(m_log.source, m_log.function, "%s", m_log.firstRecord);
  }
  if (m_log.blockName == nullptr) {
    return enumerate();
  }
  const utils::TimeStamp timeStamp(m_log.blockName);
  return enumerate();
}

void InstanceProvider::withdraw(CimInstance* instance) {
  const utils::ScopedLock lock(m_enumeration);
  m_instances.remove(instance);
}

InstanceList::Iterator InstanceProvider::enumerate() {
  refresh();
  utils::logDebug(m_log.source, m_log.function, "return %d", static_cast<int>(m_instances.size()));
  return m_instances.iterator(false);
}

}  // namespace core
