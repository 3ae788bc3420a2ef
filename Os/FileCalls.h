// Calls of file systems that may not answer.
//
// A network file system whose server is gone, or one that a program serves that hangs, holds a call
// for as long as it likes, and with it whoever waits. Each call runs on a thread of its own here,
// which alone stays behind then. On Windows the module of the call stays loaded until it has ended.
// Any thread may call.

#ifndef ORVEX_OS_FILECALLS_H_
#define ORVEX_OS_FILECALLS_H_

#include <atomic>
#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>

#include "Utils/Export.h"

namespace os {

enum class FileAnswer {
  InTime,
  // The call was given up: it goes on alone, so it must own all that it uses.
  GivenUp,
  // Not called, since an earlier call at a place that it needs has not come back yet.
  StillAway,
};

class ORVEX_CORE_API FileCalls {
 public:
  using Patience = std::chrono::milliseconds;

  // A disk that stood still needs some seconds.
  static constexpr Patience kPatience{5000};
  // How many times the patience a whole file may take that comes in pieces.
  static constexpr int kPatiencesOfAFile = 6;
  // So many calls may be away; then none of any place is made until one comes back.
  static constexpr std::size_t kMostAway = 64;

  explicit FileCalls(Patience patience = kPatience);
  FileCalls(const FileCalls&) = delete;
  FileCalls& operator=(const FileCalls&) = delete;
  ~FileCalls();

  // Runs `call`, which asks something of `path`, and waits for it no longer than the patience. Its
  // places are what the path leads through, by whichever spelling (see Os/FilePlace.h); one that
  // is away is so in the file system that has not answered. Where no thread can be started, the
  // caller's goes there and runs it, however long it takes. Throws what the call throws in time.
  [[nodiscard]] FileAnswer make(const std::string& path, std::function<void()> call);
  // The same for a call that needs one place, which the caller names: a directory, and then it
  // holds up all calls that lead through that, or any other text.
  [[nodiscard]] FileAnswer makeAt(const std::string& place, std::function<void()> call);

  // Returns how many calls that were given up have not come back yet: what one of them did, it did
  // before it is counted no more.
  [[nodiscard]] std::size_t countAway() const;

  // Change the patience of later calls, and how many times that a whole file may take; return what
  // was before.
  Patience setPatience(Patience patience);
  int setPatiencesOfAFile(int count);
  // Returns the time for a whole file, which is read with several calls.
  [[nodiscard]] Patience wholePatience() const;

 private:
  struct Away;
  struct Call;

  [[nodiscard]] FileAnswer run(const std::shared_ptr<Call>& call);

  std::atomic<Patience::rep> m_patience;  // milliseconds
  std::atomic<int> m_patiencesOfAFile{kPatiencesOfAFile};
  const std::shared_ptr<Away> m_away;
};

// Returns those of the process, which the functions of Os/Files.h make. Never destroyed.
[[nodiscard]] ORVEX_CORE_API FileCalls& fileCalls();

}  // namespace os

#endif  // ORVEX_OS_FILECALLS_H_
