// The classes of agents that declare none of theirs (see core/ClassDeclarer.h): each is declared as
// its instances show it, with their properties and keys, without a superclass and methods.
//
// Any thread may call; what asks an agent holds the broker's request.

#ifndef ORVEX_WBEM_SHOWNCLASSES_H_
#define ORVEX_WBEM_SHOWNCLASSES_H_

#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "core/CimBroker.h"

namespace wbem {

class ShownClasses {
 public:
  using Schema = std::shared_ptr<const core::CimSchema>;

  // `declared` is the broker's schema. `names` are further classes that requests have named: who is
  // asked for one of them may serve it without having it in its registry.
  ShownClasses(core::CimBroker& broker, Schema declared, const std::set<std::string>& names);

  // Returns the schema with those classes, which is the declared one where there are none.
  [[nodiscard]] const Schema& schema() const { return m_schema; }
  // Returns the names of what the agent serves: in its registry, and of those that were named.
  [[nodiscard]] std::vector<std::string> getServed(core::CimAgent& agent) const;
  // Returns the agents that declare nothing.
  [[nodiscard]] const std::vector<core::CimAgent*>& agents() const { return m_agents; }
  // Returns whether a class that has had no instance has one now, so that more is to be seen.
  [[nodiscard]] bool hasNews(core::CimBroker& broker) const;

  // Returns whether an agent that declares nothing serves a class of the name.
  [[nodiscard]] static bool isServed(core::CimBroker& broker, const std::string& className);

 private:
  Schema m_schema;
  const std::set<std::string> m_names;
  const std::vector<core::CimAgent*> m_agents;
  std::vector<std::pair<core::CimAgent*, std::string>> m_unseen;  // that have had no instance
};

}  // namespace wbem

#endif  // ORVEX_WBEM_SHOWNCLASSES_H_
