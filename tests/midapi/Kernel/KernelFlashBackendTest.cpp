#include <algorithm>
#include <cerrno>
#include <gmock/gmock.h>
#include <string>
#include <vector>

#include "tests/midapi/Kernel/KernelBackendFixture.h"
#include "tests/support/Throws.h"

namespace {

using ma::Activation;
using ma::AdapterList;
using ma::AdapterListing;
using ma::FirmwareVersions;
using ma::FlashFault;
using ma::ImageComparison;
using ma::NetlinkAck;
using ma::PortId;
using ma::Preparation;
using ma::PrepareStatus;
using test::Bytes;
using test::kernelPackage;
using test::kKernelAdapter;
using test::kKernelFunction;
using test::kKernelPort;
using test::kOtherFunction;
using test::RomBuilder;
using test::ThrowsExactly;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;
using utils::FirmwareType;

class KernelFlashBackend : public test::KernelBackendFixture {
 protected:
  // The driver answers when somebody has waited for it.
  void keepSilentForAWhile() {
    m_clock.afterEachSleep([this, answer = m_drivers.answers[kKernelFunction]](int) {
      m_drivers.answers[kKernelFunction] = answer;
    });
    m_drivers.answers[kKernelFunction] = {};
    m_drivers.answers[kKernelFunction].isAway = true;
  }
  Preparation prepare(const Bytes& file) {
    Bytes buffer(file.size());
    return m_backend.prepare(kKernelPort, file, buffer, {});
  }
};

TEST_F(KernelFlashBackend, ListsWhatIsKnownOfAnAdapter) {
  const AdapterListing adapter = listing();
  EXPECT_EQ(adapter.kind, ma::AdapterKind::Kernel);
  EXPECT_EQ(adapter.pci, "0000:03:00");
  EXPECT_EQ(adapter.driver, "testnic");
  EXPECT_TRUE(adapter.isUpdatable);
  EXPECT_EQ(adapter.whyNotUpdatable, "");
  EXPECT_EQ(adapter.components.size(), 1U);
  EXPECT_THAT(adapter.versions, ElementsAre(FirmwareVersions{"fw.undi", "1.0.0", "1.0.0"},
                                            FirmwareVersions{"fw.mgmt", "7.1.0", "7.1.0"}));
  EXPECT_THAT(adapter.notes, IsEmpty());
  EXPECT_THAT(m_backend.list().problems, IsEmpty());
  passASecond();
  m_drivers.takeAsked();
  EXPECT_THAT(m_backend.interruptedWrites(), IsEmpty());
  EXPECT_THAT(m_drivers.takeAsked(), IsEmpty());
}

TEST_F(KernelFlashBackend, TakesTheFunctionsOfASlotForOneAdapter) {
  for (const char* pci : {"0000:03:00.1", "0000:03:00.2", "0000:03:00.3"}) {
    addFunction(pci, "testnic");
  }
  addFunction(kOtherFunction, "e1000e");
  EXPECT_THAT(
      m_backend.enumerateAdapters(),
      ElementsAre("0000:03:00.0", "0000:03:00.1", "0000:03:00.2", "0000:03:00.3", "0000:04:00.0"));
  const AdapterList list = m_backend.list();
  ASSERT_EQ(list.adapters.size(), 2U);
  EXPECT_EQ(list.adapters[0].ports.size(), 4U);
  EXPECT_EQ(list.adapters[1].ports.size(), 1U);
  EXPECT_TRUE(m_backend.isUpdatable({kKernelAdapter, 3}));
}

TEST_F(KernelFlashBackend, SaysWhyAnAdapterCannotBeUpdated) {
  m_settings.firmwareFolder = (m_directory.path() / "none").string();
  EXPECT_THAT(listing().whyNotUpdatable,
              AllOf(StartsWith("firmware cannot be put into "), HasSubstr("FirmwareFolder")));
  m_drivers.isPrivileged = false;
  EXPECT_THAT(listing().whyNotUpdatable,
              AllOf(StartsWith("writing firmware needs the capability CAP_NET_ADMIN, as root has "
                               "it; besides, firmware cannot be put into "),
                    HasSubstr("FirmwareFolder")));
  m_settings.firmwareFolder = m_firmware.string();
  EXPECT_EQ(listing().whyNotUpdatable,
            "writing firmware needs the capability CAP_NET_ADMIN, as root has it");
  passASecond();
  m_drivers.answers[kKernelFunction].devlink.reset();
  EXPECT_THAT(listing().whyNotUpdatable, StartsWith("its driver testnic writes no firmware"));
  EXPECT_FALSE(listing().isUpdatable);
  EXPECT_FALSE(m_backend.isUpdatable(kKernelPort));
}

TEST_F(KernelFlashBackend, OutlinesItsAdaptersAndWhetherTheyCanBeUpdated) {
  const AdapterList list = m_backend.outline(ma::OutlineDepth::Description);
  ASSERT_EQ(list.adapters.size(), 1U);
  EXPECT_EQ(list.adapters[0].pci, "0000:03:00");
  EXPECT_EQ(list.adapters[0].driver, "testnic");
  EXPECT_TRUE(list.adapters[0].isUpdatable);
  EXPECT_THAT(list.adapters[0].components, IsEmpty());
  EXPECT_EQ(m_backend.outline(ma::OutlineDepth::Flash).adapters.at(0).components.size(), 1U);
  m_drivers.isPrivileged = false;
  EXPECT_EQ(m_backend.outline(ma::OutlineDepth::Description).adapters.at(0).whyNotUpdatable,
            listing().whyNotUpdatable);
  EXPECT_FALSE(m_backend.outline(ma::OutlineDepth::Description).adapters.at(0).isUpdatable);
}

TEST_F(KernelFlashBackend, KnowsItsAdapters) {
  EXPECT_TRUE(m_backend.hasAdapter(kKernelAdapter));
  EXPECT_FALSE(m_backend.hasAdapter({0, 4, 0}));
  EXPECT_THAT(m_drivers.takeAsked(), IsEmpty());
  EXPECT_EQ(m_backend.describe(kKernelAdapter), "a network adapter of this machine");
}

TEST_F(KernelFlashBackend, RefusesAdaptersAndPortsThatAreNot) {
  const auto unknown = [](const std::string& name) {
    return ThrowsExactly<FlashFault>("The adapter is not known: " + name);
  };
  EXPECT_THAT(
      [&] {
        static_cast<void>(m_backend.isUpdatable({{0, 9, 0}, 0}));
      },
      unknown("0000:09:00"));
  EXPECT_THAT(
      [&] {
        static_cast<void>(m_backend.digest({kKernelAdapter, 1}));
      },
      unknown("0000:03:00.1"));
  EXPECT_THAT([&] { static_cast<void>(m_backend.activate({0, 9, 0})); }, unknown("0000:09:00"));
  EXPECT_THAT(
      [&] {
        write(kernelPackage("1.1.0", "7.2.0"), {{0, 9, 0}, 0});
      },
      unknown("0000:09:00"));
}

TEST_F(KernelFlashBackend, HasNothingToRecordOfAnAdapterThatStartsAnew) {
  EXPECT_NO_THROW(m_backend.recordInstalled({{0, 9, 0}, 0}, {FirmwareType::Uefi}));
  EXPECT_THAT(m_drivers.takeAsked(), IsEmpty());
}

TEST_F(KernelFlashBackend, TellsTheFirmware) {
  EXPECT_THAT(m_backend.installedFirmware(kKernelPort),
              ElementsAre(utils::FirmwareVersionInfo{FirmwareType::Uefi, {1, 0}}));
  EXPECT_EQ(m_backend.firmwareVersions(kKernelPort).size(), 2U);
}

TEST_F(KernelFlashBackend, ChecksFiles) {
  EXPECT_EQ(prepare(kernelPackage("1.1.0", "7.2.0")).status, PrepareStatus::Ok);
  const Preparation older = prepare(kernelPackage("1.1.0", "7.0.0"));
  EXPECT_EQ(older.status, PrepareStatus::Downgrade);
  EXPECT_EQ(older.reason, "fw.mgmt 7.0.0 of the file is older than 7.1.0 of the adapter");
  EXPECT_EQ(m_backend.compare(kKernelPort, kernelPackage("1.0.0", "7.1.0")),
            ImageComparison::SameVersion);
  EXPECT_EQ(m_backend.compare(kKernelPort, RomBuilder().add(test::kernelRomImage()).build()),
            ImageComparison::SameContent);
  m_drivers.isPrivileged = false;
  EXPECT_EQ(prepare(kernelPackage("1.1.0", "7.2.0")).status, PrepareStatus::NotUpdatable);
}

TEST_F(KernelFlashBackend, TrustsTheDriversOfTheSetting) {
  addFunction(kOtherFunction, "ionic");
  store("", "", kOtherFunction);
  const PortId port{{0, 4, 0}, 0};
  Bytes buffer(600);
  const Bytes file(600, 0x11);
  EXPECT_EQ(m_backend.prepare(port, file, buffer, {}).status, PrepareStatus::NotForAdapter);
  m_settings.trustedDrivers = {"bnxt_en", "ionic"};
  EXPECT_EQ(m_backend.prepare(port, file, buffer, {}).status, PrepareStatus::Ok);
}

TEST_F(KernelFlashBackend, HasADigestOfWhatDecidesComparisons) {
  std::vector<std::uint64_t> digests = {m_backend.digest(kKernelPort)};
  passASecond();
  EXPECT_EQ(m_backend.digest(kKernelPort), digests[0]);
  const auto add = [&] {
    passASecond();
    digests.push_back(m_backend.digest(kKernelPort));
    EXPECT_EQ(std::count(digests.begin(), digests.end(), digests.back()), 1) << digests.size();
  };
  store("1.0.0", "7.1.1");
  add();
  m_settings.trustedDrivers = {"testnic"};
  add();
  m_drivers.isPrivileged = false;
  add();
  m_sysfs.setAttribute(kKernelFunction, "subsystem_device", "0x1101");
  add();
}

TEST_F(KernelFlashBackend, DoesNotOfferBootTypes) {
  EXPECT_THAT([&] { m_backend.setBootType(kKernelPort, ma::BootType::None); },
              ThrowsExactly<FlashFault>("The adapter's driver does not offer that: what "
                                        "0000:03:00.0 boots from cannot be set through its driver "
                                        "testnic"));
}

TEST_F(KernelFlashBackend, HasOneUpdateOfAnAdapterAtATime) {
  EXPECT_TRUE(m_backend.beginUpdate(kKernelAdapter));
  EXPECT_FALSE(m_backend.beginUpdate(kKernelAdapter));
  EXPECT_TRUE(m_backend.beginUpdate({0, 4, 0}));
  m_backend.endUpdate(kKernelAdapter);
  EXPECT_TRUE(m_backend.beginUpdate(kKernelAdapter));
}

TEST_F(KernelFlashBackend, WaitsForADriverThatDoesNotAnswerAtOnceBeforeItIsWritten) {
  keepSilentForAWhile();
  m_backend.awaitAnswer(kKernelAdapter);
  EXPECT_TRUE(m_backend.isUpdatable(kKernelPort));
  EXPECT_EQ(prepare(kernelPackage("1.1.0", "7.2.0")).status, PrepareStatus::Ok);
}

TEST_F(KernelFlashBackend, KeepsNobodyWaitingWhoOnlyAsks) {
  keepSilentForAWhile();
  EXPECT_FALSE(m_backend.isUpdatable(kKernelPort));
  EXPECT_EQ(prepare(kernelPackage("1.1.0", "7.2.0")).status, PrepareStatus::NotUpdatable);
  EXPECT_EQ(m_clock.slept(), std::chrono::milliseconds(0));
}

TEST_F(KernelFlashBackend, AnswersFromWhatWasLastKnownWhileSomebodyElseWritesIt) {
  EXPECT_TRUE(m_backend.isUpdatable(kKernelPort));
  passASecond();
  keepSilentForAWhile();
  EXPECT_TRUE(m_backend.isUpdatable(kKernelPort));
  EXPECT_EQ(prepare(kernelPackage("1.1.0", "7.2.0")).status, PrepareStatus::Ok);
  EXPECT_EQ(m_clock.slept(), std::chrono::seconds(1));
}

class KernelActivation : public KernelFlashBackend {
 protected:
  KernelActivation() { store("1.1.0", "7.2.0"); }

