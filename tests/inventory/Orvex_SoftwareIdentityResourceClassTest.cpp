#include <gmock/gmock.h>

#include "inventory/Orvex_SoftwareIdentityResource.h"
#include "inventory/Orvex_SoftwareIdentityResourceClass.h"
#include "tests/inventory/InventoryFixture.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class SoftwareIdentityResourceClass : public test::InventoryFixture {
 protected:
  std::vector<Orvex_SoftwareIdentityResource*> resources() {
    return enumerate<Orvex_SoftwareIdentityResource>(m_provider);
  }

  inventory::FirmwareFiles m_files;
  Orvex_SoftwareIdentityResourceClass m_provider{m_files};
};

TEST_F(SoftwareIdentityResourceClass, ServesTheFilesAndNothingThatIsInstalled) {
  EXPECT_EQ(m_provider.getName(), "Orvex_SoftwareIdentityResource");
  m_adapters.makeAdapter(test::kAdapter, firmware(2));
  const std::string second = makeFile("second/a.rom", firmware(3));
  const std::string first = makeFile("first/b.rom", firmware(3));

  std::vector<std::string> files;
  for (const Orvex_SoftwareIdentityResource* resource : resources()) {
    files.push_back(resource->getFirmwareFileID());
  }
  EXPECT_THAT(files, ElementsAre(first, second));
  EXPECT_THAT(m_log.messages("Orvex_SoftwareIdentityResourceClass::getInstances"),
              ElementsAre("getInstances", "return 2"));
}

TEST_F(SoftwareIdentityResourceClass, DescribesTheResource) {
  const std::string path = makeFile("first/with blank.rom", firmware(3));
  Orvex_SoftwareIdentityResource& resource = *resources().at(0);

  EXPECT_EQ(
      resource.getPath(),
      "Orvex_SoftwareIdentityResource.InstanceID=\"Orvex:FirmwareFileResource:" + path + "\"");
  EXPECT_EQ(resource.Name.getValue(), path);
  EXPECT_EQ(resource.Caption.getValue(), "Firmware file " + path);
  EXPECT_EQ(resource.AccessInfo.getValue(), "file://" + path);
  EXPECT_EQ(resource.InfoFormat.getValue(), 200);
  EXPECT_EQ(resource.EnabledState.getValue(), 5);
}

TEST_F(SoftwareIdentityResourceClass, IsRebuiltAtEachEnumeration) {
  const std::string path = makeFile("first/a.rom", firmware(3));
  EXPECT_EQ(resources().size(), 1u);
  std::filesystem::remove(path);
  EXPECT_THAT(resources(), IsEmpty());
}

}  // namespace
