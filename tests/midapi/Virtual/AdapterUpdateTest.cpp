#include <algorithm>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <memory>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "midapi/BoundedJson.h"
#include "midapi/TemporaryFiles.h"
#include "midapi/Virtual/AdapterUpdate.h"
#include "tests/midapi/AdapterFixture.h"
#include "tests/midapi/WatchedFileSystem.h"
#include "tests/support/FakeClock.h"

namespace {

using ma::AdapterFolder;
using ma::AdapterState;
using ma::AdapterUpdate;
using ma::BootType;
using ma::FileFault;
using ma::FlashFault;
using ma::nativeFileSystem;
using ma::settleUpdate;
using test::WatchedFileSystem;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;

using Bytes = std::vector<std::uint8_t>;
using Path = std::filesystem::path;

constexpr const char* kPci = "0000:03:00";

// What a process that is killed at some step never gets past.
struct Death {};

class AdapterUpdateTest : public testing::Test {
 protected:
  AdapterUpdateTest() { m_adapters.makeAdapter(kPci, m_old); }

  [[nodiscard]] AdapterFolder folder() { return {m_files, m_adapters.directory(), {0, 3, 0}}; }
  [[nodiscard]] std::unique_ptr<AdapterUpdate> begin() {
    return std::make_unique<AdapterUpdate>(m_files, folder(), m_clock);
  }
  // Asks for all that an update changes.
  void ask(AdapterUpdate& update) {
    update.setBootType(0, BootType::None);
    update.setBootType(1, BootType::None);
    update.writeFlash(m_new, m_progress);
    update.setCapabilityWord(24);
  }
  void runUpdate() {
    const auto update = begin();
    ask(*update);
    update->commit();
  }
  template <class Operation>
  std::pair<std::uint32_t, std::string> faultOf(Operation operation) {
    try {
      operation();
    } catch (const FlashFault& fault) {
      return {fault.code(), fault.what()};
    }
    return {};
  }

  // Returns what anybody who looks sees: "old", "new", or what is wrong.
  [[nodiscard]] std::string state() {
    const AdapterState state =
        AdapterFolder(nativeFileSystem(), m_adapters.directory(), {0, 3, 0}).state();
    const auto flash = state.flash.view();
    const bool isOldFlash = std::ranges::equal(flash, m_old);
    const bool isNewFlash = std::ranges::equal(flash, m_new);
    const std::uint32_t word = state.description.capabilityWord;
    const BootType left = state.description.findPort(0)->bootType;
    const BootType right = state.description.findPort(1)->bootType;
    if (isOldFlash && word == 0 && left == BootType::Pxe && right == BootType::Pxe) {
      return "old";
    }
    if (isNewFlash && word == 24 && left == BootType::None && right == BootType::None) {
      return "new";
    }
    return "flash " + std::to_string(flash.size()) + " word " + std::to_string(word) + " boot " +
           std::to_string(static_cast<int>(left)) + std::to_string(static_cast<int>(right));
  }
  [[nodiscard]] std::vector<std::string> files() const { return m_adapters.filesOf(kPci); }
  void makeOldAgain() {
    std::filesystem::remove_all(m_adapters.folder(kPci));
    m_adapters.makeAdapter(kPci, m_old);
  }

