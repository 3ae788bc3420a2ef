// Writing: what is left after each step that fails, and after a process that was killed.

#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <gmock/gmock.h>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/midapi/Kernel/KernelBackendFixture.h"

namespace {

using ma::AdapterList;
using ma::DevlinkFlashEvent;
using ma::DriverAnswer;
using ma::FirmwareVersions;
using ma::NetlinkAck;
using test::Bytes;
using test::kernelPackage;
using test::kKernelFunction;
using test::kKernelPort;
using test::kOtherFunction;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class KernelFlashWrite : public test::KernelBackendFixture {
 protected:
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
  EXPECT_EQ(m_progress.remark(),
            "its driver qede says that it is written, and nothing shows what the flash holds now");
  EXPECT_FALSE(hasEntry("0000-04-00.json"));
}

class KernelRomWrite : public KernelFlashWrite {
 protected:
  static Bytes rom(std::uint8_t minor) {
    return test::RomBuilder().add(test::kernelRomImage().version(1, minor)).build();
  }
  // A flash by ethtool, after which the adapter shows such an option ROM.
  void showAfterTheFlash(const Bytes& shown) {
    addFunction(kOtherFunction, "cxgb4");
    m_drivers.onEthtoolFlash = [this, shown](const std::string&, const std::string&) {
      m_drivers.answers[kOtherFunction].rom = {0, shown};
      return NetlinkAck{};
    };
  }
  std::string failWritingRom() {
    try {
      write(rom(1), {{0, 4, 0}, 0});
    } catch (const ma::FlashFault& fault) {
      return fault.what();
    }
    return {};
  }
};

TEST_F(KernelRomWrite, SucceedsWhereTheAdapterShowsTheFilesOptionRom) {
  showAfterTheFlash(rom(1));
  EXPECT_EQ(failWritingRom(), "");
  EXPECT_EQ(m_progress.percent(), 100U);
  EXPECT_EQ(m_progress.remark(), "");
  EXPECT_EQ(m_backend.installedFirmware({{0, 4, 0}, 0}).at(0).version.minorRevision, 1);
}

TEST_F(KernelRomWrite, SucceedsWhereTheOldOneIsShownUntilTheNextStart) {
  showAfterTheFlash(rom(0));
  EXPECT_EQ(failWritingRom(), "");
  EXPECT_THAT(m_progress.remark(), HasSubstr("nothing shows what the flash holds now"));
  EXPECT_FALSE(hasEntry("0000-04-00.json"));
}

TEST_F(KernelRomWrite, FailsWhereAThirdOneIsShown) {
  showAfterTheFlash(rom(9));
  EXPECT_EQ(failWritingRom(),
            "The flash does not hold what was written: its option ROM is neither the one from "
            "before nor the file's");
  EXPECT_FALSE(hasEntry("0000-04-00.json"));
  EXPECT_LT(m_progress.percent(), 100U);
}

TEST_F(KernelFlashWrite, FailsWhereTheFlashIsEmptyAfterAFileThatTellsNoVersions) {
  addFunction(kOtherFunction, "hinic");
  store("1.0.0", "7.1.0", kOtherFunction);
  m_settings.trustedDrivers = {"hinic"};
  m_drivers.onDevlinkFlash = [this](const std::string&, const std::string&, const auto&) {
    store("", "7.1.0", kOtherFunction);
    return NetlinkAck{};
  };
  try {
    write(Bytes(600, 0x11), {{0, 4, 0}, 0});
    ADD_FAILURE() << "an empty flash is none that was written";
  } catch (const ma::FlashFault& fault) {
    EXPECT_STREQ(fault.what(),
                 "The flash does not hold what was written: there is no fw.undi in it any more");
  }
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

}  // namespace
