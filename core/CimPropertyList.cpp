#include "core/CimPropertyList.h"

#include <algorithm>

#include "Utils/Assert.h"

namespace core {
namespace {

constexpr utils::LogSource kLog{"CimPropertyList"};

// A list is short, and most names differ in their lengths: a search costs less than an index.
CimProperty* findLast(const std::vector<CimProperty*>& properties, const std::string& name) {
  const auto found =
      std::find_if(properties.rbegin(), properties.rend(),
                   [&](const CimProperty* property) { return property->getName() == name; });
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
    CimProperty* overridenProperty = findLast(all, newProperty->getName());
    append(newProperty);
    if (overridenProperty != nullptr) {
      overridenProperty->setOverridden();
    }
  });
}

CimProperty* CimPropertyList::get(const std::string& name) {
  return withElements([&](const std::vector<CimProperty*>& all) { return findLast(all, name); });
}

}  // namespace core
