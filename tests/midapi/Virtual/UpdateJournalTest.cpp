#include <gmock/gmock.h>
#include <string>
#include <vector>

#include "midapi/DescriptionFault.h"
#include "midapi/Virtual/UpdateJournal.h"

namespace {

using ma::BootType;
using ma::DescriptionFault;
using ma::formatJournal;
using ma::parseJournal;
using ma::UpdateJournal;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Optional;
using testing::Pair;

constexpr const char* kName = "flash.rom.new-0123456789abcdef";

std::string refusalOf(const std::string& text) {
  try {
    static_cast<void>(parseJournal(text));
  } catch (const DescriptionFault& fault) {
    return fault.what();
  }
  return "accepted";
}

// A journal with another text in the place of one of its parts.
std::string refusalWith(const std::string& part, const std::string& other) {
  std::string text = formatJournal({kName, 7, 0xAB, {{{1, BootType::None}}, 24}});
  const std::size_t at = text.find(part);
  EXPECT_NE(at, std::string::npos) << text;
  return refusalOf(text.replace(at, part.size(), other));
}

TEST(UpdateJournal, ReadsBackWhatItWrites) {
  const UpdateJournal journal = parseJournal(
      formatJournal({kName, 7, 0xAB, {{{0, BootType::Uefi}, {5, BootType::None}}, 24}}));
  EXPECT_EQ(journal.flashName, kName);
  EXPECT_EQ(journal.flashSize, 7U);
  EXPECT_EQ(journal.flashDigest, 0xABU);
  EXPECT_THAT(journal.change.bootTypes,
              ElementsAre(Pair(0, BootType::Uefi), Pair(5, BootType::None)));
  EXPECT_THAT(journal.change.capabilityWord, Optional(24U));
}

TEST(UpdateJournal, NeedNotChangeTheCapabilityWord) {
  EXPECT_EQ(parseJournal(formatJournal({kName, 7, 1, {}})).change.capabilityWord, std::nullopt);
}

// Whoever may write one folder must not lead the library into another one.
TEST(UpdateJournal, NamesNoFileButThatOfANewFlash) {
  for (const char* other : {"../0000-04-00/flash.rom", "flash.rom", "adapter.json.new",
                            "../flash.rom.new-0123456789abcdef", "/flash.rom.new", ""}) {
    EXPECT_THAT(refusalWith(kName, other), HasSubstr("field flash: must be like")) << other;
  }
}

TEST(UpdateJournal, NamesTheFieldThatIsWrong) {
  EXPECT_EQ(refusalOf("{}"), "field flash: is missing");
  EXPECT_THAT(refusalWith("\"flashSize\": 7", "\"flashSize\": -1"), HasSubstr("field flashSize:"));
  EXPECT_EQ(refusalWith("00000000000000ab", "ab"),
            "field flashDigest: must be sixteen hexadecimal digits");
  EXPECT_EQ(refusalWith("00000000000000ab", "00000000000000ax"),
            "field flashDigest: must be sixteen hexadecimal digits");
  EXPECT_THAT(refusalWith("\"function\": 1", "\"function\": 8"),
              HasSubstr("field bootTypes[0].function: must be a whole number from 0 to 7"));
  EXPECT_THAT(refusalWith("\"bootType\": 0", "\"bootType\": 5"),
              HasSubstr("field bootTypes[0].bootType:"));
  EXPECT_THAT(refusalWith("24", "4294967296"), HasSubstr("field capabilityWord:"));
  EXPECT_THAT(refusalOf("x"), HasSubstr("the text is no JSON"));
}

TEST(UpdateJournal, KnowsItsFlash) {
  const std::vector<std::uint8_t> flash = {1, 2, 3};
  const UpdateJournal journal{kName, 3, 0xD0AA6218672CF5AB, {}};
  EXPECT_TRUE(journal.isNewFlash(flash));
  EXPECT_FALSE(journal.isNewFlash(std::vector<std::uint8_t>{1, 2, 4}));
  EXPECT_FALSE(journal.isNewFlash(std::vector<std::uint8_t>{1, 2}));
}

}  // namespace
