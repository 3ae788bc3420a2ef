#include <cerrno>
#include <chrono>
#include <ctime>
#include <gtest/gtest.h>
#include <string>

#include "midapi/Kernel/FlashRoute.h"

namespace {

using ma::DevlinkInfo;
using ma::FlashRoute;
using ma::FlashWay;
using ma::KernelAdapter;
using ma::KernelFunction;

class FlashRouteTest : public testing::Test {
 protected:
  // Adds a function, with an interface.
  KernelFunction& add(const std::string& driver, bool hasDevlink) {
    KernelFunction function;
    const auto number = static_cast<std::uint8_t>(m_adapter.functions.size());
    function.pci.id = {m_adapter.address, number};
    function.pci.driver = driver;
    function.pci.interfaces = {{"eth" + std::to_string(number), ""}};
    if (hasDevlink) {
      function.answer.devlink = DevlinkInfo{};
    }
    m_adapter.functions.push_back(std::move(function));
    return m_adapter.functions.back();
  }
  FlashRoute route(std::uint8_t preferred = 0) { return findRoute(m_adapter, preferred); }
  std::string whyNone() {
    EXPECT_EQ(route().way, FlashWay::None);
    return route().whyNone;
  }

  KernelAdapter m_adapter{{0, 3, 0}, {}, false};
};

TEST_F(FlashRouteTest, GoesThroughDevlink) {
  add("testnic", true);
  EXPECT_EQ(route().way, FlashWay::Devlink);
  EXPECT_EQ(route().function, &m_adapter.functions[0]);
  EXPECT_TRUE(route().driver->canActivate);
}

TEST_F(FlashRouteTest, GoesThroughEthtoolForDriversOfTheTableAlone) {
  add("qede", false);
  EXPECT_EQ(route().way, FlashWay::Ethtool);
  EXPECT_EQ(route().interface, "eth0");
}

TEST_F(FlashRouteTest, PrefersDevlinkWhereADriverHasBoth) {
  add("bnxt_en", true);
  EXPECT_EQ(route().way, FlashWay::Devlink);
  m_adapter.functions[0].answer.devlink.reset();
  EXPECT_EQ(route().way, FlashWay::Ethtool);
}

TEST_F(FlashRouteTest, GoesThroughTheFunctionThatIsAskedForWhereItCan) {
  add("testnic", true);
  add("testnic", true);
  EXPECT_EQ(route(1).function, &m_adapter.functions[1]);
  m_adapter.functions[1].answer.devlink.reset();
  EXPECT_EQ(route(1).function, &m_adapter.functions[0]);
  EXPECT_EQ(route(1).way, FlashWay::Devlink);
  m_adapter.functions[0].answer.devlink.reset();
  EXPECT_EQ(route(1).function, &m_adapter.functions[1]);
  EXPECT_EQ(route(1).way, FlashWay::None);
}

TEST_F(FlashRouteTest, StaysWhileTheFlashIsWritten) {
  add("ice", false);
  m_adapter.isBeingWritten = true;
  EXPECT_EQ(route().way, FlashWay::Devlink);
}

TEST_F(FlashRouteTest, GoesNoOtherWayWhileTheFlashIsWritten) {
  add("bnxt_en", false).hasAnswered = true;
  m_adapter.isBeingWritten = true;
  EXPECT_EQ(route().way, FlashWay::Ethtool);
  m_adapter.functions[0].hasAnswered = false;
  EXPECT_EQ(whyNone(), "its driver bnxt_en has not answered yet; it may be writing the flash");
  m_adapter.functions[0].pci.driver = "qede";
  EXPECT_EQ(route().way, FlashWay::Ethtool);
}

TEST_F(FlashRouteTest, GoesNoWayThroughADriverThatCouldNotBeAsked) {
  KernelFunction& function = add("e1000e", false);
  function.answer.error = EMFILE;
  const std::string end =
      " could not be asked whether it writes firmware by devlink: Too many open files; try again";
  for (const char* driver : {"e1000e", "ice", "bnxt_en"}) {
    function.pci.driver = driver;
    EXPECT_EQ(whyNone(), std::string("its driver ") + driver + end);
  }
  function.pci.driver = "qede";
  EXPECT_EQ(route().way, FlashWay::Ethtool);
  function.hasAnswered = true;
  function.pci.driver = "bnxt_en";
  EXPECT_EQ(route().way, FlashWay::Ethtool);
}

TEST_F(FlashRouteTest, SaysSinceWhenADriverHasNotAnswered) {
  KernelFunction& function = add("testnic", false);
  m_adapter.isBeingWritten = true;
  std::tm noon{};
  noon.tm_year = 126;
  noon.tm_mday = 1;
  noon.tm_hour = 12;
  noon.tm_min = 3;
  noon.tm_sec = 7;
  noon.tm_isdst = -1;
  function.answer.silentSince = std::chrono::system_clock::from_time_t(std::mktime(&noon));
  EXPECT_EQ(whyNone(),
            "its driver testnic has not answered since 12:03:07; it may be writing the flash");
}

TEST_F(FlashRouteTest, SaysWhyThereIsNone) {
  KernelFunction& function = add("", false);
  EXPECT_EQ(whyNone(), "no driver is bound to it");
  function.pci.driver = "e1000e";
  EXPECT_EQ(
      whyNone(),
      "its driver e1000e writes no firmware: it has no devlink, and is none of those that are "
      "known to write by ethtool");
  function.pci.driver = "i40e";
  EXPECT_EQ(whyNone(),
            "its driver i40e writes no firmware: what it takes is a profile, which the next start "
            "forgets");
  function.pci.driver = "ice";
  EXPECT_EQ(whyNone(),
            "its driver ice does not answer by devlink, through which it writes firmware; that is "
            "so in a network namespace of its own");
  function.pci.driver = "qede";
  function.pci.interfaces.clear();
  EXPECT_EQ(whyNone(),
            "its driver qede writes firmware through a network interface, and has made none");
  function.pci.driver = "testnic";
  m_adapter.isBeingWritten = true;
  EXPECT_EQ(whyNone(), "its driver testnic has not answered yet; it may be writing the flash");
}

}  // namespace
