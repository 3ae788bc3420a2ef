// The firmware files in the directories of the configuration (FWFilePath), for requests.

#ifndef ORVEX_INVENTORY_FIRMWAREFILES_H_
#define ORVEX_INVENTORY_FIRMWAREFILES_H_

#include <chrono>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "Os/FileCalls.h"
#include "Utils/Mutex.h"
#include "inventory/FirmwareSearch.h"

namespace inventory {

// Looks for the files on a thread of its own: who asks waits so long and no longer. The look goes
// on then, and until it has ended all get at once what was last known. Any thread may call.
// Destruction waits for nobody.
class FirmwareFiles {
 public:
  // Who lists files for the first time wants to see them all.
  static constexpr os::FileCalls::Patience kPatience{10'000};

  explicit FirmwareFiles(os::FileCalls::Patience patience = kPatience);
  FirmwareFiles(const FirmwareFiles&) = delete;
  FirmwareFiles& operator=(const FirmwareFiles&) = delete;
  ~FirmwareFiles();

  // Looks for the files. What is left out is reported to the log: once, until the problem has
  // changed or was gone. That files may be missing, since a look has not ended, is such a problem.
  void look();
  // Returns the files, directory by directory in the order of the configuration and in each by
  // name: those of the last look that has ended; before any has, those that were found so far.
  // Looks for them first, unless this thread has had that done (see core/LookAhead.h).
  [[nodiscard]] std::vector<FirmwareFilePtr> find();
  // The same without a look.
  [[nodiscard]] std::vector<FirmwareFilePtr> latest();

  // Changes how long later looks are waited for.
  void setPatience(os::FileCalls::Patience patience) { m_looks.setPatience(patience); }

 private:
  class Catalogue;

  void report(std::set<std::string> problems);

  os::FileCalls m_looks;
  const std::shared_ptr<Catalogue> m_catalogue;
  utils::Mutex m_lock;
  std::set<std::string> m_reported ORVEX_GUARDED_BY(m_lock);
};

}  // namespace inventory

#endif  // ORVEX_INVENTORY_FIRMWAREFILES_H_
