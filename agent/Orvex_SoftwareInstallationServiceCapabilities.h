// What the installation service can do: its one capabilities instance.

#ifndef ORVEX_AGENT_ORVEX_SOFTWAREINSTALLATIONSERVICECAPABILITIES_H_
#define ORVEX_AGENT_ORVEX_SOFTWAREINSTALLATIONSERVICECAPABILITIES_H_

#include <string>

#include "cim/CIM_SoftwareInstallationServiceCapabilities.h"
#include "core/InstanceProvider.h"

class Orvex_SoftwareInstallationServiceCapabilities
    : public CIM_SoftwareInstallationServiceCapabilities {
 public:
  static constexpr const char* kClassName = "Orvex_SoftwareInstallationServiceCapabilities";
  using Superclass = CIM_SoftwareInstallationServiceCapabilities;

  [[nodiscard]] std::string getClassName() const override { return kClassName; }

  // Returns "Capabilities@" and the name of the service.
  [[nodiscard]] virtual std::string getIdentity() const;
  // Fills the properties.
  virtual void setPropertyValues();
};

class Orvex_SoftwareInstallationServiceCapabilitiesClass
    : public core::SingleInstanceProvider<Orvex_SoftwareInstallationServiceCapabilities> {
 public:
  Orvex_SoftwareInstallationServiceCapabilitiesClass();
};

#endif  // ORVEX_AGENT_ORVEX_SOFTWAREINSTALLATIONSERVICECAPABILITIES_H_
