#include "midapi/Kernel/KernelCalls.h"

#include <cerrno>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <linux/capability.h>
#include <linux/ethtool.h>
#include <linux/netlink.h>
#include <linux/sockios.h>
#include <net/if.h>
#include <optional>
#include <stdexcept>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <system_error>
#include <unistd.h>

#include "midapi/Kernel/BlockedSignals.h"
#include "midapi/Kernel/DevlinkMessages.h"
#include "midapi/Kernel/FlashListener.h"
#include "midapi/Kernel/NetlinkSocket.h"
#include "platform/Posix/Descriptor.h"

namespace ma {
namespace {

using std::chrono::seconds;

constexpr std::uint32_t kSequence = 1;
// The kernel has answered when it has taken the request; this is for the case that it has not.
constexpr seconds kPatience{5};

const NetlinkAck kNoDrivers{EOPNOTSUPP, "there are no drivers behind this folder"};

const NetlinkAck kLostVerdict{EIO, "the kernel did not say how it ended", true};

// Sends a request, for as long as the kernel works on it, and calls `look` with each datagram of
// the answer until it returns something.
template <class Look>
auto exchange(NetlinkBytes request, Look look) -> decltype(look(request)) {
  NetlinkSocket socket;
  socket.send(request);
  while (const auto datagram = socket.receive(kPatience)) {
    if (auto found = look(*datagram)) {
      return found;
    }
  }
  return std::nullopt;
}

NetlinkAck verdictOn(NetlinkBytes request) {
  // Some drivers break off what they do when the thread that asked has a signal to handle.
  const BlockedSignals blocked;
  NetlinkSocket socket;
  socket.send(request);
  try {
    while (const auto datagram = socket.receive(kPatience)) {
      if (auto ack = findAck(*datagram, kSequence)) {
        return *ack;
      }
    }
  } catch (const std::system_error&) {
    return kLostVerdict;
  }
  return kLostVerdict;
}

// Throws std::system_error where the kernel has no devlink.
DevlinkFamily findDevlink() {
  std::optional<NetlinkAck> refusal;
  const auto family = exchange(makeFamilyRequest(kSequence),
                               [&refusal](NetlinkBytes datagram) -> std::optional<DevlinkFamily> {
                                 refusal = findAck(datagram, kSequence);
                                 return refusal ? DevlinkFamily{} : findFamily(datagram, kSequence);
                               });
  if (!family || family->id == 0) {
    throw std::system_error(refusal ? refusal->error : EIO, std::generic_category(),
                            "cannot ask the kernel for devlink");
  }
  return *family;
}

// Does what may fail before the kernel has a verdict.
template <class Act>
NetlinkAck outcomeOf(Act act) {
  try {
    return act();
  } catch (const std::system_error& fault) {
    return {fault.code().value(), fault.what()};
  } catch (const std::length_error& fault) {
    return {ENAMETOOLONG, fault.what()};
  }
}

}  // namespace

KernelCalls::KernelCalls(const InquirySettings& settings)
    : m_hasDrivers(settings.of == FunctionInquiry::Of::DriverAndFiles), m_inquiry(settings) {}

std::vector<DriverAnswer> KernelCalls::ask(std::span<const DriverQuestion> questions) {
  return m_inquiry.ask(questions);
}

NetlinkAck KernelCalls::flashByDevlink(
    const PortId& function, const std::string& file, const std::string& component,
    const std::function<void(const DevlinkFlashEvent&)>& onEvent) {
  return m_hasDrivers ? outcomeOf([&] {
    const DevlinkFamily family = findDevlink();
    const auto request = makeFlashRequest(family, function, file, component, kSequence);
    const FlashListener listener(family, function, onEvent);
    return verdictOn(request);
  })
                      : kNoDrivers;
}

NetlinkAck KernelCalls::flashByEthtool(const std::string& interface, const std::string& file) {
  if (!m_hasDrivers) {
    return kNoDrivers;
  }
  ethtool_flash flash{};
  ifreq request{};
  if (file.size() >= sizeof flash.data || interface.size() >= sizeof request.ifr_name) {
    return {ENAMETOOLONG, "ethtool takes names of files of " +
                              std::to_string(sizeof flash.data - 1) +
                              " bytes, and names of interfaces of " +
                              std::to_string(sizeof request.ifr_name - 1)};
  }
  flash.cmd = ETHTOOL_FLASHDEV;
  flash.region = ETHTOOL_FLASH_ALL_REGIONS;
  file.copy(flash.data, file.size());
  interface.copy(request.ifr_name, interface.size());
  request.ifr_data = reinterpret_cast<char*>(&flash);
  const BlockedSignals blocked;
  const platform::Descriptor socket(::socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, NETLINK_GENERIC));
  const bool isDone = socket.isOpen() && ::ioctl(socket.get(), SIOCETHTOOL, &request) == 0;
  return isDone ? NetlinkAck{} : NetlinkAck{errno, ""};
}

NetlinkAck KernelCalls::activate(const PortId& function) {
  return m_hasDrivers ? outcomeOf([&] {
    return verdictOn(makeActivateRequest(findDevlink(), function, kSequence));
  })
                      : kNoDrivers;
}

bool KernelCalls::mayFlash() const {
  __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
  __user_cap_data_struct rights[_LINUX_CAPABILITY_U32S_3] = {};
  return ::syscall(SYS_capget, &header, rights) == 0 &&
         (rights[CAP_TO_INDEX(CAP_NET_ADMIN)].effective & CAP_TO_MASK(CAP_NET_ADMIN)) != 0;
}

}  // namespace ma