  std::string failure() {
    try {
      static_cast<void>(m_backend.activate(kKernelAdapter));
    } catch (const FlashFault& fault) {
      return fault.what();
    }
    return {};
  }
  // An update whose process is gone; the file had those versions.
  void leaveEntry(const std::string& undi, const std::string& mgmt) {
    const ma::FlashJournal journal(m_files, m_places.journal, m_clock);
    journal.claim(kKernelAdapter)
        .enter({1,
                2,
                {{"fw.undi", "1.0.0"}, {"fw.mgmt", "7.1.0"}},
                {{"fw.undi", undi}, {"fw.mgmt", mgmt}},
                {}});
  }
  void expectNoReset() {
    m_drivers.onActivate = [](const std::string&) {
      ADD_FAILURE() << "the adapter was reset";
      return NetlinkAck{};
    };
  }
};

constexpr const char* kInterrupted =
    "The adapter's driver has not activated the firmware: an update was interrupted; update it "
    "again first";

TEST_F(KernelActivation, IsRefusedWhereTheFlashWasNotWrittenWhole) {
  expectNoReset();
  for (const char* mgmt : {"7.1.0", "7.2.0", ""}) {
    store("", mgmt);
    passASecond();
    EXPECT_EQ(failure(), kInterrupted) << mgmt;
  }
}

TEST_F(KernelActivation, IsRefusedWhereAnUpdateWasInterrupted) {
  expectNoReset();
  leaveEntry("1.1.0", "7.3.0");
  EXPECT_EQ(failure(), kInterrupted);
}

TEST_F(KernelActivation, FollowsAnInterruptedUpdateThatTheKernelHasFinished) {
  leaveEntry("1.1.0", "7.2.0");
  EXPECT_TRUE(m_backend.activate(kKernelAdapter).isActive);
}

TEST_F(KernelActivation, IsRefusedWhereTheFlashWasWrittenMeanwhile) {
  expectNoReset();
  m_files.beforeStep = [this](const std::string& name, const std::filesystem::path&) {
    if (name == "lock") {
      store("", "7.2.0");
    }
  };
  EXPECT_EQ(failure(), kInterrupted);
}

TEST_F(KernelActivation, IsNotAdvisedForAFlashThatWasNotWrittenWhole) {
  m_drivers.onActivate = [](const std::string&) { return NetlinkAck{EOPNOTSUPP, ""}; };
  addFunction(kOtherFunction, "bnxt_en");
  store("", "", kOtherFunction);
  EXPECT_THAT(
      [&] {
        static_cast<void>(m_backend.activate({0, 4, 0}));
      },
      ThrowsExactly<FlashFault>(kInterrupted));
}

TEST_F(KernelActivation, NamesAnEntryThatIsNone) {
  m_directory.write("kernel/0000-03-00.json", std::string("{"));
  EXPECT_THAT(failure(), HasSubstr("0000-03-00.json is no entry of a flash"));
  m_drivers.isPrivileged = false;
  EXPECT_THAT(failure(), HasSubstr("needs the capability CAP_NET_ADMIN"));
}

TEST_F(KernelActivation, IsTheDrivers) {
  std::string activated;
  m_drivers.onActivate = [&](const std::string& function) {
    activated = function;
    return NetlinkAck{};
  };
  const Activation activation = m_backend.activate(kKernelAdapter);
  EXPECT_TRUE(activation.isActive);
  EXPECT_EQ(activation.text, "its driver testnic has put the stored firmware into force");
  EXPECT_EQ(activated, kKernelFunction);
}

TEST_F(KernelActivation, IsNotAskedForWhereNothingWaitsForIt) {
  store("1.0.0", "7.1.0");
  expectNoReset();
  EXPECT_TRUE(m_backend.activate(kKernelAdapter).isActive);
}

TEST_F(KernelActivation, IsTheDriversWhereItDoesNotTellAllThatIsStored) {
  store("1.0.0", "7.1.0");
  m_drivers.answers[kKernelFunction].devlink->stored.pop_back();
  int activations = 0;
  m_drivers.onActivate = [&activations](const std::string&) {
    ++activations;
    return NetlinkAck{};
  };
  EXPECT_TRUE(m_backend.activate(kKernelAdapter).isActive);
  EXPECT_EQ(activations, 1);
}

TEST_F(KernelActivation, IsDoneWhereWhatIsStoredRunsWhateverTheDriverCan) {
  expectNoReset();
  addFunction(kOtherFunction, "hinic");
  store("1.0.0", "7.1.0", kOtherFunction);
  const Activation activation = m_backend.activate({0, 4, 0});
  EXPECT_TRUE(activation.isActive);
  EXPECT_EQ(activation.text, "what its flash holds is in force");
}

TEST_F(KernelActivation, SaysThatDevlinkDoesNotAnswerThroughWhichItWouldGo) {
  addFunction(kOtherFunction, "bnxt_en");
  const Activation activation = m_backend.activate({0, 4, 0});
  EXPECT_FALSE(activation.isActive);
  EXPECT_THAT(activation.text,
              StartsWith("its driver bnxt_en puts stored firmware into force by devlink, by which "
                         "it does not answer"));
}

TEST_F(KernelActivation, SaysWhatItTakesOtherwise) {
  m_drivers.onActivate = [](const std::string&) { return NetlinkAck{EOPNOTSUPP, ""}; };
  const Activation activation = m_backend.activate(kKernelAdapter);
  EXPECT_FALSE(activation.isActive);
  EXPECT_EQ(
      activation.text,
      "its driver testnic cannot put stored firmware into force; reboot the machine, or power "
      "cycle it where that is not enough");
  addFunction(kOtherFunction, "cxgb4");
  EXPECT_EQ(m_backend.activate({0, 4, 0}).text,
            "its driver cxgb4 cannot put stored firmware into force, and does not tell all that is "
            "stored; after an update, reload the driver, or reboot the machine");
}

TEST_F(KernelActivation, FailsWithTheWordsOfTheDriver) {
  m_drivers.onActivate = [](const std::string&) { return NetlinkAck{EBUSY, "testnic: in use"}; };
  EXPECT_EQ(failure(), "The adapter's driver has not activated the firmware: testnic: in use");
  m_drivers.isPrivileged = false;
  EXPECT_THAT(failure(), HasSubstr("needs the capability CAP_NET_ADMIN"));
}

TEST_F(KernelActivation, WaitsForNoFlash) {
  EXPECT_TRUE(m_backend.isUpdatable(kKernelPort));
  passASecond();
  m_drivers.answers[kKernelFunction].isAway = true;
  EXPECT_THAT(failure(), HasSubstr("its flash is being written"));
}

TEST_F(KernelActivation, FailsForADriverThatWritesNoFirmware) {
  m_drivers.answers[kKernelFunction].devlink.reset();
  EXPECT_THAT(failure(), HasSubstr("its driver testnic writes no firmware"));
}

}  // namespace
