// The one way in which a virtual adapter changes: flash, boot types and capability word together or
// not at all, whatever kills the process or the machine.
//
// An update is prepared beside what stands: the new flash and the new description are files with
// temporary names. When all of it has reached the disk, the journal (UpdateJournal.h) gets its
// name, and at that moment the update is decided: before, nothing has changed, and a process that
// dies leaves temporary files alone; from then on the adapter is the new one, and whoever comes
// next does what is left to be done. A change of one file needs no journal.
//
// A lock of the kernel, which ends with its holder, tells an update that runs from one whose
// process has died. Failures are thrown as FlashFault.

#ifndef ORVEX_MIDAPI_VIRTUAL_ADAPTERUPDATE_H_
#define ORVEX_MIDAPI_VIRTUAL_ADAPTERUPDATE_H_

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "midapi/FileSystem.h"
#include "midapi/TemporaryFiles.h"
#include "midapi/Virtual/AdapterDescription.h"
#include "midapi/Virtual/AdapterFolder.h"
#include "midapi/Virtual/UpdateJournal.h"
#include "midapi/WriteProgress.h"
#include "platform/Clock.h"
#include "platform/Mutex.h"

namespace ma {

// Begins at construction: has the adapter's lock, has completed what an earlier update left to be
// done, and has swept away what dead processes left. Each change is prepared as it is asked for;
// commit() makes them all. What was not committed is gone at destruction, and the adapter as
// before. Threads may ask for changes at the same time, but one at a time for a flash and a commit.
class AdapterUpdate {
 public:
  // Referents outlive the update. Fails when another update has the adapter for seconds.
  AdapterUpdate(FileSystem& files, AdapterFolder folder, platform::Clock& clock);
  AdapterUpdate(const AdapterUpdate&) = delete;
  AdapterUpdate& operator=(const AdapterUpdate&) = delete;
  ~AdapterUpdate() = default;

  // Of a port that the description lists.
  void setBootType(std::uint8_t function, BootType bootType);
  void setCapabilityWord(std::uint32_t word);
  // Prepares the image as the new flash: paced, read back and compared (see FlashWrite).
  void writeFlash(ConstBytes image, WriteProgress& progress);

  // Returns what the flash will hold after commit().
  [[nodiscard]] FileBytes flashToBe() const;

  // Makes the changes that were asked for since the last commit. When it fails, none is made; only
  // where the disk fails to take even that back, all may be. What fails after the decision is left
  // to whoever comes next; a disk that does not confirm a new file in its place is no failure.
  void commit();

 private:
  struct NewFlash {
    explicit NewFlash(FileSystem& files, const AdapterFolder& folder)
        : file(files, temporaryName(folder.flashPath())) {}
    TemporaryPath file;
    std::uint64_t size = 0;
    std::uint64_t digest = 0;
  };

  [[nodiscard]] std::string changedDescription(const std::string& text,
                                               const DescriptionChange& change) const;
  void replaceAll(NewFlash& flash, const DescriptionChange& change, const std::string& description);
  void decide(const NewFlash& flash, const DescriptionChange& change);
  void giveUpJournal() noexcept;

  FileSystem& m_files;
  const AdapterFolder m_folder;
  platform::Clock& m_clock;
  const std::unique_ptr<FileLock> m_lock;

  mutable platform::Mutex m_mutex;
  DescriptionChange m_change ORVEX_GUARDED_BY(m_mutex);
  std::unique_ptr<NewFlash> m_flash ORVEX_GUARDED_BY(m_mutex);
};

// Completes the update that a dead process left to be done, or takes back its journal where it was
// given up. Leaves alone what a running update does, what the caller may not write, and what fails:
// AdapterFolder tells what has been decided all the same.
void settleUpdate(FileSystem& files, const AdapterFolder& folder);

}  // namespace ma

#endif  // ORVEX_MIDAPI_VIRTUAL_ADAPTERUPDATE_H_
