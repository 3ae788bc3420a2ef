// What is asked of the drivers in the kernel, and of the kernel's files that a driver fills, behind
// an interface so that tests can stand for drivers.
//
// While an adapter's flash is being written, whoever asks its driver for anything waits until that
// has ended. So ask() waits a moment and no longer; the others wait as long as it takes. Any thread
// may call.

#ifndef ORVEX_MIDAPI_KERNEL_DRIVERCALLS_H_
#define ORVEX_MIDAPI_KERNEL_DRIVERCALLS_H_

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "midapi/AdapterId.h"
#include "midapi/Kernel/DevlinkMessages.h"
#include "midapi/Kernel/PciFunctions.h"
#include "midapi/Kernel/SharedBytes.h"

namespace ma {

// What a driver says of itself by ETHTOOL_GDRVINFO; texts fit for a terminal.
struct DriverInfo {
  std::string driver;
  std::string version;
  std::string firmwareVersion;

  friend bool operator==(const DriverInfo&, const DriverInfo&) = default;
};

// What to ask of a function beside what its driver says. Both are slow on real hardware, and
// change with the machine's next start alone.
struct DriverQuestion {
  PciFunction function;
  bool wantsVpd = false;
  bool wantsRom = false;
  // Something has changed: an answer to what was asked earlier will not do.
  bool wantsLatest = false;
};

// The bytes of a file, or why there are none.
struct FileAnswer {
  int error = 0;  // 0, or an errno value
  SharedBytes bytes;
};

struct DriverAnswer {
  // 0, or an errno value: why the driver has not said what it says at other times, or could not be
  // asked. What it says is empty then, but where it has devlink (see there); that is no proof that
  // it has none.
  int error = 0;
  // The driver has not answered by devlink in time, and goes on; all else is empty then. Its flash
  // may be being written.
  bool isAway = false;
  // Since when it has not, where that is known.
  std::optional<std::chrono::system_clock::time_point> silentSince;
  // It has, and not all of the rest has come in time. A file that has not has the error EBUSY.
  bool isPartial = false;
  // Nothing: the driver has no devlink, or it is not known. Empty: it has, and does not say; with
  // an error, it did not just now.
  std::optional<DevlinkInfo> devlink;
  // Asked for where devlink tells no version. Nothing: no interface, or it does not say.
  std::optional<DriverInfo> info;
  FileAnswer vpd;
  FileAnswer rom;
};

class DriverCalls {
 public:
  DriverCalls() = default;
  DriverCalls(const DriverCalls&) = delete;
  DriverCalls& operator=(const DriverCalls&) = delete;
  virtual ~DriverCalls() = default;

  // Returns an answer for each question, in their order. Fails in no way: an answer says why there
  // is none.
  [[nodiscard]] virtual std::vector<DriverAnswer> ask(
      std::span<const DriverQuestion> questions) = 0;

  // Has the driver write a file of the kernel's firmware folder; returns when that has ended, with
  // the kernel's verdict. `onEvent` is called with what the driver tells meanwhile, on another
  // thread, and not after the return; it throws nothing. An empty component is all that the file
  // holds.
  [[nodiscard]] virtual NetlinkAck flashByDevlink(
      const PortId& function, const std::string& file, const std::string& component,
      const std::function<void(const DevlinkFlashEvent&)>& onEvent) = 0;

  // The same by ETHTOOL_FLASHDEV, which tells nothing meanwhile. Its 0 says nothing of a driver
  // that is not known to have the function: the kernel answers so for every driver that lacks it.
  [[nodiscard]] virtual NetlinkAck flashByEthtool(const std::string& interface,
                                                  const std::string& file) = 0;

  // Has the driver put stored firmware into force without a restart of the machine.
  [[nodiscard]] virtual NetlinkAck activate(const PortId& function) = 0;

  // Returns whether this process may write firmware: CAP_NET_ADMIN.
  [[nodiscard]] virtual bool mayFlash() const = 0;
};

}  // namespace ma

#endif  // ORVEX_MIDAPI_KERNEL_DRIVERCALLS_H_
