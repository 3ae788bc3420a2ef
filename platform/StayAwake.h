// Keeps the machine from going to sleep by itself, for want of a user, while this object lives.
//
// Whoever sends it to sleep on purpose is not kept from it. Belongs to the thread that made it,
// which asks afterwards for what it asked for before.
// Defined per platform: on POSIX nothing is asked of anybody, for a system puts itself to sleep
// only on behalf of a desktop's session, which whoever updates there can hold off
// (systemd-inhibit).

#ifndef ORVEX_PLATFORM_STAYAWAKE_H_
#define ORVEX_PLATFORM_STAYAWAKE_H_

namespace platform {

class StayAwake {
 public:
  StayAwake();
  StayAwake(const StayAwake&) = delete;
  StayAwake& operator=(const StayAwake&) = delete;
  // NOLINTNEXTLINE(performance-trivially-destructible): on Windows it does something
  ~StayAwake();

 private:
  [[maybe_unused]] const unsigned long m_before;  // what the thread asked for
};

}  // namespace platform

#endif  // ORVEX_PLATFORM_STAYAWAKE_H_
