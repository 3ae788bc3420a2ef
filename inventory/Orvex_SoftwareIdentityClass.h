// The provider of the software: one identity for each firmware file of the configured directories,
// then for each adapter one for each component in its flash, and one for each version that its
// driver says is running or stored.

#ifndef ORVEX_INVENTORY_ORVEX_SOFTWAREIDENTITYCLASS_H_
#define ORVEX_INVENTORY_ORVEX_SOFTWAREIDENTITYCLASS_H_

#include <string>
#include <string_view>
#include <vector>

#include "core/InstanceProvider.h"
#include "inventory/Adapters.h"
#include "inventory/FirmwareFiles.h"
#include "inventory/Orvex_SoftwareIdentity.h"
#include "midapi/MidApi.h"

namespace inventory {

// What the provider's instances can tell beyond their properties.
class AdapterSoftware : public Orvex_SoftwareIdentity {
 public:
  // Returns the file of an image, null for a component in a flash.
  [[nodiscard]] virtual FirmwareFilePtr getFile() const { return nullptr; }
  // Returns the identity of the adapter that holds it, empty for an image.
  [[nodiscard]] virtual std::string getAdapter() const { return {}; }
  // Returns what it is to that adapter: "installed", "running" or "stored"; empty for an image.
  [[nodiscard]] virtual std::string_view getRelation() const { return {}; }
};

}  // namespace inventory

class Orvex_SoftwareIdentityClass : public core::InstanceProvider {
 public:
  // Returns what an adapter's driver says, by one of its ports.
  using ReadVersions = std::vector<ma::FirmwareVersions> (*)(const std::string& port);

  // `files` must live as long as the provider.
  explicit Orvex_SoftwareIdentityClass(inventory::FirmwareFiles& files,
                                       ReadVersions readVersions = ma::getFirmwareVersions);

 protected:
  void refresh() override;

 private:
  void addDriverFirmware(const inventory::Adapter& adapter);

  inventory::FirmwareFiles& m_files;
  const ReadVersions m_readVersions;
};

#endif  // ORVEX_INVENTORY_ORVEX_SOFTWAREIDENTITYCLASS_H_
