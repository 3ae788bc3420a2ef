// The two namespaces of the server at one time: that of the agents' classes, and the interop
// namespace, in which clients discover the server and its profiles (DSP1033).
//
// In the interop namespace are the server's own instances, and of the agents' classes those of the
// registered profiles and of the associations that lead to one. A registered profile is at home
// there, everything else of the agents is at home in the agents' namespace: references say so,
// whichever namespace they are read in, so a client follows the conformance across both.
//
// Constant: a server makes another one when it is out of date.

#ifndef ORVEX_WBEM_NAMESPACES_H_
#define ORVEX_WBEM_NAMESPACES_H_

#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "core/CimBroker.h"
#include "core/ClassTexts.h"
#include "wbem/Namespace.h"
#include "wbem/ShownClasses.h"

namespace wbem {

inline constexpr const char* kInteropName = "root/interop";

class Namespaces {
 public:
  // `agentsName` is the name of the agents' namespace. `named` are classes that requests have named
  // (see wbem/ShownClasses.h). Throws what a provider throws.
  Namespaces(core::CimBroker& broker, const std::string& agentsName,
             const std::set<std::string>& named = {});
  Namespaces(const Namespaces&) = delete;
  Namespaces& operator=(const Namespaces&) = delete;
  ~Namespaces();

  // Returns whether what the agents declare and show is what it was made of.
  [[nodiscard]] bool isUpToDate(core::CimBroker& broker) const;
  // Returns the agents that declare none of their classes.
  [[nodiscard]] const std::vector<core::CimAgent*>& silentAgents() const {
    return m_shown.agents();
  }
  [[nodiscard]] const Namespace& agents() const { return *m_agents; }
  [[nodiscard]] const Namespace& interop() const { return *m_interop; }
  // Returns what there is to say of the classes of both.
  [[nodiscard]] const core::ClassTexts& texts() const { return m_texts; }
  // Returns the names of both.
  [[nodiscard]] std::vector<std::string> names() const;

  // Names are compared without regard to case. Throws StatusFault (CIM_ERR_INVALID_NAMESPACE).
  [[nodiscard]] const Namespace& demand(std::string_view name) const;
  // Returns where the instances of the class are at home.
  [[nodiscard]] const Namespace& homeOf(std::string_view className) const;

 private:
  const std::shared_ptr<const core::CimSchema> m_declared;  // the broker's
  const ShownClasses m_shown;
  const std::shared_ptr<const core::CimSchema> m_schema;
  core::ClassTexts m_texts;
  std::vector<std::unique_ptr<core::CimInstance>> m_ownInstances;
  std::unique_ptr<Namespace> m_agents;
  std::unique_ptr<Namespace> m_interop;
};

// An instance of an association that leads to objects of both namespaces, as it is written: each
// reference names the namespace in which its object is at home.
class CrossingInstance final : public core::CimInstance {
 public:
  // Takes copies.
  CrossingInstance(const Namespaces& namespaces, const core::ClassDeclaration& declaration,
                   core::CimInstance& source);
  ~CrossingInstance() override;

  [[nodiscard]] std::string getClassName() const override { return m_className; }

 private:
  const std::string m_className;
  std::vector<std::unique_ptr<core::CimProperty>> m_references;
};

}  // namespace wbem

#endif  // ORVEX_WBEM_NAMESPACES_H_
