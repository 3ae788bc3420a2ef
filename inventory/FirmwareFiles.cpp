#include "inventory/FirmwareFiles.h"

#include <atomic>
#include <utility>

#include "Utils/Log.h"
#include "core/LookAhead.h"
#include "platform/Mutex.h"

namespace inventory {
namespace {

constexpr utils::LogSource kLog{"FirmwareFiles"};
constexpr const char* kUnfinished =
    "The firmware directories are still being read; a later look has the files that this one lacks";

struct Findings {
  std::vector<FirmwareFilePtr> files;
  std::set<std::string> problems;
};

}  // namespace

// What is known of the files. Shared with the thread of a look, which may outlive its request.
class FirmwareFiles::Catalogue final : public FirmwareFindings {
 public:
  void look(utils::QuorvelConfig& config) {
    const platform::Lock lookLock(m_lookMutex);
    {
      const platform::Lock lock(m_mutex);
      m_found = {};
    }
    m_search.look(config, *this);
    const platform::Lock lock(m_mutex);
    m_latest = std::move(m_found);
    m_found = {};
    m_hasLatest = true;
  }

  [[nodiscard]] Findings latest() {
    const platform::Lock lock(m_mutex);
    return m_hasLatest ? m_latest : m_found;
  }

  // No look is needed any more.
  void close() { m_isClosed = true; }

  // FirmwareFindings
  void addFile(FirmwareFilePtr file) override {
    const platform::Lock lock(m_mutex);
    m_found.files.push_back(std::move(file));
  }
  void addProblem(const std::string& problem) override {
    const platform::Lock lock(m_mutex);
    m_found.problems.insert(problem);
  }
  [[nodiscard]] bool isEnough() const override { return m_isClosed; }

 private:
  std::atomic<bool> m_isClosed{false};
  platform::Mutex m_lookMutex;
  FirmwareSearch m_search ORVEX_GUARDED_BY(m_lookMutex);
  platform::Mutex m_mutex;
  Findings m_found ORVEX_GUARDED_BY(m_mutex);   // by the look that goes on
  Findings m_latest ORVEX_GUARDED_BY(m_mutex);  // by the last one that has ended
  bool m_hasLatest ORVEX_GUARDED_BY(m_mutex) = false;
};

FirmwareFiles::FirmwareFiles(os::FileCalls::Patience patience)
    : m_looks(patience), m_catalogue(std::make_shared<Catalogue>()) {}

FirmwareFiles::~FirmwareFiles() {
  m_catalogue->close();
}

void FirmwareFiles::look() {
  utils::QuorvelConfig* const config = utils::QuorvelConfig::getInstance();
  const os::FileAnswer answer = m_looks.makeAt(
      "the firmware directories", [catalogue = m_catalogue, config] { catalogue->look(*config); });
  std::set<std::string> problems = m_catalogue->latest().problems;
  if (answer != os::FileAnswer::InTime) {
    problems.insert(kUnfinished);
  }
  report(std::move(problems));
}

std::vector<FirmwareFilePtr> FirmwareFiles::find() {
  if (!core::LookAhead::isInForce()) {
    look();
  }
  return latest();
}

std::vector<FirmwareFilePtr> FirmwareFiles::latest() {
  return m_catalogue->latest().files;
}

void FirmwareFiles::report(std::set<std::string> problems) {
  const utils::ScopedLock lock(m_lock);
  for (const std::string& problem : problems) {
    if (!m_reported.contains(problem)) {
      utils::logError(kLog, "inventory::FirmwareFiles::find", "%s", problem.c_str());
    }
  }
  m_reported = std::move(problems);
}

}  // namespace inventory
