// Messages that a kernel has sent, byte by byte: tests/guest/record-devlink has recorded them of a
// test board, which was updated from 1.0.0 and 7.1.0 to 1.1.0 and 7.2.0 and failed at the second
// try.

#include <cerrno>
#include <gmock/gmock.h>
#include <string>
#include <vector>

#include "midapi/Kernel/DevlinkMessages.h"
#include "midapi/Kernel/FlashProgress.h"
#include "tests/support/TempDirectory.h"

namespace {

using ma::DevlinkFamily;
using ma::DevlinkFlashEvent;
using ma::NamedVersion;
using testing::Contains;
using testing::ElementsAre;

constexpr std::uint32_t kSequence = 7;

class RecordedMessages : public testing::Test {
 protected:
  static std::vector<std::uint8_t> recorded(const std::string& name) {
    const std::string text = test::readText(
        std::string(QUORVEL_TEST_SOURCE_ROOT "/tests/midapi/Kernel/recorded/") + name);
    return {text.begin(), text.end()};
  }

  const DevlinkFamily m_family =
      ma::findFamily(recorded("family"), kSequence).value_or(DevlinkFamily{});
};

TEST_F(RecordedMessages, NameTheFamily) {
  EXPECT_NE(m_family.id, 0);
  EXPECT_NE(m_family.configGroup, 0U);
}

TEST_F(RecordedMessages, TellABoard) {
  const auto info = ma::findInfo(recorded("info"), m_family, kSequence);
  ASSERT_TRUE(info);
  EXPECT_EQ(info->driver, "testnic");
  EXPECT_EQ(info->serialNumber, "TN-0002");
  EXPECT_THAT(info->fixed, Contains(NamedVersion{"board.id", "TNIC-21"}));
  EXPECT_THAT(info->running,
              ElementsAre(NamedVersion{"fw.undi", "1.0.0"}, NamedVersion{"fw.mgmt", "7.1.0"}));
  EXPECT_THAT(info->stored,
              ElementsAre(NamedVersion{"fw.undi", "1.0.0"}, NamedVersion{"fw.mgmt", "7.1.0"}));
}

TEST_F(RecordedMessages, RefuseADeviceThatIsNotThere) {
  const auto ack = ma::findAck(recorded("unknown"), kSequence);
  ASSERT_TRUE(ack);
  EXPECT_EQ(ack->error, ENODEV);
}

TEST_F(RecordedMessages, TellAFlashFromItsBeginningToItsEnd) {
  const auto events = ma::findFlashEvents(recorded("progress"), m_family);
  ASSERT_GT(events.size(), 2U);
  EXPECT_EQ(events.front().kind, DevlinkFlashEvent::Kind::Begin);
  EXPECT_EQ(events.back().kind, DevlinkFlashEvent::Kind::End);
  ma::FlashProgress progress(0);
  for (const DevlinkFlashEvent& event : events) {
    EXPECT_EQ(event.device, "0000:00:11.0");
    progress.note(event);
  }
  const auto ack = ma::findAck(recorded("done"), kSequence);
  ASSERT_TRUE(ack);
  EXPECT_EQ(ack->error, 0);
}

TEST_F(RecordedMessages, SayInTheDriversWordsWhyAFlashFailed) {
  const auto ack = ma::findAck(recorded("failed"), kSequence);
  ASSERT_TRUE(ack);
  EXPECT_NE(ack->error, 0);
  EXPECT_EQ(ack->text, "testnic: flash write failed");
}

}  // namespace
