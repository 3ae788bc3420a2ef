#include <cerrno>
#include <filesystem>
#include <gmock/gmock.h>
#include <stdexcept>
#include <string>
#include <vector>

#include "midapi/Kernel/KernelFlashBackend.h"
#include "tests/midapi/Kernel/PlayedDrivers.h"
#include "tests/midapi/Kernel/SysfsFixture.h"
#include "tests/midapi/WatchedFileSystem.h"
#include "tests/support/FakeClock.h"
#include "tests/support/PldmBuilder.h"
#include "tests/support/RomBuilder.h"
#include "tests/support/TempDirectory.h"
#include "tests/support/Throws.h"

namespace {

using ma::Activation;
using ma::AdapterAddress;
using ma::AdapterList;
using ma::AdapterListing;
using ma::DevlinkFlashEvent;
using ma::DevlinkInfo;
using ma::DriverAnswer;
using ma::FirmwareVersions;
using ma::FlashFault;
using ma::ImageComparison;
using ma::KernelFlashBackend;
using ma::NetlinkAck;
using ma::PortId;
using ma::Preparation;
using ma::PrepareStatus;
using test::Bytes;
using test::PldmBuilder;
using test::PldmDevice;
using test::PldmImage;
using test::RomBuilder;
using test::RomImage;
using test::ThrowsExactly;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;
using utils::FirmwareType;

constexpr AdapterAddress kAdapter{0, 3, 0};
constexpr PortId kPort{kAdapter, 0};
const std::string kFunction = "0000:03:00.0";
const std::string kOtherFunction = "0000:04:00.0";

// As the functions of SysfsFixture are.
RomImage romImage() {
  return RomImage::efi().device(0x8086, 0x10D3);
}

Bytes package(const std::string& undi, const std::string& mgmt) {
  return PldmBuilder()
      .add(PldmDevice(0x8086, 0x10D3).takes({0, 1}))
      .add(PldmImage(RomBuilder().add(romImage()).build()).identifier(5).version({undi}))
      .add(PldmImage(Bytes(976, 0x11)).identifier(6).version({mgmt}))
      .build()
      .bytes;
}

class KernelFlashBackendTest : public testing::Test {
 protected:
  KernelFlashBackendTest() {
    std::filesystem::create_directories(m_firmware);
    m_settings.firmwareFolder = m_firmware.string();
    addFunction(kFunction, "testnic");
    store("1.0.0", "7.1.0");
    m_drivers.onDevlinkFlash = [this](const std::string&, const std::string&, const auto&) {
      store("1.1.0", "7.2.0");
      return NetlinkAck{};
    };
  }

  void addFunction(const std::string& pci, const std::string& driver) {
    m_sysfs.addFunction(pci);
    m_sysfs.bindDriver(pci, driver);
    m_sysfs.addInterface(pci, "eth" + pci.substr(5, 2) + pci.back(), "02:54:4e:00:00:30");
    m_sysfs.setAttribute(pci, "rom", "");
    m_drivers.answers[pci].rom = {0, RomBuilder().add(romImage()).build()};
  }
  // What the driver says that the flash holds.
  void store(const std::string& undi, const std::string& mgmt, const std::string& pci = kFunction) {
    m_drivers.answers[pci].devlink = DevlinkInfo{"testnic",
                                                 "",
                                                 "",
                                                 {},
                                                 {{"fw.undi", "1.0.0"}, {"fw.mgmt", "7.1.0"}},
                                                 {{"fw.undi", undi}, {"fw.mgmt", mgmt}}};
  }
  void passASecond() { m_clock.sleepFor(std::chrono::seconds(1)); }

  void write(const Bytes& image = package("1.1.0", "7.2.0"), const PortId& port = kPort) {
    m_progress.start();
    m_backend.writeFlash(port, image, m_progress);
  }
  // Returns the text of its failure.
  std::string failWriting(const Bytes& image = package("1.1.0", "7.2.0")) {
    try {
      write(image);
    } catch (const FlashFault& fault) {
      return fault.what();
    }
    return {};
  }
  // A write in whose middle the process is killed; then the flash holds those versions.
  void dieWriting(const std::string& undi, const std::string& mgmt) {
    m_drivers.onDevlinkFlash = [&](const std::string&, const std::string&,
                                   const auto&) -> NetlinkAck {
      store(undi, mgmt);
      m_files.isDead = true;
      throw std::runtime_error("killed");
    };
    EXPECT_THROW(write(), std::runtime_error);
    m_files.isDead = false;
    passASecond();
  }

