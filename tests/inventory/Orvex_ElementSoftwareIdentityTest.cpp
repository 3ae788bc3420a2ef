#include <chrono>
#include <gmock/gmock.h>
#include <string>
#include <tuple>
#include <vector>

#include "core/CimBroker.h"
#include "inventory/Orvex_ElementSoftwareIdentity.h"
#include "tests/inventory/InventoryFixture.h"

namespace {

using test::kAdapter;
using test::kOtherAdapter;
using test::RomBuilder;
using test::RomImage;
using testing::ElementsAre;
using testing::IsEmpty;

// The keys of the software and of the controller, and what the one is to the other.
using Relation = std::tuple<std::string, std::string, std::string>;

class ElementSoftwareIdentity : public test::InventoryFixture {
 protected:
  std::vector<Relation> relations() {
    std::vector<Relation> relations;
    for (auto* one : enumerate<Orvex_ElementSoftwareIdentity>(m_provider)) {
      const core::CimPath path(one->getPath());
      EXPECT_EQ(path.size(), 2u);
      relations.emplace_back(core::CimPath(path.at("Antecedent")).at("InstanceID"),
                             core::CimPath(path.at("Dependent")).at("DeviceID"),
                             one->Comparison.getValue());
    }
    return relations;
  }

  core::CimBroker& m_broker = test::brokerWithInventory();
  Orvex_ElementSoftwareIdentityClass m_provider;
};

TEST_F(ElementSoftwareIdentity, RelatesSoftwareToTheControllersThatItIsFor) {
  EXPECT_EQ(m_provider.getName(), "Orvex_ElementSoftwareIdentity");
  m_adapters.makeAdapter(kAdapter, RomBuilder().add(RomImage::legacy().version(2, 0)).build());
  m_adapters.makeAdapter(kOtherAdapter, RomBuilder().add(RomImage::legacy().version(4, 0)).build());
  const std::string image =
      makeFile("first/a.rom", RomBuilder().add(RomImage::legacy().version(3, 0)).build());
  makeFile("first/foreign.rom", RomBuilder().add(RomImage::legacy().device(1, 2)).build());

  EXPECT_THAT(
      relations(),
      ElementsAre(Relation("Orvex:FirmwareFile:" + image, kAdapter, "newer"),
                  Relation("Orvex:FirmwareFile:" + image, kOtherAdapter, "older"),
                  Relation("Orvex:InstalledFirmware:0000:03:00/0", kAdapter, "installed"),
                  Relation("Orvex:InstalledFirmware:0000:04:00/0", kOtherAdapter, "installed")));
  EXPECT_THAT(m_log.messages("Orvex_ElementSoftwareIdentityClass::getInstances"),
              ElementsAre("getInstances", "return 4"));
}

TEST_F(ElementSoftwareIdentity, RefersToInstancesThatTheBrokerServes) {
  m_adapters.makeAdapter(kAdapter, firmware(2));
  const auto associations = enumerate<Orvex_ElementSoftwareIdentity>(m_provider);
  ASSERT_EQ(associations.size(), 2u);
  const std::string software = associations[1]->Antecedent.toString();
  const std::string controller = associations[1]->Dependent.toString();

  EXPECT_NE(m_broker.getInstanceByPath(core::CimPath(software)), nullptr);
  EXPECT_NE(m_broker.getInstanceByPath(core::CimPath(controller)), nullptr);
}

// A clock whose time passes with every look at it.
class HurriedClock final : public platform::Clock {
 public:
  Duration step{0};

  [[nodiscard]] TimePoint now() const override { return m_now += step; }
  void sleepFor(Duration duration) override { m_now += duration; }

 private:
  mutable TimePoint m_now;
};

TEST_F(ElementSoftwareIdentity, OfFilesIsUnknownWhenComparingTakesTooLong) {
  m_adapters.makeAdapter(kAdapter, firmware(2));
  makeFile("first/a.rom", firmware(3));
  makeFile("first/b.rom", firmware(3));
  HurriedClock clock;
  Orvex_ElementSoftwareIdentityClass provider(clock);
  const auto comparisons = [&] {
    m_log.clear();
    std::vector<std::string> texts;
    for (const auto* one : enumerate<Orvex_ElementSoftwareIdentity>(provider)) {
      texts.push_back(one->Comparison.getValue());
    }
    return texts;
  };
  clock.step = std::chrono::seconds(6);

  EXPECT_THAT(comparisons(), ElementsAre("newer", "unknown", "installed", "installed"));
  EXPECT_THAT(m_log.records(test::LogSink::EventLog),
              ElementsAre(test::IsRecord(
                  test::LogLevel::Error, "Orvex_ElementSoftwareIdentityClass::getInstances",
                  testing::StartsWith("1 firmware files were not compared with the adapters"))));
  EXPECT_THAT(comparisons(), ElementsAre("newer", "unknown", "installed", "installed"));
  EXPECT_THAT(m_log.records(test::LogSink::EventLog), IsEmpty());
  clock.step = std::chrono::seconds(0);
  EXPECT_THAT(comparisons(), ElementsAre("newer", "newer", "installed", "installed"));
}

TEST_F(ElementSoftwareIdentity, IsRebuiltAtEachEnumeration) {
  m_adapters.makeAdapter(kAdapter, firmware(2));
  EXPECT_EQ(relations().size(), 2u);
  EXPECT_EQ(relations().size(), 2u);
  std::filesystem::remove_all(m_adapters.folder(kAdapter));
  EXPECT_THAT(relations(), IsEmpty());
}

}  // namespace
