#include "Os/FileCalls.h"

#include <condition_variable>
#include <exception>
#include <set>
#include <typeinfo>
#include <utility>

#include "Os/FilePlace.h"
#include "Os/NativeThread.h"
#include "platform/Mutex.h"

namespace os {

// The places of calls that were given up and have not come back: one for each.
struct FileCalls::Away {
  platform::Mutex mutex;
  std::multiset<std::string> places ORVEX_GUARDED_BY(mutex);
};

struct FileCalls::Call {
  Call(std::function<void()> theCall, std::string thePath, std::string thePlace,
       std::shared_ptr<Away> theAway)
      : run(std::move(theCall)),
        path(std::move(thePath)),
        away(std::move(theAway)),
        place(std::move(thePlace)) {}

  std::function<void()> run;
  const std::string path;  // empty: the call has one place, which is known
  const std::shared_ptr<Away> away;

  platform::Mutex mutex;  // taken before that of what is away
  std::condition_variable_any ended;
  std::string place ORVEX_GUARDED_BY(mutex);  // where it is
  bool isEnded ORVEX_GUARDED_BY(mutex) = false;
  bool isRefused ORVEX_GUARDED_BY(mutex) = false;
  bool isGivenUp ORVEX_GUARDED_BY(mutex) = false;  // and so among those that are away
  std::exception_ptr failure ORVEX_GUARDED_BY(mutex);

  // Returns false where no thread can be started.
  [[nodiscard]] bool start(const std::shared_ptr<Call>& self);
  void perform();
  // Goes to where it is to be made. Returns false when it is not to be made.
  [[nodiscard]] bool goThere();
  [[nodiscard]] bool enter(const std::string& fileSystem, const std::string& directory);
  // Waits for the end until the deadline. What has not ended by then is noted to be away.
  [[nodiscard]] FileAnswer await(std::chrono::steady_clock::time_point deadline);
};

bool FileCalls::Call::start(const std::shared_ptr<Call>& self) {
  using Self = std::shared_ptr<Call>;
  auto argument = std::make_unique<Self>(self);
  const auto enter = [](void* call) {
    const std::unique_ptr<Self> own(static_cast<Self*>(call));
    (*own)->perform();
  };
  // What is called is code of a module that may be unloaded while the call is away: that which
  // knows its type.
  if (NativeThread::startAlone(enter, argument.get(), &run.target_type()) != 0) {
    return false;
  }
  static_cast<void>(argument.release());
  return true;
}

void FileCalls::Call::perform() {
  std::exception_ptr thrown;
  try {
    if (goThere()) {
      run();
    }
  } catch (...) {
    thrown = std::current_exception();
  }
  // Before anybody learns of the end: what it holds may be the caller's to see gone.
  run = nullptr;
  const platform::Lock lock(mutex);
  isEnded = true;
  failure = std::move(thrown);
  if (isGivenUp) {
    Away& list = *away;
    const platform::Lock listLock(list.mutex);
    list.places.erase(list.places.find(place));
  }
  ended.notify_all();
}

bool FileCalls::Call::goThere() {
  const auto go = [this](const std::string& fileSystem, const std::string& directory) {
    return enter(fileSystem, directory);
  };
  if (!path.empty()) {
    walkPlaces(path, go);
  }
  const platform::Lock lock(mutex);
  return !isRefused;
}

bool FileCalls::Call::enter(const std::string& fileSystem, const std::string& directory) {
  const platform::Lock lock(mutex);
  Away& list = *away;
  const platform::Lock listLock(list.mutex);
  if (isGivenUp) {
    list.places.erase(list.places.find(place));  // it has come on from there
  }
  isRefused = list.places.contains(fileSystem) || list.places.contains(directory);
  place = fileSystem;
  if (isGivenUp) {
    list.places.insert(place);
  }
  return !isRefused;
}

FileAnswer FileCalls::Call::await(std::chrono::steady_clock::time_point deadline) {
  const platform::Lock lock(mutex);
  while (!isEnded) {
    if (ended.wait_until(mutex, deadline) == std::cv_status::timeout && !isEnded) {
      isGivenUp = true;
      Away& list = *away;
      const platform::Lock listLock(list.mutex);
      list.places.insert(place);
      return FileAnswer::GivenUp;
    }
  }
  if (failure != nullptr) {
    std::rethrow_exception(std::exchange(failure, nullptr));
  }
  return isRefused ? FileAnswer::StillAway : FileAnswer::InTime;
}

FileCalls::FileCalls(Patience patience)
    : m_patience(patience.count()), m_away(std::make_shared<Away>()) {}

FileCalls::~FileCalls() = default;

FileAnswer FileCalls::make(const std::string& path, std::function<void()> call) {
  return run(std::make_shared<Call>(std::move(call), path, path, m_away));
}

FileAnswer FileCalls::makeAt(const std::string& place, std::function<void()> call) {
  {
    Away& away = *m_away;
    const platform::Lock lock(away.mutex);
    if (away.places.contains(place)) {
      return FileAnswer::StillAway;
    }
  }
  return run(std::make_shared<Call>(std::move(call), "", place, m_away));
}

FileAnswer FileCalls::run(const std::shared_ptr<Call>& call) {
  if (countAway() >= kMostAway) {
    return FileAnswer::StillAway;
  }
  const auto deadline = std::chrono::steady_clock::now() + Patience(m_patience.load());
  if (!call->start(call)) {
    if (!call->goThere()) {
      return FileAnswer::StillAway;
    }
    call->run();
    return FileAnswer::InTime;
  }
  return call->await(deadline);
}

std::size_t FileCalls::countAway() const {
  Away& away = *m_away;
  const platform::Lock lock(away.mutex);
  return away.places.size();
}

FileCalls::Patience FileCalls::setPatience(Patience patience) {
  return Patience(m_patience.exchange(patience.count()));
}

int FileCalls::setPatiencesOfAFile(int count) {
  return m_patiencesOfAFile.exchange(count);
}

FileCalls::Patience FileCalls::wholePatience() const {
  return Patience(m_patience.load()) * m_patiencesOfAFile.load();
}

FileCalls& fileCalls() {
  static FileCalls& calls = *new FileCalls;
  return calls;
}

}  // namespace os
