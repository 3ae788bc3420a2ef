// The service can change an adapter, a port or a firmware image.

#ifndef ORVEX_AGENT_ORVEX_SERVICEAFFECTSELEMENT_H_
#define ORVEX_AGENT_ORVEX_SERVICEAFFECTSELEMENT_H_

#include <string>

#include "cim/CIM_ServiceAffectsElement.h"
#include "core/InstanceProvider.h"

class Orvex_ServiceAffectsElement : public CIM_ServiceAffectsElement {
 public:
  static constexpr const char* kClassName = "Orvex_ServiceAffectsElement";
  using Superclass = CIM_ServiceAffectsElement;

  Orvex_ServiceAffectsElement(core::CimInstance* element, core::CimInstance* service);

  [[nodiscard]] std::string getClassName() const override { return kClassName; }
};

// Rebuilds the associations at every enumeration.
class Orvex_ServiceAffectsElementClass : public core::InstanceProvider {
 public:
  Orvex_ServiceAffectsElementClass();

 protected:
  void refresh() override;
};

#endif  // ORVEX_AGENT_ORVEX_SERVICEAFFECTSELEMENT_H_
