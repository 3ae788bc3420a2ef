// The kernel's notifications, sent by the test: whoever has CAP_NET_ADMIN may send to a group.

#include <cerrno>
#include <chrono>
#include <gmock/gmock.h>
#include <linux/devlink.h>
#include <linux/netlink.h>
#include <string>
#include <sys/socket.h>
#include <unistd.h>
#include <vector>

#include "midapi/Kernel/FlashListener.h"
#include "platform/Mutex.h"
#include "platform/Posix/Descriptor.h"
#include "tests/midapi/Kernel/NetlinkBuilder.h"
#include "tests/support/WaitUntil.h"

namespace {

using ma::DevlinkFlashEvent;
using ma::FlashListener;
using test::NetlinkAttributes;
using testing::ElementsAre;
using testing::IsEmpty;

// Of no family: nobody else listens to such messages. The group is the one that every kernel has.
constexpr ma::DevlinkFamily kFamily{0x7FF, 16};
const ma::PortId kDevice{{0, 6, 0}, 0};

class FlashListenerTest : public testing::Test {
 protected:
  FlashListener::Hear hear() {
    return [this](const DevlinkFlashEvent& event) {
      const platform::Lock lock(m_mutex);
      m_heard.push_back(event.text);
    };
  }
  std::vector<std::string> heard() {
    const platform::Lock lock(m_mutex);
    return m_heard;
  }
  // Returns false where this user may not.
  static bool tell(const std::string& device, const std::string& text) {
    const test::Bytes message =
        test::genericMessage(kFamily.id, DEVLINK_CMD_FLASH_UPDATE_STATUS, 0,
                             NetlinkAttributes()
                                 .text(DEVLINK_ATTR_BUS_NAME, "pci")
                                 .text(DEVLINK_ATTR_DEV_NAME, device)
                                 .text(DEVLINK_ATTR_FLASH_UPDATE_STATUS_MSG, text));
    const platform::Descriptor socket(
        ::socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, NETLINK_GENERIC));
    sockaddr_nl group{};
    group.nl_family = AF_NETLINK;
    group.nl_groups = 1U << (kFamily.configGroup - 1);
    return ::sendto(socket.get(), message.data(), message.size(), 0,
                    reinterpret_cast<const sockaddr*>(&group), sizeof group) >= 0;
  }

 private:
  platform::Mutex m_mutex;
  std::vector<std::string> m_heard ORVEX_GUARDED_BY(m_mutex);
};

TEST_F(FlashListenerTest, HearsWhatIsToldOfItsDevice) {
  {
    const FlashListener listener(kFamily, kDevice, hear());
    if (!tell("0000:06:00.0", "Erasing") && errno == EPERM) {
      GTEST_SKIP() << "only root can tell what the kernel tells";
    }
    tell("0000:07:00.0", "of another");
    tell("0000:06:00.0", "Flashing");
  }
  EXPECT_THAT(heard(), ElementsAre("Erasing", "Flashing"));
}

TEST_F(FlashListenerTest, HearsWhileItLives) {
  const FlashListener listener(kFamily, kDevice, hear());
  if (!tell("0000:06:00.0", "Erasing") && errno == EPERM) {
    GTEST_SKIP() << "only root can tell what the kernel tells";
  }
  EXPECT_TRUE(test::waitUntil([this] { return !heard().empty(); }));
}

TEST_F(FlashListenerTest, HearsNothingWhereNothingIsTold) {
  { const FlashListener listener({kFamily.id, 0}, kDevice, hear()); }
  { const FlashListener listener({kFamily.id, 0x7FFFFFFF}, kDevice, hear()); }
  EXPECT_THAT(heard(), IsEmpty());
}

}  // namespace
