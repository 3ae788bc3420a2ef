// The host's broker: routes requests to the agents that serve the classes asked for.
//
// One broker lives as long as the process. Agents register when their module is loaded and stay
// theirs: the broker deletes none. Requests are serialised, because a cursor and the instances that
// it gives are valid only until the next enumeration of their class: whoever asks for instances
// holds a Request for as long as he uses them. Job threads never take it, so a slow flash holds
// nobody up. The broker itself takes none: a provider, which has locks of its own, asks it for the
// instances of other classes.

#ifndef ORVEX_CORE_CIMBROKER_H_
#define ORVEX_CORE_CIMBROKER_H_

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "Utils/Export.h"
#include "Utils/Mutex.h"
#include "core/CimAgent.h"
#include "core/CimPath.h"
#include "core/CimSchema.h"

namespace core {

class ORVEX_CORE_API CimBroker {
 public:
  // Holds the request for the span of a block; may be held again on the same thread.
  class ORVEX_CORE_API Request {
   public:
    explicit Request(CimBroker& broker);
    Request(const Request&) = delete;
    Request& operator=(const Request&) = delete;
    ~Request();

   private:
    utils::ScopedLock m_lock;
  };

  CimBroker();
  CimBroker(const CimBroker&) = delete;
  CimBroker& operator=(const CimBroker&) = delete;
  ~CimBroker();

  // Adds an agent behind the others. It must live until the process ends or the broker does. Throws
  // utils::Exception for null.
  void addAgent(CimAgent* agent);
  // Returns the agents in the order in which they were added.
  [[nodiscard]] std::vector<CimAgent*> getAgents() const;

  // Returns the declarations of the classes of all agents that declare theirs (see
  // core/ClassDeclarer.h). The schema never changes: agents added later make the broker answer with
  // another one. Throws what an agent's declareClasses throws.
  [[nodiscard]] std::shared_ptr<const CimSchema> getSchema();

  // Asks all agents that serve the class, and returns a cursor over what they give, agent by agent,
  // in the order in which they were added; an empty one for a class that nobody serves. Throws what
  // a provider throws.
  [[nodiscard]] InstanceList::Iterator getInstances(const std::string& className);
  // Returns the first instance of the path's class whose keys are exactly those of the path, null
  // when there is none. Throws what a provider throws.
  [[nodiscard]] CimInstance* getInstanceByPath(const CimPath& path);

 private:
  // Returns null behind the last agent.
  [[nodiscard]] CimAgent* findAgent(std::size_t index) const;

  mutable utils::Mutex m_agentsLock;
  std::vector<CimAgent*> m_agents ORVEX_GUARDED_BY(m_agentsLock);
  // Made when it is first asked for; null: not yet.
  std::shared_ptr<const CimSchema> m_schema ORVEX_GUARDED_BY(m_agentsLock);
  utils::Mutex m_requestLock;  // held by a Request; guards the instances of all agents, no member
};

// Returns the broker of the process.
[[nodiscard]] ORVEX_CORE_API CimBroker& GetCimBroker();

}  // namespace core

#endif  // ORVEX_CORE_CIMBROKER_H_
