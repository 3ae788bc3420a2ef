// A piece of software that is installed on an adapter or can be. For its use by other agents see
// Orvex_EthernetPort.
//
//   VersionString  the version of its images, "major.minor"; where their types differ in it, one
//   for
//                  each of TargetTypes, joined by '+'. As the driver writes it where that tells it
//   TargetTypes    the names of the firmware image types that it holds (utils::kFirmwareTypeNames)
//   IdentityInfoType, IdentityInfoValue: what a value is, and the value of the same index
//     "Orvex:PCIDevice"  a PCI vendor and device that it is for, or on: "1af4:1041"; with those of
//                        the subsystem where they are known, "8086:1592 sub 8086:0002". A package
//                        with them is for that subsystem alone
//     "Orvex:Digest"     FNV-1a of its bytes, sixteen hexadecimal digits: tells pieces of software
//     of
//                        one version apart

#ifndef ORVEX_INVENTORY_ORVEX_SOFTWAREIDENTITY_H_
#define ORVEX_INVENTORY_ORVEX_SOFTWAREIDENTITY_H_

#include <cstdint>
#include <string>

#include "cim/CIM_SoftwareIdentity.h"

class Orvex_SoftwareIdentity : public CIM_SoftwareIdentity {
 public:
  static constexpr const char* kClassName = "Orvex_SoftwareIdentity";
  using Superclass = CIM_SoftwareIdentity;

  // The kinds: what an adapter holds (a component in its flash, or what its driver says is running
  // or stored), and a firmware image that can be installed.
  static constexpr std::uint32_t kInstalledComponent = 2;
  static constexpr std::uint32_t kFirmwareImage = 4;

  ~Orvex_SoftwareIdentity() override = default;

  [[nodiscard]] std::string getClassName() const override { return kClassName; }

  // Returns what Orvex_SoftwareIdentityResource::getFirmwareFileID() of its file returns.
  [[nodiscard]] virtual std::string getIdentity() const = 0;
  [[nodiscard]] virtual std::uint32_t getImageKind() const = 0;

  // What getImageKind() returns.
  core::CimPropertyUint32 ImageKind{"ImageKind", this};
};

#endif  // ORVEX_INVENTORY_ORVEX_SOFTWAREIDENTITY_H_
