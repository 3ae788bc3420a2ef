#include "midapi/Kernel/FlashRoute.h"

#include <array>
#include <chrono>
#include <ctime>
#include <system_error>
#include <utility>

namespace ma {
namespace {

// Returns whether the driver may have devlink, and has had no time to say so.
bool isUnknown(const KernelAdapter& adapter, const KernelFunction& function) {
  return adapter.isBeingWritten && !function.hasAnswered && !function.answer.devlink;
}

// Returns whether it could not be asked for that, ever.
bool isUnasked(const KernelFunction& function) {
  return function.answer.error != 0 && !function.hasAnswered && !function.answer.devlink;
}

// As the clock on the wall has it.
std::string timeOfDay(std::chrono::system_clock::time_point time) {
  const std::time_t seconds = std::chrono::system_clock::to_time_t(time);
  std::tm local{};
  ::localtime_r(&seconds, &local);
  std::array<char, sizeof "HH:MM:SS"> text{};
  static_cast<void>(std::strftime(text.data(), text.size(), "%H:%M:%S", &local));
  return text.data();
}

std::string whyNone(const KernelAdapter& adapter, const KernelFunction& function,
                    const KernelDriver& driver) {
  const std::string& name = function.pci.driver;
  if (name.empty()) {
    return "no driver is bound to it";
  }
  if (isUnknown(adapter, function) && function.answer.silentSince) {
    return "its driver " + name + " has not answered since " +
           timeOfDay(*function.answer.silentSince) + "; it may be writing the flash";
  }
  if (isUnknown(adapter, function)) {
    return "its driver " + name + " has not answered yet; it may be writing the flash";
  }
  if (isUnasked(function) && (driver.name.empty() || driver.hasDevlink)) {
    return "its driver " + name + " could not be asked whether it writes firmware by devlink: " +
           std::generic_category().message(function.answer.error) + "; try again";
  }
  if (driver.name.empty()) {
    return "its driver " + name +
           " writes no firmware: it has no devlink, and is none of those that "
           "are known to write by ethtool";
  }
  if (!driver.canWrite()) {
    return "its driver " + name +
           " writes no firmware: what it takes is a profile, which the next "
           "start forgets";
  }
  if (driver.hasEthtool) {
    return "its driver " + name + " writes firmware through a network interface, and has made none";
  }
  return "its driver " + name +
         " does not answer by devlink, through which it writes firmware; that "
         "is so in a network namespace of its own";
}

FlashRoute routeThrough(const KernelAdapter& adapter, const KernelFunction& function) {
  const bool hasDevlink = function.answer.devlink.has_value();
  const KernelDriver& driver = driverOf(function.pci.driver, hasDevlink);
  FlashRoute route{&function, &driver, FlashWay::None, {}, {}};
  const bool isOpen = isUnknown(adapter, function);
  // One that is known to have devlink alone, and does not answer now, is writing the flash by it.
  if (driver.hasDevlink && (hasDevlink || (isOpen && !driver.hasEthtool))) {
    route.way = FlashWay::Devlink;
  } else if (driver.hasEthtool && !((isOpen || isUnasked(function)) && driver.hasDevlink) &&
             !function.pci.interfaces.empty()) {
    route.way = FlashWay::Ethtool;
    route.interface = function.pci.interfaces.front().name;
  } else {
    route.whyNone = whyNone(adapter, function, driver);
  }
  return route;
}

}  // namespace

FlashRoute findRoute(const KernelAdapter& adapter, std::uint8_t preferred) {
  FlashRoute best;
  for (const KernelFunction& function : adapter.functions) {
    FlashRoute route = routeThrough(adapter, function);
    const bool isPreferred = function.pci.id.function == preferred;
    if (isPreferred && route.way != FlashWay::None) {
      return route;
    }
    const bool isBetter = best.way == FlashWay::None && route.way != FlashWay::None;
    if (best.function == nullptr || isBetter || (isPreferred && best.way == FlashWay::None)) {
      best = std::move(route);
    }
  }
  return best;
}

}  // namespace ma
