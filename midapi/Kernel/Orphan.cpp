#include "midapi/Kernel/Orphan.h"

#include <csignal>
#include <new>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>
#include <vector>

#include "platform/Mutex.h"

namespace ma {
namespace {

// What older C libraries have no name for.
constexpr auto kByHandle = static_cast<idtype_t>(3);
constexpr long kOpenHandle = 434;  // the same on all architectures

enum class Fate { Lives, Ended, NotOurs };

Fate look(int handle, int options) {
  siginfo_t info{};
  if (::waitid(kByHandle, static_cast<id_t>(handle), &info, WEXITED | WNOHANG | options) != 0) {
    return Fate::NotOurs;
  }
  return info.si_pid == 0 ? Fate::Lives : Fate::Ended;
}

struct Orphanage {
  platform::Mutex mutex;
  std::vector<platform::Descriptor> handles ORVEX_GUARDED_BY(mutex);
};

// It lives as long as the process: threads may still ask while that exits.
Orphanage& orphanage() {
  static Orphanage& theOrphanage = *new Orphanage;
  return theOrphanage;
}

}  // namespace

Orphan::Orphan(int process) {
  platform::Descriptor handle(static_cast<int>(::syscall(kOpenHandle, process, 0)));
  if (handle.isOpen() && look(handle.get(), WNOWAIT) != Fate::NotOurs) {
    m_handle = std::move(handle);
  }
}

Orphan::~Orphan() {
  if (!m_handle.isOpen()) {
    return;
  }
  try {
    Orphanage& home = orphanage();
    const platform::Lock lock(home.mutex);
    home.handles.push_back(std::move(m_handle));
  } catch (const std::bad_alloc&) {
    return;  // it stays unburied
  }
}

void buryOrphans() noexcept {
  Orphanage& home = orphanage();
  const platform::Lock lock(home.mutex);
  std::erase_if(home.handles, [](const platform::Descriptor& handle) {
    return look(handle.get(), 0) != Fate::Lives;
  });
}

}  // namespace ma
