// The provider of the resources: one for each firmware file of the configured directories.

#ifndef ORVEX_INVENTORY_ORVEX_SOFTWAREIDENTITYRESOURCECLASS_H_
#define ORVEX_INVENTORY_ORVEX_SOFTWAREIDENTITYRESOURCECLASS_H_

#include "core/InstanceProvider.h"
#include "inventory/FirmwareFiles.h"

class Orvex_SoftwareIdentityResourceClass : public core::InstanceProvider {
 public:
  // `files` must live as long as the provider.
  explicit Orvex_SoftwareIdentityResourceClass(inventory::FirmwareFiles& files);

 protected:
  void refresh() override;

 private:
  inventory::FirmwareFiles& m_files;
};

#endif  // ORVEX_INVENTORY_ORVEX_SOFTWAREIDENTITYRESOURCECLASS_H_
