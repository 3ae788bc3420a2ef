// The service owns a job.

#ifndef ORVEX_AGENT_ORVEX_OWNINGJOBELEMENT_H_
#define ORVEX_AGENT_ORVEX_OWNINGJOBELEMENT_H_

#include <string>

#include "cim/CIM_OwningJobElement.h"
#include "core/InstanceProvider.h"

class Orvex_OwningJobElement : public CIM_OwningJobElement {
 public:
  static constexpr const char* kClassName = "Orvex_OwningJobElement";
  using Superclass = CIM_OwningJobElement;

  Orvex_OwningJobElement(core::CimInstance* service, core::CimInstance* job);

  [[nodiscard]] std::string getClassName() const override { return kClassName; }
};

// Rebuilds the associations at every enumeration.
class Orvex_OwningJobElementClass : public core::InstanceProvider {
 public:
  Orvex_OwningJobElementClass();

 protected:
  void refresh() override;
};

#endif  // ORVEX_AGENT_ORVEX_OWNINGJOBELEMENT_H_
