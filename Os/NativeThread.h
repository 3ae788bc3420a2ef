// The threads of the platform: that which utils::Thread starts and waits for, and those that nobody
// waits for. Defined per platform.
//
// Constructed (no thread), start() once, join() once. Whoever calls them does so from one thread at
// a time; hasEnded() may be asked from any.

#ifndef ORVEX_OS_NATIVETHREAD_H_
#define ORVEX_OS_NATIVETHREAD_H_

#include <memory>

#include "Utils/Log.h"

namespace os {

class NativeThread {
 public:
  using Entry = void (*)(void* argument);

  // The name that a thread of this platform logs under.
  static const utils::LogSource kLog;

  NativeThread();
  NativeThread(const NativeThread&) = delete;
  NativeThread& operator=(const NativeThread&) = delete;
  ~NativeThread();

  // Starts `entry(argument)` on a new thread. On Windows the module that holds the address
  // `inModule` stays loaded until the thread has ended: a module that is unloaded meanwhile goes on
  // the thread itself, after the entry has returned. Returns 0, else the platform's error number.
  [[nodiscard]] int start(Entry entry, void* argument, const void* inModule);
  // Waits for the end of the thread that was started, without limit, and gives its handle back; on
  // the thread itself it does not wait. Returns 0, else the platform's error number.
  [[nodiscard]] int join();
  // Starts `entry(argument)` on a thread that nobody waits for. Else as start().
  [[nodiscard]] static int startAlone(Entry entry, void* argument, const void* inModule);
  // Returns whether a thread was started and is no more, even where its entry has not returned:
  // Windows ends all threads but one before the process's objects are destroyed. On POSIX, where
  // a thread lives until its entry has returned, the answer is always false.
  [[nodiscard]] bool hasEnded() const;

 private:
  struct State;

  std::unique_ptr<State> m_state;
};

}  // namespace os

#endif  // ORVEX_OS_NATIVETHREAD_H_
