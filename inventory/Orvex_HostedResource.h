// The file of a firmware image is on this machine.

#ifndef ORVEX_INVENTORY_ORVEX_HOSTEDRESOURCE_H_
#define ORVEX_INVENTORY_ORVEX_HOSTEDRESOURCE_H_

#include <string>

#include "cim/CIM_HostedDependency.h"
#include "core/InstanceProvider.h"

class Orvex_HostedResource : public CIM_HostedDependency {
 public:
  static constexpr const char* kClassName = "Orvex_HostedResource";
  using Superclass = CIM_HostedDependency;

  Orvex_HostedResource(core::CimInstance* system, core::CimInstance* resource);

  [[nodiscard]] std::string getClassName() const override { return kClassName; }
};

// Rebuilds the associations at every enumeration.
class Orvex_HostedResourceClass : public core::InstanceProvider {
 public:
  Orvex_HostedResourceClass();

 protected:
  void refresh() override;
};

#endif  // ORVEX_INVENTORY_ORVEX_HOSTEDRESOURCE_H_
