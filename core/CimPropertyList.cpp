#include "core/CimPropertyList.h"

#include <algorithm>

#include "Utils/Assert.h"

namespace core {
namespace {

constexpr utils::LogSource kLog{"CimPropertyList"};

// A list is short: a search from its end costs less than an index.
template <class Predicate>
CimProperty* findLast(const std::vector<CimProperty*>& properties, Predicate predicate) {
  const auto found = std::find_if(properties.rbegin(), properties.rend(), predicate);
  return found != properties.rend() ? *found : nullptr;
}

}  // namespace

CimPropertyList::CimPropertyList() : SafeList(false) {}

CimPropertyList::~CimPropertyList() = default;

CimPropertyList::Iterator CimPropertyList::iterator() {
  return Iterator(std::make_unique<OverridenPropertiesSkippingIterator>(this));
}

void CimPropertyList::copyTo(std::vector<CimProperty*>& properties) const {
  withElements([&](const std::vector<CimProperty*>& all) {
    properties.clear();
    properties.reserve(all.size());
    for (CimProperty* property : all) {
      if (!property->isOverridden()) {
        properties.push_back(property);
      }
    }
  });
}

void CimPropertyList::add(CimProperty* newProperty) {
  ORVEX_ASSERT(kLog, newProperty != NULL);
  withElements([&](const std::vector<CimProperty*>& all) {
    CimProperty* overridenProperty = findLast(
        all, [&](const CimProperty* property) { return property->isNamedAs(*newProperty); });
    append(newProperty);
    if (overridenProperty != nullptr) {
      overridenProperty->setOverridden();
    }
  });
}

CimProperty* CimPropertyList::get(const std::string& name) {
  return withElements([&](const std::vector<CimProperty*>& all) {
    return findLast(all, [&](const CimProperty* property) { return property->getName() == name; });
  });
}

}  // namespace core
