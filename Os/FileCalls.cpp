#include "Os/FileCalls.h"

#include <condition_variable>
#include <exception>
#include <set>
#include <system_error>
#include <thread>
#include <utility>

#include "platform/Mutex.h"

namespace os {

// The places of calls that were given up and have not come back.
struct FileCalls::Away {
  platform::Mutex mutex;
  std::set<std::string> places ORVEX_GUARDED_BY(mutex);
};

struct FileCalls::Call {
  std::function<void()> run;
  platform::Mutex mutex;
  std::condition_variable_any ended;
  bool isEnded ORVEX_GUARDED_BY(mutex) = false;
  std::exception_ptr failure ORVEX_GUARDED_BY(mutex);
  // Whom it is to be taken off when it comes back; null while somebody waits for it.
  std::shared_ptr<Away> away ORVEX_GUARDED_BY(mutex);
  std::string place;

  // Returns false where no thread can be started.
  [[nodiscard]] bool start(const std::shared_ptr<Call>& self);
  void perform();
  // Returns whether it ended by the deadline. Otherwise it is noted to be away.
  [[nodiscard]] bool await(std::chrono::steady_clock::time_point deadline,
                           const std::shared_ptr<Away>& notes);
};

bool FileCalls::Call::start(const std::shared_ptr<Call>& self) {
  // The thread needs the lock to end: one that ends while it is being detached has been seen to
  // hang, on Windows.
  const platform::Lock lock(mutex);
  try {
    std::thread([self] { self->perform(); }).detach();
    return true;
  } catch (const std::system_error&) {
    return false;
  }
}

void FileCalls::Call::perform() {
  std::exception_ptr thrown;
  try {
    run();
  } catch (...) {
    thrown = std::current_exception();
  }
  // Before anybody learns of the end: what it holds may be the caller's to see gone.
  run = nullptr;
  const platform::Lock lock(mutex);
  isEnded = true;
  failure = std::move(thrown);
  if (away != nullptr) {
    Away& list = *away;
    const platform::Lock listLock(list.mutex);
    list.places.erase(place);
  }
  ended.notify_all();
}

bool FileCalls::Call::await(std::chrono::steady_clock::time_point deadline,
                            const std::shared_ptr<Away>& notes) {
  const platform::Lock lock(mutex);
  while (!isEnded) {
    if (ended.wait_until(mutex, deadline) == std::cv_status::timeout && !isEnded) {
      away = notes;
      Away& list = *notes;
      const platform::Lock listLock(list.mutex);
      list.places.insert(place);
      return false;
    }
  }
  if (failure != nullptr) {
    std::rethrow_exception(std::exchange(failure, nullptr));
  }
  return true;
}

FileCalls::FileCalls(Patience patience)
    : m_patience(patience.count()), m_away(std::make_shared<Away>()) {}

FileCalls::~FileCalls() = default;

FileAnswer FileCalls::make(const std::string& place, std::function<void()> call) {
  {
    Away& away = *m_away;
    const platform::Lock lock(away.mutex);
    if (away.places.contains(place) || away.places.size() >= kMostAway) {
      return FileAnswer::StillAway;
    }
  }
  const auto made = std::make_shared<Call>();
  made->run = std::move(call);
  made->place = place;
  const auto deadline = std::chrono::steady_clock::now() + Patience(m_patience.load());
  if (!made->start(made)) {
    made->run();
    return FileAnswer::InTime;
  }
  return made->await(deadline, m_away) ? FileAnswer::InTime : FileAnswer::GivenUp;
}

FileCalls::Patience FileCalls::setPatience(Patience patience) {
  return Patience(m_patience.exchange(patience.count()));
}

FileCalls::Patience FileCalls::wholePatience() const {
  return Patience(m_patience.load()) * kPatiencesOfAFile;
}

FileCalls& fileCalls() {
  static FileCalls& calls = *new FileCalls;
  return calls;
}

std::string directoryOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  if (slash == std::string::npos) {
    return ".";
  }
  return slash == 0 ? "/" : path.substr(0, slash);
}

}  // namespace os
