// The software update profile builds on the Ethernet port profile.

#ifndef ORVEX_AGENT_ORVEX_SOFTWAREUPDATEREFERENCEDPROFILE_H_
#define ORVEX_AGENT_ORVEX_SOFTWAREUPDATEREFERENCEDPROFILE_H_

#include <string>

#include "cim/CIM_ReferencedProfile.h"
#include "core/InstanceProvider.h"

class Orvex_SoftwareUpdateReferencedProfile : public CIM_ReferencedProfile {
 public:
  static constexpr const char* kClassName = "Orvex_ReferencedProfile";
  using Superclass = CIM_ReferencedProfile;

  Orvex_SoftwareUpdateReferencedProfile(core::CimInstance* antecedent,
                                        core::CimInstance* dependent);

  [[nodiscard]] std::string getClassName() const override { return kClassName; }
};

// Rebuilds the association at every enumeration; there is none while nobody serves the port
// profile.
class Orvex_SoftwareUpdateReferencedProfileClass : public core::InstanceProvider {
 public:
  Orvex_SoftwareUpdateReferencedProfileClass();

 protected:
  void refresh() override;
};

#endif  // ORVEX_AGENT_ORVEX_SOFTWAREUPDATEREFERENCEDPROFILE_H_
