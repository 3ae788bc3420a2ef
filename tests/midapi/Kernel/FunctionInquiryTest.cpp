#include <cerrno>
#include <cstring>
#include <gmock/gmock.h>
#include <linux/devlink.h>
#include <linux/ethtool.h>
#include <linux/genetlink.h>
#include <string>
#include <utility>
#include <vector>

#include "midapi/Kernel/FunctionInquiry.h"
#include "tests/midapi/Kernel/NetlinkBuilder.h"

namespace {

using ma::DevlinkLookup;
using ma::DriverInfo;
using ma::DriverQuestion;
using ma::Errand;
using ma::ErrandReply;
using ma::FunctionInquiry;
using test::Bytes;
using test::NetlinkAttributes;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint16_t kFamily = 21;
constexpr std::uint32_t kSequence = 1;
const DevlinkLookup kDevlink{true, {kFamily, 5}};
constexpr auto kDriver = FunctionInquiry::Of::DriverAndFiles;
constexpr auto kFiles = FunctionInquiry::Of::FilesAlone;

DriverQuestion all() {
  ma::PciFunction function;
  function.id = {{0, 3, 0}, 1};
  function.interfaces = {{"eth0", ""}, {"eth1", ""}};
  function.folder = "/sys/bus/pci/devices/0000:03:00.1";
  return {function, true, true};
}

ErrandReply pieces(std::vector<Bytes> pieces) {
  return {0, std::move(pieces), {}};
}

ErrandReply family() {
  return pieces({test::genericMessage(GENL_ID_CTRL, CTRL_CMD_NEWFAMILY, kSequence,
                                      NetlinkAttributes().number16(CTRL_ATTR_FAMILY_ID, kFamily)),
                 test::acknowledgement(0, kSequence)});
}

ErrandReply refusal(int error) {
  return pieces({test::acknowledgement(-error, kSequence)});
}

ErrandReply driver(const char* name, const char* firmware) {
  ethtool_drvinfo info{};
  std::strncpy(info.driver, name, sizeof info.driver - 1);
  std::strncpy(info.version, "6.1", sizeof info.version - 1);
  std::memcpy(info.fw_version, firmware, std::min(std::strlen(firmware), sizeof info.fw_version));
  const auto* const bytes = reinterpret_cast<const std::uint8_t*>(&info);
  return pieces({{bytes, bytes + sizeof info}});
}

class FunctionInquiryTest : public testing::Test {
 protected:
  // Returns what is asked, in order, where each errand is replied to so.
  static std::vector<std::string> run(FunctionInquiry& inquiry,
                                      const std::vector<ErrandReply>& replies) {
    std::vector<std::string> errands;
    for (const ErrandReply& reply : replies) {
      const auto order = inquiry.next();
      if (!order) {
        ADD_FAILURE() << "nothing is asked any more";
        break;
      }
      errands.push_back(nameOf(order->errand) +
                        (order->errand == Errand::Netlink
                             ? ""
                             : " " + std::string(order->bytes.begin(), order->bytes.end())));
      inquiry.take(reply);
    }
    EXPECT_FALSE(inquiry.next());
    return errands;
  }
  static std::string nameOf(Errand errand) {
    static const char* const kNames[] = {"", "netlink", "driver", "vpd", "rom", "file"};
    return kNames[static_cast<std::size_t>(errand)];
  }
  // Returns the answer where devlink alone is asked.
  static ma::DriverAnswer devlinkAnswer(const ErrandReply& reply) {
    DriverQuestion question = all();
    question.wantsVpd = question.wantsRom = false;
    question.function.interfaces.clear();
    auto inquiry = FunctionInquiry::ofDevlink(question, kDriver, kDevlink);
    EXPECT_THAT(run(inquiry, {reply}), ElementsAre("netlink"));
    return inquiry.answer();
  }
};

TEST_F(FunctionInquiryTest, AsksDevlink) {
  auto inquiry = FunctionInquiry::ofDevlink(all(), kDriver, {});
  EXPECT_THAT(run(inquiry, {family(), refusal(ENODEV)}), ElementsAre("netlink", "netlink"));
  EXPECT_EQ(inquiry.devlink().family.id, kFamily);
  EXPECT_FALSE(inquiry.answer().devlink);
}

TEST_F(FunctionInquiryTest, AsksFilesAndAtLastTheDriver) {
  auto inquiry = FunctionInquiry::ofRest(all(), kDriver, {});
  EXPECT_EQ(inquiry.answer().vpd.error, EBUSY);
  EXPECT_EQ(inquiry.answer().rom.error, EBUSY);
  EXPECT_THAT(
      run(inquiry, {pieces({{1, 2}, {3}}), {EACCES, {{9}}, {}}, driver("igb", "1.2\xff 3")}),
      ElementsAre("vpd /sys/bus/pci/devices/0000:03:00.1/vpd",
                  "rom /sys/bus/pci/devices/0000:03:00.1/rom", "driver eth0"));
  EXPECT_EQ(inquiry.answer().info, (DriverInfo{"igb", "6.1", "1.2\\xff 3"}));
  EXPECT_EQ(inquiry.answer().vpd.error, 0);
  EXPECT_THAT(inquiry.answer().vpd.bytes, ElementsAre(1, 2, 3));
  EXPECT_EQ(inquiry.answer().rom.error, EACCES);
  EXPECT_THAT(inquiry.answer().rom.bytes, IsEmpty());
}

TEST_F(FunctionInquiryTest, AsksNoDriverForItsVersionThatHasTold) {
  DriverQuestion question = all();
  question.wantsVpd = question.wantsRom = false;
  ma::DevlinkInfo told;
  EXPECT_TRUE(FunctionInquiry::ofRest(question, kDriver, told).next());
  told.running = {{"fw", "1.0"}};
  EXPECT_FALSE(FunctionInquiry::ofRest(question, kDriver, told).next());
  told = {};
  told.stored = {{"fw", ""}};
  EXPECT_FALSE(FunctionInquiry::ofRest(question, kDriver, told).next());
}

TEST_F(FunctionInquiryTest, AsksFilesAloneWhereNoDriverIsBehindThem) {
  EXPECT_FALSE(FunctionInquiry::ofDevlink(all(), kFiles, {}).next());
  auto inquiry = FunctionInquiry::ofRest(all(), kFiles, {});
  EXPECT_THAT(run(inquiry, {pieces({{1}}), pieces({{2}})}),
              ElementsAre("vpd /sys/bus/pci/devices/0000:03:00.1/vpd",
                          "file /sys/bus/pci/devices/0000:03:00.1/rom"));
  EXPECT_FALSE(inquiry.answer().info);
}

TEST_F(FunctionInquiryTest, AsksNoDevlinkWhereTheKernelHasNone) {
  auto inquiry = FunctionInquiry::ofDevlink(all(), kDriver, {});
  EXPECT_THAT(run(inquiry, {refusal(ENOENT)}), ElementsAre("netlink"));
  EXPECT_TRUE(inquiry.devlink().isDone);
  EXPECT_EQ(inquiry.devlink().family.id, 0);
  EXPECT_FALSE(FunctionInquiry::ofDevlink(all(), kDriver, inquiry.devlink()).next());
}

TEST_F(FunctionInquiryTest, TakesAKernelThatCannotBeAskedForNoneWithoutDevlink) {
  for (const ErrandReply& reply : {ErrandReply{EMFILE, {}, {}}, ErrandReply{ENOMEM, {}, {}},
                                   ErrandReply{EPERM, {}, {}}, refusal(EPERM), refusal(ENOMEM)}) {
    auto inquiry = FunctionInquiry::ofDevlink(all(), kDriver, {});
    EXPECT_THAT(run(inquiry, {reply}), ElementsAre("netlink"));
    EXPECT_FALSE(inquiry.devlink().isDone);
    EXPECT_NE(inquiry.answer().error, 0);
  }
  auto inquiry = FunctionInquiry::ofDevlink(all(), kDriver, {});
  run(inquiry, {pieces({})});
  EXPECT_EQ(inquiry.answer().error, EIO);
  EXPECT_FALSE(inquiry.devlink().isDone);
}

TEST_F(FunctionInquiryTest, TakesAKernelWithoutNetlinkForOneWithoutDevlink) {
  auto inquiry = FunctionInquiry::ofDevlink(all(), kDriver, {});
  run(inquiry, {{EPROTONOSUPPORT, {}, {}}});
  EXPECT_TRUE(inquiry.devlink().isDone);
  EXPECT_EQ(inquiry.answer().error, 0);
}

TEST_F(FunctionInquiryTest, SaysWhyADriverCouldNotBeAsked) {
  EXPECT_EQ(devlinkAnswer({EMFILE, {}, {}}).error, EMFILE);
  EXPECT_EQ(devlinkAnswer(refusal(ENOMEM)).error, ENOMEM);
  EXPECT_FALSE(devlinkAnswer(refusal(ENOMEM)).devlink);
  EXPECT_EQ(devlinkAnswer(pieces({})).error, EIO);
  for (const auto& [error, told] : {std::pair(EMFILE, EMFILE), std::pair(EOPNOTSUPP, 0)}) {
    DriverQuestion question = all();
    question.wantsVpd = question.wantsRom = false;
    auto inquiry = FunctionInquiry::ofRest(question, kDriver, {});
    run(inquiry, {{error, {}, {}}});
    EXPECT_EQ(inquiry.answer().error, told);
  }
}

TEST_F(FunctionInquiryTest, TellsADriverThatDoesNotSayFromOneWithoutDevlink) {
  EXPECT_FALSE(devlinkAnswer(refusal(ENODEV)).devlink);
  EXPECT_FALSE(devlinkAnswer({EMFILE, {}, {}}).devlink);
  const auto mute = devlinkAnswer(refusal(EOPNOTSUPP)).devlink;
  ASSERT_TRUE(mute);
  EXPECT_EQ(mute->driver, "");
  EXPECT_EQ(devlinkAnswer(refusal(ENODEV)).error, 0);
  EXPECT_EQ(devlinkAnswer(refusal(EOPNOTSUPP)).error, 0);
}

TEST_F(FunctionInquiryTest, TellsADriverThatCannotSayNowFromOneThatNeverDoes) {
  const ma::DriverAnswer answer = devlinkAnswer(refusal(EBUSY));
  EXPECT_EQ(answer.error, EBUSY);
  EXPECT_TRUE(answer.devlink);
}

TEST_F(FunctionInquiryTest, TellsWhatDevlinkSays) {
  const Bytes message =
      test::genericMessage(kFamily, DEVLINK_CMD_INFO_GET, kSequence,
                           NetlinkAttributes().text(DEVLINK_ATTR_INFO_DRIVER_NAME, "ice"));
  for (const ErrandReply& reply :
       {pieces({message, test::acknowledgement(0, kSequence)}),
        pieces({test::joined(message, test::acknowledgement(0, kSequence))})}) {
    const auto info = devlinkAnswer(reply).devlink;
    ASSERT_TRUE(info);
    EXPECT_EQ(info->driver, "ice");
  }
}

TEST_F(FunctionInquiryTest, KnowsNothingOfWhatIsMalformed) {
  EXPECT_FALSE(devlinkAnswer(pieces({})).devlink);
  EXPECT_FALSE(devlinkAnswer(pieces({{1, 2, 3}})).devlink);
  for (const ErrandReply& reply :
       {pieces({}), pieces({{1, 2}}), pieces({driver("x", "").pieces[0], {}}),
        ErrandReply{EOPNOTSUPP, driver("x", "").pieces, {}}}) {
    DriverQuestion question = all();
    question.wantsVpd = question.wantsRom = false;
    auto inquiry = FunctionInquiry::ofRest(question, kDriver, {});
    run(inquiry, {reply});
    EXPECT_FALSE(inquiry.answer().info);
  }
}

TEST_F(FunctionInquiryTest, ReadsFieldsThatAreFull) {
  const std::string full(64, 'v');  // reads on into the next field, were there no end
  auto inquiry = FunctionInquiry::ofRest(all(), kDriver, {});
  run(inquiry, {pieces({}), pieces({}), driver("igb", full.c_str())});
  ASSERT_TRUE(inquiry.answer().info);
  EXPECT_EQ(inquiry.answer().info->firmwareVersion, std::string(32, 'v'));
}

TEST_F(FunctionInquiryTest, AnswersQuestionsForWhatItAsks) {
  DriverQuestion question = all();
  question.wantsRom = false;
  const auto inquiry = FunctionInquiry::ofRest(question, kDriver, {});
  EXPECT_TRUE(inquiry.answers(question));
  question.wantsVpd = false;
  EXPECT_TRUE(inquiry.answers(question));
  question.wantsRom = true;
  EXPECT_FALSE(inquiry.answers(question));
  question = all();
  question.wantsRom = false;
  question.function.ids.device = 1;
  EXPECT_FALSE(inquiry.answers(question));
}

}  // namespace
