// The service conforms to the software update profile.

#ifndef ORVEX_AGENT_ORVEX_SOFTWAREUPDATEELEMENTCONFORMSTOPROFILE_H_
#define ORVEX_AGENT_ORVEX_SOFTWAREUPDATEELEMENTCONFORMSTOPROFILE_H_

#include <string>

#include "cim/CIM_ElementConformsToProfile.h"
#include "core/InstanceProvider.h"

class Orvex_SoftwareUpdateElementConformsToProfile : public CIM_ElementConformsToProfile {
 public:
  static constexpr const char* kClassName = "Orvex_ElementConformsToProfile";
  using Superclass = CIM_ElementConformsToProfile;

  Orvex_SoftwareUpdateElementConformsToProfile(core::CimInstance* profile,
                                               core::CimInstance* service);

  [[nodiscard]] std::string getClassName() const override { return kClassName; }
};

// Rebuilds the association at every enumeration.
class Orvex_SoftwareUpdateElementConformsToProfileClass : public core::InstanceProvider {
 public:
  Orvex_SoftwareUpdateElementConformsToProfileClass();

 protected:
  void refresh() override;
};

#endif  // ORVEX_AGENT_ORVEX_SOFTWAREUPDATEELEMENTCONFORMSTOPROFILE_H_
