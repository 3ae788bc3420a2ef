// The provider of the software: one identity for each firmware file of the configured directories,
// then for each adapter one for each component in its flash, and one for each version that its
// driver says is running or stored.

#ifndef ORVEX_INVENTORY_ORVEX_SOFTWAREIDENTITYCLASS_H_
#define ORVEX_INVENTORY_ORVEX_SOFTWAREIDENTITYCLASS_H_

#include <string>
#include <string_view>
#include <vector>

#include "core/InstanceProvider.h"
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
  // As ma::outlineAdapters.
  using OutlineAdapters = std::vector<ma::AdapterListing> (*)(ma::OutlineDepth depth);

  // `files` must live as long as the provider.
  explicit Orvex_SoftwareIdentityClass(inventory::FirmwareFiles& files,
                                       OutlineAdapters outlineAdapters = ma::outlineAdapters);

 protected:
  void refresh() override;

 private:
  void addComponents(const ma::AdapterListing& adapter);
  void addDriverFirmware(const ma::AdapterListing& adapter);

  inventory::FirmwareFiles& m_files;
  const OutlineAdapters m_outlineAdapters;
};

#endif  // ORVEX_INVENTORY_ORVEX_SOFTWAREIDENTITYCLASS_H_
