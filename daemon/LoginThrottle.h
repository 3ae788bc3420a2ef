// Slows down who guesses passwords: each refusal in a row makes the client wait longer for it.
//
// What counts is the client's network (http::toPeerGroup), since names cost a guesser nothing.
// Failures fade by time alone: a success in between, with an account that the guesser may have,
// changes nothing. Bounded in memory: while there is no room, a network that fails for the first
// time waits for longest, so that who has many of them at hand gains nothing by having one
// forgotten. One thread at a time.

#ifndef ORVEX_DAEMON_LOGINTHROTTLE_H_
#define ORVEX_DAEMON_LOGINTHROTTLE_H_

#include <chrono>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <unordered_map>

namespace quorveld {

class LoginThrottle {
 public:
  using Clock = std::chrono::steady_clock;
  using Now = std::function<Clock::time_point()>;

  static constexpr std::chrono::milliseconds kFirstDelay{500};
  static constexpr std::chrono::milliseconds kLongestDelay{8000};
  // A failure is forgotten this long after the last one of its network.
  static constexpr std::chrono::minutes kMemory{5};
  static constexpr std::size_t kMostNetworks = 4096;

  explicit LoginThrottle(Now now = Clock::now) : m_now(std::move(now)) {}

  // Returns the delay of the last refusal while that is still waiting to be answered: no password
  // is to be tried meanwhile, or guesses side by side would cost no more time than one. Counts the
  // login as one that was refused unchecked then.
  [[nodiscard]] std::optional<std::chrono::milliseconds> findRefusal(const std::string& address);

  // Counts a failure. Returns how long its answer has to wait.
  [[nodiscard]] std::chrono::milliseconds addFailure(const std::string& address);

  // Returns how many logins of the network were refused unchecked since the last call.
  [[nodiscard]] unsigned takeUnchecked(const std::string& address);

  // Returns how many networks are remembered.
  [[nodiscard]] std::size_t size() const { return m_failures.size(); }

 private:
  struct Failures {
    std::chrono::milliseconds delay{0};
    Clock::time_point last;
    unsigned unchecked = 0;
  };

  void forgetTheQuietest();

  Now m_now;
  std::unordered_map<std::string, Failures> m_failures;
};

}  // namespace quorveld

#endif  // ORVEX_DAEMON_LOGINTHROTTLE_H_
