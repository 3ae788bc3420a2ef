#include "core/OwningPropertyList.h"

namespace core {

OwningPropertyList::OwningPropertyList() = default;

OwningPropertyList::~OwningPropertyList() = default;

void OwningPropertyList::add(std::unique_ptr<CimProperty> property) {
  m_list.add(property.get());
  m_properties.push_back(std::move(property));
}

}  // namespace core
