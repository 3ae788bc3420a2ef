#include "core/OwningPropertyList.h"

#include <algorithm>
#include <cstddef>

namespace core {
namespace {

constexpr std::size_t kFirstCapacity = 8;

}  // namespace

OwningPropertyList::OwningPropertyList() = default;

OwningPropertyList::~OwningPropertyList() = default;

void OwningPropertyList::add(std::unique_ptr<CimProperty> property) {
  // All that may fail comes before the list refers to the property.
  if (m_properties.size() == m_properties.capacity()) {
    m_properties.reserve(std::max(kFirstCapacity, 2 * m_properties.size()));
  }
  m_list.add(property.get());
  m_properties.push_back(std::move(property));
}

}  // namespace core
