#include "inventory/Orvex_SoftwareIdentityClass.h"

#include <cstdint>
#include <string_view>
#include <utility>
#include <vector>

#include "inventory/Adapters.h"
#include "midapi/MidApi.h"
#include "platform/Texts.h"

namespace {

using inventory::Adapter;
using inventory::AdapterSoftware;
using inventory::FirmwareFilePtr;

constexpr utils::LogSource kLog{"Orvex_SoftwareIdentity"};
constexpr std::uint16_t kFirmware = 10;  // DMTF CIM_SoftwareIdentity.Classifications
constexpr const char* kPciDevice = "Orvex:PCIDevice";

void setSoftwareValues(Orvex_SoftwareIdentity& software, const std::string& instanceId,
                       const std::string& caption) {
  software.InstanceID.setValue(instanceId);
  core::markKeys(software);
  software.Name.setValue(software.getIdentity());
  software.Caption.setValue(caption);
  software.Description.setValue(caption);
  software.ElementName.setValue(caption);
  software.Classifications.setValue({kFirmware});
  software.ImageKind.setValue(software.getImageKind());
}

// A firmware image that can be installed.
class ImageFile final : public AdapterSoftware {
 public:
  explicit ImageFile(FirmwareFilePtr file) : m_file(std::move(file)) {
    setSoftwareValues(
        *this, "Orvex:FirmwareFile:" + m_file->path,
        "Firmware image " + platform::toShownText(platform::toPath(m_file->path).filename()));
    describe(m_file->description);
  }

  [[nodiscard]] std::string getIdentity() const override { return m_file->path; }
  [[nodiscard]] std::uint32_t getImageKind() const override { return kFirmwareImage; }

  [[nodiscard]] FirmwareFilePtr getFile() const override { return m_file; }

 private:
  void describe(const ma::FirmwareDescription& file);

  const FirmwareFilePtr m_file;
};

void ImageFile::describe(const ma::FirmwareDescription& file) {
  std::vector<std::string> types;
  for (const utils::FirmwareVersionInfo& image : file.images) {
    types.emplace_back(utils::firmwareTypeName(image.type));
  }
  VersionString.setValue(file.version);
  TargetTypes.setValue(types);
  IdentityInfoType.setValue(std::vector<std::string>(file.devices.size(), kPciDevice));
  IdentityInfoValue.setValue(file.devices);
}

// A component in the flash of an adapter. Its place there tells it from others of its type.
class InstalledComponent final : public AdapterSoftware {
 public:
  InstalledComponent(std::string adapter, std::size_t place,
                     const utils::FirmwareVersionInfo& firmware)
      : m_adapter(std::move(adapter)), m_identity(m_adapter + "/" + std::to_string(place)) {
    const std::string type(utils::firmwareTypeName(firmware.type));
    setSoftwareValues(*this, "Orvex:InstalledFirmware:" + m_identity,
                      "Installed " + type + " of adapter " + m_adapter);
    VersionString.setValue(firmware.version.toString());
    TargetTypes.setValue({type});
  }

  [[nodiscard]] std::string getIdentity() const override { return m_identity; }
  [[nodiscard]] std::uint32_t getImageKind() const override { return kInstalledComponent; }

  [[nodiscard]] std::string getAdapter() const override { return m_adapter; }
  [[nodiscard]] std::string_view getRelation() const override { return "installed"; }

 private:
  const std::string m_adapter;
  const std::string m_identity;
};

// Which version a driver's identity stands for.
struct VersionKind {
  std::string ma::FirmwareVersions::*version;
  const char* instance;  // what its InstanceID begins with
  const char* caption;
  std::string_view relation;
};
constexpr VersionKind kVersionKinds[] = {
    {&ma::FirmwareVersions::running, "Orvex:RunningFirmware:", "Running ", "running"},
    {&ma::FirmwareVersions::stored, "Orvex:StoredFirmware:", "Stored ", "stored"}};

// What a driver says of one part of its adapter's firmware: what works now, or what takes effect
// later.
class DriverFirmware final : public AdapterSoftware {
 public:
  DriverFirmware(std::string adapter, const ma::FirmwareVersions& versions, const VersionKind& kind)
      : m_adapter(std::move(adapter)), m_name(versions.name), m_relation(kind.relation) {
    setSoftwareValues(*this, kind.instance + getIdentity(),
                      kind.caption + m_name + " of adapter " + m_adapter);
    VersionString.setValue(versions.*kind.version);
  }

  [[nodiscard]] std::string getIdentity() const override { return m_adapter + "/" + m_name; }
  [[nodiscard]] std::uint32_t getImageKind() const override { return kInstalledComponent; }

  [[nodiscard]] std::string getAdapter() const override { return m_adapter; }
  [[nodiscard]] std::string_view getRelation() const override { return m_relation; }

 private:
  const std::string m_adapter;
  const std::string m_name;
  const std::string_view m_relation;
};

}  // namespace

Orvex_SoftwareIdentityClass::Orvex_SoftwareIdentityClass(inventory::FirmwareFiles& files,
                                                         ReadVersions readVersions)
    : InstanceProvider(Orvex_SoftwareIdentity::kClassName,
                       {kLog, "Orvex_SoftwareIdentityClass::getInstances", "getInstances",
                        "SoftwareIdentity::getInstances"}),
      m_files(files),
      m_readVersions(readVersions) {}

void Orvex_SoftwareIdentityClass::refresh() {
  instances().clear();
  for (const FirmwareFilePtr& file : m_files.find()) {
    instances().add(new ImageFile(file));
  }
  std::vector<utils::FirmwareVersionInfo> components;
  for (const Adapter& adapter : inventory::findAdapters()) {
    ma::getAdapterFirmwareVersion(adapter.firstPort, components);
    for (std::size_t place = 0; place < components.size(); ++place) {
      instances().add(new InstalledComponent(adapter.identity, place, components[place]));
    }
    addDriverFirmware(adapter);
  }
}

void Orvex_SoftwareIdentityClass::addDriverFirmware(const Adapter& adapter) {
  for (const ma::FirmwareVersions& versions : m_readVersions(adapter.firstPort)) {
    for (const VersionKind& kind : kVersionKinds) {
      if (!(versions.*kind.version).empty()) {
        instances().add(new DriverFirmware(adapter.identity, versions, kind));
      }
    }
  }
}
