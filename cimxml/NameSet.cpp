#include "cimxml/NameSet.h"

#include <algorithm>
#include <utility>

#include "core/ClassDeclaration.h"

namespace cimxml {

NameSet::NameSet(std::vector<std::string> names) : m_names(std::move(names)) {
  std::sort(m_names.begin(), m_names.end(), core::NameLess());
  m_names.erase(std::unique(m_names.begin(), m_names.end(), core::isSameName), m_names.end());
}

bool NameSet::has(std::string_view name) const {
  return std::binary_search(m_names.begin(), m_names.end(), name, core::NameLess());
}

}  // namespace cimxml
