// The places of the requests that are answered or wait for their turn: who finds none is turned
// away and not kept.
//
// No peer takes all of them: he gets another one only while he has fewer than are free, so alone
// half of them, and whoever comes next finds one. Root and the user that the service runs as take
// any place, and some that nobody else gets.

#ifndef ORVEX_DAEMON_ANSWERPLACES_H_
#define ORVEX_DAEMON_ANSWERPLACES_H_

#include <map>
#include <string>
#include <utility>

#include "platform/Mutex.h"

namespace quorveld {

// Any thread.
class AnswerPlaces {
 public:
  static constexpr unsigned kMost = 32;
  static constexpr unsigned kKept = 8;  // beyond, for the trusted

  // A place, held as long as the object where there was one. The places outlive it.
  class Place {
   public:
    Place(AnswerPlaces& places, std::string peer, bool isTrusted)
        : m_places(places), m_peer(std::move(peer)), m_isTaken(places.take(m_peer, isTrusted)) {}
    Place(const Place&) = delete;
    Place& operator=(const Place&) = delete;
    ~Place() {
      if (m_isTaken) {
        m_places.give(m_peer);
      }
    }

    [[nodiscard]] bool isTaken() const { return m_isTaken; }

   private:
    AnswerPlaces& m_places;
    const std::string m_peer;
    const bool m_isTaken;
  };

 private:
  [[nodiscard]] bool take(const std::string& peer, bool isTrusted);
  void give(const std::string& peer) noexcept;

  platform::Mutex m_mutex;
  unsigned m_taken ORVEX_GUARDED_BY(m_mutex) = 0;
  std::map<std::string, unsigned> m_takenBy ORVEX_GUARDED_BY(m_mutex);  // without zeros
};

}  // namespace quorveld

#endif  // ORVEX_DAEMON_ANSWERPLACES_H_
