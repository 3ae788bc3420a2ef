// The installation service: the one instance through which clients update adapter firmware. It
// holds no state between calls.

#ifndef ORVEX_AGENT_ORVEX_SOFTWAREINSTALLATIONSERVICE_H_
#define ORVEX_AGENT_ORVEX_SOFTWAREINSTALLATIONSERVICE_H_

#include <cstdint>
#include <string>

#include "cim/CIM_SoftwareInstallationService.h"
#include "core/InstanceProvider.h"

class Orvex_SoftwareInstallationService : public CIM_SoftwareInstallationService {
 public:
  static constexpr const char* kClassName = "Orvex_SoftwareInstallationService";
  // What the names of the service and of its capabilities are made of.
  static constexpr const char* kServiceName = "FirmwareUpdate";

  Orvex_SoftwareInstallationService();
  ~Orvex_SoftwareInstallationService() override;

  // Updates the adapter `Target` with the image that `URI` names. Returns a cim::InstallReturn; the
  // job comes back in `job` (which may be null) with kJobStarted only. Throws
  // utils::EUnspecifiedError for an argument that is missing or null, and utils::ESyntaxError for a
  // malformed target path.
  std::uint32_t InstallFromURI(core::CimPropertyList* in, core::CimPropertyList* out,
                               core::CimInstance** job) override;

  [[nodiscard]] std::string getClassName() const override { return kClassName; }

  // Fills the properties.
  virtual void setPropertyValues();

 private:
  std::uint32_t invokeInstallFromURI(core::CimPropertyList* in, core::CimPropertyList* out,
                                     core::CimInstance** job);
};

// Serves the service; the instance is made by the first enumeration and keeps its values.
class Orvex_SoftwareInstallationServiceClass
    : public core::SingleInstanceProvider<Orvex_SoftwareInstallationService> {
 public:
  Orvex_SoftwareInstallationServiceClass();
};

#endif  // ORVEX_AGENT_ORVEX_SOFTWAREINSTALLATIONSERVICE_H_
