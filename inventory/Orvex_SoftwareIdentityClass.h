// The provider of the software: one identity for each firmware file of the configured directories,
// then one for each component in the flash of each adapter.

#ifndef ORVEX_INVENTORY_ORVEX_SOFTWAREIDENTITYCLASS_H_
#define ORVEX_INVENTORY_ORVEX_SOFTWAREIDENTITYCLASS_H_

#include <string>
#include <vector>

#include "core/InstanceProvider.h"
#include "inventory/Adapters.h"
#include "inventory/FirmwareFiles.h"
#include "inventory/Orvex_SoftwareIdentity.h"

namespace inventory {

inline constexpr const char* kUnknownComparison = "unknown";

// What the provider's instances can tell beyond their properties.
class AdapterSoftware : public Orvex_SoftwareIdentity {
 public:
  // Returns what the software is to each adapter (see Orvex_ElementSoftwareIdentity); empty when it
  // has nothing to do with it. Reads a file once.
  [[nodiscard]] virtual std::vector<std::string> compareWith(
      const std::vector<Adapter>& adapters) const = 0;
};

}  // namespace inventory

class Orvex_SoftwareIdentityClass : public core::InstanceProvider {
 public:
  // `files` must live as long as the provider.
  explicit Orvex_SoftwareIdentityClass(inventory::FirmwareFiles& files);

 protected:
  void refresh() override;

 private:
  inventory::FirmwareFiles& m_files;
};

#endif  // ORVEX_INVENTORY_ORVEX_SOFTWAREIDENTITYCLASS_H_
