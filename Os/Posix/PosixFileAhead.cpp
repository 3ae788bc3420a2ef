#include <chrono>
#include <condition_variable>
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

// The places of those that exist.
class Turns {
 public:
  [[nodiscard]] bool await(std::chrono::steady_clock::time_point deadline) {
    const platform::Lock lock(m_mutex);
    while (m_taken == FileAhead::kMostAtATime) {
      if (m_left.wait_until(m_mutex, deadline) == std::cv_status::timeout &&
          m_taken == FileAhead::kMostAtATime) {
        return false;
      }
    }
    ++m_taken;
    return true;
  }
  void leave() {
    const platform::Lock lock(m_mutex);
    --m_taken;
    m_left.notify_one();
  }

 private:
  platform::Mutex m_mutex;
  std::condition_variable_any m_left;
  std::size_t m_taken ORVEX_GUARDED_BY(m_mutex) = 0;
};

// Never destroyed: a thread may leave at the end of the process.
Turns& turns() {
  static auto& all = *new Turns;
  return all;
}

class Turn {
 public:
  Turn()
      : m_isMine(turns().await(std::chrono::steady_clock::now() + fileCalls().wholePatience())) {}
  Turn(const Turn&) = delete;
  Turn& operator=(const Turn&) = delete;
  ~Turn() {
    if (m_isMine) {
      turns().leave();
    }
  }
  [[nodiscard]] bool isMine() const { return m_isMine; }

 private:
  const bool m_isMine;
};

}  // namespace

FileFindings* findAhead(const std::string& path) {
  FileFindings* const current = inForce();
  return current != nullptr && current->path == path ? current : nullptr;
}

struct FileAhead::Findings : FileFindings {
  Turn turn;
};

FileAhead::FileAhead(const std::string& path, std::uint32_t most)
    : m_findings(std::make_unique<Findings>()) {
  Findings& findings = *m_findings;
  findings.path = path;
  if (!findings.turn.isMine()) {
    findings.look.silence = FileSilence::NoTurn;
    findings.content = FileBytes{FileSilence::NoTurn, nullptr, 0};
    return;
  }
  findings.look = lookAtFile(path);
  if (findings.look.silence != FileSilence::None) {
    findings.content = FileBytes{findings.look.silence, nullptr, 0};
    return;
  }
  const std::optional<struct stat>& status = findings.look.status;
  if (status && S_ISREG(status->st_mode) && status->st_size <= most) {
    findings.content = readFileBytes(path, static_cast<std::size_t>(status->st_size));
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
