// One profile builds on another.

#ifndef ORVEX_CIM_CIM_REFERENCEDPROFILE_H_
#define ORVEX_CIM_CIM_REFERENCEDPROFILE_H_

#include "Utils/Export.h"
#include "cim/CIM_ReferencedSpecification.h"
#include "cim/CIM_RegisteredProfile.h"
#include "core/CimPropertyRef.h"

class ORVEX_CORE_API CIM_ReferencedProfile : public CIM_ReferencedSpecification {
 public:
  static constexpr const char* kClassName = "CIM_ReferencedProfile";
  using Superclass = CIM_ReferencedSpecification;

  CIM_ReferencedProfile();
  ~CIM_ReferencedProfile() override;

  core::CimPropertyRefT<CIM_RegisteredProfile> Antecedent{"Antecedent", this};
  core::CimPropertyRefT<CIM_RegisteredProfile> Dependent{"Dependent", this};
};

#endif  // ORVEX_CIM_CIM_REFERENCEDPROFILE_H_
