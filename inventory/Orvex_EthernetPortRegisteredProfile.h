// The registered profile that says: this machine's Ethernet ports can be managed.

#ifndef ORVEX_INVENTORY_ORVEX_ETHERNETPORTREGISTEREDPROFILE_H_
#define ORVEX_INVENTORY_ORVEX_ETHERNETPORTREGISTEREDPROFILE_H_

#include <string>

#include "cim/CIM_RegisteredProfile.h"
#include "core/InstanceProvider.h"

class Orvex_EthernetPortRegisteredProfile : public CIM_RegisteredProfile {
 public:
  static constexpr const char* kClassName = "Orvex_RegisteredProfile";
  using Superclass = CIM_RegisteredProfile;

  [[nodiscard]] std::string getClassName() const override { return kClassName; }
  void setPropertyValues();
};

class Orvex_EthernetPortRegisteredProfileClass
    : public core::SingleInstanceProvider<Orvex_EthernetPortRegisteredProfile> {
 public:
  Orvex_EthernetPortRegisteredProfileClass();
};

#endif  // ORVEX_INVENTORY_ORVEX_ETHERNETPORTREGISTEREDPROFILE_H_
