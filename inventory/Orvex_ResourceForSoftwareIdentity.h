// A firmware image is in a file. The resource is what the software is got from.

#ifndef ORVEX_INVENTORY_ORVEX_RESOURCEFORSOFTWAREIDENTITY_H_
#define ORVEX_INVENTORY_ORVEX_RESOURCEFORSOFTWAREIDENTITY_H_

#include <string>

#include "cim/CIM_Dependency.h"
#include "core/InstanceProvider.h"

class Orvex_ResourceForSoftwareIdentity : public CIM_Dependency {
 public:
  static constexpr const char* kClassName = "Orvex_ResourceForSoftwareIdentity";
  using Superclass = CIM_Dependency;

  Orvex_ResourceForSoftwareIdentity(core::CimInstance* resource, core::CimInstance* software);

  [[nodiscard]] std::string getClassName() const override { return kClassName; }
};

// Rebuilds the associations at every enumeration.
class Orvex_ResourceForSoftwareIdentityClass : public core::InstanceProvider {
 public:
  Orvex_ResourceForSoftwareIdentityClass();

 protected:
  void refresh() override;
};

#endif  // ORVEX_INVENTORY_ORVEX_RESOURCEFORSOFTWAREIDENTITY_H_
