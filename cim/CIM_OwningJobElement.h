// An element is responsible for a job.

#ifndef ORVEX_CIM_CIM_OWNINGJOBELEMENT_H_
#define ORVEX_CIM_CIM_OWNINGJOBELEMENT_H_

#include "Utils/Export.h"
#include "core/CimInstance.h"
#include "core/CimPropertyRef.h"

class CIM_Job;
class CIM_ManagedElement;

class ORVEX_CORE_API CIM_OwningJobElement : public core::CimInstance {
 public:
  CIM_OwningJobElement();
  ~CIM_OwningJobElement() override;

  core::CimPropertyRefT<CIM_ManagedElement> OwningElement{"OwningElement", this};
  core::CimPropertyRefT<CIM_Job> OwnedElement{"OwnedElement", this};
};

#endif  // ORVEX_CIM_CIM_OWNINGJOBELEMENT_H_
