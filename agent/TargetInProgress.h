// The adapter whose update is in progress: a process updates one at a time.

#ifndef ORVEX_AGENT_TARGETINPROGRESS_H_
#define ORVEX_AGENT_TARGETINPROGRESS_H_

#include <string>
#include <utility>

namespace agent {

// The name in progress, empty when there is none. Any thread may call; each operation locks.
// Testing the name and setting it are two operations: two requests that arrive together can both
// pass.
[[nodiscard]] std::string getTargetInProgress();
void setTargetInProgress(const std::string& target);
void clearTargetInProgress() noexcept;

// Gives back what the name has of the system, for a module that is unloaded from a process that
// goes on: nothing of the above may be called any more.
void dropTargetInProgress() noexcept;

// Holds the name in progress from image checking to the end of the job, or to the refusal.
class TargetReservation {
 public:
  TargetReservation() = default;
  // Sets the name.
  explicit TargetReservation(const std::string& target) : m_isHeld(true) {
    setTargetInProgress(target);
  }
  TargetReservation(const TargetReservation&) = delete;
  TargetReservation& operator=(const TargetReservation&) = delete;
  TargetReservation(TargetReservation&& other) noexcept
      : m_isHeld(std::exchange(other.m_isHeld, false)) {}
  TargetReservation& operator=(TargetReservation&& other) noexcept {
    std::swap(m_isHeld, other.m_isHeld);
    return *this;
  }
  ~TargetReservation() { release(); }

  // Clears the name, once.
  void release() {
    if (std::exchange(m_isHeld, false)) {
      clearTargetInProgress();
    }
  }
  // Leaves the name set for good.
  void abandon() { m_isHeld = false; }

 private:
  bool m_isHeld = false;
};

}  // namespace agent

#endif  // ORVEX_AGENT_TARGETINPROGRESS_H_
