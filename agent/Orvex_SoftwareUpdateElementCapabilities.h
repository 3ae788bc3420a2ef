// The service has its capabilities.

#ifndef ORVEX_AGENT_ORVEX_SOFTWAREUPDATEELEMENTCAPABILITIES_H_
#define ORVEX_AGENT_ORVEX_SOFTWAREUPDATEELEMENTCAPABILITIES_H_

#include <string>

#include "cim/CIM_ElementCapabilities.h"
#include "core/InstanceProvider.h"

class Orvex_SoftwareUpdateElementCapabilities : public CIM_ElementCapabilities {
 public:
  static constexpr const char* kClassName = "Orvex_ElementCapabilities";
  using Superclass = CIM_ElementCapabilities;

  Orvex_SoftwareUpdateElementCapabilities(core::CimInstance* service,
                                          core::CimInstance* capabilities);

  [[nodiscard]] std::string getClassName() const override { return kClassName; }
};

// Makes the association at the first enumeration and keeps it.
class Orvex_SoftwareUpdateElementCapabilitiesClass : public core::InstanceProvider {
 public:
  Orvex_SoftwareUpdateElementCapabilitiesClass();

 protected:
  void refresh() override;
};

#endif  // ORVEX_AGENT_ORVEX_SOFTWAREUPDATEELEMENTCAPABILITIES_H_
