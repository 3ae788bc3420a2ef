// No signal is handled on this thread for a scope. It waits until then, or another thread has it.

#ifndef ORVEX_MIDAPI_KERNEL_BLOCKEDSIGNALS_H_
#define ORVEX_MIDAPI_KERNEL_BLOCKEDSIGNALS_H_

#include <csignal>

namespace ma {

class BlockedSignals {
 public:
  BlockedSignals() {
    sigset_t all;
    ::sigfillset(&all);
    ::pthread_sigmask(SIG_SETMASK, &all, &m_before);
  }
  BlockedSignals(const BlockedSignals&) = delete;
  BlockedSignals& operator=(const BlockedSignals&) = delete;
  ~BlockedSignals() { ::pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }

 private:
  sigset_t m_before{};
};

}  // namespace ma

#endif  // ORVEX_MIDAPI_KERNEL_BLOCKEDSIGNALS_H_
