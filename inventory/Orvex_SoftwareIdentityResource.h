// The file of a software identity. For its use by other agents see Orvex_EthernetPort.

#ifndef ORVEX_INVENTORY_ORVEX_SOFTWAREIDENTITYRESOURCE_H_
#define ORVEX_INVENTORY_ORVEX_SOFTWAREIDENTITYRESOURCE_H_

#include <string>

#include "cim/CIM_EnabledLogicalElement.h"
#include "core/CimKeys.h"

class Orvex_SoftwareIdentityResource : public CIM_EnabledLogicalElement {
 public:
  static constexpr const char* kClassName = "Orvex_SoftwareIdentityResource";
  using Superclass = CIM_EnabledLogicalElement;

  template <class Self>
  static auto getKeys(Self& self) {
    return core::keys(self.InstanceID);
  }

  ~Orvex_SoftwareIdentityResource() override = default;

  [[nodiscard]] std::string getClassName() const override { return kClassName; }

  // Returns the identifier of the file, comparable with Orvex_SoftwareIdentity::getIdentity().
  [[nodiscard]] virtual std::string getFirmwareFileID() const = 0;

  // The URI of the file.
  core::CimPropertyString AccessInfo{"AccessInfo", this};
  // What AccessInfo is (DMTF CIM_RemoteServiceAccessPoint).
  core::CimPropertyUint16 InfoFormat{"InfoFormat", this};
};

#endif  // ORVEX_INVENTORY_ORVEX_SOFTWAREIDENTITYRESOURCE_H_
