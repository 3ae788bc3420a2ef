// Whether a connection may be ended so that a new one gets its place, and since when. Private to
// this folder.
//
//   may give way <-> serves a request, any number of times; may give way -> told to go, for good
//
// The connection moves between the first two on its strand, whoever wants its place takes it on any
// thread: of a request that comes and a place that is wanted at the same time, one wins.

#ifndef ORVEX_HTTP_GIVINGWAY_H_
#define ORVEX_HTTP_GIVINGWAY_H_

#include <atomic>

#include "http/Clock.h"

namespace http {

class GivingWay {
 public:
  // While a request is served.
  static constexpr Clock::time_point kNever = Clock::time_point::max();

  explicit GivingWay(Clock::time_point from) : m_from(from.time_since_epoch().count()) {}

  // The connection says from when on it may give way; that may be later than now. Returns false
  // where it was told to go before: that stays.
  bool allowFrom(Clock::time_point time) {
    Clock::rep from = m_from.load();
    while (from != kTold) {
      if (m_from.compare_exchange_weak(from, time.time_since_epoch().count())) {
        return true;
      }
    }
    return false;
  }

  // Returns what was said last; kNever also for one that was told to go.
  [[nodiscard]] Clock::time_point from() const {
    const Clock::rep from = m_from.load();
    return from == kTold ? kNever : Clock::time_point(Clock::duration(from));
  }

  // Tells the connection to go, unless it has said something else since from() returned `known`.
  // Returns whether it was told.
  [[nodiscard]] bool tell(Clock::time_point known) {
    Clock::rep from = known.time_since_epoch().count();
    return known != kNever && m_from.compare_exchange_strong(from, kTold);
  }

 private:
  static constexpr Clock::rep kTold = Clock::duration::min().count();

  std::atomic<Clock::rep> m_from;
};

}  // namespace http

#endif  // ORVEX_HTTP_GIVINGWAY_H_
