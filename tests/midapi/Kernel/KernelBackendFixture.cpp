#include "tests/midapi/Kernel/KernelBackendFixture.h"

#include "tests/support/PldmBuilder.h"

namespace test {

RomImage kernelRomImage() {
  return RomImage::efi().device(0x8086, 0x10D3);
}

Bytes kernelPackage(const std::string& undi, const std::string& mgmt) {
  return PldmBuilder()
      .add(PldmDevice(0x8086, 0x10D3).takes({0, 1}))
      .add(PldmImage(RomBuilder().add(kernelRomImage()).build()).identifier(5).version({undi}))
      .add(PldmImage(Bytes(976, 0x11)).identifier(6).version({mgmt}))
      .build()
      .bytes;
}

KernelBackendFixture::KernelBackendFixture() {
  std::filesystem::create_directories(m_firmware);
  m_settings.firmwareFolder = m_firmware.string();
  addFunction(kKernelFunction, "testnic");
  store("1.0.0", "7.1.0");
  m_drivers.onDevlinkFlash = [this](const std::string&, const std::string&, const auto&) {
    store("1.1.0", "7.2.0");
    return ma::NetlinkAck{};
  };
}

void KernelBackendFixture::addFunction(const std::string& pci, const std::string& driver) {
  m_sysfs.addFunction(pci);
  m_sysfs.bindDriver(pci, driver);
  m_sysfs.addInterface(pci, "eth" + pci.substr(5, 2) + pci.back(), "02:54:4e:00:00:30");
  m_sysfs.setAttribute(pci, "rom", "");
  m_drivers.answers[pci].rom = {0, RomBuilder().add(kernelRomImage()).build()};
}

void KernelBackendFixture::store(const std::string& undi, const std::string& mgmt,
                                 const std::string& pci) {
  m_drivers.answers[pci].devlink = ma::DevlinkInfo{"testnic",
                                                   "",
                                                   "",
                                                   {},
                                                   {{"fw.undi", "1.0.0"}, {"fw.mgmt", "7.1.0"}},
                                                   {{"fw.undi", undi}, {"fw.mgmt", mgmt}}};
}

void KernelBackendFixture::write(const Bytes& image, const ma::PortId& port) {
  m_progress.start();
  m_backend.writeFlash(port, image, m_progress);
}

std::string KernelBackendFixture::failWriting() {
  try {
    write();
  } catch (const ma::FlashFault& fault) {
    return fault.what();
  }
  return {};
}

ma::AdapterListing KernelBackendFixture::listing() {
  const ma::AdapterList list = m_backend.list();
  EXPECT_EQ(list.adapters.size(), 1U);
  return list.adapters.at(0);
}

std::vector<std::string> KernelBackendFixture::staged() const {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(m_firmware)) {
    names.push_back(entry.path().filename().string());
  }
  return names;
}

bool KernelBackendFixture::hasEntry(const std::string& name) const {
  return std::filesystem::exists(m_places.journal / name);
}

}  // namespace test
