#include <chrono>
#include <gmock/gmock.h>
#include <string>
#include <tuple>
#include <vector>

#include "core/CimBroker.h"
#include "inventory/Orvex_ElementSoftwareIdentity.h"
#include "tests/inventory/FirmwareComparisonsFixture.h"

namespace {

using test::kAdapter;
using test::kOtherAdapter;
using test::RomBuilder;
using test::RomImage;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

// The keys of the software and of the controller, and what the one is to the other.
using Relation = std::tuple<std::string, std::string, std::string>;
using Texts = std::vector<std::string>;

class ElementSoftwareIdentity : public test::FirmwareComparisonsFixture {
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

  // Returns what all are to each other, and leaves the records of that alone.
  Texts comparisons() {
    m_log.clear();
    Texts texts;
    for (const auto* one : enumerate<Orvex_ElementSoftwareIdentity>(m_provider)) {
      texts.push_back(one->Comparison.getValue());
    }
    return texts;
  }

  core::CimBroker& m_broker = test::brokerWithInventory();
  Orvex_ElementSoftwareIdentityClass m_provider{m_comparisons};
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

TEST_F(ElementSoftwareIdentity, SaysInAWordWhatAFileIsToAnAdapter) {
  m_adapters.makeAdapter(kAdapter, firmware(2));
  makeFile("first/1-older", firmware(1));
  makeFile("first/2-same", firmware(2));
  makeFile("first/3-newer", firmware(3));
  makeFile("first/4-types", RomBuilder().add(RomImage::legacy().version(3, 0)).build());
  makeFile("first/5-content", RomBuilder()
                                  .add(RomImage::legacy().version(2, 0).seed(77))
                                  .add(RomImage::efi().version(2, 0))
                                  .build());
  makeFile("first/6-foreign", RomBuilder().add(RomImage::legacy().device(1, 2)).build());
  EXPECT_THAT(comparisons(), ElementsAre("older", "same", "newer", "other types", "same version",
                                         "installed", "installed"));
  m_adapters.set(kAdapter, "/updatable", "false");
  EXPECT_THAT(comparisons(), Contains("not updatable").Times(5));
}

TEST_F(ElementSoftwareIdentity, SaysTheSameInTheNumbersOfTheStandard) {
  m_adapters.makeAdapter(kAdapter, firmware(2));
  makeFile("first/1-older", firmware(1));
  const auto statuses = [this] {
    std::vector<std::pair<std::string, std::vector<std::uint16_t>>> all;
    for (const auto* one : enumerate<Orvex_ElementSoftwareIdentity>(m_provider)) {
      all.emplace_back(
          one->Comparison.getValue() + " " + std::to_string(one->UpgradeCondition.getValue()),
          one->ElementSoftwareStatus.getValue());
    }
    return all;
  };
  EXPECT_THAT(statuses(),
              ElementsAre(Pair("older 3", ElementsAre(8)), Pair("installed 3", ElementsAre(6)),
                          Pair("installed 3", ElementsAre(6))));
  m_adapters.set(kAdapter, "/updatable", "false");
  EXPECT_THAT(statuses(),
              ElementsAre(Pair("not updatable 5", IsEmpty()), Pair("installed 5", ElementsAre(6)),
                          Pair("installed 5", ElementsAre(6))));
}

TEST_F(ElementSoftwareIdentity, TellsWhatRunsFromWhatTakesEffectLater) {
  const auto statusOf = [](const char* comparison) {
    return Orvex_ElementSoftwareIdentity(nullptr, nullptr, comparison)
        .ElementSoftwareStatus.getValue();
  };
  EXPECT_THAT(statusOf("running"), ElementsAre(2));
  EXPECT_THAT(statusOf("stored"), ElementsAre(3));
  EXPECT_THAT(statusOf("unknown"), IsEmpty());
  EXPECT_TRUE(
      Orvex_ElementSoftwareIdentity(nullptr, nullptr, "unknown").ElementSoftwareStatus.isNull());
}

TEST_F(ElementSoftwareIdentity, OfFilesIsUnknownWhenComparingTakesTooLong) {
  m_adapters.makeAdapter(kAdapter, firmware(2));
  makeFile("first/a.rom", firmware(3));
  EXPECT_THAT(comparisons(), ElementsAre("newer", "installed", "installed"));
  m_reading.hold(makeFile("first/b.rom", firmware(3)));
  m_comparisons.setPatience(std::chrono::milliseconds(1));

  EXPECT_THAT(comparisons(), ElementsAre("newer", "unknown", "installed", "installed"));
  EXPECT_THAT(m_log.records(test::LogSink::EventLog),
              ElementsAre(test::IsRecord(
                  test::LogLevel::Error, "Orvex_ElementSoftwareIdentityClass::getInstances",
                  "1 firmware files were not compared with the adapters, since that took longer "
                  "than 10 s; keep fewer or smaller ones in the directories of FWFilePath")));
  EXPECT_THAT(comparisons(), ElementsAre("newer", "unknown", "installed", "installed"));
  EXPECT_THAT(m_log.records(test::LogSink::EventLog), IsEmpty());
  m_reading.release();
  EXPECT_TRUE(test::waitUntil([this] {
    return comparisons() == Texts{"newer", "newer", "installed", "installed"};
  }));
}

TEST_F(ElementSoftwareIdentity, IsRebuiltAtEachEnumeration) {
  m_adapters.makeAdapter(kAdapter, firmware(2));
  EXPECT_EQ(relations().size(), 2u);
  EXPECT_EQ(relations().size(), 2u);
  std::filesystem::remove_all(m_adapters.folder(kAdapter));
  EXPECT_THAT(relations(), IsEmpty());
}

}  // namespace
