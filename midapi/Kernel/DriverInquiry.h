// Asks the drivers of many functions, and waits for none of them.
//
// One child process asks for all, one function after the other. Where an answer does not come in
// time the child is left behind with that function until it has been answered or has ended, and
// another one goes on with the next. What a driver says by devlink is asked for apart from the
// rest, which may be stuck where that is not: there is one child for each part that is stuck, and
// never a second one, be it another program's of the same user or root's (see AskingLocks.h). Any
// thread may ask; two that ask for the same functions do so one after the
// other.

#ifndef ORVEX_MIDAPI_KERNEL_DRIVERINQUIRY_H_
#define ORVEX_MIDAPI_KERNEL_DRIVERINQUIRY_H_

#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <utility>
#include <vector>

#include "midapi/AdapterId.h"
#include "midapi/Kernel/AskingChild.h"
#include "midapi/Kernel/AskingLocks.h"
#include "midapi/Kernel/DriverCalls.h"
#include "midapi/Kernel/FunctionInquiry.h"
#include "platform/Mutex.h"

namespace ma {

struct InquirySettings {
  // How long a driver may keep silent. Of several in a row that do, each is given half the time of
  // the one before: what holds them may be the same.
  std::chrono::milliseconds patience{200};
  // How long ago an answer may have come that was not waited for. After that the driver is asked
  // again.
  std::chrono::milliseconds lateFor{2000};
  FunctionInquiry::Of of = FunctionInquiry::Of::DriverAndFiles;
  Forks forks;
  // A folder that all programs on the machine have in common; none: each asks for itself.
  std::filesystem::path locks{};
};

class DriverInquiry {
 public:
  explicit DriverInquiry(const InquirySettings& settings)
      : m_settings(settings), m_locks(settings.locks, settings.patience) {}

  // As DriverCalls::ask.
  [[nodiscard]] std::vector<DriverAnswer> ask(std::span<const DriverQuestion> questions);

 private:
  enum class Part { Devlink, Rest };
  using Key = std::pair<PortId, Part>;
  struct Away {
    FunctionInquiry inquiry;
    AskingChild child;
    SystemTime since;
  };
  struct Round;
  class Turn;

  [[nodiscard]] DriverAnswer askFor(const DriverQuestion& question, Round& round);
  // Finds out what one inquiry is about; what it knows by then counts where that is Waiting, too.
  [[nodiscard]] AskingChild::State pursue(FunctionInquiry& inquiry, Part part,
                                          const DriverQuestion& question, Round& round);
  // Returns Replied where nobody else's child hangs there, and has the child keep others from
  // asking.
  [[nodiscard]] AskingChild::State lock(AskingChild& child, const Key& key, Round& round) const;
  [[nodiscard]] bool isRecent(const AskingChild& child) const;
  [[nodiscard]] std::optional<Away> takeAway(const Key& key);
  void putAway(const Key& key, Away away);
  void buryOthers();

  const InquirySettings m_settings;
  const AskingLocks m_locks;
  platform::Mutex m_mutex;
  std::condition_variable_any m_isFree;
  std::set<PortId> m_asked ORVEX_GUARDED_BY(m_mutex);  // by some thread, now
  std::map<Key, Away> m_away ORVEX_GUARDED_BY(m_mutex);
  DevlinkLookup m_devlink ORVEX_GUARDED_BY(m_mutex);
};

}  // namespace ma

#endif  // ORVEX_MIDAPI_KERNEL_DRIVERINQUIRY_H_
