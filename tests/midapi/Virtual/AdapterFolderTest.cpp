#include <cstdint>
#include <fstream>
#include <gmock/gmock.h>
#include <utility>
#include <vector>

#include "midapi/Digest.h"
#include "midapi/Virtual/AdapterFolder.h"
#include "tests/midapi/AdapterFixture.h"
#include "tests/midapi/WatchedFileSystem.h"

namespace {

using ma::AdapterFolder;
using ma::AdapterState;
using ma::BootType;
using ma::FlashFault;
using ma::UpdateJournal;
using testing::AllOf;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr const char* kPci = "0000:03:00";

class AdapterFolderTest : public testing::Test {
 protected:
  AdapterFolderTest() { m_adapters.makeAdapter(kPci, {1, 2, 3}); }

  AdapterFolder folder() { return {m_files, m_adapters.directory(), {0, 3, 0}}; }
  // Returns the code of what fails, and its text.
  template <class Operation>
  std::pair<std::uint32_t, std::string> faultOf(Operation operation) {
    try {
      operation();
    } catch (const FlashFault& fault) {
      return {fault.code(), fault.what()};
    }
    return {};
  }
  std::pair<std::uint32_t, std::string> descriptionFault() {
    return faultOf([&] { static_cast<void>(folder().description()); });
  }

  test::AdapterFixture m_adapters;
  test::WatchedFileSystem m_files;
};

TEST_F(AdapterFolderTest, ReadsDescriptionAndFlashAfresh) {
  EXPECT_EQ(folder().description().name, "Lab adapter");
  m_adapters.set(kPci, "/name", "\"Renamed\"");
  EXPECT_EQ(folder().description().name, "Renamed");
  EXPECT_THAT(folder().flash().view(), ElementsAre(1, 2, 3));
}

TEST_F(AdapterFolderTest, TakesAMissingFlashForEmpty) {
  std::filesystem::remove(m_adapters.folder(kPci) / "flash.rom");
  EXPECT_THAT(folder().flash().view(), IsEmpty());
}

TEST_F(AdapterFolderTest, ReportsAFlashThatIsNoFile) {
  std::filesystem::remove(m_adapters.folder(kPci) / "flash.rom");
  std::filesystem::create_directory(m_adapters.folder(kPci) / "flash.rom");
  const auto [code, text] = faultOf([&] { static_cast<void>(folder().flash()); });
  EXPECT_EQ(code, 205U);
  EXPECT_THAT(text, AllOf(HasSubstr("flash.rom"), HasSubstr("Is a directory")));
}

TEST_F(AdapterFolderTest, ReportsMissingDescriptionsAsUnknownAdapters) {
  std::filesystem::remove(m_adapters.folder(kPci) / "adapter.json");
  EXPECT_EQ(descriptionFault().first, 201U);
  EXPECT_THAT(descriptionFault().second, HasSubstr("The adapter is not known: 0000:03:00"));
  EXPECT_FALSE(folder().hasDescription());
}

TEST_F(AdapterFolderTest, NamesFileAndFieldOfAnInvalidDescription) {
  m_adapters.set(kPci, "/vendorId", "5");
  EXPECT_EQ(descriptionFault().first, 202U);
  EXPECT_THAT(descriptionFault().second,
              AllOf(HasSubstr((m_adapters.folder(kPci) / "adapter.json").string()),
                    HasSubstr("field vendorId: must be")));
  EXPECT_TRUE(folder().hasDescription());
}

TEST_F(AdapterFolderTest, RefusesTheDescriptionOfAnotherAdapter) {
  m_adapters.set(kPci, "/pci", "\"0000:04:00\"");
  EXPECT_THAT(descriptionFault().second,
              HasSubstr("field pci: is 0000:04:00, but the folder is 0000:03:00's"));
}

// The update of the adapter was decided, and then its process died.
class DecidedUpdate : public AdapterFolderTest {
 protected:
  DecidedUpdate() {
    UpdateJournal journal{kNewFlash, m_new.size(), ma::digestOf(m_new), {}};
    journal.change.bootTypes[1] = BootType::None;
    journal.change.capabilityWord = 24;
    write("update.json", ma::formatJournal(journal));
    write(kNewFlash, std::string(m_new.begin(), m_new.end()));
  }

  void write(const char* name, const std::string& text) {
    std::ofstream(m_adapters.folder(kPci) / name, std::ios::binary) << text;
  }
  void expectNew() {
    EXPECT_THAT(folder().flash().view(), ElementsAreArray(m_new));
    const AdapterState state = folder().state();
    EXPECT_THAT(state.flash.view(), ElementsAreArray(m_new));
    EXPECT_EQ(state.description.capabilityWord, 24U);
    EXPECT_EQ(state.description.findPort(1)->bootType, BootType::None);
    EXPECT_EQ(state.description.findPort(0)->bootType, BootType::Pxe);
  }
  void expectOld() {
    const AdapterState state = folder().state();
    EXPECT_THAT(state.flash.view(), ElementsAre(1, 2, 3));
    EXPECT_EQ(state.description.capabilityWord, 0U);
    EXPECT_EQ(state.description.findPort(1)->bootType, BootType::Pxe);
  }

  static constexpr const char* kNewFlash = "flash.rom.new-0123456789abcdef";
  const std::vector<std::uint8_t> m_new = {4, 5, 6, 7};
};

TEST_F(DecidedUpdate, IsReadAsIfItWereDone) {
  expectNew();
}

TEST_F(DecidedUpdate, IsReadAsIfItWereDoneWithItsFlashInPlace) {
  std::filesystem::rename(m_adapters.folder(kPci) / kNewFlash,
                          m_adapters.folder(kPci) / "flash.rom");
  expectNew();
}

TEST_F(DecidedUpdate, IsNoneWithoutItsFlash) {
  std::filesystem::remove(m_adapters.folder(kPci) / kNewFlash);
  expectOld();
}

TEST_F(DecidedUpdate, IsRefusedWithWhatIsWrongInItsJournal) {
  write("update.json", "{}");
  const auto [code, text] = faultOf([&] { static_cast<void>(folder().flash()); });
  EXPECT_EQ(code, 202U);
  EXPECT_THAT(text, AllOf(HasSubstr("update.json: it is no journal of an update"),
                          HasSubstr("field flash: is missing")));
}

TEST_F(DecidedUpdate, MayBeDoneWhileItIsLookedAt) {
  bool isDone = false;
  // Between the description and the flash, another process does what is left.
  m_files.afterRead = [&](const std::filesystem::path& path, ma::FileBytes&) {
    if (path.filename() == "adapter.json" && !std::exchange(isDone, true)) {
      const auto home = m_adapters.folder(kPci);
      std::filesystem::rename(home / kNewFlash, home / "flash.rom");
      m_adapters.set(kPci, "/capabilityWord", "24");
      m_adapters.set(kPci, "/ports/1/bootType", "0");
      std::filesystem::remove(home / "update.json");
    }
  };
  expectNew();
}

TEST_F(AdapterFolderTest, ShowsOneMomentWhileAnUpdateIsMade) {
  bool isMade = false;
  m_files.afterRead = [&](const std::filesystem::path& path, ma::FileBytes&) {
    if (path.filename() == "adapter.json" && !std::exchange(isMade, true)) {
      m_adapters.makeAdapter(kPci, {9});
      m_adapters.set(kPci, "/capabilityWord", "8");
    }
  };
  const AdapterState state = folder().state();
  EXPECT_EQ(state.description.capabilityWord, 8U);
  EXPECT_THAT(state.flash.view(), ElementsAre(9));
}

}  // namespace
