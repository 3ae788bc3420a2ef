// Finding the instance that a client names.
//
// A name is the client's: it may be long, and taking it apart takes its time. So a finder is made
// before the broker's request is taken, and asked under it.

#ifndef ORVEX_WBEM_INSTANCEFINDER_H_
#define ORVEX_WBEM_INSTANCEFINDER_H_

#include <optional>
#include <set>
#include <string>

#include "wbem/Namespaces.h"

namespace wbem {

class InstanceFinder {
 public:
  // The namespace is one of them. References within the name lead to objects of either; where one
  // names a third, nothing is found. Both namespaces and the name are the caller's and outlive
  // this. Throws as Namespace::demandClass.
  InstanceFinder(const Namespaces& namespaces, const Namespace& nameSpace,
                 const cimxml::ObjectName& name);

  // Returns the class that find() enumerates, for core::LookAhead; empty where it asks nobody.
  [[nodiscard]] std::set<std::string> classNames() const;

  // Calls use(served, instance) for the instance of the name, when there is one, and returns
  // whether there is. The caller holds the broker's request. Throws what a provider throws.
  template <class Use>
  [[nodiscard]] bool find(Use use) const {
    return m_served != nullptr && m_served->withInstance(*m_matcher, use);
  }

 private:
  const ServedClass* m_served;  // null: nothing is found
  std::optional<KeyMatcher> m_matcher;
};

}  // namespace wbem

#endif  // ORVEX_WBEM_INSTANCEFINDER_H_
