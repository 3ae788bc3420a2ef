#include "core/CimPropertyList.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

#include "Utils/Assert.h"

namespace core {
namespace {

constexpr utils::LogSource kLog{"CimPropertyList"};
constexpr std::size_t kFirstListCapacity = 8;

// A list is short: a search costs less than an index.
auto findNamed(const std::vector<CimProperty*>& properties, const std::string& name) {
  return std::find_if(properties.begin(), properties.end(),
                      [&](const CimProperty* property) { return property->getName() == name; });
}

}  // namespace

CimPropertyList::CimPropertyList() : SafeList(false) {}

CimPropertyList::~CimPropertyList() = default;

CimPropertyList::Iterator CimPropertyList::iterator() {
  return Iterator(std::make_unique<OverridenPropertiesSkippingIterator>(this));
}

void CimPropertyList::copyTo(std::vector<CimProperty*>& properties) const {
  const utils::ScopedLock lock(m_lock);
  properties.clear();
  properties.reserve(m_latest.size());
  std::copy_if(m_latest.begin(), m_latest.end(), std::back_inserter(properties),
               [](const CimProperty* property) { return !property->isOverridden(); });
}

void CimPropertyList::add(CimProperty* newProperty) {
  ORVEX_ASSERT(kLog, newProperty != NULL);
  const utils::ScopedLock lock(m_lock);
  // All that may fail comes before the first change.
  if (m_latest.size() == m_latest.capacity()) {
    m_latest.reserve(std::max(kFirstListCapacity, 2 * m_latest.size()));
  }
  const auto overriden =
      std::find_if(m_latest.begin(), m_latest.end(),
                   [&](const CimProperty* property) { return property->isNamedAs(*newProperty); });
  append(newProperty);
  if (overriden == m_latest.end()) {
    m_latest.push_back(newProperty);
    return;
  }
  (*overriden)->setOverridden();
  *overriden = newProperty;
  std::rotate(overriden, overriden + 1, m_latest.end());
}

CimProperty* CimPropertyList::get(const std::string& name) {
  const utils::ScopedLock lock(m_lock);
  const auto found = findNamed(m_latest, name);
  return found != m_latest.end() ? *found : nullptr;
}

void CimPropertyList::clear() {
  {
    const utils::ScopedLock lock(m_lock);
    m_latest.clear();
  }
  SafeList::clear();
}

bool CimPropertyList::remove(CimProperty* property) {
  {
    const utils::ScopedLock lock(m_lock);
    std::erase(m_latest, property);
  }
  return SafeList::remove(property);
}

}  // namespace core
