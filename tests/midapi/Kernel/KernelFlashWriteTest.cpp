// Writing: what is left after each step that fails, and after a process that was killed.

#include <cerrno>
#include <filesystem>
#include <functional>
#include <gmock/gmock.h>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/midapi/Kernel/KernelBackendFixture.h"
#include "tests/support/VpdBuilder.h"

namespace {

using ma::AdapterList;
using ma::DevlinkFlashEvent;
using ma::DriverAnswer;
using ma::FirmwareVersions;
using ma::NetlinkAck;
using test::Bytes;
using test::kernelPackage;
using test::kKernelAdapter;
using test::kKernelFunction;
using test::kKernelPort;
using test::kOtherFunction;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class KernelFlashWrite : public test::KernelBackendFixture {
 protected:
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
  // The same for one that has not asked the kernel for anything.
  void dieStaging() {
    m_files.beforeStep = [this](const std::string& name, const std::filesystem::path& path) {
      if (name == "create" && path.parent_path() == m_places.journal) {
        m_files.isDead = true;
        throw std::runtime_error("killed");
      }
    };
    EXPECT_THROW(write(), std::runtime_error);
    m_files.isDead = false;
    m_files.beforeStep = [](const std::string&, const std::filesystem::path&) {};
    EXPECT_EQ(staged().size(), 1U);
    EXPECT_FALSE(hasEntry());
  }
  // From the flash on the driver's answer is `meanwhile`, until somebody has slept so often.
  void answerAfterTheFlash(const DriverAnswer& meanwhile, int sleepsUntilThen) {
    m_drivers.onDevlinkFlash = [=, this](const std::string&, const std::string&, const auto&) {
      m_drivers.answers[kKernelFunction] = meanwhile;
      m_clock.afterEachSleep([this, sleepsUntilThen](int sleeps) {
        if (sleeps == sleepsUntilThen) {
          m_drivers.answers[kKernelFunction] = {};
          store("1.1.0", "7.2.0");
        }
      });
      return NetlinkAck{};
    };
  }
};

TEST_F(KernelFlashWrite, GivesTheKernelTheVeryBytes) {
  Bytes flashed;
  m_drivers.onDevlinkFlash = [&](const std::string& function, const std::string& file,
                                 const auto&) {
    EXPECT_EQ(function, kKernelFunction);
    EXPECT_THAT(staged(), ElementsAre(file));
    flashed = test::readBytes(m_firmware / file);
    EXPECT_TRUE(hasEntry());
    EXPECT_LT(m_progress.percent(), 100U);
    store("1.1.0", "7.2.0");
    return NetlinkAck{};
  };
  write();
  EXPECT_EQ(flashed, kernelPackage("1.1.0", "7.2.0"));
  EXPECT_THAT(staged(), IsEmpty());
  EXPECT_FALSE(hasEntry());
  EXPECT_EQ(m_progress.percent(), 100U);
  EXPECT_EQ(m_backend.firmwareVersions(kKernelPort)[0],
            (FirmwareVersions{"fw.undi", "1.0.0", "1.1.0"}));
}

TEST_F(KernelFlashWrite, ReportsTheProgressOfAllComponents) {
  std::vector<std::uint32_t> percents;
  m_drivers.onDevlinkFlash = [&](const std::string&, const std::string&, const auto& onEvent) {
    const auto tell = [&](const std::string& device, const std::string& component,
                          std::uint64_t done, std::uint64_t total) {
      onEvent({DevlinkFlashEvent::Kind::Status, device, "Flashing", component, done, total, 0});
      percents.push_back(m_progress.percent());
    };
    tell(kKernelFunction, "fw.undi", 0, 0);
    tell(kKernelFunction, "fw.undi", 512, 1024);
    tell(kOtherFunction, "fw.undi", 1024, 1024);
    tell(kKernelFunction, "fw.undi", 1024, 1024);
    tell(kKernelFunction, "fw.mgmt", 0, 976);
    tell(kKernelFunction, "fw.mgmt", 976, 976);
    store("1.1.0", "7.2.0");
    return NetlinkAck{};
  };
  write();
  EXPECT_THAT(percents, ElementsAre(0, 25, 25, 51, 51, 99));
  EXPECT_EQ(m_progress.percent(), 100U);
}

TEST_F(KernelFlashWrite, FailsWithTheWordsOfTheDriver) {
  m_drivers.onDevlinkFlash = [this](const std::string&, const std::string&, const auto&) {
    store("", "7.1.0");
    return NetlinkAck{EIO, "testnic: flash write failed"};
  };
  EXPECT_EQ(failWriting(),
            "The adapter's driver has not written the firmware: testnic: flash write failed");
  EXPECT_THAT(staged(), IsEmpty());
  EXPECT_FALSE(hasEntry());
  EXPECT_LT(m_progress.percent(), 100U);
  EXPECT_EQ(m_backend.firmwareVersions(kKernelPort)[0],
            (FirmwareVersions{"fw.undi", "1.0.0", "", true}));
}

TEST_F(KernelFlashWrite, FailsWithTheKernelsWordsWhereTheDriverHasNone) {
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

TEST_F(KernelFlashWrite, FailsWhereTheFlashDoesNotHoldTheFilesVersions) {
  m_drivers.onDevlinkFlash = [this](const std::string&, const std::string&, const auto&) {
    store("1.1.0", "7.1.0");
    return NetlinkAck{};
  };
  EXPECT_EQ(failWriting(),
            "The flash does not hold what was written: fw.mgmt is 7.1.0, and the file has 7.2.0");
  EXPECT_FALSE(hasEntry());
  EXPECT_LT(m_progress.percent(), 100U);
}

TEST_F(KernelFlashWrite, LeavesTheEntryWhereTheVerdictIsLost) {
  m_drivers.onDevlinkFlash = [](const std::string&, const std::string&, const auto&) {
    return NetlinkAck{EIO, "the kernel did not say how it ended", true};
  };
  EXPECT_EQ(failWriting(),
            "The flash could not be compared with what was written: the kernel did not say how it "
            "ended");
  EXPECT_TRUE(hasEntry());
  EXPECT_LT(m_progress.percent(), 100U);
}

TEST_F(KernelFlashWrite, SucceedsWhereTheDriverTellsWhatRunsAlone) {
  m_drivers.answers[kKernelFunction].devlink->stored.clear();
  m_drivers.onDevlinkFlash = [](const std::string&, const std::string&, const auto&) {
    return NetlinkAck{};
  };
  write();
  EXPECT_EQ(m_progress.percent(), 100U);
  EXPECT_FALSE(hasEntry());
}

TEST_F(KernelFlashWrite, WaitsForADriverThatIsAwayAfterTheFlash) {
  DriverAnswer away;
  away.isAway = true;
  answerAfterTheFlash(away, 5);
  write();
  EXPECT_EQ(m_clock.slept(), std::chrono::milliseconds(2500));
  EXPECT_EQ(m_progress.percent(), 100U);
}

TEST_F(KernelFlashWrite, AsksAgainWhereTheDriverCannotBeAskedAfterTheFlash) {
  DriverAnswer unasked;
  unasked.error = ECANCELED;
  answerAfterTheFlash(unasked, 2);
  write();
  EXPECT_EQ(m_progress.percent(), 100U);
  EXPECT_FALSE(hasEntry());
}

TEST_F(KernelFlashWrite, LeavesTheEntryWhereTheDriverDoesNotAnswerAnyMore) {
  m_drivers.onDevlinkFlash = [this](const std::string&, const std::string&, const auto&) {
    m_drivers.answers[kKernelFunction] = {};
    m_drivers.answers[kKernelFunction].isAway = true;
    return NetlinkAck{};
  };
  EXPECT_EQ(failWriting(),
            "The flash could not be compared with what was written: the driver has written it, and "
            "does not tell any versions since; look at them when it does");
  EXPECT_TRUE(hasEntry());
  EXPECT_THAT(staged(), IsEmpty());
  EXPECT_EQ(m_clock.slept(), std::chrono::seconds(30));
}

TEST_F(KernelFlashWrite, FailsWhereTheDriverDoesNotTellAVersionAnyMore) {
  m_drivers.onDevlinkFlash = [this](const std::string&, const std::string&, const auto&) {
    store("1.1.0", "7.2.0");
    m_drivers.answers[kKernelFunction].devlink->stored.pop_back();
    return NetlinkAck{};
  };
  EXPECT_EQ(failWriting(),
            "The flash could not be compared with what was written: the driver has written it, and "
            "does not tell the version of fw.mgmt any more; look at it when it does");
  EXPECT_TRUE(hasEntry());
}

TEST_F(KernelFlashWrite, DoesNotWaitForADriverThatWasTakenAway) {
  m_drivers.onDevlinkFlash = [this](const std::string&, const std::string&, const auto&) {
    m_drivers.answers.clear();
    std::filesystem::remove(m_sysfs.folder(kKernelFunction) / "driver");
    return NetlinkAck{};
  };
  EXPECT_THAT(failWriting(), HasSubstr("does not tell any versions since"));
  EXPECT_TRUE(hasEntry());
  EXPECT_EQ(m_clock.slept(), std::chrono::seconds(0));
}

TEST_F(KernelFlashWrite, AsksForNoFlashThatIsNotInTheJournal) {
  m_drivers.onDevlinkFlash = [](const std::string&, const std::string&, const auto&) {
    ADD_FAILURE() << "the kernel was asked";
    return NetlinkAck{};
  };
  m_directory.write("kernel", std::string("no folder"));
  EXPECT_THAT(failWriting(), HasSubstr("no record of the update can be kept, so it has not begun"));
  EXPECT_THAT(staged(), IsEmpty());
}

TEST_F(KernelFlashWrite, LeavesNothingWhereAStepBeforeTheFlashFails) {
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

TEST_F(KernelFlashWrite, SucceedsWhereTheEntryCannotBeRemoved) {
  m_files.beforeStep = [](const std::string& name, const std::filesystem::path& path) {
    if (name == "remove" && path.extension() == ".json") {
      test::WatchedFileSystem::failAsFullDisk("remove", path);
    }
  };
  write();
  EXPECT_EQ(m_progress.percent(), 100U);
  EXPECT_TRUE(hasEntry());
}

TEST_F(KernelFlashWrite, LetsOneWriteAnAdapterAtATime) {
  m_drivers.onDevlinkFlash = [this](const std::string&, const std::string&, const auto&) {
    EXPECT_THAT(failWriting(), HasSubstr("another program is writing the adapter"));
    store("1.1.0", "7.2.0");
    return NetlinkAck{};
  };
  write();
}

TEST_F(KernelFlashWrite, RefusesToWriteWhatCannotBeUpdated) {
  m_drivers.isPrivileged = false;
  EXPECT_THAT(failWriting(), HasSubstr("cannot be replaced: writing firmware needs"));
  EXPECT_FALSE(hasEntry());
}

TEST_F(KernelFlashWrite, LeavesOtherAdaptersAlone) {
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

TEST_F(KernelFlashWrite, WritesByEthtoolForDriversOfTheTable) {
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

// A check of a file, and something that happens before the file is written.
class KernelFlashWriteAfterACheck : public KernelFlashWrite {
 protected:
  KernelFlashWriteAfterACheck() {
    m_drivers.onDevlinkFlash = [this](const std::string&, const std::string&, const auto&) {
      ++m_flashes;
      store("1.1.0", "7.2.0");
      return NetlinkAck{};
    };
    m_drivers.onEthtoolFlash = [this](const std::string& interface, const std::string&) {
      ++m_flashes;
      m_interface = interface;
      return NetlinkAck{};
    };
    m_drivers.answers[kKernelFunction].vpd = serialNumber("A1");
    m_sysfs.setAttribute(kKernelFunction, "vpd", "");
  }

  static ma::FileAnswer serialNumber(const std::string& number) {
    return {0, test::VpdBuilder().name("x").readOnly({{"SN", number}}).build()};
  }
  // Returns what is to be written.
  Bytes check(const Bytes& file = kernelPackage("1.1.0", "7.2.0"),
              const ma::PortId& port = kKernelPort) {
    Bytes image(file.size());
    const ma::Preparation preparation = m_backend.prepare(port, file, image, {});
    EXPECT_EQ(preparation.status, ma::PrepareStatus::Ok) << preparation.reason;
    image.resize(preparation.filled);
    return image;
  }
  void expectRefusal(const std::string& text, std::uint32_t code = 213) {
    try {
      write();
      ADD_FAILURE() << "it was written: " << text;
    } catch (const ma::FlashFault& fault) {
      EXPECT_EQ(fault.code(), code);
      EXPECT_THAT(fault.what(), HasSubstr(text));
      EXPECT_THAT(fault.what(), HasSubstr(code == 213 ? "; check the file against it again" : ""));
    }
    EXPECT_EQ(m_flashes, 0);
    EXPECT_THAT(staged(), IsEmpty());
    EXPECT_FALSE(hasEntry());
  }
  // As late as anything can happen.
  void beforeTheFlash(const std::function<void()>& act) {
    m_files.afterStep = [this, act](const std::string& name, const std::filesystem::path& path) {
      if (name == "replace" && path.parent_path() == m_places.journal) {
        act();
      }
    };
  }

  int m_flashes = 0;
  std::string m_interface;
};

TEST_F(KernelFlashWriteAfterACheck, WritesTheAdapterThatWasChecked) {
  check();
  passASecond();
  write();
  EXPECT_EQ(m_flashes, 1);
}

TEST_F(KernelFlashWriteAfterACheck, DoesNotWriteADeviceOfOtherIds) {
  check();
  m_sysfs.setAttribute(kKernelFunction, "subsystem_device", "0x1101");
  expectRefusal(
      "The adapter is not as it was when the file was checked: 0000:03:00.0: its device was "
      "8086:10d3 sub 1af4:1100, and is 8086:10d3 sub 1af4:1101 now");
}

TEST_F(KernelFlashWriteAfterACheck, DoesNotWriteThroughAnotherDriver) {
  check();
  std::filesystem::remove(m_sysfs.folder(kKernelFunction) / "driver");
  m_sysfs.bindDriver(kKernelFunction, "ice");
  expectRefusal("its driver was testnic, and is ice now");
}

TEST_F(KernelFlashWriteAfterACheck, DoesNotWriteACardOfAnotherSerialNumber) {
  check();
  m_drivers.answers[kKernelFunction].vpd = serialNumber("B2");
  expectRefusal("the serial number in the VPD of 0000:03:00.0 was A1, and is B2 now");
}

TEST_F(KernelFlashWriteAfterACheck, DoesNotWriteOverVersionsThatNobodyCompared) {
  check();
  store("1.0.5", "7.1.0");
  expectRefusal("fw.undi was 1.0.0, and is 1.0.5 now");
}

TEST_F(KernelFlashWriteAfterACheck, DoesNotWriteOverImagesThatNobodyCompared) {
  check();
  m_drivers.answers[kKernelFunction].rom = {
      0, test::RomBuilder().add(test::kernelRomImage().version(9, 9)).build()};
  expectRefusal("image 1 of its option ROM was ");
}

TEST_F(KernelFlashWriteAfterACheck, LooksAtTheLastCheckOfTheFile) {
  check();
  store("1.0.5", "7.1.0");
  passASecond();
  check();
  write();
  EXPECT_EQ(m_flashes, 1);
}

TEST_F(KernelFlashWriteAfterACheck, WaitsForADriverThatDoesNotSayWhetherItIsTheSame) {
  check();
  const DriverAnswer awake = m_drivers.answers[kKernelFunction];
  m_drivers.answers[kKernelFunction] = {};
  m_drivers.answers[kKernelFunction].isAway = true;
  m_clock.afterEachSleep([this, awake](int sleeps) {
    if (sleeps == 2) {
      m_drivers.answers[kKernelFunction] = awake;
    }
  });
  write();
  EXPECT_EQ(m_flashes, 1);
}

TEST_F(KernelFlashWriteAfterACheck, DoesNotWriteWhatNobodyCanTellFromAnother) {
  check();
  m_drivers.answers[kKernelFunction].error = EBUSY;
  expectRefusal("its driver testnic does not answer, so nobody can tell whether 0000:03:00.0 is as",
                203);
}

TEST_F(KernelFlashWriteAfterACheck, DoesNotWriteWhatIsExchangedInTheLastMoment) {
  check();
  beforeTheFlash([this] { m_sysfs.setAttribute(kKernelFunction, "device", "0x10d4"); });
  expectRefusal("its device was 8086:10d3 sub");
  beforeTheFlash(
      [this] { std::filesystem::remove(m_sysfs.root() / "bus/pci/devices" / kKernelFunction); });
  m_sysfs.setAttribute(kKernelFunction, "device", "0x10d3");
  expectRefusal("0000:03:00.0 has been taken away");
}

TEST_F(KernelFlashWriteAfterACheck, FollowsAnInterfaceThatIsRenamed) {
  addFunction(kOtherFunction, "qede");
  m_settings.trustedDrivers = {"qede"};
  const Bytes file = {0x87, 0x56, 0x43, 0x12, 0, 0, 0, 0, 0, 0, 0, 0};
  const ma::PortId port{{0, 4, 0}, 0};
  check(file, port);
  const auto net = m_sysfs.folder(kOtherFunction) / "net";
  beforeTheFlash([&] { std::filesystem::rename(net / "eth040", net / "lan0"); });
  write(file, port);
  EXPECT_EQ(m_interface, "lan0");
  beforeTheFlash([&] { std::filesystem::remove_all(net / "lan0"); });
  EXPECT_THROW(write(file, port), ma::FlashFault);
  EXPECT_EQ(m_flashes, 1);
  EXPECT_FALSE(hasEntry("0000-04-00.json"));
}

TEST_F(KernelFlashWrite, GoesTheSameWayAfterAnInterruption) {
  addFunction(kOtherFunction, "bnxt_en");  // which has both ways, and no devlink just now
  m_settings.trustedDrivers = {"bnxt_en"};
  int flashes = 0;
  m_drivers.onEthtoolFlash = [&](const std::string&, const std::string&) -> NetlinkAck {
    m_files.isDead = ++flashes == 1;
    return m_files.isDead ? throw std::runtime_error("killed") : NetlinkAck{};
  };
  m_drivers.onDevlinkFlash = [](const std::string&, const std::string&, const auto&) {
    return NetlinkAck{ENODEV, ""};
  };
  const Bytes file = {'B', 'N', 'X', 'T', 0, 0, 0, 0, 0, 0, 0, 0};
  const ma::PortId port{{0, 4, 0}, 0};
  EXPECT_THROW(write(file, port), std::runtime_error);
  m_files.isDead = false;
  ASSERT_TRUE(hasEntry("0000-04-00.json"));
  passASecond();
  EXPECT_NO_THROW(write(file, port));
  EXPECT_EQ(flashes, 2);
}

TEST_F(KernelFlashWrite, TellsOfAnInterruptedUpdateThatTheKernelHasFinished) {
  dieWriting("1.1.0", "7.2.0");
  EXPECT_TRUE(hasEntry());
  EXPECT_EQ(staged().size(), 1U);
  const AdapterList list = m_backend.list();
  EXPECT_THAT(staged(), IsEmpty());
  EXPECT_THAT(list.adapters[0].notes,
              ElementsAre("an update was interrupted; the kernel has finished it since: the flash "
                          "holds what the file has (fw.undi 1.1.0, fw.mgmt 7.2.0)"));
  EXPECT_THAT(list.problems, IsEmpty());
  EXPECT_FALSE(hasEntry());
  EXPECT_THAT(listing().notes, IsEmpty());
}

TEST_F(KernelFlashWrite, TellsOfAnInterruptedUpdateUntilTheNextOne) {
  dieWriting("", "7.1.0");
  for (int looks = 0; looks < 2; ++looks) {
    const AdapterList list = m_backend.list();
    ASSERT_EQ(list.problems.size(), 1U);
    EXPECT_EQ(list.problems[0].place, "0000:03:00");
    EXPECT_EQ(list.problems[0].text,
              "an update was interrupted; the flash holds neither what it held before nor what the "
              "file has (fw.undi (none), fw.mgmt 7.1.0)");
    EXPECT_EQ(list.problems[0].advice, "update it again before the machine starts anew");
    EXPECT_THAT(list.adapters[0].notes,
                ElementsAre(HasSubstr("no stored version of fw.undi"), list.problems[0].text));
    EXPECT_THAT(staged(), IsEmpty());
  }
  m_drivers.onDevlinkFlash = [this](const std::string&, const std::string&, const auto&) {
    EXPECT_EQ(staged().size(), 1U);
    store("1.1.0", "7.2.0");
    return NetlinkAck{};
  };
  write();
  EXPECT_THAT(staged(), IsEmpty());
  EXPECT_THAT(m_backend.list().problems, IsEmpty());
}

TEST_F(KernelFlashWrite, TellsOfAnInterruptedUpdateThatHasChangedNothing) {
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

TEST_F(KernelFlashWrite, DoesNotTakeWhatRunsForWhatAnErasedFlashHolds) {
  dieWriting("", "");
  const AdapterList list = m_backend.list();
  ASSERT_EQ(list.problems.size(), 1U);
  EXPECT_EQ(list.problems[0].text,
            "an update was interrupted; the flash holds neither what it held before nor what the "
            "file has (fw.undi (none), fw.mgmt (none))");
}

TEST_F(KernelFlashWrite, SaysNothingOfAnInterruptedUpdateWhileItGoesOn) {
  dieWriting("1.0.0", "7.1.0");
  m_drivers.answers[kKernelFunction].isAway = true;
  const AdapterList list = m_backend.list();
  EXPECT_TRUE(list.adapters[0].isBeingWritten);
  EXPECT_THAT(list.adapters[0].notes, IsEmpty());
  EXPECT_THAT(list.problems, IsEmpty());
  EXPECT_TRUE(hasEntry());
}

TEST_F(KernelFlashWrite, NamesAnEntryThatIsNone) {
  m_directory.write("kernel/0000-03-00.json", std::string("{"));
  const AdapterList list = m_backend.list();
  ASSERT_EQ(list.problems.size(), 1U);
  EXPECT_THAT(list.problems[0].text, HasSubstr("0000-03-00.json is no entry of a flash"));
  m_drivers.isPrivileged = false;
  EXPECT_THAT(m_backend.list().problems, IsEmpty());
}

TEST_F(KernelFlashWrite, SweepsAwayWhatAProcessLeftThatWasKilledBeforeItsEntry) {
  m_directory.write("firmware/quorvel-0000-03-00.fw.new-0123456789abcdef", std::string("x"));
  m_drivers.onDevlinkFlash = [this](const std::string&, const std::string&, const auto&) {
    EXPECT_EQ(staged().size(), 1U);
    store("1.1.0", "7.2.0");
    return NetlinkAck{};
  };
  write();
  EXPECT_THAT(staged(), IsEmpty());
}

TEST_F(KernelFlashWrite, IsSweptAwayByAListWhereItDidNotComeToTheKernel) {
  dieStaging();
  EXPECT_THAT(m_backend.list().problems, IsEmpty());
  EXPECT_THAT(staged(), IsEmpty());
}

TEST_F(KernelFlashWrite, IsSweptAwayByWhoLooksForInterruptedOnes) {
  dieStaging();
  EXPECT_THAT(m_backend.interruptedWrites(), IsEmpty());
  EXPECT_THAT(staged(), IsEmpty());
}

TEST_F(KernelFlashWrite, IsNotSweptAwayWhileItsWriterLives) {
  dieStaging();
  const ma::FlashJournal journal(m_files, m_places.journal, m_clock);
  const ma::FlashJournal::Claim writer = journal.claim(kKernelAdapter);
  EXPECT_THAT(m_backend.list().problems, IsEmpty());
  EXPECT_THAT(m_backend.interruptedWrites(), IsEmpty());
  EXPECT_EQ(staged().size(), 1U);
}

TEST_F(KernelFlashWrite, IsNotTakenForInterruptedWhereItBeginsDuringAList) {
  const ma::FlashJournal journal(m_files, m_places.journal, m_clock);
  std::optional<ma::FlashJournal::Claim> writer;
  m_drivers.beforeAnswer = [&](const std::vector<std::string>&) {
    writer.emplace(journal.claim(kKernelAdapter));
    writer->enter({1, 2, {}, {{"fw.undi", "1.1.0"}}, {}});
  };
  EXPECT_THAT(m_backend.list().problems, IsEmpty());
  EXPECT_TRUE(hasEntry());
}

TEST_F(KernelFlashWrite, IsNotTakenForInterruptedWhereItEndsDuringAList) {
  dieWriting("", "7.1.0");
  m_files.beforeStep = [this](const std::string& name, const std::filesystem::path&) {
    if (name == "lock") {
      std::filesystem::remove(m_places.journal / "0000-03-00.json");
    }
  };
  EXPECT_THAT(m_backend.list().problems, IsEmpty());
}

TEST_F(KernelFlashWrite, IsNotTakenForInterruptedWhereItsWriterIsNotSeen) {
  dieWriting("", "7.1.0");
  const ma::FlashJournal journal(ma::nativeFileSystem(), m_places.journal, m_clock);
  std::optional<ma::FlashJournal::Claim> writer;
  m_files.beforeStep = [&](const std::string& name, const std::filesystem::path&) {
    if (name == "lock" && !writer) {
      writer.emplace(journal.claim(kKernelAdapter));
    }
  };
  EXPECT_THAT(m_backend.list().problems, IsEmpty());
  EXPECT_EQ(staged().size(), 1U);
}

TEST_F(KernelFlashWrite, KeepsAnEntryThatWasMadeAfterTheLookAtIt) {
  dieWriting("1.1.0", "7.2.0");
  m_files.beforeStep = [this](const std::string& name, const std::filesystem::path&) {
    if (name == "lock") {
      m_directory.write("kernel/0000-03-00.json",
                        std::string(R"({"size": 1, "digest": "af63dc4c8601ec8c", "before": {},
                                        "expected": {}, "running": {}})"));
    }
  };
  EXPECT_THAT(m_backend.list().problems, IsEmpty());
  EXPECT_TRUE(hasEntry());
}

}  // namespace
