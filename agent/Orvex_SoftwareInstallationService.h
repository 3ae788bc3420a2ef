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
  using Superclass = CIM_SoftwareInstallationService;
  // What the names of the service and of its capabilities are made of.
  static constexpr const char* kServiceName = "FirmwareUpdate";

  Orvex_SoftwareInstallationService();
  ~Orvex_SoftwareInstallationService() override;

  // The methods return a cim::InstallReturn; a job comes back in `job` (which may be null) with
  // kJobStarted only. They throw utils::EUnspecifiedError for an argument that is missing or null,
  // and utils::ESyntaxError for a malformed path.

  // Updates the adapter `Target` with the image that the software identity `Source` describes.
  std::uint32_t InstallFromSoftwareIdentity(core::CimPropertyList* in, core::CimPropertyList* out,
                                            core::CimInstance** job) override;
  // Updates the adapter `Target` with the image that `URI` names.
  std::uint32_t InstallFromURI(core::CimPropertyList* in, core::CimPropertyList* out,
                               core::CimInstance** job) override;
  // Answers whether `Source` could be installed on `Target`, and what that would take in the output
  // argument InstallCharacteristics. A check that passes leaves the target in progress for the life
  // of the process.
  std::uint32_t CheckSoftwareIdentity(core::CimPropertyList* in, core::CimPropertyList* out,
                                      core::CimInstance** job) override;

  [[nodiscard]] std::string getClassName() const override { return kClassName; }

  // Fills the properties.
  virtual void setPropertyValues();

 private:
  // What the method table calls: the virtual operation of that name.
  template <std::uint32_t (core::CimInstance::*kMethod)(
      core::CimPropertyList*, core::CimPropertyList*, core::CimInstance**)>
  std::uint32_t forward(core::CimPropertyList* in, core::CimPropertyList* out,
                        core::CimInstance** job) {
    return (this->*kMethod)(in, out, job);
  }
};

// Serves the service; the instance is made by the first enumeration and keeps its values.
class Orvex_SoftwareInstallationServiceClass
    : public core::SingleInstanceProvider<Orvex_SoftwareInstallationService> {
 public:
  Orvex_SoftwareInstallationServiceClass();
};

#endif  // ORVEX_AGENT_ORVEX_SOFTWAREINSTALLATIONSERVICE_H_
