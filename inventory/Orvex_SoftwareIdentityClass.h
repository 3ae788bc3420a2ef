// The provider of the software: one identity for each firmware file of the configured directories,
// then one for each component in the flash of each adapter.

#ifndef ORVEX_INVENTORY_ORVEX_SOFTWAREIDENTITYCLASS_H_
#define ORVEX_INVENTORY_ORVEX_SOFTWAREIDENTITYCLASS_H_

#include <string>

#include "core/InstanceProvider.h"
#include "inventory/FirmwareFiles.h"
#include "inventory/Orvex_SoftwareIdentity.h"

namespace inventory {

// What the provider's instances can tell beyond their properties.
class AdapterSoftware : public Orvex_SoftwareIdentity {
 public:
  // Returns the file of an image, null for a component in a flash.
  [[nodiscard]] virtual FirmwareFilePtr getFile() const { return nullptr; }
  // Returns the identity of the adapter that holds a component, empty for an image.
  [[nodiscard]] virtual std::string getAdapter() const { return {}; }
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
