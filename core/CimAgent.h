// An agent: what the broker talks to. It has a name and a registry of class providers.
//
// The broker calls its three virtual operations. What an agent offers beside them is an interface
// of its own, which it implements too: core/ClassDeclarer.h, core/FirmwareReader.h.
//
// Any thread may call. The registry is filled while the agent is constructed; look-ups lock it, the
// provider's own work runs without that lock.

#ifndef ORVEX_CORE_CIMAGENT_H_
#define ORVEX_CORE_CIMAGENT_H_

#include <string>
#include <vector>

#include "Utils/Export.h"
#include "core/CimClasses.h"

namespace core {

class ORVEX_CORE_API CimAgent {
 public:
  explicit CimAgent(std::string name);
  CimAgent(const CimAgent&) = delete;
  CimAgent& operator=(const CimAgent&) = delete;

  // Returns whether the agent serves the class; names are case-sensitive.
  [[nodiscard]] virtual bool hasClass(std::string className);
  // Returns the provider's cursor. Throws utils::Exception "class %s does not exists", else what
  // the provider throws.
  [[nodiscard]] virtual InstanceList::Iterator getInstances(std::string className);

  virtual ~CimAgent();

  [[nodiscard]] const std::string& getName() const { return m_name; }
  // Returns the names of the classes that the agent serves, in order.
  [[nodiscard]] std::vector<std::string> getClassNames() const;

 protected:
  [[nodiscard]] CimClasses& getClasses() { return m_classes; }

 private:
  CimClasses m_classes;
  const std::string m_name;
};

}  // namespace core

#endif  // ORVEX_CORE_CIMAGENT_H_
