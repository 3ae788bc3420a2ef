// A piece of software that is installed on an adapter or can be. For its use by other agents see
// Orvex_EthernetPort.

#ifndef ORVEX_INVENTORY_ORVEX_SOFTWAREIDENTITY_H_
#define ORVEX_INVENTORY_ORVEX_SOFTWAREIDENTITY_H_

#include <cstdint>
#include <string>

#include "cim/CIM_LogicalElement.h"
#include "core/CimKeys.h"

class Orvex_SoftwareIdentity : public CIM_LogicalElement {
 public:
  static constexpr const char* kClassName = "Orvex_SoftwareIdentity";
  using Superclass = CIM_LogicalElement;

  template <class Self>
  static auto getKeys(Self& self) {
    return core::keys(self.InstanceID);
  }
  // The kinds: what an adapter holds (a component in its flash, or what its driver says is running
  // or stored), and a firmware image that can be installed.
  static constexpr std::uint32_t kInstalledComponent = 2;
  static constexpr std::uint32_t kFirmwareImage = 4;

  ~Orvex_SoftwareIdentity() override = default;

  [[nodiscard]] std::string getClassName() const override { return kClassName; }

  // Returns what Orvex_SoftwareIdentityResource::getFirmwareFileID() of its file returns.
  [[nodiscard]] virtual std::string getIdentity() const = 0;
  [[nodiscard]] virtual std::uint32_t getImageKind() const = 0;

  // The version of its images, "major.minor"; where their types differ in it, one for each of
  // TargetTypes, joined by '+'. As the driver writes it where that tells it.
  core::CimPropertyString VersionString{"VersionString", this};
  // The names of the firmware image types that it holds (utils::kFirmwareTypeNames).
  core::CimPropertyString_arr TargetTypes{"TargetTypes", this};
  core::CimPropertyUint16_arr Classifications{"Classifications", this};
  // What the values of the same index in IdentityInfoValue are. "Orvex:PCIDevice": a PCI vendor and
  // device that its images are for, "1af4:1041"; with those of the subsystem where a package says
  // that it is for that alone, "8086:1592 sub 8086:0002".
  core::CimPropertyString_arr IdentityInfoType{"IdentityInfoType", this};
  core::CimPropertyString_arr IdentityInfoValue{"IdentityInfoValue", this};
  // What getImageKind() returns.
  core::CimPropertyUint32 ImageKind{"ImageKind", this};
};

#endif  // ORVEX_INVENTORY_ORVEX_SOFTWAREIDENTITY_H_
