#include "daemon/Posix/StopSignals.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <poll.h>
#include <pthread.h>
#include <sys/eventfd.h>
#include <sys/signalfd.h>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "Utils/Log.h"

namespace quorveld {
namespace {

constexpr utils::LogSource kLog{"StopSignals"};

platform::Descriptor demand(int descriptor, const char* call) {
  if (descriptor < 0) {
    throw std::system_error(errno, std::generic_category(), call);
  }
  return platform::Descriptor(descriptor);
}

bool isIgnored(int signal) {
  struct sigaction action {};
  return sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

}  // namespace

StopSignals::StopSignals() {
  std::signal(SIGPIPE, SIG_IGN);
  // A terminal's stop would keep the machine's flash lock, and the clients waiting.
  std::signal(SIGTSTP, SIG_IGN);
  std::signal(SIGTTOU, SIG_IGN);
  sigset_t signals;
  sigemptyset(&signals);
  for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
    // The kernel keeps a signal that is held off even where it is to be ignored.
    if (!isIgnored(signal)) {
      sigaddset(&signals, signal);
    }
  }
  if (const int error = pthread_sigmask(SIG_BLOCK, &signals, nullptr)) {
    throw std::system_error(error, std::generic_category(), "pthread_sigmask");
  }
  m_signals = demand(signalfd(-1, &signals, SFD_CLOEXEC), "signalfd");
}

StopSignals::Delivery::Delivery(const StopSignals& signals, std::function<void()> stop)
    : m_stop(std::move(stop)), m_end(demand(eventfd(0, EFD_CLOEXEC), "eventfd")) {
  m_thread = std::thread([this, number = signals.m_signals.get()] { serve(number); });
}

StopSignals::Delivery::~Delivery() {
  const std::uint64_t one = 1;
  while (write(m_end.get(), &one, sizeof(one)) < 0 && errno == EINTR) {
  }
  m_thread.join();
}

void StopSignals::Delivery::serve(int signals) const {
  bool isStopped = false;
  std::array<pollfd, 2> sources{{{signals, POLLIN, 0}, {m_end.get(), POLLIN, 0}}};
  while (true) {
    if (poll(sources.data(), sources.size(), -1) < 0) {
      continue;
    }
    if (sources[1].revents != 0) {
      return;
    }
    signalfd_siginfo signal{};
    if (read(signals, &signal, sizeof(signal)) != static_cast<ssize_t>(sizeof(signal))) {
      continue;
    }
    const bool asksToStop = signal.ssi_signo != SIGHUP;
    const char* const effect = !asksToStop ? "nothing to be read anew"
                               : isStopped ? "already stopping, as soon as no update runs"
                                           : "stopping";
    utils::logDebug(kLog, "quorveld::StopSignals::Delivery::serve", "SIG%s: %s",
                    sigabbrev_np(static_cast<int>(signal.ssi_signo)), effect);
    if (asksToStop && !std::exchange(isStopped, true)) {
      m_stop();
    }
  }
}

}  // namespace quorveld