  Preparation prepare(const Bytes& file) {
    Bytes buffer(file.size());
    return m_backend.prepare(kPort, file, buffer, {});
  }
  AdapterListing listing() {
    const AdapterList list = m_backend.list();
    EXPECT_EQ(list.adapters.size(), 1U);
    return list.adapters.front();
  }

  std::vector<std::string> namesIn(const std::filesystem::path& folder) const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
      names.push_back(entry.path().filename().string());
    }
    return names;
  }
  std::vector<std::string> staged() const { return namesIn(m_firmware); }
  bool hasEntry(const std::string& name = "0000-03-00.json") const {
    return std::filesystem::exists(m_places.journal / name);
  }

  test::SysfsFixture m_sysfs;
  test::TempDirectory m_directory;
  const std::filesystem::path m_firmware = m_directory.path() / "firmware";
  const ma::KernelPlaces m_places{m_sysfs.root(), m_directory.path() / "kernel"};
  test::WatchedFileSystem m_files;
  test::FakeClock m_clock;
  test::PlayedDrivers m_drivers;
  utils::FlashSettings m_settings;
  ma::WriteProgress m_progress;
  KernelFlashBackend m_backend{m_files, m_places, m_drivers, [this] { return m_settings; },
                               m_clock};
};

// ---- what there is ----

