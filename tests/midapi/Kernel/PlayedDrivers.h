// Drivers that a test plays.

#ifndef ORVEX_TESTS_MIDAPI_KERNEL_PLAYEDDRIVERS_H_
#define ORVEX_TESTS_MIDAPI_KERNEL_PLAYEDDRIVERS_H_

#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "midapi/Kernel/DriverCalls.h"
#include "platform/Mutex.h"

namespace test {

// Answers what the test has set for a function, and nothing for others. What is public is set by
// the test while nobody asks; any thread may ask.
class PlayedDrivers final : public ma::DriverCalls {
 public:
  std::map<std::string, ma::DriverAnswer> answers;  // by the function's identifier
  // Called with the identifiers that are asked for, before the answer is looked up.
  std::function<void(const std::vector<std::string>&)> beforeAnswer =
      [](const std::vector<std::string>&) {};
  // What comes of a flash, of a function or an interface, with a file of that name; and of an
  // activation.
  using OnEvent = std::function<void(const ma::DevlinkFlashEvent&)>;
  std::function<ma::NetlinkAck(const std::string&, const std::string&, const OnEvent&)>
      onDevlinkFlash =
          [](const std::string&, const std::string&, const OnEvent&) { return ma::NetlinkAck{}; };
  std::function<ma::NetlinkAck(const std::string&, const std::string&)> onEthtoolFlash =
      [](const std::string&, const std::string&) { return ma::NetlinkAck{}; };
  std::function<ma::NetlinkAck(const std::string&)> onActivate = [](const std::string&) {
    return ma::NetlinkAck{};
  };
  bool isPrivileged = true;

  // Returns what was asked for since the last call, a text for each time: "0000:03:00.0 vpd rom,
  // 0000:03:00.1".
  std::vector<std::string> takeAsked() {
    const platform::Lock lock(m_mutex);
    return std::exchange(m_asked, {});
  }

  // ma::DriverCalls
  std::vector<ma::DriverAnswer> ask(std::span<const ma::DriverQuestion> questions) override {
    std::vector<std::string> ids;
    std::string text;
    for (const ma::DriverQuestion& question : questions) {
      ids.push_back(toString(question.function.id));
      text += (text.empty() ? "" : ", ") + ids.back() + (question.wantsVpd ? " vpd" : "") +
              (question.wantsRom ? " rom" : "") + (question.wantsLatest ? " latest" : "");
    }
    {
      const platform::Lock lock(m_mutex);
      m_asked.push_back(text);
    }
    beforeAnswer(ids);
    std::vector<ma::DriverAnswer> given;
    for (std::size_t i = 0; i < ids.size(); ++i) {
      const auto found = answers.find(ids[i]);
      given.push_back(found != answers.end() ? found->second : ma::DriverAnswer{});
      given.back().vpd = questions[i].wantsVpd ? given.back().vpd : ma::FileAnswer{};
      given.back().rom = questions[i].wantsRom ? given.back().rom : ma::FileAnswer{};
    }
    return given;
  }
  ma::NetlinkAck flashByDevlink(const ma::PortId& function, const std::string& file,
                                const std::string& component, const OnEvent& onEvent) override {
    EXPECT_EQ(component, "");
    return onDevlinkFlash(toString(function), file, onEvent);
  }
  ma::NetlinkAck flashByEthtool(const std::string& interface, const std::string& file) override {
    return onEthtoolFlash(interface, file);
  }
  ma::NetlinkAck activate(const ma::PortId& function) override {
    return onActivate(toString(function));
  }
  [[nodiscard]] bool mayFlash() const override { return isPrivileged; }

 private:
  platform::Mutex m_mutex;
  std::vector<std::string> m_asked ORVEX_GUARDED_BY(m_mutex);
};

}  // namespace test

#endif  // ORVEX_TESTS_MIDAPI_KERNEL_PLAYEDDRIVERS_H_
