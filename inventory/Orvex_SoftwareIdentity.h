// A piece of software that is installed on an adapter or can be. For its use by other agents see
// Orvex_EthernetPort.

#ifndef ORVEX_INVENTORY_ORVEX_SOFTWAREIDENTITY_H_
#define ORVEX_INVENTORY_ORVEX_SOFTWAREIDENTITY_H_

#include <cstdint>
#include <string>

#include "cim/CIM_LogicalElement.h"

class Orvex_SoftwareIdentity : public CIM_LogicalElement {
 public:
  static constexpr const char* kClassName = "Orvex_SoftwareIdentity";
  // The kind of a firmware image that can be installed.
  static constexpr std::uint32_t kFirmwareImage = 4;

  ~Orvex_SoftwareIdentity() override = default;

  [[nodiscard]] std::string getClassName() const override { return kClassName; }

  // Returns what Orvex_SoftwareIdentityResource::getFirmwareFileID() of its file returns.
  [[nodiscard]] virtual std::string getIdentity() const = 0;
  [[nodiscard]] virtual std::uint32_t getImageKind() const = 0;

  core::CimPropertyString VersionString{"VersionString", this};
  // The names of the firmware image types that it holds (utils::kFirmwareTypeNames).
  core::CimPropertyString_arr TargetTypes{"TargetTypes", this};
};

#endif  // ORVEX_INVENTORY_ORVEX_SOFTWAREIDENTITY_H_
