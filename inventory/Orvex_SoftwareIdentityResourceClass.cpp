#include "inventory/Orvex_SoftwareIdentityResourceClass.h"

#include <cstdint>
#include <string>
#include <utility>

#include "cim/EnabledState.h"
#include "inventory/Orvex_SoftwareIdentityResource.h"

namespace {

constexpr utils::LogSource kLog{"Orvex_SoftwareIdentityResource"};
constexpr std::uint16_t kUrl = 200;  // DMTF CIM_RemoteServiceAccessPoint.InfoFormat

class ImageFileResource final : public Orvex_SoftwareIdentityResource {
 public:
  explicit ImageFileResource(std::string path) : m_path(std::move(path)) {
    InstanceID.setValue("Orvex:FirmwareFileResource:" + m_path);
    core::markKeys(*this);
    Name.setValue(m_path);
    Caption.setValue("Firmware file " + m_path);
    Description.setValue(Caption.getValue());
    ElementName.setValue(Caption.getValue());
    AccessInfo.setValue("file://" + m_path);
    InfoFormat.setValue(kUrl);
    EnabledState.setValue(cim::kNotApplicable);
  }

  [[nodiscard]] std::string getFirmwareFileID() const override { return m_path; }

 private:
  const std::string m_path;
};

}  // namespace

Orvex_SoftwareIdentityResourceClass::Orvex_SoftwareIdentityResourceClass(
    inventory::FirmwareFiles& files)
    : InstanceProvider(Orvex_SoftwareIdentityResource::kClassName,
                       {kLog, "Orvex_SoftwareIdentityResourceClass::getInstances", "getInstances",
                        "SoftwareIdentityResource::getInstances"}),
      m_files(files) {}

void Orvex_SoftwareIdentityResourceClass::refresh() {
  instances().clear();
  for (const inventory::FirmwareFilePtr& file : m_files.find()) {
    instances().add(new ImageFileResource(file->path));
  }
}
