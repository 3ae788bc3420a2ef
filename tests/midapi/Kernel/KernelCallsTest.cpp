// Over the kernel of the machine, for what it answers about devices that it does not have.

#include <cerrno>
#include <gmock/gmock.h>
#include <string>

#include "midapi/Kernel/KernelCalls.h"
#include "tests/midapi/Kernel/AskedChildren.h"
#include "tests/midapi/Kernel/SysfsFixture.h"

namespace {

using ma::KernelCalls;
using ma::NetlinkAck;
using testing::AnyOf;
using testing::ElementsAre;
using testing::HasSubstr;

// No machine has a bus of that number.
const ma::PortId kNowhere{{0xFFFF, 0xFF, 0x1F}, 7};

ma::InquirySettings filesAlone() {
  ma::InquirySettings settings;
  settings.of = ma::FunctionInquiry::Of::FilesAlone;
  return settings;
}

void ignore(const ma::DevlinkFlashEvent& /*event*/) {}

TEST(KernelCalls, KnowNoDriverOfAnImitation) {
  test::SysfsFixture sysfs;
  sysfs.addFunction("0000:03:00.0");
  sysfs.addInterface("0000:03:00.0", "lo", "");
  sysfs.setAttribute("0000:03:00.0", "vpd", "x");
  KernelCalls calls(filesAlone());
  const auto functions = ma::findPciFunctions(sysfs.root());
  ASSERT_EQ(functions.size(), 1U);
  const auto answers = calls.ask(std::vector{ma::DriverQuestion{functions[0], true, true}});
  ASSERT_EQ(answers.size(), 1U);
  EXPECT_FALSE(answers[0].devlink || answers[0].info);
  EXPECT_THAT(answers[0].vpd.bytes, ElementsAre('x', '\n'));
  EXPECT_EQ(answers[0].rom.error, ENOENT);
  for (const NetlinkAck& ack :
       {calls.flashByDevlink(functions[0].id, "fw", "", ignore), calls.flashByEthtool("lo", "fw"),
        calls.activate(functions[0].id)}) {
    EXPECT_EQ(ack.error, EOPNOTSUPP);
    EXPECT_THAT(ack.text, HasSubstr("no drivers"));
  }
}

TEST(KernelCalls, AskTheKernelForADeviceThatItLacks) {
  KernelCalls calls;
  ma::PciFunction function;
  function.id = kNowhere;
  function.interfaces = {{"none such", ""}};
  function.folder = "/nowhere";
  const auto answers = calls.ask(std::vector{ma::DriverQuestion{function, true, true}});
  ASSERT_EQ(answers.size(), 1U);
  EXPECT_EQ(answers[0].error, 0);
  EXPECT_FALSE(answers[0].isAway || answers[0].devlink || answers[0].info);
  EXPECT_EQ(answers[0].vpd.error, ENOENT);
  EXPECT_EQ(answers[0].rom.error, ENOENT);
}

TEST(KernelCalls, HandOutTheKernelsVerdict) {
  KernelCalls calls;
  // Without devlink in the kernel, or without the right, that is the verdict.
  const auto isRefusal = AnyOf(ENODEV, ENOENT, EPERM);
  EXPECT_THAT(calls.flashByDevlink(kNowhere, "no such file", "fw.mgmt", ignore).error, isRefusal);
  EXPECT_THAT(calls.activate(kNowhere).error, isRefusal);
  EXPECT_THAT(calls.flashByEthtool("none such", "no such file").error, AnyOf(ENODEV, EPERM));
}

TEST(KernelCalls, LeaveNothingOpen) {
  KernelCalls calls;
  const std::size_t openFiles = test::countOpenFiles();
  static_cast<void>(calls.flashByDevlink(kNowhere, "no such file", "", ignore));
  static_cast<void>(calls.flashByEthtool("none such", "no such file"));
  EXPECT_EQ(test::countOpenFiles(), openFiles);
}

TEST(KernelCalls, SayWhichNamesAreTooLong) {
  KernelCalls calls;
  const NetlinkAck longFile = calls.flashByEthtool("lo", std::string(128, 'x'));
  EXPECT_EQ(longFile.error, ENAMETOOLONG);
  EXPECT_THAT(longFile.text, HasSubstr("names of files of 127 bytes"));
  EXPECT_EQ(calls.flashByEthtool(std::string(16, 'x'), "fw").error, ENAMETOOLONG);
  const NetlinkAck longName = calls.flashByDevlink(kNowhere, std::string(2000, 'x'), "", ignore);
  EXPECT_THAT(longName.error, AnyOf(ENAMETOOLONG, ENOENT));
}

TEST(KernelCalls, TellWhetherThisProcessMayFlash) {
  // As the kernel shows it: CAP_NET_ADMIN is bit 12.
  const std::string effective = test::statusOf(::getpid(), "CapEff");
  ASSERT_EQ(effective.size(), 16U);
  const bool may = (std::stoull(effective, nullptr, 16) >> 12 & 1) != 0;
  EXPECT_EQ(KernelCalls().mayFlash(), may);
}

}  // namespace
