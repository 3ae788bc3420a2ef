// One of the places that a few may take at a time; who finds none is turned away and not kept.

#ifndef ORVEX_DAEMON_PLACE_H_
#define ORVEX_DAEMON_PLACE_H_

#include <atomic>

namespace quorveld {

// A place, held as long as the object where one was free. Any thread.
class Place {
 public:
  // `taken` is counted in by all who want one; it outlives the object.
  Place(std::atomic<unsigned>& taken, unsigned most)
      : m_taken(taken), m_isTaken(taken.fetch_add(1) < most) {}
  Place(const Place&) = delete;
  Place& operator=(const Place&) = delete;
  ~Place() { m_taken.fetch_sub(1); }

  [[nodiscard]] bool isTaken() const { return m_isTaken; }

 private:
  std::atomic<unsigned>& m_taken;
  const bool m_isTaken;
};

}  // namespace quorveld

#endif  // ORVEX_DAEMON_PLACE_H_
