// A job changes an adapter and its ports.

#ifndef ORVEX_AGENT_ORVEX_AFFECTEDJOBELEMENT_H_
#define ORVEX_AGENT_ORVEX_AFFECTEDJOBELEMENT_H_

#include <string>

#include "cim/CIM_AffectedJobElement.h"
#include "core/InstanceProvider.h"

class Orvex_AffectedJobElement : public CIM_AffectedJobElement {
 public:
  static constexpr const char* kClassName = "Orvex_AffectedJobElement";
  using Superclass = CIM_AffectedJobElement;

  Orvex_AffectedJobElement(core::CimInstance* element, core::CimInstance* job);

  [[nodiscard]] std::string getClassName() const override { return kClassName; }
};

// Rebuilds the associations at every enumeration.
class Orvex_AffectedJobElementClass : public core::InstanceProvider {
 public:
  Orvex_AffectedJobElementClass();

 protected:
  void refresh() override;
};

#endif  // ORVEX_AGENT_ORVEX_AFFECTEDJOBELEMENT_H_