TEST_F(KernelFlashBackendTest, ListsWhatIsKnownOfAnAdapter) {
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

TEST_F(KernelFlashBackendTest, TakesTheFunctionsOfASlotForOneAdapter) {
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
  EXPECT_TRUE(m_backend.isUpdatable({kAdapter, 3}));
}

TEST_F(KernelFlashBackendTest, SaysWhyAnAdapterCannotBeUpdated) {
  m_settings.firmwareFolder = (m_directory.path() / "none").string();
  EXPECT_THAT(listing().whyNotUpdatable,
              AllOf(StartsWith("firmware cannot be put into "), HasSubstr("FirmwareFolder")));
  m_drivers.isPrivileged = false;
  EXPECT_EQ(listing().whyNotUpdatable,
            "writing firmware needs the capability CAP_NET_ADMIN, as root has it");
  passASecond();
  m_drivers.answers[kFunction].devlink.reset();
  EXPECT_THAT(listing().whyNotUpdatable, StartsWith("its driver testnic writes no firmware"));
  EXPECT_FALSE(listing().isUpdatable);
  EXPECT_FALSE(m_backend.isUpdatable(kPort));
}

TEST_F(KernelFlashBackendTest, KnowsItsAdapters) {
  EXPECT_TRUE(m_backend.hasAdapter(kAdapter));
  EXPECT_FALSE(m_backend.hasAdapter({0, 4, 0}));
  EXPECT_THAT(m_drivers.takeAsked(), IsEmpty());
  EXPECT_EQ(m_backend.describe(kAdapter), "a network adapter of this machine");
}

TEST_F(KernelFlashBackendTest, RefusesAdaptersAndPortsThatAreNot) {
  const auto unknown = [](const std::string& name) {
    return ThrowsExactly<FlashFault>("The adapter is not known: " + name);
  };
  EXPECT_THAT(
      [&] {
        static_cast<void>(m_backend.isUpdatable({{0, 9, 0}, 0}));
      },
      unknown("0000:09:00"));
  EXPECT_THAT([&] { static_cast<void>(m_backend.digest({kAdapter, 1})); }, unknown("0000:03:00.1"));
  EXPECT_THAT([&] { m_backend.recordInstalled({{0, 9, 0}, 0}, {}); }, unknown("0000:09:00.0"));
  EXPECT_THAT([&] { static_cast<void>(m_backend.activate({0, 9, 0})); }, unknown("0000:09:00"));
  EXPECT_THAT([&] { write(package("1.1.0", "7.2.0"), {{0, 9, 0}, 0}); }, unknown("0000:09:00"));
  m_backend.recordInstalled(kPort, {});
}

TEST_F(KernelFlashBackendTest, TellsTheFirmware) {
  EXPECT_THAT(m_backend.installedFirmware(kPort),
              ElementsAre(utils::FirmwareVersionInfo{FirmwareType::Uefi, {1, 0}}));
  EXPECT_EQ(m_backend.firmwareVersions(kPort).size(), 2U);
}

TEST_F(KernelFlashBackendTest, ChecksFiles) {
  EXPECT_EQ(prepare(package("1.1.0", "7.2.0")).status, PrepareStatus::Ok);
  const Preparation older = prepare(package("1.1.0", "7.0.0"));
  EXPECT_EQ(older.status, PrepareStatus::Downgrade);
  EXPECT_EQ(older.reason, "fw.mgmt 7.0.0 of the file is older than 7.1.0 of the adapter");
  EXPECT_EQ(m_backend.compare(kPort, package("1.0.0", "7.1.0")), ImageComparison::SameVersion);
  EXPECT_EQ(m_backend.compare(kPort, RomBuilder().add(romImage()).build()),
            ImageComparison::SameContent);
  m_drivers.isPrivileged = false;
  EXPECT_EQ(prepare(package("1.1.0", "7.2.0")).status, PrepareStatus::NotUpdatable);
}

TEST_F(KernelFlashBackendTest, TrustsTheDriversOfTheSetting) {
  addFunction(kOtherFunction, "ionic");
  store("", "", kOtherFunction);
  const PortId port{{0, 4, 0}, 0};
  Bytes buffer(600);
  const Bytes file(600, 0x11);
  EXPECT_EQ(m_backend.prepare(port, file, buffer, {}).status, PrepareStatus::InvalidImage);
  m_settings.trustedDrivers = {"bnxt_en", "ionic"};
  EXPECT_EQ(m_backend.prepare(port, file, buffer, {}).status, PrepareStatus::Ok);
}

TEST_F(KernelFlashBackendTest, HasADigestOfWhatDecidesComparisons) {
  std::vector<std::uint64_t> digests = {m_backend.digest(kPort)};
  passASecond();
  EXPECT_EQ(m_backend.digest(kPort), digests[0]);
  const auto add = [&] {
    passASecond();
    digests.push_back(m_backend.digest(kPort));
    EXPECT_EQ(std::count(digests.begin(), digests.end(), digests.back()), 1) << digests.size();
  };
  store("1.0.0", "7.1.1");
  add();
  m_settings.trustedDrivers = {"testnic"};
  add();
  m_drivers.isPrivileged = false;
  add();
  m_sysfs.setAttribute(kFunction, "subsystem_device", "0x1101");
  add();
}

// ---- writing ----

TEST_F(KernelFlashBackendTest, GivesTheKernelTheVeryBytes) {
  Bytes flashed;
  m_drivers.onDevlinkFlash = [&](const std::string& function, const std::string& file,
                                 const auto&) {
    EXPECT_EQ(function, kFunction);
    EXPECT_THAT(staged(), ElementsAre(file));
    flashed = test::readBytes(m_firmware / file);
    EXPECT_TRUE(hasEntry());
    EXPECT_LT(m_progress.percent(), 100U);
    store("1.1.0", "7.2.0");
    return NetlinkAck{};
  };
  write();
  EXPECT_EQ(flashed, package("1.1.0", "7.2.0"));
  EXPECT_THAT(staged(), IsEmpty());
  EXPECT_FALSE(hasEntry());
  EXPECT_EQ(m_progress.percent(), 100U);
  EXPECT_EQ(m_backend.firmwareVersions(kPort)[0], (FirmwareVersions{"fw.undi", "1.0.0", "1.1.0"}));
}

TEST_F(KernelFlashBackendTest, ReportsTheProgressOfAllComponents) {
  std::vector<std::uint32_t> percents;
  m_drivers.onDevlinkFlash = [&](const std::string&, const std::string&, const auto& onEvent) {
    const auto tell = [&](const std::string& device, const std::string& component,
                          std::uint64_t done, std::uint64_t total) {
      onEvent({DevlinkFlashEvent::Kind::Status, device, "Flashing", component, done, total, 0});
      percents.push_back(m_progress.percent());
    };
    tell(kFunction, "fw.undi", 0, 0);
    tell(kFunction, "fw.undi", 512, 1024);
    tell(kOtherFunction, "fw.undi", 1024, 1024);
    tell(kFunction, "fw.undi", 1024, 1024);
    tell(kFunction, "fw.mgmt", 0, 976);
    tell(kFunction, "fw.mgmt", 976, 976);
    store("1.1.0", "7.2.0");
    return NetlinkAck{};
  };
  write();
  EXPECT_THAT(percents, ElementsAre(0, 25, 25, 51, 51, 99));
  EXPECT_EQ(m_progress.percent(), 100U);
}

TEST_F(KernelFlashBackendTest, FailsWithTheWordsOfTheDriver) {
  m_drivers.onDevlinkFlash = [this](const std::string&, const std::string&, const auto&) {
    store("", "7.1.0");
    return NetlinkAck{EIO, "testnic: flash write failed"};
  };
  EXPECT_EQ(failWriting(),
            "The adapter's driver has not written the firmware: testnic: flash write failed");
  EXPECT_THAT(staged(), IsEmpty());
  EXPECT_FALSE(hasEntry());
  EXPECT_LT(m_progress.percent(), 100U);
  EXPECT_EQ(m_backend.firmwareVersions(kPort)[0], (FirmwareVersions{"fw.undi", "1.0.0", ""}));
}

TEST_F(KernelFlashBackendTest, FailsWithTheKernelsWordsWhereTheDriverHasNone) {
  int error = EPERM;
  m_drivers.onDevlinkFlash = [&error](const std::string&, const std::string&, const auto&) {
    return NetlinkAck{error, ""};
  };
  EXPECT_THAT(failWriting(), HasSubstr(": Operation not permitted"));
  error = ENOENT;
  EXPECT_THAT(failWriting(),
              AllOf(HasSubstr(": No such file or directory; the kernel must take firmware from "),
                    HasSubstr("firmware (setting FirmwareFolder)")));
}

TEST_F(KernelFlashBackendTest, FailsWhereTheFlashDoesNotHoldTheFilesVersions) {
  m_drivers.onDevlinkFlash = [this](const std::string&, const std::string&, const auto&) {
    store("1.1.0", "7.1.0");
    return NetlinkAck{};
  };
  EXPECT_EQ(failWriting(),
            "The flash does not hold what was written: fw.mgmt is 7.1.0, and the file has 7.2.0");
  EXPECT_FALSE(hasEntry());
  EXPECT_LT(m_progress.percent(), 100U);
}

TEST_F(KernelFlashBackendTest, WaitsForADriverThatIsAwayAfterTheFlash) {
  m_drivers.onDevlinkFlash = [this](const std::string&, const std::string&, const auto&) {
    m_drivers.answers[kFunction] = {};
    m_drivers.answers[kFunction].isAway = true;
    m_clock.afterEachSleep([this](int sleeps) {
      if (sleeps == 5) {
        m_drivers.answers[kFunction] = {};
        store("1.1.0", "7.2.0");
      }
    });
    return NetlinkAck{};
  };
  write();
  EXPECT_EQ(m_clock.slept(), std::chrono::milliseconds(2500));
  EXPECT_EQ(m_progress.percent(), 100U);
}

TEST_F(KernelFlashBackendTest, LeavesTheEntryWhereTheDriverDoesNotAnswerAnyMore) {
  m_drivers.onDevlinkFlash = [this](const std::string&, const std::string&, const auto&) {
    m_drivers.answers[kFunction] = {};
    m_drivers.answers[kFunction].isAway = true;
    return NetlinkAck{};
  };
  EXPECT_THAT(failWriting(), HasSubstr("does not tell any versions since"));
  EXPECT_TRUE(hasEntry());
  EXPECT_THAT(staged(), IsEmpty());
  EXPECT_EQ(m_clock.slept(), std::chrono::seconds(30));
}

TEST_F(KernelFlashBackendTest, DoesNotWaitForADriverThatWasTakenAway) {
  m_drivers.onDevlinkFlash = [this](const std::string&, const std::string&, const auto&) {
    m_drivers.answers.clear();
    std::filesystem::remove(m_sysfs.folder(kFunction) / "driver");
    return NetlinkAck{};
  };
  EXPECT_THAT(failWriting(), HasSubstr("does not tell any versions since"));
  EXPECT_TRUE(hasEntry());
  EXPECT_EQ(m_clock.slept(), std::chrono::seconds(0));
}

TEST_F(KernelFlashBackendTest, AsksForNoFlashThatIsNotInTheJournal) {
  m_drivers.onDevlinkFlash = [](const std::string&, const std::string&, const auto&) {
    ADD_FAILURE() << "the kernel was asked";
    return NetlinkAck{};
  };
  m_directory.write("kernel", std::string("no folder"));
  EXPECT_THAT(failWriting(), HasSubstr("no record of the update can be kept, so it has not begun"));
  EXPECT_THAT(staged(), IsEmpty());
}

TEST_F(KernelFlashBackendTest, LeavesNothingWhereAStepBeforeTheFlashFails) {
  m_drivers.onDevlinkFlash = [](const std::string&, const std::string&, const auto&) {
    ADD_FAILURE() << "the kernel was asked";
    return NetlinkAck{};
  };
  for (const std::string step : {"firmware", "kernel"}) {
    m_files.beforeStep = [&step](const std::string& name, const std::filesystem::path& path) {
      if (name == "append" && path.parent_path().filename() == step) {
        test::WatchedFileSystem::failAsFullDisk("write", path);
      }
    };
    EXPECT_THAT(failWriting(), HasSubstr("No space left on device")) << step;
    EXPECT_THAT(staged(), IsEmpty());
    EXPECT_FALSE(hasEntry());
  }
}

TEST_F(KernelFlashBackendTest, SucceedsWhereTheEntryCannotBeRemoved) {
  m_files.beforeStep = [](const std::string& name, const std::filesystem::path& path) {
    if (name == "remove" && path.extension() == ".json") {
      test::WatchedFileSystem::failAsFullDisk("remove", path);
    }
  };
  write();
  EXPECT_EQ(m_progress.percent(), 100U);
  EXPECT_TRUE(hasEntry());
}

TEST_F(KernelFlashBackendTest, LetsOneWriteAnAdapterAtATime) {
  m_drivers.onDevlinkFlash = [this](const std::string&, const std::string&, const auto&) {
    EXPECT_THAT(failWriting(), HasSubstr("another program is writing the adapter"));
    store("1.1.0", "7.2.0");
    return NetlinkAck{};
  };
  write();
}

TEST_F(KernelFlashBackendTest, RefusesToWriteWhatCannotBeUpdated) {
  m_drivers.isPrivileged = false;
  EXPECT_THAT(failWriting(), HasSubstr("cannot be replaced: writing firmware needs"));
  EXPECT_FALSE(hasEntry());
}

TEST_F(KernelFlashBackendTest, LeavesOtherAdaptersAlone) {
  addFunction(kOtherFunction, "testnic");
  store("1.0.0", "7.1.0", kOtherFunction);
  m_drivers.onDevlinkFlash = [this](const std::string&, const std::string&, const auto&) {
    const AdapterList list = m_backend.list();
    EXPECT_TRUE(list.adapters[0].isBeingWritten);
    EXPECT_THAT(list.adapters[0].notes, IsEmpty());
    EXPECT_FALSE(list.adapters[1].isBeingWritten);
    EXPECT_THAT(list.problems, IsEmpty());
    EXPECT_FALSE(hasEntry("0000-04-00.json"));
    store("1.1.0", "7.2.0");
    return NetlinkAck{};
  };
  write();
  EXPECT_EQ(m_backend.firmwareVersions({{0, 4, 0}, 0})[0],
            (FirmwareVersions{"fw.undi", "1.0.0", "1.0.0"}));
}

TEST_F(KernelFlashBackendTest, WritesByEthtoolForDriversOfTheTable) {
  addFunction(kOtherFunction, "qede");
  m_settings.trustedDrivers = {"qede"};
  Bytes flashed;
  m_drivers.onEthtoolFlash = [&](const std::string& interface, const std::string& file) {
    EXPECT_EQ(interface, "eth040");
    flashed = test::readBytes(m_firmware / file);
    return NetlinkAck{};
  };
  const Bytes file = {0x87, 0x56, 0x43, 0x12, 0, 0, 0, 0, 0, 0, 0, 0};
  write(file, {{0, 4, 0}, 0});
  EXPECT_EQ(flashed, file);
  EXPECT_EQ(m_progress.percent(), 100U);
  EXPECT_FALSE(hasEntry("0000-04-00.json"));
}

// ---- interrupted updates ----

TEST_F(KernelFlashBackendTest, TellsOfAnInterruptedUpdateThatTheKernelHasFinished) {
  dieWriting("1.1.0", "7.2.0");
  EXPECT_TRUE(hasEntry());
  const AdapterList list = m_backend.list();
  EXPECT_THAT(list.adapters[0].notes,
              ElementsAre("an update was interrupted; the kernel has finished it since: the flash "
                          "holds what the file has (fw.undi 1.1.0, fw.mgmt 7.2.0)"));
  EXPECT_THAT(list.problems, IsEmpty());
  EXPECT_FALSE(hasEntry());
  EXPECT_THAT(listing().notes, IsEmpty());
}

TEST_F(KernelFlashBackendTest, TellsOfAnInterruptedUpdateUntilTheNextOne) {
  dieWriting("", "7.1.0");
  for (int looks = 0; looks < 2; ++looks) {
    const AdapterList list = m_backend.list();
    ASSERT_EQ(list.problems.size(), 1U);
    EXPECT_EQ(list.problems[0].place, "0000:03:00");
    EXPECT_EQ(list.problems[0].text,
              "an update was interrupted; the flash holds neither what it held before nor what the "
              "file has (fw.undi (none), fw.mgmt 7.1.0)");
    EXPECT_EQ(list.problems[0].advice, "update it again before the machine starts anew");
    EXPECT_THAT(list.adapters[0].notes, ElementsAre(list.problems[0].text));
  }
  EXPECT_EQ(staged().size(), 1U);
  m_drivers.onDevlinkFlash = [this](const std::string&, const std::string&, const auto&) {
    EXPECT_EQ(staged().size(), 1U);
    store("1.1.0", "7.2.0");
    return NetlinkAck{};
  };
  write();
  EXPECT_THAT(staged(), IsEmpty());
  EXPECT_THAT(m_backend.list().problems, IsEmpty());
}

TEST_F(KernelFlashBackendTest, TellsOfAnInterruptedUpdateThatHasChangedNothing) {
  dieWriting("1.0.0", "7.1.0");
  const AdapterList list = m_backend.list();
  ASSERT_EQ(list.problems.size(), 1U);
  EXPECT_EQ(
      list.problems[0].text,
      "an update was interrupted; the flash holds what it held before (fw.undi 1.0.0, fw.mgmt "
      "7.1.0)");
  EXPECT_EQ(list.problems[0].advice, "update it again");
  EXPECT_THAT(m_backend.interruptedWrites(),
              ElementsAre("0000:03:00: " + list.problems[0].text + "; update it again"));
}

TEST_F(KernelFlashBackendTest, SaysNothingOfAnInterruptedUpdateWhileItGoesOn) {
  dieWriting("1.0.0", "7.1.0");
  m_drivers.answers[kFunction].isAway = true;
  const AdapterList list = m_backend.list();
  EXPECT_TRUE(list.adapters[0].isBeingWritten);
  EXPECT_THAT(list.adapters[0].notes, IsEmpty());
  EXPECT_THAT(list.problems, IsEmpty());
  EXPECT_TRUE(hasEntry());
}

TEST_F(KernelFlashBackendTest, NamesAnEntryThatIsNone) {
  m_directory.write("kernel/0000-03-00.json", std::string("{"));
  const AdapterList list = m_backend.list();
  ASSERT_EQ(list.problems.size(), 1U);
  EXPECT_THAT(list.problems[0].text, HasSubstr("0000-03-00.json is no entry of a flash"));
  m_drivers.isPrivileged = false;
  EXPECT_THAT(m_backend.list().problems, IsEmpty());
}

// ---- the rest ----

TEST_F(KernelFlashBackendTest, DoesNotOfferBootTypes) {
  EXPECT_THAT([&] { m_backend.setBootType(kPort, ma::BootType::None); },
              ThrowsExactly<FlashFault>("The adapter's driver does not offer that: what "
                                        "0000:03:00.0 boots from cannot be set through its driver "
                                        "testnic"));
}

TEST_F(KernelFlashBackendTest, HasOneUpdateOfAnAdapterAtATime) {
  EXPECT_TRUE(m_backend.beginUpdate(kAdapter));
  EXPECT_FALSE(m_backend.beginUpdate(kAdapter));
  EXPECT_TRUE(m_backend.beginUpdate({0, 4, 0}));
  m_backend.endUpdate(kAdapter);
  EXPECT_TRUE(m_backend.beginUpdate(kAdapter));
}

class KernelActivation : public KernelFlashBackendTest {
 protected:
  KernelActivation() { store("1.1.0", "7.2.0"); }

  std::string failure() {
    try {
      static_cast<void>(m_backend.activate(kAdapter));
    } catch (const FlashFault& fault) {
      return fault.what();
    }
    return {};
  }
};

TEST_F(KernelActivation, IsTheDrivers) {
  std::string activated;
  m_drivers.onActivate = [&](const std::string& function) {
    activated = function;
    return NetlinkAck{};
  };
  const Activation activation = m_backend.activate(kAdapter);
  EXPECT_TRUE(activation.isActive);
  EXPECT_EQ(activation.text, "its driver testnic has put the stored firmware into force");
  EXPECT_EQ(activated, kFunction);
}

TEST_F(KernelActivation, IsNotAskedForWhereNothingWaitsForIt) {
  store("1.0.0", "7.1.0");
  m_drivers.onActivate = [](const std::string&) {
    ADD_FAILURE() << "the adapter was reset";
    return NetlinkAck{};
  };
  EXPECT_TRUE(m_backend.activate(kAdapter).isActive);
}

TEST_F(KernelActivation, SaysWhatItTakesOtherwise) {
  m_drivers.onActivate = [](const std::string&) { return NetlinkAck{EOPNOTSUPP, ""}; };
  const Activation activation = m_backend.activate(kAdapter);
  EXPECT_FALSE(activation.isActive);
  EXPECT_EQ(
      activation.text,
      "its driver testnic cannot put stored firmware into force; reboot the machine, or power "
      "cycle it where that is not enough");
  addFunction(kOtherFunction, "cxgb4");
  EXPECT_EQ(m_backend.activate({0, 4, 0}).text,
            "its driver cxgb4 cannot put stored firmware into force; reload the driver, or reboot "
            "the machine");
}

TEST_F(KernelActivation, FailsWithTheWordsOfTheDriver) {
  m_drivers.onActivate = [](const std::string&) { return NetlinkAck{EBUSY, "testnic: in use"}; };
  EXPECT_EQ(failure(), "The adapter's driver has not activated the firmware: testnic: in use");
  m_drivers.isPrivileged = false;
  EXPECT_THAT(failure(), HasSubstr("needs the capability CAP_NET_ADMIN"));
}

TEST_F(KernelActivation, WaitsForNoFlash) {
  EXPECT_TRUE(m_backend.isUpdatable(kPort));
  passASecond();
  m_drivers.answers[kFunction].isAway = true;
  EXPECT_THAT(failure(), HasSubstr("its flash is being written"));
}

TEST_F(KernelActivation, FailsForADriverThatWritesNoFirmware) {
  m_drivers.answers[kFunction].devlink.reset();
  EXPECT_THAT(failure(), HasSubstr("its driver testnic writes no firmware"));
}

}  // namespace
