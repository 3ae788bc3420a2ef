// The installation service runs on this machine. There is none while nobody serves the service.

#ifndef ORVEX_INVENTORY_ORVEX_HOSTEDSERVICE_H_
#define ORVEX_INVENTORY_ORVEX_HOSTEDSERVICE_H_

#include <string>

#include "cim/CIM_HostedService.h"
#include "core/InstanceProvider.h"

class Orvex_HostedService : public CIM_HostedService {
 public:
  static constexpr const char* kClassName = "Orvex_HostedService";
  using Superclass = CIM_HostedService;

  Orvex_HostedService(core::CimInstance* system, core::CimInstance* service);

  [[nodiscard]] std::string getClassName() const override { return kClassName; }
};

// Rebuilds the associations at every enumeration.
class Orvex_HostedServiceClass : public core::InstanceProvider {
 public:
  Orvex_HostedServiceClass();

 protected:
  void refresh() override;
};

#endif  // ORVEX_INVENTORY_ORVEX_HOSTEDSERVICE_H_
