// Updates an adapter in processes that are killed, whose system calls fail, whose disk fills up and
// whose files hang, and looks after each whether the adapter is one thing as a whole.
//
//   torture [--rounds N] [--seed S]
//
// First every system call of an update fails in its turn, in each way, and is the last one of its
// process, and then of its machine, which loses what it has not synchronised; then come N rounds
// (200) of a kind and at a moment that the seed decides. Exit status: 0 when every adapter was
// whole, 1 when one was not, with the seed and the round, 2 for a usage.

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <map>
#include <optional>
#include <random>
#include <stdexcept>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include "tests/torture/Crowd.h"
#include "tests/torture/PowerLoss.h"
#include "tests/torture/SystemCalls.h"
#include "tests/torture/Victim.h"

namespace {

using std::chrono::microseconds;
using std::chrono::steady_clock;
using test::CallFault;
using test::CallPlan;
using test::Victim;
using Firmware = test::Victim::Firmware;
using Random = std::mt19937_64;

// Nothing takes an update so long but a file that it waits for.
constexpr unsigned kPatience = 30;

enum class End { Done, Failed, Killed, NotPossible };

// What a process ends with that is not allowed what it would need, and one that has seen an adapter
// that is not whole.
constexpr int kNotPossible = 2;
constexpr int kBroken = 3;

struct Options {
  std::uint64_t rounds = 200;
  std::uint64_t seed = std::random_device{}();
};

class Torture {
 public:
  explicit Torture(std::uint64_t seed) : m_random(seed) {}

  // Each call of an update in its turn.
  void sweep();
  // The power goes behind each call of an update in its turn.
  void losePower();
  void round();

  void report(std::ostream& out) const;
  [[nodiscard]] const std::string& doing() const { return m_doing; }

 private:
  void killAtRandom();
  void killQuery();
  void failAtRandom();
  void fillDisk();
  void fillSmallDisk();
  void limitFileSize();
  void hangOnAFile();

  // Runs an update in a process of its own, which `prepare` sets up and which is killed after a
  // while where there is one. Demands that the adapter is then what the process says that it is.
  template <class Prepare>
  void torment(const std::string& kind, Prepare prepare, std::optional<microseconds> life = {});
  template <class Body>
  End runProcess(Body body, std::optional<microseconds> life);
  void breakCall(const CallPlan& plan);
  void measure();
  void watch(const CallPlan& plan) const {
    test::watchSystemCalls(m_victim.folder().string(), plan);
  }
  std::uint64_t below(std::uint64_t bound) {
    return m_random() % std::max<std::uint64_t>(bound, 1);
  }

  Random m_random;
  Victim m_victim;
  std::string m_doing;
  std::map<std::string, std::map<std::string, std::uint64_t>> m_outcomes;

