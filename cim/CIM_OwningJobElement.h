// An element is responsible for a job.

#ifndef ORVEX_CIM_CIM_OWNINGJOBELEMENT_H_
#define ORVEX_CIM_CIM_OWNINGJOBELEMENT_H_

#include "Utils/Export.h"
#include "cim/CIM_Job.h"
#include "cim/CIM_ManagedElement.h"
#include "core/CimInstance.h"
#include "core/CimKeys.h"
#include "core/CimPropertyRef.h"

class ORVEX_CORE_API CIM_OwningJobElement : public core::CimInstance {
 public:
  static constexpr const char* kClassName = "CIM_OwningJobElement";
  using Superclass = core::CimInstance;

  template <class Self>
  static auto getKeys(Self& self) {
    return core::keys(self.OwningElement, self.OwnedElement);
  }

  CIM_OwningJobElement();
  ~CIM_OwningJobElement() override;

  core::CimPropertyRefT<CIM_ManagedElement> OwningElement{"OwningElement", this};
  core::CimPropertyRefT<CIM_Job> OwnedElement{"OwnedElement", this};
};

#endif  // ORVEX_CIM_CIM_OWNINGJOBELEMENT_H_
