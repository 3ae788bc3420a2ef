// What is asked of one function, errand by errand, and what the replies say.
//
// It is asked for in parts, because other things hold them up: devlink waits while that very
// adapter is flashed; ETHTOOL_GDRVINFO and the speed of a link wait for the kernel's lock of the
// network configuration, which some drivers keep while any of their adapters is flashed.
//
// Pure: somebody else runs the errands. Replies are data from outside: what is malformed is not
// known. Plain values; throws nothing but std::bad_alloc.

#ifndef ORVEX_MIDAPI_KERNEL_FUNCTIONINQUIRY_H_
#define ORVEX_MIDAPI_KERNEL_FUNCTIONINQUIRY_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "midapi/Kernel/AskingChild.h"
#include "midapi/Kernel/DevlinkMessages.h"
#include "midapi/Kernel/DriverCalls.h"

namespace ma {

// Whether the kernel knows devlink, and by which numbers.
struct DevlinkLookup {
  bool isDone = false;
  DevlinkFamily family;  // of the number 0 where it does not
};

struct ErrandOrder {
  Errand errand = Errand::Netlink;
  std::vector<std::uint8_t> bytes;
};

class FunctionInquiry {
 public:
  // FilesAlone is for a folder that imitates the machine: there is no driver behind it.
  enum class Of { DriverAndFiles, FilesAlone };

  // What the driver says by devlink.
  [[nodiscard]] static FunctionInquiry ofDevlink(DriverQuestion question, Of of,
                                                 const DevlinkLookup& devlink);
  // The files, and what the driver says of itself where it has told no version by devlink.
  [[nodiscard]] static FunctionInquiry ofRest(DriverQuestion question, Of of,
                                              const std::optional<DevlinkInfo>& told);

  // The speed of the first interface, where that is up.
  [[nodiscard]] static FunctionInquiry ofLink(DriverQuestion question);

  // Returns whether what this one asks for answers the question, too.
  [[nodiscard]] bool answers(const DriverQuestion& question) const;

  // Returns what is to be done next; nothing when all is known.
  [[nodiscard]] std::optional<ErrandOrder> next() const;
  void take(const ErrandReply& reply);

  // So far: files that have not been read are EBUSY.
  [[nodiscard]] const DriverAnswer& answer() const { return m_answer; }
  // What was found, or handed in.
  [[nodiscard]] const DevlinkLookup& devlink() const { return m_devlink; }

 private:
  enum class Step { Family, Devlink, Driver, Vpd, Rom, Speed };

  FunctionInquiry(DriverQuestion question, Of of) : m_question(std::move(question)), m_of(of) {}
  [[nodiscard]] ErrandOrder orderOf(Step step) const;

  DriverQuestion m_question;
  Of m_of;
  DevlinkLookup m_devlink;
  std::vector<Step> m_steps;  // that are left, the last one first
  DriverAnswer m_answer;
};

}  // namespace ma

#endif  // ORVEX_MIDAPI_KERNEL_FUNCTIONINQUIRY_H_
