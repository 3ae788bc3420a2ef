#include <gmock/gmock.h>
#include <string>
#include <vector>

#include "midapi/Kernel/PciFunctions.h"
#include "tests/midapi/Kernel/SysfsFixture.h"

namespace {

using ma::findPciFunctions;
using ma::LinkKind;
using ma::NetworkInterface;
using ma::PciFunction;
using ma::PciIds;
using ma::PortState;
using testing::ElementsAre;
using testing::IsEmpty;

class PciFunctions : public testing::Test {
 protected:
  std::vector<PciFunction> find() const { return findPciFunctions(m_sysfs.root()); }
  std::vector<std::string> ids() const {
    std::vector<std::string> ids;
    for (const PciFunction& function : find()) {
      ids.push_back(toString(function.id));
    }
    return ids;
  }

  test::SysfsFixture m_sysfs;
};

TEST_F(PciFunctions, TellsWhatAnAdapterIs) {
  m_sysfs.addFunction("0000:03:00.0");
  m_sysfs.bindDriver("0000:03:00.0", "e1000e");
  m_sysfs.addInterface("0000:03:00.0", "eth0", "02:54:4e:00:00:30");
  m_sysfs.setAttribute("0000:03:00.0", "rom", "");
  const std::vector<PciFunction> functions = find();
  ASSERT_EQ(functions.size(), 1U);
  EXPECT_EQ(functions[0].ids, (PciIds{0x8086, 0x10D3, 0x1AF4, 0x1100}));
  EXPECT_EQ(functions[0].driver, "e1000e");
  EXPECT_THAT(functions[0].interfaces, ElementsAre(NetworkInterface{"eth0", "02:54:4e:00:00:30"}));
  EXPECT_TRUE(functions[0].hasRom);
  EXPECT_FALSE(functions[0].hasVpd);
  EXPECT_TRUE(std::filesystem::exists(functions[0].folder / "rom"));
}

TEST_F(PciFunctions, OrdersPortsByAddress) {
  for (const char* pci : {"0001:00:00.0", "0000:0a:00.0", "0000:03:00.1", "0000:03:00.0"}) {
    m_sysfs.addFunction(pci);
  }
  EXPECT_THAT(ids(), ElementsAre("0000:03:00.0", "0000:03:00.1", "0000:0a:00.0", "0001:00:00.0"));
}

TEST_F(PciFunctions, FindsTheInterfacesOfVirtioOneLevelUp) {
  m_sysfs.addFunction("0000:00:04.0");
  m_sysfs.bindDriver("0000:00:04.0", "virtio-pci");
  m_sysfs.addInterface("0000:00:04.0", "ens4", "52:54:00:12:34:56", "virtio2");
  ASSERT_THAT(ids(), ElementsAre("0000:00:04.0"));
  EXPECT_THAT(find()[0].interfaces, ElementsAre(NetworkInterface{"ens4", "52:54:00:12:34:56"}));
  EXPECT_EQ(find()[0].driver, "");

  m_sysfs.bindDriver("0000:00:04.0/virtio2", "virtio_net");
  EXPECT_EQ(find()[0].driver, "virtio_net");
}

TEST_F(PciFunctions, TakesInterfacesOfOtherDevicesBelowAFunctionForNoneOfIts) {
  m_sysfs.addFunction("0000:03:00.0");
  m_sysfs.addInterface("0000:03:00.0", "sf0", "02:00:00:00:00:01", "mlx5_core.sf.4");
  EXPECT_THAT(find()[0].interfaces, IsEmpty());
}

TEST_F(PciFunctions, KnowsTwoInterfacesOfOneFunction) {
  m_sysfs.addFunction("0000:03:00.0");
  m_sysfs.addInterface("0000:03:00.0", "eth1", "02:00:00:00:00:01");
  m_sysfs.addInterface("0000:03:00.0", "eth0", "02:00:00:00:00:00");
  EXPECT_THAT(find()[0].interfaces, ElementsAre(NetworkInterface{"eth0", "02:00:00:00:00:00"},
                                                NetworkInterface{"eth1", "02:00:00:00:00:01"}));
}

TEST_F(PciFunctions, TellsWhatTheLinkOfAnInterfaceIs) {
  m_sysfs.addFunction("0000:03:00.0");
  EXPECT_EQ(find()[0].link, ma::PortLink{LinkKind::Ethernet});
  m_sysfs.addInterface("0000:03:00.0", "eth0", "02:54:4e:00:00:30");
  EXPECT_EQ(find()[0].link, ma::PortLink{});

  m_sysfs.setLink("eth0", "type", "1");
  m_sysfs.setLink("eth0", "mtu", "9000");
  m_sysfs.setLink("eth0", "addr_assign_type", "0");
  EXPECT_EQ(
      find()[0].link,
      (ma::PortLink{LinkKind::Ethernet, PortState::Unknown, "02:54:4e:00:00:30", {}, {}, 9000U}));
  m_sysfs.setLink("eth0", "addr_assign_type", "3");
  m_sysfs.setLink("eth0", "mtu", "9000 or so");
  EXPECT_EQ(find()[0].link, ma::PortLink{LinkKind::Ethernet});
}

TEST_F(PciFunctions, TellsWhatAnInterfaceIsFor) {
  m_sysfs.addFunction("0000:03:00.0");
  m_sysfs.setAttribute("0000:03:00.0", "class", "0x020700");
  EXPECT_EQ(find()[0].link.kind, LinkKind::InfiniBand);
  m_sysfs.setAttribute("0000:03:00.0", "class", "0x028000");
  EXPECT_EQ(find()[0].link.kind, LinkKind::Unknown);
  m_sysfs.addInterface("0000:03:00.0", "wlan0", "02:54:4e:00:00:30");
  m_sysfs.setLink("wlan0", "type", "1");
  m_sysfs.setLink("wlan0", "phy80211", "");
  EXPECT_EQ(find()[0].link.kind, LinkKind::Wireless);
  m_sysfs.setLink("wlan0", "type", "32");
  EXPECT_EQ(find()[0].link.kind, LinkKind::InfiniBand);
}

TEST_F(PciFunctions, TellsWhetherAnInterfaceIsEnabledAndHasALink) {
  m_sysfs.addFunction("0000:03:00.0");
  m_sysfs.addInterface("0000:03:00.0", "eth0", "02:54:4e:00:00:30");
  const auto stateWith = [this](const char* flags, const char* operstate) {
    m_sysfs.setLink("eth0", "flags", flags);
    m_sysfs.setLink("eth0", "operstate", operstate);
    return find()[0].link.state;
  };
  EXPECT_EQ(stateWith("0x1003", "up"), PortState::Enabled);
  EXPECT_EQ(stateWith("0x1003", "unknown"), PortState::Enabled);
  EXPECT_EQ(stateWith("0x1003", "down"), PortState::Offline);
  EXPECT_EQ(stateWith("0x1003", "lowerlayerdown"), PortState::Offline);
  EXPECT_EQ(stateWith("0x1003", "testing"), PortState::InTest);
  EXPECT_EQ(stateWith("0x1002", "down"), PortState::Disabled);
  EXPECT_EQ(stateWith("none", "up"), PortState::Unknown);
}

TEST_F(PciFunctions, LeavesOutWhatIsNoAdapterOfItsOwn) {
  m_sysfs.addFunction("0000:03:00.0");
  m_sysfs.addFunction("0000:00:1f.2");
  m_sysfs.setAttribute("0000:00:1f.2", "class", "0x010601");
  m_sysfs.addFunction("0000:03:10.0");
  std::filesystem::create_directory_symlink(m_sysfs.folder("0000:03:00.0"),
                                            m_sysfs.folder("0000:03:10.0") / "physfn");
  m_sysfs.addFunction("10000:01:00.0");
  m_sysfs.addVirtualInterface("br0");
  EXPECT_THAT(ids(), ElementsAre("0000:03:00.0"));
  EXPECT_THAT(find()[0].interfaces, IsEmpty());
  EXPECT_EQ(find()[0].driver, "");
}

TEST_F(PciFunctions, LeavesOutWhatIsUnpluggedMeanwhile) {
  m_sysfs.addFunction("0000:03:00.0");
  m_sysfs.addFunction("0000:04:00.0");
  std::filesystem::remove(m_sysfs.folder("0000:04:00.0") / "subsystem_device");
  m_sysfs.addFunction("0000:05:00.0");
  m_sysfs.setAttribute("0000:05:00.0", "vendor", "0x80861");
  m_sysfs.addFunction("0000:06:00.0");
  std::filesystem::remove_all(m_sysfs.folder("0000:06:00.0"));
  EXPECT_THAT(ids(), ElementsAre("0000:03:00.0"));
}

TEST_F(PciFunctions, FindsNoneWhereThereIsNoPci) {
  EXPECT_THAT(findPciFunctions(m_sysfs.root() / "none"), IsEmpty());
}

TEST_F(PciFunctions, AreThoseOfOneAdapterWhereOneIsMeant) {
  for (const char* pci : {"0000:03:00.0", "0000:03:00.1", "0000:03:01.0"}) {
    m_sysfs.addFunction(pci);
  }
  m_sysfs.addInterface("0000:03:00.1", "eth1", "02:54:4e:00:00:31");
  const std::vector<PciFunction> functions = findPciFunctions(m_sysfs.root(), {0, 3, 0});
  ASSERT_EQ(functions.size(), 2U);
  EXPECT_EQ(toString(functions[0].id), "0000:03:00.0");
  EXPECT_EQ(functions[1].ids, find()[1].ids);
  EXPECT_THAT(functions[1].interfaces, ElementsAre(NetworkInterface{"eth1", "02:54:4e:00:00:31"}));
  EXPECT_THAT(findPciFunctions(m_sysfs.root(), {0, 4, 0}), IsEmpty());
}

TEST_F(PciFunctions, AreFoundWithoutALookAtOtherAdapters) {
  m_sysfs.addFunction("0000:03:00.0");
  m_sysfs.addInterface("0000:03:00.0", "eth0", "02:54:4e:00:00:30");
  std::filesystem::remove_all(m_sysfs.root() / "class");
  EXPECT_THAT(findPciFunctions(m_sysfs.root(), {0, 3, 0})[0].interfaces,
              ElementsAre(NetworkInterface{"eth0", "02:54:4e:00:00:30"}));
}

TEST_F(PciFunctions, KnowTheirAdapter) {
  m_sysfs.addFunction("0000:03:00.1");
  m_sysfs.addFunction("0000:04:00.0");
  m_sysfs.setAttribute("0000:04:00.0", "class", "0x010601");
  EXPECT_TRUE(ma::hasPciFunctions(m_sysfs.root(), {0, 3, 0}));
  EXPECT_FALSE(ma::hasPciFunctions(m_sysfs.root(), {0, 4, 0}));
  EXPECT_FALSE(ma::hasPciFunctions(m_sysfs.root(), {0, 5, 0}));
}

}  // namespace
