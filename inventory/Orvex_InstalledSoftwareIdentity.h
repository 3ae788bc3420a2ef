// A piece of software is on an adapter of this machine. There is none for a file.

#ifndef ORVEX_INVENTORY_ORVEX_INSTALLEDSOFTWAREIDENTITY_H_
#define ORVEX_INVENTORY_ORVEX_INSTALLEDSOFTWAREIDENTITY_H_

#include <string>

#include "cim/CIM_InstalledSoftwareIdentity.h"
#include "core/InstanceProvider.h"

class Orvex_InstalledSoftwareIdentity : public CIM_InstalledSoftwareIdentity {
 public:
  static constexpr const char* kClassName = "Orvex_InstalledSoftwareIdentity";
  using Superclass = CIM_InstalledSoftwareIdentity;

  Orvex_InstalledSoftwareIdentity(core::CimInstance* system, core::CimInstance* software);

  [[nodiscard]] std::string getClassName() const override { return kClassName; }
};

// Rebuilds the associations at every enumeration.
class Orvex_InstalledSoftwareIdentityClass : public core::InstanceProvider {
 public:
  Orvex_InstalledSoftwareIdentityClass();

 protected:
  void refresh() override;
};

#endif  // ORVEX_INVENTORY_ORVEX_INSTALLEDSOFTWAREIDENTITY_H_
