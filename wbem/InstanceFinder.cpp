#include "wbem/InstanceFinder.h"

namespace wbem {

InstanceFinder::InstanceFinder(const Namespaces& namespaces, const Namespace& nameSpace,
                               const cimxml::ObjectName& name)
    : m_served(nameSpace.findServed(nameSpace.demandClass(name.className).name)) {
  if (m_served != nullptr) {
    m_matcher.emplace(*m_served->declaration, name);
    if (m_matcher->leadsElsewhere(namespaces.names())) {
      m_served = nullptr;
    }
  }
}

std::set<std::string> InstanceFinder::classNames() const {
  return m_served != nullptr ? std::set{m_served->declaration->name} : std::set<std::string>();
}

}  // namespace wbem
