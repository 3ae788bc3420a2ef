// The classes of the interop namespace whose instances are the server's own (DSP1033, and the DMTF
// CIM schema's classes of that name): the namespaces and who manages them.

#ifndef ORVEX_WBEM_INTEROPCLASSES_H_
#define ORVEX_WBEM_INTEROPCLASSES_H_

#include <string>

#include "cim/CIM_ManagedElement.h"
#include "cim/CIM_Service.h"
#include "core/CimKeys.h"
#include "core/CimPropertyTypes.h"

namespace wbem {

// A part of a system that serves WBEM clients.
class CIM_WBEMService : public CIM_Service {
 public:
  static constexpr const char* kClassName = "CIM_WBEMService";
  using Superclass = CIM_Service;
};

// The server.
class CIM_ObjectManager : public CIM_WBEMService {
 public:
  static constexpr const char* kClassName = "CIM_ObjectManager";
  using Superclass = CIM_WBEMService;

  void setPropertyValues();

  [[nodiscard]] std::string getClassName() const override { return kClassName; }

  core::CimPropertyBoolean GatherStatisticalData{"GatherStatisticalData", this};
};

// A namespace that the server serves.
class CIM_Namespace : public CIM_ManagedElement {
 public:
  static constexpr const char* kClassName = "CIM_Namespace";
  using Superclass = CIM_ManagedElement;

  template <class Self>
  static auto getKeys(Self& self) {
    return core::keys(self.SystemCreationClassName, self.SystemName,
                      self.ObjectManagerCreationClassName, self.ObjectManagerName,
                      self.CreationClassName, self.Name);
  }

  void setPropertyValues(const std::string& name);

  [[nodiscard]] std::string getClassName() const override { return kClassName; }

  core::CimPropertyString SystemCreationClassName{"SystemCreationClassName", this};
  core::CimPropertyString SystemName{"SystemName", this};
  core::CimPropertyString ObjectManagerCreationClassName{"ObjectManagerCreationClassName", this};
  core::CimPropertyString ObjectManagerName{"ObjectManagerName", this};
  core::CimPropertyString CreationClassName{"CreationClassName", this};
  core::CimPropertyString Name{"Name", this};
};

}  // namespace wbem

#endif  // ORVEX_WBEM_INTEROPCLASSES_H_
