#include <cerrno>
#include <cstring>
#include <gmock/gmock.h>
#include <linux/devlink.h>
#include <linux/genetlink.h>
#include <linux/netlink.h>
#include <stdexcept>
#include <string>

#include "midapi/Kernel/DevlinkMessages.h"
#include "tests/midapi/Kernel/NetlinkBuilder.h"

namespace {

using ma::DevlinkFamily;
using ma::DevlinkFlashEvent;
using ma::findAck;
using ma::findFamily;
using ma::findFlashEvents;
using ma::findInfo;
using ma::NamedVersion;
using ma::PortId;
using test::acknowledgement;
using test::Bytes;
using test::genericMessage;
using test::joined;
using test::NetlinkAttributes;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr DevlinkFamily kFamily{21, 5};
constexpr std::uint32_t kSequence = 7;
const PortId kDevice{{0, 6, 0}, 0};

NetlinkAttributes version(const std::string& name, const std::string& value) {
  return NetlinkAttributes()
      .text(DEVLINK_ATTR_INFO_VERSION_NAME, name)
      .text(DEVLINK_ATTR_INFO_VERSION_VALUE, value);
}

NetlinkAttributes infoOfTwoComponents() {
  return NetlinkAttributes()
      .text(DEVLINK_ATTR_BUS_NAME, "pci")
      .text(DEVLINK_ATTR_DEV_NAME, "0000:06:00.0")
      .text(DEVLINK_ATTR_INFO_DRIVER_NAME, "testnic")
      .text(DEVLINK_ATTR_INFO_SERIAL_NUMBER, "TN-0001")
      .text(DEVLINK_ATTR_INFO_BOARD_SERIAL_NUMBER, "B-1")
      .nested(DEVLINK_ATTR_INFO_VERSION_FIXED, version("board.id", "TESTNIC-2"))
      .nested(DEVLINK_ATTR_INFO_VERSION_RUNNING, version("fw.undi", "1.0.0"))
      .nested(DEVLINK_ATTR_INFO_VERSION_STORED, version("fw.undi", "1.1.0"))
      .nested(DEVLINK_ATTR_INFO_VERSION_RUNNING, version("fw.mgmt", "7.1.0"))
      .nested(DEVLINK_ATTR_INFO_VERSION_STORED, version("fw.mgmt", "7.2.0"));
}

NetlinkAttributes flashStatus(const std::string& device) {
  return NetlinkAttributes()
      .text(DEVLINK_ATTR_BUS_NAME, "pci")
      .text(DEVLINK_ATTR_DEV_NAME, device)
      .text(DEVLINK_ATTR_FLASH_UPDATE_STATUS_MSG, "Flashing")
      .text(DEVLINK_ATTR_FLASH_UPDATE_COMPONENT, "fw.undi")
      .number64(DEVLINK_ATTR_FLASH_UPDATE_STATUS_DONE, 0x1'0000'0000)
      .number64(DEVLINK_ATTR_FLASH_UPDATE_STATUS_TOTAL, 0x2'0000'0000)
      .number64(DEVLINK_ATTR_FLASH_UPDATE_STATUS_TIMEOUT, 5);
}

// What the kernel's own layout of a request is, read by hand.
struct Request {
  explicit Request(const Bytes& bytes) : text(bytes.begin(), bytes.end()) {
    std::memcpy(&header, bytes.data(), sizeof header);
    std::memcpy(&generic, bytes.data() + sizeof header, sizeof generic);
  }
  nlmsghdr header{};
  genlmsghdr generic{};
  std::string text;
};

TEST(DevlinkMessages, AsksForTheFamilyByName) {
  const Request request(ma::makeFamilyRequest(kSequence));
  EXPECT_EQ(request.header.nlmsg_type, GENL_ID_CTRL);
  EXPECT_EQ(request.header.nlmsg_flags, NLM_F_REQUEST | NLM_F_ACK);
  EXPECT_EQ(request.header.nlmsg_seq, kSequence);
  EXPECT_EQ(request.header.nlmsg_len, request.text.size());
  EXPECT_EQ(request.generic.cmd, CTRL_CMD_GETFAMILY);
  EXPECT_THAT(request.text, testing::HasSubstr(std::string("devlink\0", 8)));
}

TEST(DevlinkMessages, NamesTheDeviceInEachRequest) {
  const std::string device(
      "pci\0\x11\0\x02\0"
      "0000:06:00.0\0",
      21);
  const Request info(ma::makeInfoRequest(kFamily, kDevice, kSequence));
  EXPECT_EQ(info.header.nlmsg_type, kFamily.id);
  EXPECT_EQ(info.generic.cmd, DEVLINK_CMD_INFO_GET);
  EXPECT_THAT(info.text, testing::HasSubstr(device));
  const Request flash(ma::makeFlashRequest(kFamily, kDevice, "q/a.pkg", "fw.undi", kSequence));
  EXPECT_EQ(flash.generic.cmd, DEVLINK_CMD_FLASH_UPDATE);
  EXPECT_THAT(flash.text, testing::HasSubstr(device));
  EXPECT_THAT(flash.text, testing::HasSubstr(std::string("q/a.pkg\0", 8)));
  EXPECT_THAT(flash.text, testing::HasSubstr(std::string("fw.undi\0", 8)));
  const Request activate(ma::makeActivateRequest(kFamily, kDevice, kSequence));
  EXPECT_EQ(activate.generic.cmd, DEVLINK_CMD_RELOAD);
  EXPECT_THAT(activate.text, testing::HasSubstr(device));
}

TEST(DevlinkMessages, LeavesOutAComponentThatIsNotNamed) {
  const Bytes all = ma::makeFlashRequest(kFamily, kDevice, "a", "", kSequence);
  const Bytes one = ma::makeFlashRequest(kFamily, kDevice, "a", "b", kSequence);
  EXPECT_EQ(one.size() - all.size(), 8U);
}

TEST(DevlinkMessages, FindsFamilyAndGroup) {
  const NetlinkAttributes groups = NetlinkAttributes()
                                       .nested(1, NetlinkAttributes()
                                                      .text(CTRL_ATTR_MCAST_GRP_NAME, "other")
                                                      .number32(CTRL_ATTR_MCAST_GRP_ID, 4))
                                       .nested(2, NetlinkAttributes()
                                                      .text(CTRL_ATTR_MCAST_GRP_NAME, "config")
                                                      .number32(CTRL_ATTR_MCAST_GRP_ID, 5));
  const Bytes answer = genericMessage(GENL_ID_CTRL, CTRL_CMD_NEWFAMILY, kSequence,
                                      NetlinkAttributes()
                                          .text(CTRL_ATTR_FAMILY_NAME, "devlink")
                                          .number16(CTRL_ATTR_FAMILY_ID, 21)
                                          .nested(CTRL_ATTR_MCAST_GROUPS, groups));
  const auto family = findFamily(answer, kSequence);
  ASSERT_TRUE(family);
  EXPECT_EQ(family->id, 21);
  EXPECT_EQ(family->configGroup, 5U);
  EXPECT_FALSE(findFamily(answer, kSequence + 1));
  EXPECT_FALSE(
      findFamily(genericMessage(GENL_ID_CTRL, CTRL_CMD_NEWFAMILY, kSequence, {}), kSequence));
}

TEST(DevlinkMessages, ReadsWhatADeviceHolds) {
  const Bytes answer =
      genericMessage(kFamily.id, DEVLINK_CMD_INFO_GET, kSequence, infoOfTwoComponents());
  const auto info = findInfo(answer, kFamily, kSequence);
  ASSERT_TRUE(info);
  EXPECT_EQ(info->driver, "testnic");
  EXPECT_EQ(info->serialNumber, "TN-0001");
  EXPECT_EQ(info->boardSerialNumber, "B-1");
  EXPECT_THAT(info->fixed, ElementsAre(NamedVersion{"board.id", "TESTNIC-2"}));
  EXPECT_THAT(info->running,
              ElementsAre(NamedVersion{"fw.undi", "1.0.0"}, NamedVersion{"fw.mgmt", "7.1.0"}));
  EXPECT_THAT(info->stored,
              ElementsAre(NamedVersion{"fw.undi", "1.1.0"}, NamedVersion{"fw.mgmt", "7.2.0"}));
  EXPECT_FALSE(findInfo(answer, kFamily, kSequence + 1));
  EXPECT_FALSE(findInfo(answer, DevlinkFamily{22, 5}, kSequence));
}

TEST(DevlinkMessages, MakesTextsOfDriversFitForATerminal) {
  const NetlinkAttributes erased =
      NetlinkAttributes()
          .text(DEVLINK_ATTR_INFO_VERSION_NAME, "fw\x1b[2J")
          .raw(DEVLINK_ATTR_INFO_VERSION_VALUE, {0xFF, 0xFF, 'x', 0, 'y'});
  const Bytes answer =
      genericMessage(kFamily.id, DEVLINK_CMD_INFO_GET, kSequence,
                     NetlinkAttributes().nested(DEVLINK_ATTR_INFO_VERSION_STORED, erased));
  EXPECT_THAT(findInfo(answer, kFamily, kSequence)->stored,
              ElementsAre(NamedVersion{"fw\\x1b[2J", "\\xff\\xffx"}));
}

TEST(DevlinkMessages, FindsAnAckBehindAnAnswer) {
  const Bytes datagram =
      joined(genericMessage(kFamily.id, DEVLINK_CMD_INFO_GET, kSequence, infoOfTwoComponents()),
             acknowledgement(0, kSequence));
  ASSERT_TRUE(findAck(datagram, kSequence));
  EXPECT_EQ(findAck(datagram, kSequence)->error, 0);
  EXPECT_FALSE(findAck(datagram, kSequence + 1));
}

TEST(DevlinkMessages, ReadsTheDriversWords) {
  const NetlinkAttributes words =
      NetlinkAttributes().text(NLMSGERR_ATTR_MSG, "package is not for this device");
  for (const std::size_t repeated : {0U, 20U, 21U}) {
    const auto ack = findAck(acknowledgement(-ENOENT, kSequence, words, repeated), kSequence);
    ASSERT_TRUE(ack);
    EXPECT_EQ(ack->error, ENOENT);
    EXPECT_EQ(ack->text, "package is not for this device");
  }
}

TEST(DevlinkMessages, TakesNonsenseOfAnAckForAnError) {
  for (const std::int32_t error : {1, INT32_MIN, -5000}) {
    EXPECT_EQ(findAck(acknowledgement(error, kSequence), kSequence)->error, EBADMSG) << error;
  }
}

TEST(DevlinkMessages, FollowsAFlash) {
  Bytes datagram = genericMessage(kFamily.id, DEVLINK_CMD_FLASH_UPDATE, 0,
                                  NetlinkAttributes()
                                      .text(DEVLINK_ATTR_BUS_NAME, "pci")
                                      .text(DEVLINK_ATTR_DEV_NAME, "0000:06:00.0"));
  datagram = joined(datagram, genericMessage(kFamily.id, DEVLINK_CMD_FLASH_UPDATE_STATUS, 0,
                                             flashStatus("0000:06:00.0")));
  datagram = joined(datagram, genericMessage(kFamily.id, DEVLINK_CMD_FLASH_UPDATE_END, 0,
                                             flashStatus("0000:07:00.0")));
  const auto events = findFlashEvents(datagram, kFamily);
  ASSERT_EQ(events.size(), 3U);
  EXPECT_EQ(events[0].kind, DevlinkFlashEvent::Kind::Begin);
  EXPECT_EQ(events[1].kind, DevlinkFlashEvent::Kind::Status);
  EXPECT_EQ(events[1].device, "0000:06:00.0");
  EXPECT_EQ(events[1].text, "Flashing");
  EXPECT_EQ(events[1].component, "fw.undi");
  EXPECT_EQ(events[1].done, 0x1'0000'0000U);
  EXPECT_EQ(events[1].total, 0x2'0000'0000U);
  EXPECT_EQ(events[1].timeout, 5U);
  EXPECT_EQ(events[2].kind, DevlinkFlashEvent::Kind::End);
  EXPECT_EQ(events[2].device, "0000:07:00.0");
}

TEST(DevlinkMessages, PassesOverEventsOfOthers) {
  const Bytes ofOtherBus = genericMessage(kFamily.id, DEVLINK_CMD_FLASH_UPDATE, 0,
                                          NetlinkAttributes()
                                              .text(DEVLINK_ATTR_BUS_NAME, "netdevsim")
                                              .text(DEVLINK_ATTR_DEV_NAME, "netdevsim1"));
  EXPECT_THAT(findFlashEvents(ofOtherBus, kFamily), IsEmpty());
  const Bytes ofOtherKind =
      genericMessage(kFamily.id, DEVLINK_CMD_PORT_NEW, 0, flashStatus("0000:06:00.0"));
  EXPECT_THAT(findFlashEvents(ofOtherKind, kFamily), IsEmpty());
  const Bytes ofOtherFamily =
      genericMessage(99, DEVLINK_CMD_FLASH_UPDATE, 0, flashStatus("0000:06:00.0"));
  EXPECT_THAT(findFlashEvents(ofOtherFamily, kFamily), IsEmpty());
}

TEST(DevlinkMessages, TakesNumbersOfAnotherSizeForNone) {
  const Bytes datagram = genericMessage(kFamily.id, DEVLINK_CMD_FLASH_UPDATE_STATUS, 0,
                                        NetlinkAttributes()
                                            .text(DEVLINK_ATTR_BUS_NAME, "pci")
                                            .raw(DEVLINK_ATTR_FLASH_UPDATE_STATUS_DONE, {1, 2, 3})
                                            .number32(DEVLINK_ATTR_FLASH_UPDATE_STATUS_TOTAL, 9)
                                            .raw(DEVLINK_ATTR_FLASH_UPDATE_STATUS_MSG, {'F', 'l'}));
  const auto events = findFlashEvents(datagram, kFamily);
  ASSERT_EQ(events.size(), 1U);
  EXPECT_EQ(events[0].done, 0U);
  EXPECT_EQ(events[0].total, 0U);
  EXPECT_EQ(events[0].text, "Fl");
}

TEST(DevlinkMessages, MakesNoRequestThatLacksAName) {
  const std::string name(2000, 'n');
  EXPECT_THROW(static_cast<void>(ma::makeFlashRequest(kFamily, kDevice, "a", name, kSequence)),
               std::length_error);
  EXPECT_THROW(static_cast<void>(ma::makeFlashRequest(kFamily, kDevice, name, "", kSequence)),
               std::length_error);
}

TEST(DevlinkMessages, ReadsNothingBeyondAMessageThatLiesAboutItsLength) {
  const Bytes answer =
      genericMessage(kFamily.id, DEVLINK_CMD_INFO_GET, kSequence, infoOfTwoComponents());
  for (const std::uint32_t length : {0U, 15U, static_cast<std::uint32_t>(answer.size() + 1),
                                     0x7FFFFFFFU, 0x80000010U, 0xFFFFFFFFU}) {
    Bytes lying = answer;
    std::memcpy(lying.data(), &length, sizeof length);
    EXPECT_FALSE(findInfo(lying, kFamily, kSequence)) << length;
    EXPECT_THAT(findFlashEvents(lying, kFamily), IsEmpty()) << length;
  }
}

TEST(DevlinkMessages, ReadsNothingBeyondACutDatagram) {
  const Bytes whole =
      joined(genericMessage(kFamily.id, DEVLINK_CMD_INFO_GET, kSequence, infoOfTwoComponents()),
             acknowledgement(-EIO, kSequence,
                             NetlinkAttributes().text(NLMSGERR_ATTR_MSG, "flash write failed")));
  for (std::size_t size = 0; size < whole.size(); ++size) {
    const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
    EXPECT_FALSE(findAck(cut, kSequence)) << size;
    static_cast<void>(findInfo(cut, kFamily, kSequence));
    static_cast<void>(findFamily(cut, kSequence));
    EXPECT_THAT(findFlashEvents(cut, kFamily), IsEmpty());
  }
}

}  // namespace
