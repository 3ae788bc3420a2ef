#include "core/CimPropertyList.h"

#include "Utils/Assert.h"

namespace core {
namespace {

constexpr utils::LogSource kLog{"CimPropertyList"};

}  // namespace

CimPropertyList::CimPropertyList() : SafeList(false) {}

CimPropertyList::~CimPropertyList() = default;

CimPropertyList::Iterator CimPropertyList::iterator() {
  return Iterator(std::make_unique<OverridenPropertiesSkippingIterator>(this));
}

void CimPropertyList::add(CimProperty* newProperty) {
  ORVEX_ASSERT(kLog, newProperty != NULL);
  const auto overriden = m_index.exchange(newProperty->getName(), newProperty);
  if (overriden) {
    CimProperty* overridenProperty = *overriden;
    ORVEX_ASSERT(kLog, overridenProperty != NULL);
    overridenProperty->setOverridden();
  }
  SafeList::add(newProperty);
}

CimProperty* CimPropertyList::get(const std::string& name) {
  return m_index.contains(name) ? m_index.get(name) : nullptr;
}

}  // namespace core