  // Of an update in peace; the time is the shortest.
  std::uint64_t m_calls = 0;
  std::uint64_t m_bytes = 0;
  microseconds m_time{0};
};

const char* nameOf(CallFault fault) {
  switch (fault) {
    case CallFault::NoSpace:
      return "ENOSPC";
    case CallFault::InputOutput:
      return "EIO";
    case CallFault::Interrupted:
      return "EINTR";
    case CallFault::ShortWrite:
      return "short write";
    case CallFault::Kill:
      return "kill at a call";
  }
  return "";
}

constexpr CallFault kFaults[] = {CallFault::NoSpace, CallFault::InputOutput, CallFault::Interrupted,
                                 CallFault::ShortWrite, CallFault::Kill};

void spinFor(microseconds time) {
  const auto end = steady_clock::now() + time;
  while (steady_clock::now() < end) {
  }
}

int tell(bool isDone) {
  return isDone ? EXIT_SUCCESS : EXIT_FAILURE;
}

// Returns what a body returns; what it throws must not go on in a copy of this program.
template <class Body>
int outcomeOf(Body body) {
  try {
    return body();
  } catch (const std::exception& violation) {
    std::cout << violation.what() << std::endl;
    return kBroken;
  }
}

template <class Body>
End Torture::runProcess(Body body, std::optional<microseconds> life) {
  const pid_t process = ::fork();
  if (process < 0) {
    throw std::runtime_error("cannot make a process");
  }
  if (process == 0) {
    ::alarm(kPatience);
    ::_exit(outcomeOf(body));
  }
  if (life) {
    spinFor(*life);
    ::kill(process, SIGKILL);
  }
  int status = 0;
  if (::waitpid(process, &status, 0) != process) {
    throw std::runtime_error("a process is lost");
  }
  if (WIFEXITED(status)) {
    switch (WEXITSTATUS(status)) {
      case EXIT_SUCCESS:
        return End::Done;
      case EXIT_FAILURE:
        return End::Failed;
      case kNotPossible:
        return End::NotPossible;
      default:
        throw std::runtime_error("the adapter was not whole in the process that had it");
    }
  }
  if (WTERMSIG(status) == SIGALRM) {
    throw std::runtime_error("the update hangs");
  }
  if (WTERMSIG(status) != SIGKILL) {
    throw std::runtime_error("the update ended by signal " + std::to_string(WTERMSIG(status)));
  }
  return End::Killed;
}

template <class Prepare>
void Torture::torment(const std::string& kind, Prepare prepare, std::optional<microseconds> life) {
  const Firmware& before = m_victim.look();
  const Firmware& wanted = m_victim.other(before);
  const End end = runProcess(
      [&] {
        prepare();
        return tell(m_victim.update(wanted));
      },
      life);
  const Firmware& after = m_victim.look();
  const bool isNew = &after == &wanted;
  if ((end == End::Done && !isNew) || (end == End::Failed && isNew)) {
    throw std::runtime_error(std::string("the update says that it ") +
                             (isNew ? "failed, and changed" : "is done, and did not change") +
                             " the adapter");
  }
  const char* const ended = end == End::Done ? "done" : end == End::Failed ? "failed" : "killed";
  ++m_outcomes[kind][std::string(ended) + (end == End::Killed ? isNew ? ", new" : ", old" : "")];
}

void Torture::measure() {
  m_doing = "a new adapter";
  m_victim.makeAnother();
  m_doing = "a thousand adapters";
  test::demandThatOneQuerySettles();
  m_doing = "updates in peace";
  m_time = microseconds::max();
  constexpr int kUpdates = 4;
  for (int update = 0; update < kUpdates; ++update) {
    const Firmware& wanted = m_victim.other(m_victim.look());
    const auto start = steady_clock::now();
    static_cast<void>(runProcess([&] { return tell(m_victim.update(wanted)); }, {}));
    m_time =
        std::min(m_time, std::chrono::duration_cast<microseconds>(steady_clock::now() - start));
    m_victim.updateInPeace();
  }
  watch({});
  if (!m_victim.update(m_victim.other(m_victim.look()))) {
    throw std::runtime_error("an update in peace fails: " + m_victim.lastError());
  }
  m_calls = test::watchedCalls();
  m_bytes = test::watchedBytes();
  test::ignoreSystemCalls();
  if (m_calls < 20 || m_bytes < 100'000) {
    throw std::runtime_error("only " + std::to_string(m_calls) + " system calls are seen");
  }
}

void Torture::breakCall(const CallPlan& plan) {
  m_doing = std::string(nameOf(plan.fault)) + " at call " + std::to_string(plan.call);
  torment(nameOf(plan.fault), [&] { watch(plan); });
}

void Torture::sweep() {
  measure();
  for (const CallFault fault : kFaults) {
    for (std::uint64_t call = 0; call < m_calls; ++call) {
      breakCall({call, fault, std::nullopt});
      if (call % 8 == 0) {
        m_victim.updateInPeace();
      }
    }
  }
  m_victim.updateInPeace();
}

void Torture::losePower() {
  const test::LossCounts counts = test::losePower(m_victim, m_random, m_doing);
  m_outcomes["power loss"] = {{"old", counts.olds}, {"new", counts.news}};
}

void Torture::killAtRandom() {
  // All is decided near the end, so every other kill is meant for it.
  const auto time = static_cast<std::uint64_t>(m_time.count());
  const microseconds life(below(2) == 0 ? below(time) : time * 3 / 4 + below(time / 2));
  m_doing = "a kill after " + std::to_string(life.count()) + " us";
  torment(
      "kill at a moment", [] {}, life);
}

// Who looks may be completing what another left to be done.
void Torture::killQuery() {
  const std::uint64_t call = below(m_calls);
  m_doing = "a kill at call " + std::to_string(call) + ", and of those that look then";
  torment("kill, and of queries", [&] { watch({call, CallFault::Kill, std::nullopt}); });
  // torment() has looked, and all is done: a process that died without being looked after is next.
  const Firmware& before = m_victim.look();
  const Firmware& wanted = m_victim.other(before);
  static_cast<void>(runProcess(
      [&] {
        watch({call, CallFault::Kill, std::nullopt});
        return tell(m_victim.update(wanted));
      },
      {}));
  for (int look = 0; look < 3; ++look) {
    const std::uint64_t last = below(20);
    static_cast<void>(runProcess(
        [&] {
          watch({last, CallFault::Kill, std::nullopt});
          static_cast<void>(m_victim.look());
          return EXIT_SUCCESS;
        },
        {}));
  }
  static_cast<void>(m_victim.look());
}

void Torture::failAtRandom() {
  const CallFault fault = kFaults[below(std::size(kFaults))];
  breakCall({below(m_calls), fault, std::nullopt});
}

void Torture::fillDisk() {
  const std::uint64_t room = below(m_bytes);
  m_doing = "a disk with room for " + std::to_string(room) + " bytes";
  torment("full disk", [&] { watch({~std::uint64_t{0}, CallFault::NoSpace, room}); });
}

// A real one. What the update leaves is there only while its process lives, which so has to look.
void Torture::fillSmallDisk() {
  const std::uint64_t room = below(2 * m_bytes);
  m_doing = "a file system with room for " + std::to_string(room) + " bytes more";
  const Firmware& before = m_victim.look();
  const Firmware& wanted = m_victim.other(before);
  const End end = runProcess(
      [&] {
        if (!m_victim.moveToSmallDisk(room)) {
          return kNotPossible;
        }
        const bool isDone = m_victim.update(wanted);
        m_victim.demandTidiness();
        return &m_victim.look() == (isDone ? &wanted : &before) ? tell(isDone) : kBroken;
      },
      {});
  ++m_outcomes["full file system"][end == End::Done     ? "done"
                                   : end == End::Failed ? "failed"
                                                        : "not possible here"];
}

void Torture::limitFileSize() {
  const std::uint64_t size = below(m_bytes);
  m_doing = "files of " + std::to_string(size) + " bytes at the most";
  torment("limited file size", [&] {
    static_cast<void>(std::signal(SIGXFSZ, SIG_IGN));
    const rlimit limit{size, size};
    if (::setrlimit(RLIMIT_FSIZE, &limit) != 0) {
      std::abort();
    }
  });
}

void Torture::hangOnAFile() {
  static const std::vector<std::string> kNames = {
      "adapter.json",  "flash.rom",        "update.json",    "update.lock",
      "flash.rom.new", "adapter.json.new", "update.json.new"};
  const std::string& name = kNames[below(kNames.size())];
  m_doing = "a FIFO in the place of " + name;
  const std::filesystem::path path = m_victim.folder() / name;
  const std::filesystem::path aside = m_victim.folder().parent_path() / "aside";
  static_cast<void>(m_victim.look());
  const Firmware& before = m_victim.look();
  std::error_code missing;
  std::filesystem::rename(path, aside, missing);
  if (::mkfifo(path.c_str(), 0600) != 0) {
    throw std::runtime_error("cannot make a FIFO");
  }
  const Firmware& wanted = m_victim.other(before);
  const End end = runProcess([&] { return tell(m_victim.update(wanted)); }, {});
  struct stat state {};
  const bool isStillThere = ::lstat(path.c_str(), &state) == 0 && S_ISFIFO(state.st_mode);
  if (isStillThere) {
    std::filesystem::remove(path);
    if (!missing) {
      std::filesystem::rename(aside, path);
    }
  } else {
    std::filesystem::remove(aside);
  }
  const Firmware& after = m_victim.look();
  if (&after != (end == End::Done ? &wanted : &before)) {
    throw std::runtime_error("the update says one thing of itself, and the adapter another");
  }
  ++m_outcomes["hung file"][end == End::Done ? "done" : "failed"];
}

void Torture::round() {
  switch (below(9)) {
    case 0:
    case 1:
    case 2:
      killAtRandom();
      break;
    case 3:
      killQuery();
      break;
    case 4:
      failAtRandom();
      break;
    case 5:
      fillDisk();
      break;
    case 6:
      fillSmallDisk();
      break;
    case 7:
      limitFileSize();
      break;
    default:
      hangOnAFile();
      break;
  }
  m_doing += ", and an update in peace then";
  m_victim.updateInPeace();
}

void Torture::report(std::ostream& out) const {
  out << "an update has " << m_calls << " system calls, writes " << m_bytes << " bytes and takes "
      << m_time.count() << " us\n";
  for (const auto& [kind, ends] : m_outcomes) {
    out << kind << ":";
    for (const auto& [end, count] : ends) {
      out << "  " << end << ": " << count;
    }
    out << "\n";
  }
}

std::optional<Options> parse(const std::vector<std::string>& arguments) {
  Options options;
  for (std::size_t at = 0; at < arguments.size(); at += 2) {
    if (at + 1 == arguments.size()) {
      return std::nullopt;
    }
    char* end = nullptr;
    const std::uint64_t value = std::strtoull(arguments[at + 1].c_str(), &end, 10);
    if (arguments[at + 1].empty() || *end != '\0') {
      return std::nullopt;
    }
    if (arguments[at] == "--rounds") {
      options.rounds = value;
    } else if (arguments[at] == "--seed") {
      options.seed = value;
    } else {
      return std::nullopt;
    }
  }
  return options;
}

int run(const Options& options) {
  std::cout << "seed " << options.seed << std::endl;
  Torture torture(options.seed);
  std::uint64_t round = 0;
  try {
    torture.sweep();
    torture.losePower();
    for (round = 1; round <= options.rounds; ++round) {
      torture.round();
    }
  } catch (const std::exception& violation) {
    std::cout << "round " << round << ", " << torture.doing() << ": " << violation.what()
              << "\nrepeat with --seed " << options.seed << std::endl;
    return EXIT_FAILURE;
  }
  torture.report(std::cout);
  std::cout << options.rounds << " rounds, and the adapter was whole after each" << std::endl;
  return EXIT_SUCCESS;
}

}  // namespace

int main(int argc, char** argv) {
  const auto options = parse(std::vector<std::string>(argv + 1, argv + argc));
  if (!options) {
    std::cerr << "usage: torture [--rounds N] [--seed S]" << std::endl;
    return 2;
  }
  return run(*options);
}
