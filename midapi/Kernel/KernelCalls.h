// The drivers of the running kernel: devlink, ethtool, and the files of sysfs.

#ifndef ORVEX_MIDAPI_KERNEL_KERNELCALLS_H_
#define ORVEX_MIDAPI_KERNEL_KERNELCALLS_H_

#include <functional>
#include <span>
#include <string>
#include <vector>

#include "midapi/Kernel/DriverCalls.h"
#include "midapi/Kernel/DriverInquiry.h"

namespace ma {

class KernelCalls final : public DriverCalls {
 public:
  // Of files alone, nothing is asked of drivers or told to them.
  explicit KernelCalls(const InquirySettings& settings = {});

  // DriverCalls
  std::vector<DriverAnswer> ask(std::span<const DriverQuestion> questions) override;
  NetlinkAck flashByDevlink(const PortId& function, const std::string& file,
                            const std::string& component,
                            const std::function<void(const DevlinkFlashEvent&)>& onEvent) override;
  NetlinkAck flashByEthtool(const std::string& interface, const std::string& file) override;
  NetlinkAck activate(const PortId& function) override;
  [[nodiscard]] bool mayFlash() const override;

 private:
  const bool m_hasDrivers;
  DriverInquiry m_inquiry;
};

}  // namespace ma

#endif  // ORVEX_MIDAPI_KERNEL_KERNELCALLS_H_
