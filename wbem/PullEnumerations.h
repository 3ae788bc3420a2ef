// The enumerations that clients have opened and pull piece by piece (DSP0200, 5.3.2.24).
//
// The results are taken when an enumeration is opened, as XML that is ready, so pulling asks for no
// instances. An enumeration belongs to the user that opened it and to the namespace; it ends when
// its last result is pulled, when it is closed, or when it is not used for its time. Their number
// and their bytes are bounded. Any thread may call.

#ifndef ORVEX_WBEM_PULLENUMERATIONS_H_
#define ORVEX_WBEM_PULLENUMERATIONS_H_

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Utils/Mutex.h"

namespace wbem {

using Clock = std::function<std::chrono::steady_clock::time_point()>;

class PullEnumerations {
 public:
  struct Limits {
    std::size_t enumerations = 64;
    std::size_t enumerationsOfUser = 16;     // so that nobody takes all places
    std::size_t bytes = 8U * 1024U * 1024U;  // of memory that all results take which wait
    std::chrono::seconds defaultTime{30};
    std::chrono::seconds longestTime{300};
  };

  enum class Kind { Instances, Paths, QueriedInstances };

  // Whose it is.
  struct Owner {
    std::string user;
    std::string nameSpace;
    Kind kind = Kind::Instances;

    friend bool operator==(const Owner&, const Owner&) = default;
  };

  // Results one behind the other: each ends where `ends` says.
  struct Results {
    std::string text;
    std::vector<std::size_t> ends;
  };

  // What a client is given next.
  struct Part {
    bool isLast = true;
    std::string context;  // under which the rest is pulled; empty: nothing is left
  };

  explicit PullEnumerations(Clock clock);
  PullEnumerations(Clock clock, Limits limits);

  // Returns the time for an OperationTimeout in seconds, none for one that was not given. Throws
  // StatusFault (CIM_ERR_INVALID_OPERATION_TIMEOUT) for 0, which would have no end, and for one
  // that is too long.
  [[nodiscard]] std::chrono::seconds demandTime(std::optional<std::uint32_t> seconds) const;

  // Appends the first results, `count` at the most, and keeps the others. Throws StatusFault
  // (CIM_ERR_SERVER_LIMITS_EXCEEDED).
  [[nodiscard]] Part open(const Owner& owner, Results results, std::chrono::seconds time,
                          std::uint32_t count, std::string& out);
  // Appends the next results, `count` at the most. Throws StatusFault
  // (CIM_ERR_INVALID_ENUMERATION_CONTEXT) for a context that is unknown, or another owner's.
  [[nodiscard]] Part pull(const Owner& owner, const std::string& context, std::uint32_t count,
                          std::string& out);
  // Drops the rest, of either kind. Throws as pull().
  void close(const std::string& user, const std::string& nameSpace, const std::string& context);

  // Drops those that were not used for their time. The other functions do so first; whoever calls
  // this now and then frees their memory when nobody enumerates any more.
  void dropExpired();
  // Returns how many are open.
  [[nodiscard]] std::size_t count();

 private:
  struct Enumeration {
    Owner owner;
    Results results;
    std::chrono::seconds time{};
    std::chrono::steady_clock::time_point end;
    std::size_t bytes = 0;  // of memory
    std::size_t next = 0;   // index of the result that comes next
  };
  using Enumerations = std::map<std::string, Enumeration, std::less<>>;

  void removeExpired() ORVEX_REQUIRES(m_mutex);
  [[nodiscard]] bool hasRoom(const Enumeration& enumeration) const ORVEX_REQUIRES(m_mutex);
  void drop(Enumerations::iterator enumeration) ORVEX_REQUIRES(m_mutex);
  [[nodiscard]] Enumerations::iterator demand(std::string_view context) ORVEX_REQUIRES(m_mutex);
  static void take(Enumeration& enumeration, std::uint32_t count, std::string& out);

  const Clock m_clock;
  const Limits m_limits;

  utils::Mutex m_mutex;
  Enumerations m_enumerations ORVEX_GUARDED_BY(m_mutex);
  std::size_t m_bytes ORVEX_GUARDED_BY(m_mutex) = 0;
};

}  // namespace wbem

#endif  // ORVEX_WBEM_PULLENUMERATIONS_H_
