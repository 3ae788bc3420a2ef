#include <gmock/gmock.h>

#include "midapi/AdapterFolder.h"
#include "midapi/BoundedJson.h"
#include "tests/midapi/AdapterFixture.h"
#include "tests/midapi/WatchedFileSystem.h"

namespace {

using ma::AdapterFolder;
using ma::BootType;
using ma::FlashFault;
using testing::AllOf;
using testing::ElementsAre;
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

TEST_F(AdapterFolderTest, StoresChangesAndKeepsWhatItDoesNotKnow) {
  m_adapters.set(kPci, "/comment", "\"mine\"");
  folder().storeBootType(1, BootType::Fcoe);
  folder().storeCapabilityWord(24);
  EXPECT_EQ(m_adapters.get(kPci, "/ports/1/bootType"), "3");
  EXPECT_EQ(m_adapters.get(kPci, "/ports/0/bootType"), "1");
  EXPECT_EQ(m_adapters.get(kPci, "/capabilityWord"), "24");
  EXPECT_EQ(m_adapters.get(kPci, "/comment"), "\"mine\"");
  EXPECT_THAT(m_adapters.filesOf(kPci), ElementsAre("adapter.json", "flash.rom"));
}

TEST_F(AdapterFolderTest, KeepsTheDescriptionWhenAChangeOfItWouldBeTooLargeToRead) {
  std::string text =
      R"({"name":"Lab","pci":"0000:03:00","vendorId":"1af4","deviceId":"1041","notes":"",)"
      R"("ports":[{"function":0,"mac":"02:00:00:03:00:00","bootType":1}]})";
  text.insert(text.find("\",\"ports"), ma::kMaxJsonSize - text.size(), 'x');
  m_adapters.describe(kPci, text);
  const auto [code, reason] = faultOf([&] { folder().storeCapabilityWord(24); });
  EXPECT_EQ(code, 202U);
  EXPECT_THAT(reason, AllOf(HasSubstr("adapter.json: it stays as it is"), HasSubstr("1048576")));
  EXPECT_EQ(m_adapters.description(kPci), text);
  EXPECT_EQ(folder().description().name, "Lab");
}

TEST_F(AdapterFolderTest, KeepsTheDescriptionWhenItCannotBeReplaced) {
  const auto before = m_adapters.description(kPci);
  m_files.beforeReplace = [] { test::WatchedFileSystem::failAsFullDisk("replace", "it"); };
  EXPECT_EQ(faultOf([&] { folder().storeCapabilityWord(24); }).first, 205U);
  EXPECT_EQ(m_adapters.description(kPci), before);
  EXPECT_THAT(m_adapters.filesOf(kPci), ElementsAre("adapter.json", "flash.rom"));
}

}  // namespace
