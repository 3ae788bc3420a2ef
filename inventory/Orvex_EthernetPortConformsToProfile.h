// A port conforms to the Ethernet port profile. The ports are the central instances of the profile:
// where a client goes on from there.

#ifndef ORVEX_INVENTORY_ORVEX_ETHERNETPORTCONFORMSTOPROFILE_H_
#define ORVEX_INVENTORY_ORVEX_ETHERNETPORTCONFORMSTOPROFILE_H_

#include <string>

#include "cim/CIM_ElementConformsToProfile.h"
#include "core/InstanceProvider.h"

class Orvex_EthernetPortConformsToProfile : public CIM_ElementConformsToProfile {
 public:
  static constexpr const char* kClassName = "Orvex_EthernetPortConformsToProfile";
  using Superclass = CIM_ElementConformsToProfile;

  Orvex_EthernetPortConformsToProfile(core::CimInstance* profile, core::CimInstance* port);

  [[nodiscard]] std::string getClassName() const override { return kClassName; }
};

// Rebuilds the associations at every enumeration.
class Orvex_EthernetPortConformsToProfileClass : public core::InstanceProvider {
 public:
  Orvex_EthernetPortConformsToProfileClass();

 protected:
  void refresh() override;
};

#endif  // ORVEX_INVENTORY_ORVEX_ETHERNETPORTCONFORMSTOPROFILE_H_
