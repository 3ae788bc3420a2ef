#include "core/CimPropertyList.h"

#include <algorithm>
#include <cstddef>
#include <memory>

#include "Utils/Assert.h"

namespace core {
namespace {

constexpr utils::LogSource kLog{"CimPropertyList"};
constexpr std::size_t kFirstListCapacity = 8;

bool isInForce(const CimProperty* property) {
  return !property->isOverridden();
}

}  // namespace

CimPropertyList::CimPropertyList() : SafeList(false) {}

CimPropertyList::~CimPropertyList() = default;

CimPropertyList::Iterator CimPropertyList::iterator() {
  return Iterator(std::make_unique<OverridenPropertiesSkippingIterator>(this));
}

void CimPropertyList::copyTo(std::vector<CimProperty*>& properties) const {
  if (!m_index.copyTo(properties, changes())) {
    copyThose(properties, isInForce);
  }
}

void CimPropertyList::add(CimProperty* newProperty) {
  ORVEX_ASSERT(kLog, newProperty != NULL);
  // All that may fail comes before the first change.
  reserveOne();
  m_index.enter(newProperty);
  SafeList::add(newProperty);
}

CimProperty* CimPropertyList::get(const std::string& name) {
  return m_index.get(name);
}

void CimPropertyList::clear() {
  m_index.clear();
  SafeList::clear();
}

bool CimPropertyList::remove(CimProperty* property) {
  const bool isRemoved = SafeList::remove(property);
  if (isRemoved) {
    m_index.forget(property);
  }
  return isRemoved;
}

CimPropertyList::Index::Index() = default;

CimPropertyList::Index::~Index() = default;

void CimPropertyList::Index::enter(CimProperty* newProperty) {
  const utils::ScopedLock lock(m_lock);
  if (m_entries.size() == m_entries.capacity()) {
    m_entries.reserve(std::max(kFirstListCapacity, 2 * m_entries.size()));
  }
  const auto entry = find(*newProperty);
  if (entry != m_entries.end()) {
    CimProperty* const overridenProperty = entry->property;
    ORVEX_ASSERT(kLog, overridenProperty != NULL);
    overridenProperty->setOverridden();
    m_entries.erase(entry);
  }
  m_entries.push_back({newProperty, newProperty});
  ++m_changes;
}

void CimPropertyList::Index::set(const CimProperty& named, CimProperty* property) {
  const utils::ScopedLock lock(m_lock);
  const auto entry = find(named);
  if (entry != m_entries.end()) {
    m_entries.erase(entry);
  }
  m_entries.push_back({&named, property});
}

CimProperty* CimPropertyList::Index::get(const std::string& name) const {
  const utils::ScopedLock lock(m_lock);
  const auto found = std::find_if(m_entries.begin(), m_entries.end(), [&](const Entry& entry) {
    return entry.named->getName() == name;
  });
  return found != m_entries.end() ? found->property : nullptr;
}

void CimPropertyList::Index::clear() {
  const utils::ScopedLock lock(m_lock);
  m_entries.clear();
  ++m_changes;
}

void CimPropertyList::Index::forget(const CimProperty* property) {
  const utils::ScopedLock lock(m_lock);
  std::erase_if(m_entries, [&](const Entry& entry) { return entry.property == property; });
  ++m_changes;
}

bool CimPropertyList::Index::copyTo(std::vector<CimProperty*>& properties,
                                    std::size_t changes) const {
  const utils::ScopedLock lock(m_lock);
  if (m_changes != changes) {
    return false;
  }
  properties.clear();
  properties.reserve(m_entries.size());
  for (const Entry& entry : m_entries) {
    if (entry.property != nullptr && isInForce(entry.property)) {
      properties.push_back(entry.property);
    }
  }
  return true;
}

std::vector<CimPropertyList::Index::Entry>::iterator CimPropertyList::Index::find(
    const CimProperty& named) {
  return std::find_if(m_entries.begin(), m_entries.end(),
                      [&](const Entry& entry) { return entry.named->isNamedAs(named); });
}

}  // namespace core
