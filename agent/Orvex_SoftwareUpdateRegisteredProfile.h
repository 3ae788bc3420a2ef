// The registered profile that says: this machine's adapters can be updated.

#ifndef ORVEX_AGENT_ORVEX_SOFTWAREUPDATEREGISTEREDPROFILE_H_
#define ORVEX_AGENT_ORVEX_SOFTWAREUPDATEREGISTEREDPROFILE_H_

#include <string>

#include "cim/CIM_RegisteredProfile.h"
#include "core/InstanceProvider.h"

class Orvex_SoftwareUpdateRegisteredProfile : public CIM_RegisteredProfile {
 public:
  static constexpr const char* kClassName = "Orvex_RegisteredProfile";
  using Superclass = CIM_RegisteredProfile;
  static constexpr const char* kInstanceId = "Orvex:SoftwareUpdate_Profile";

  [[nodiscard]] std::string getClassName() const override { return kClassName; }

  // Fills the properties.
  void setPropertyValues();
};

class Orvex_SoftwareUpdateRegisteredProfileClass
    : public core::SingleInstanceProvider<Orvex_SoftwareUpdateRegisteredProfile> {
 public:
  Orvex_SoftwareUpdateRegisteredProfileClass();
};

#endif  // ORVEX_AGENT_ORVEX_SOFTWAREUPDATEREGISTEREDPROFILE_H_
