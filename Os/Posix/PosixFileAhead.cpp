#include <chrono>
#include <condition_variable>
#include <optional>
#include <set>
#include <sys/stat.h>
#include <utility>

#include "Os/FileAhead.h"
#include "Os/FileCalls.h"
#include "Os/Posix/FileReading.h"
#include "platform/Mutex.h"

namespace os {
namespace {

FileFindings*& inForce() {
  thread_local FileFindings* current = nullptr;
  return current;
}

// Of those that hold content: one for each device, so that a slow one has its own wait alone.
class Turns {
 public:
  [[nodiscard]] bool await(dev_t device, std::chrono::steady_clock::time_point deadline) {
    const platform::Lock lock(m_mutex);
    while (isHeldUp(device)) {
      if (m_left.wait_until(m_mutex, deadline) == std::cv_status::timeout && isHeldUp(device)) {
        return false;
      }
    }
    m_taken.insert(device);
    return true;
  }
  void leave(dev_t device) {
    const platform::Lock lock(m_mutex);
    m_taken.erase(device);
    m_left.notify_all();
  }

 private:
  [[nodiscard]] bool isHeldUp(dev_t device) const ORVEX_REQUIRES(m_mutex) {
    return m_taken.size() == FileAhead::kMostAtATime || m_taken.contains(device);
  }

  platform::Mutex m_mutex;
  std::condition_variable_any m_left;
  std::set<dev_t> m_taken ORVEX_GUARDED_BY(m_mutex);
};

// Never destroyed: a thread may leave at the end of the process.
Turns& turns() {
  static auto& all = *new Turns;
  return all;
}

class Turn {
 public:
  explicit Turn(dev_t device)
      : m_device(device),
        m_isMine(turns().await(device,
                               std::chrono::steady_clock::now() + fileCalls().wholePatience())) {}
  Turn(const Turn&) = delete;
  Turn& operator=(const Turn&) = delete;
  ~Turn() {
    if (m_isMine) {
      turns().leave(m_device);
    }
  }
  [[nodiscard]] bool isMine() const { return m_isMine; }

 private:
  const dev_t m_device;
  const bool m_isMine;
};

}  // namespace

FileFindings* findAhead(const std::string& path) {
  FileFindings* const current = inForce();
  return current != nullptr && current->path == path ? current : nullptr;
}

struct FileAhead::Findings : FileFindings {
  std::optional<Turn> turn;

  // Returns whether that leaves a file to be read.
  [[nodiscard]] bool lookAt(std::uint32_t most);
  void silence(FileSilence why);
};

bool FileAhead::Findings::lookAt(std::uint32_t most) {
  look = readFileStatus(path);
  if (look.silence != FileSilence::None) {
    silence(look.silence);
    return false;
  }
  return look.status && S_ISREG(look.status->st_mode) && look.status->st_size <= most;
}

void FileAhead::Findings::silence(FileSilence why) {
  look = {why, std::nullopt};
  content = FileBytes{why, nullptr, 0};
}

FileAhead::FileAhead(const std::string& path, std::uint32_t most)
    : m_findings(std::make_unique<Findings>()) {
  Findings& findings = *m_findings;
  findings.path = path;
  if (!findings.lookAt(most)) {
    return;
  }
  findings.turn.emplace(findings.look.status->st_dev);
  if (!findings.turn->isMine()) {
    findings.silence(FileSilence::NoTurn);
    return;
  }
  // It may have become another file while this waited.
  if (findings.lookAt(most)) {
    findings.content = readFileBytes(path, static_cast<std::size_t>(findings.look.status->st_size));
  }
}

FileAhead::~FileAhead() = default;

std::span<const std::uint8_t> FileAhead::content() const {
  const std::optional<FileBytes>& content = m_findings->content;
  const std::optional<struct stat>& status = m_findings->look.status;
  const bool isWhole =
      content && status && content->size == static_cast<std::size_t>(status->st_size);
  return isWhole ? std::span(content->bytes.get(), content->size) : std::span<const std::uint8_t>();
}

bool FileAhead::isTaken() const {
  return m_findings->isTaken;
}

FileAhead::InForce::InForce(FileAhead* ahead)
    : m_before(std::exchange(inForce(), ahead != nullptr ? ahead->m_findings.get() : nullptr)) {}

FileAhead::InForce::~InForce() {
  inForce() = static_cast<FileFindings*>(m_before);
}

}  // namespace os