  const Bytes m_old = Bytes(1000, 'o');
  const Bytes m_new = Bytes(3000, 'n');
  test::AdapterFixture m_adapters;
  WatchedFileSystem m_files;
  test::FakeClock m_clock;
  ma::WriteProgress m_progress;
};

TEST_F(AdapterUpdateTest, ChangesAllAtOnce) {
  const auto update = begin();
  ask(*update);
  EXPECT_EQ(state(), "old");
  update->commit();
  EXPECT_EQ(state(), "new");
  EXPECT_EQ(m_adapters.flash(kPci), m_new);
  EXPECT_EQ(m_adapters.get(kPci, "/capabilityWord"), "24");
  EXPECT_EQ(m_adapters.get(kPci, "/ports/1/bootType"), "0");
}

TEST_F(AdapterUpdateTest, LeavesNothingBehind) {
  runUpdate();
  EXPECT_THAT(files(), ElementsAre("adapter.json", "flash.rom"));
}

TEST_F(AdapterUpdateTest, TakesBackWhatWasNotCommitted) {
  ask(*begin());
  EXPECT_EQ(state(), "old");
  EXPECT_THAT(files(), ElementsAre("adapter.json", "flash.rom"));
}

TEST_F(AdapterUpdateTest, ShowsTheFlashThatIsToBe) {
  const auto update = begin();
  EXPECT_EQ(update->flashToBe().view().size(), m_old.size());
  ask(*update);
  EXPECT_EQ(update->flashToBe().view().size(), m_new.size());
}

TEST_F(AdapterUpdateTest, KeepsWhatItDoesNotKnow) {
  m_adapters.set(kPci, "/comment", "\"mine\"");
  const auto update = begin();
  update->setBootType(1, BootType::Fcoe);
  update->commit();
  EXPECT_EQ(m_adapters.get(kPci, "/ports/1/bootType"), "3");
  EXPECT_EQ(m_adapters.get(kPci, "/ports/0/bootType"), "1");
  EXPECT_EQ(m_adapters.get(kPci, "/comment"), "\"mine\"");
}

TEST_F(AdapterUpdateTest, KeepsWhatWasEditedMeanwhile) {
  const auto update = begin();
  ask(*update);
  m_adapters.set(kPci, "/name", "\"Renamed\"");
  update->commit();
  EXPECT_EQ(state(), "new");
  EXPECT_EQ(m_adapters.get(kPci, "/name"), "\"Renamed\"");
}

TEST_F(AdapterUpdateTest, MayLeaveAnEmptyFlash) {
  const auto update = begin();
  update->writeFlash({}, m_progress);
  update->setCapabilityWord(24);
  update->commit();
  EXPECT_EQ(m_adapters.flash(kPci), Bytes());
  EXPECT_THAT(files(), testing::Not(Contains("update.json")));
}

TEST_F(AdapterUpdateTest, WritesNoDescriptionThatStaysTheSame) {
  const std::string before = m_adapters.description(kPci);
  const auto update = begin();
  update->setBootType(0, BootType::Pxe);
  update->writeFlash(m_new, m_progress);
  update->commit();
  EXPECT_EQ(m_adapters.flash(kPci), m_new);
  EXPECT_EQ(m_adapters.description(kPci), before);
}

TEST_F(AdapterUpdateTest, KeepsTheDescriptionWhenAChangeOfItWouldBeTooLargeToRead) {
  std::string text =
      R"({"name":"Lab","pci":"0000:03:00","vendorId":"1af4","deviceId":"1041","notes":"",)"
      R"("ports":[{"function":0,"mac":"02:00:00:03:00:00","bootType":1}]})";
  text.insert(text.find("\",\"ports"), ma::kMaxJsonSize - text.size(), 'x');
  m_adapters.describe(kPci, text);
  const auto [code, reason] = faultOf([&] { runUpdate(); });
  EXPECT_EQ(code, 202U);
  EXPECT_THAT(reason, AllOf(HasSubstr("adapter.json: it stays as it is"), HasSubstr("1048576")));
  EXPECT_EQ(m_adapters.description(kPci), text);
  EXPECT_EQ(m_adapters.flash(kPci), m_old);
  EXPECT_EQ(folder().description().name, "Lab");
}

TEST_F(AdapterUpdateTest, HasTheAdapterForItself) {
  const auto update = begin();
  const auto [code, text] = faultOf([&] { static_cast<void>(begin()); });
  EXPECT_EQ(code, 205U);
  EXPECT_THAT(
      text, AllOf(HasSubstr("another program is changing the adapter"), HasSubstr("update.lock")));
  EXPECT_EQ(m_clock.slept(), std::chrono::seconds(2));
}

TEST_F(AdapterUpdateTest, IsNotTakenForADeadOneWhileItRuns) {
  // Before its last step: all is decided, and not all is done.
  int looks = 0;
  m_files.beforeStep = [&](const std::string& step, const Path& path) {
    if (step == "remove" && path.filename() == "update.json") {
      ++looks;
      settleUpdate(nativeFileSystem(), folder());
      EXPECT_THAT(files(), Contains("update.json"));
      EXPECT_EQ(state(), "new");
    }
  };
  runUpdate();
  EXPECT_EQ(looks, 1);
}

TEST_F(AdapterUpdateTest, SweepsAwayWhatDeadProcessesLeft) {
  for (const char* name : {"flash.rom.new-0123456789abcdef", "adapter.json.new-0123456789abcdef",
                           "update.json.new-0123456789abcdef", "flash.rom.new", "notes.new"}) {
    std::ofstream(m_adapters.folder(kPci) / name) << "x";
  }
  runUpdate();
  EXPECT_THAT(files(), ElementsAre("adapter.json", "flash.rom", "notes.new"));
}

TEST_F(AdapterUpdateTest, ReachesTheDiskBeforeItIsDecidedAndInThatOrder) {
  std::vector<std::string> steps;
  m_files.afterStep = [&](const std::string& step, const Path& path) {
    const std::string name = path.filename().string();
    if (step != "create" && step != "append" && step != "close") {
      steps.push_back(step + " " + name.substr(0, name.find(".new-")));
    }
  };
  runUpdate();
  EXPECT_THAT(steps, ElementsAre("sync flash.rom", "sync adapter.json", "sync update.json",
                                 "replace update.json", "replace flash.rom", "replace adapter.json",
                                 "remove update.json"));
}

// An update whose process comes to its end, or to a failure, before or after one of its steps; each
// in its turn.
class BrokenUpdate : public AdapterUpdateTest {
 protected:
  // Runs updates of an old adapter, with `act` called at the first moment, the second, and so on,
  // until one has no more of them; `judge` follows each. Returns the number of moments.
  template <class Act, class Judge>
  int atEachMoment(Act act, Judge judge) {
    for (int moment = 0;; ++moment) {
      makeOldAgain();
      int seen = 0;
      const auto hook = [&](const std::string& step, const Path& path) {
        if (seen++ == moment) {
          SCOPED_TRACE(step);
          act(step, path);
        }
      };
      m_files.beforeStep = hook;
      m_files.afterStep = hook;
      SCOPED_TRACE("moment " + std::to_string(moment));
      judge();
      if (seen <= moment) {
        return moment;
      }
    }
  }
  void forget() {
    m_files.beforeStep = [](const std::string&, const Path&) {};
    m_files.afterStep = m_files.beforeStep;
    m_files.isDead = false;
  }
  // Runs an update that breaks; it has to be as its result tells. Returns whether it failed.
  bool failsAsItTells() {
    const auto [code, text] = faultOf([&] { runUpdate(); });
    forget();
    const std::string told = code == 0 ? "new" : "old";
    EXPECT_EQ(state(), told) << text;
    EXPECT_THAT(code, testing::AnyOf(0U, 205U)) << text;
    settleUpdate(nativeFileSystem(), folder());
    EXPECT_EQ(state(), told) << text;
    expectNextUpdateToTidyUp();
    return code != 0;
  }
  void expectNextUpdateToTidyUp() {
    runUpdate();
    EXPECT_EQ(state(), "new");
    EXPECT_THAT(files(), ElementsAre("adapter.json", "flash.rom"));
  }
};

TEST_F(BrokenUpdate, IsWhollyDoneOrNotAtAllWhereverItsProcessDies) {
  int olds = 0;
  int news = 0;
  const int moments = atEachMoment(
      [&](const std::string&, const Path&) {
        m_files.isDead = true;
        throw Death{};
      },
      [&] {
        try {
          runUpdate();
        } catch (const Death&) {
        }
        forget();
        const std::string before = state();
        EXPECT_THAT(before, testing::AnyOf("old", "new"));
        ++(before == "old" ? olds : news);
        settleUpdate(nativeFileSystem(), folder());
        EXPECT_EQ(state(), before);
        EXPECT_THAT(files(), testing::Not(Contains("update.json")));
        EXPECT_EQ(m_adapters.flash(kPci), before == "old" ? m_old : m_new);
        EXPECT_EQ(m_adapters.get(kPci, "/capabilityWord"), before == "old" ? "" : "24");
        expectNextUpdateToTidyUp();
      });
  EXPECT_GE(moments, 30);
  EXPECT_GE(olds, 10);
  EXPECT_GE(news, 5);
}

TEST_F(BrokenUpdate, ChangesNothingWhereItFailsAndAllWhereItDoesNot) {
  for (const auto error : {std::errc::no_space_on_device, std::errc::io_error}) {
    int failures = 0;
    atEachMoment(
        [&](const std::string& step, const Path& path) {
          throw FileFault(step, path, std::make_error_code(error));
        },
        [&] { failures += failsAsItTells() ? 1 : 0; });
    EXPECT_GE(failures, 20);
  }
}

// Who cleans a disk may know the endings of temporary files.
TEST_F(BrokenUpdate, FailsWhereItsNewFilesAreTakenAway) {
  int failures = 0;
  atEachMoment(
      [&](const std::string&, const Path&) {
        for (const std::string& name : files()) {
          if (ma::baseOfTemporary(name)) {
            std::filesystem::remove(folder().path() / name);
          }
        }
      },
      [&] { failures += failsAsItTells() ? 1 : 0; });
  EXPECT_GE(failures, 10);
}

// A change of one file has no journal: a disk that is slow to confirm the new one has it all the
// same.
TEST_F(BrokenUpdate, TellsTheTruthOfAFlashAlone) {
  int failures = 0;
  const int moments = atEachMoment(
      [&](const std::string& step, const Path& path) {
        throw FileFault(step, path, std::make_error_code(std::errc::io_error));
      },
      [&] {
        const auto [code, text] = faultOf([&] {
          const auto update = begin();
          update->writeFlash(m_new, m_progress);
          update->commit();
        });
        forget();
        failures += code != 0 ? 1 : 0;
        EXPECT_TRUE(m_adapters.flash(kPci) == (code == 0 ? m_new : m_old)) << text;
        expectNextUpdateToTidyUp();
      });
  EXPECT_GE(failures, 8);
  EXPECT_LT(failures, moments);
}

TEST_F(BrokenUpdate, TellsTheTruthOfADescriptionAlone) {
  int failures = 0;
  const int moments = atEachMoment(
      [&](const std::string& step, const Path& path) {
        throw FileFault(step, path, std::make_error_code(std::errc::io_error));
      },
      [&] {
        const auto [code, text] = faultOf([&] {
          const auto update = begin();
          update->setCapabilityWord(24);
          update->commit();
        });
        forget();
        failures += code != 0 ? 1 : 0;
        EXPECT_EQ(m_adapters.get(kPci, "/capabilityWord"), code == 0 ? "24" : "") << text;
        expectNextUpdateToTidyUp();
      });
  EXPECT_GE(failures, 8);
  EXPECT_LT(failures, moments);
}

// The disk takes nothing from that moment on.
TEST_F(BrokenUpdate, IsWhollyDoneOrNotAtAllOnADiskThatBreaks) {
  bool isBroken = false;
  atEachMoment([&](const std::string&, const Path&) { isBroken = true; },
               [&] {
                 const auto hook = [&, inner = m_files.beforeStep](const std::string& step,
                                                                   const Path& path) {
                   inner(step, path);
                   if (isBroken) {
                     throw FileFault(step, path, std::make_error_code(std::errc::io_error));
                   }
                 };
                 m_files.beforeStep = hook;
                 m_files.afterStep = hook;
                 static_cast<void>(faultOf([&] { runUpdate(); }));
                 isBroken = false;
                 forget();
                 EXPECT_THAT(state(), testing::AnyOf("old", "new"));
                 expectNextUpdateToTidyUp();
               });
}

TEST_F(BrokenUpdate, IsCompletedAsOftenAsItTakes) {
  // Dies when all is decided and nothing done, and so do those that complete it, each a step later.
  m_files.afterStep = [&](const std::string& step, const Path& path) {
    if (step == "replace" && path.filename() == "update.json") {
      m_files.isDead = true;
      throw Death{};
    }
  };
  EXPECT_THROW(runUpdate(), Death);
  int deaths = 0;
  for (int limit = 0; limit < 20; ++limit) {
    forget();
    EXPECT_EQ(state(), "new");
    int seen = 0;
    m_files.afterStep = [&](const std::string&, const Path&) {
      if (++seen > limit) {
        m_files.isDead = true;
        throw Death{};
      }
    };
    try {
      settleUpdate(m_files, folder());
    } catch (const Death&) {
      ++deaths;
    }
  }
  forget();
  EXPECT_GE(deaths, 4);
  EXPECT_EQ(state(), "new");
  expectNextUpdateToTidyUp();
}

TEST_F(BrokenUpdate, IsCompletedWithAnEmptyFlash) {
  m_files.afterStep = [&](const std::string& step, const Path& path) {
    if (step == "replace" && path.filename() == "update.json") {
      m_files.isDead = true;
      throw Death{};
    }
  };
  const auto update = begin();
  update->writeFlash({}, m_progress);
  update->setCapabilityWord(24);
  EXPECT_THROW(update->commit(), Death);
  forget();
  EXPECT_EQ(folder().state().description.capabilityWord, 24U);
  EXPECT_EQ(folder().flash().view().size(), 0U);
}

TEST_F(BrokenUpdate, IsReadByThoseWhoMayNotCompleteIt) {
  m_files.afterStep = [&](const std::string& step, const Path& path) {
    if (step == "replace" && path.filename() == "update.json") {
      m_files.isDead = true;
      throw Death{};
    }
  };
  EXPECT_THROW(runUpdate(), Death);
  forget();
  m_files.beforeStep = [](const std::string& step, const Path& path) {
    throw FileFault(step, path, std::make_error_code(std::errc::permission_denied));
  };
  const auto before = files();
  settleUpdate(m_files, folder());
  EXPECT_EQ(files(), before);
  EXPECT_EQ(state(), "new");
}

TEST_F(AdapterUpdateTest, IsNotBegunWhereAnotherCannotBeCompleted) {
  std::ofstream(m_adapters.folder(kPci) / "update.json") << "{}";
  const auto [code, text] = faultOf([&] { runUpdate(); });
  EXPECT_EQ(code, 202U);
  EXPECT_THAT(text, HasSubstr("update.json: it is no journal of an update"));
  EXPECT_EQ(m_adapters.flash(kPci), m_old);
}

}  // namespace
