// The two namespaces of the server at one time: that of the agents' classes, and the interop
// namespace, in which clients discover the server and its profiles (DSP1033).
//
// In the interop namespace are the server's own instances, and of the agents' classes those of the
// registered profiles and of the associations that lead to one. A registered profile is at home
// there, everything else of the agents is at home in the agents' namespace: references say so,
// whichever namespace they are read in, so a client follows the conformance across both.
//
// Constant: a server makes another one when agents have been added.

#ifndef ORVEX_WBEM_NAMESPACES_H_
#define ORVEX_WBEM_NAMESPACES_H_

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "core/CimBroker.h"
#include "wbem/Namespace.h"

namespace wbem {

inline constexpr const char* kInteropName = "root/interop";

class Namespaces {
 public:
  // `agentsName` is the name of the agents' namespace.
  Namespaces(core::CimBroker& broker, const std::string& agentsName);
  Namespaces(const Namespaces&) = delete;
  Namespaces& operator=(const Namespaces&) = delete;
  ~Namespaces();

  // Returns the broker's schema of which it was made.
  [[nodiscard]] const core::CimSchema* schema() const { return m_schema.get(); }
  [[nodiscard]] const Namespace& agents() const { return *m_agents; }
  [[nodiscard]] const Namespace& interop() const { return *m_interop; }
  // Returns the names of both.
  [[nodiscard]] std::vector<std::string> names() const;

  // Names are compared without regard to case. Throws StatusFault (CIM_ERR_INVALID_NAMESPACE).
  [[nodiscard]] const Namespace& demand(std::string_view name) const;
  // Returns where the instances of the class are at home.
  [[nodiscard]] const Namespace& homeOf(std::string_view className) const;

 private:
  std::shared_ptr<const core::CimSchema> m_schema;
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
