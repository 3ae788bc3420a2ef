// The folder of one virtual adapter: its description, its flash, and the journal of an update that
// is decided and not yet done, see UpdateJournal.h.
//
// Reads alone, and keeps nothing in memory; AdapterUpdate.h is what changes a folder. Failures are
// FlashFaults whose texts name the file.

#ifndef ORVEX_MIDAPI_VIRTUAL_ADAPTERFOLDER_H_
#define ORVEX_MIDAPI_VIRTUAL_ADAPTERFOLDER_H_

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "midapi/FileSystem.h"
#include "midapi/FlashBackend.h"
#include "midapi/Virtual/AdapterDescription.h"
#include "midapi/Virtual/UpdateJournal.h"

namespace ma {

// The largest flash that is read, and so the largest that is written.
inline constexpr std::size_t kMaxFlash = std::size_t{256} << 20;

// What an adapter is at one moment.
struct AdapterState {
  AdapterDescription description;
  FileBytes flash;
};

class AdapterFolder {
 public:
  // The folder of `address` in the adapters directory; it need not exist.
  AdapterFolder(FileSystem& files, const std::filesystem::path& adapters,
                const AdapterAddress& address);

  [[nodiscard]] const std::filesystem::path& path() const { return m_path; }
  [[nodiscard]] std::filesystem::path descriptionPath() const { return m_path / "adapter.json"; }
  [[nodiscard]] std::filesystem::path flashPath() const { return m_path / "flash.rom"; }
  [[nodiscard]] std::filesystem::path journalPath() const { return m_path / "update.json"; }
  [[nodiscard]] std::filesystem::path lockPath() const { return m_path / "update.lock"; }

  // Returns what the description's file says; boot types and capability word of an update that is
  // not yet done are not in it. Fails with UnknownAdapter where there is no description, and with
  // InvalidDescription also for one that belongs to another folder.
  [[nodiscard]] AdapterDescription description() const;
  [[nodiscard]] std::string descriptionText() const;

  // Returns false when there is no description, whatever else is wrong with it.
  [[nodiscard]] bool hasDescription() const;

  // Returns the content of the flash, which is the new one from the moment at which an update is
  // decided; empty when there is no file.
  [[nodiscard]] FileBytes flash() const;

  // Returns what stands under the flash's own name, which is the flash where no update is being
  // done.
  [[nodiscard]] FileBytes placedFlash() const;

  // Returns description and flash that belong to each other, as they are with the update that is
  // decided: also while it is being done, and where the caller may not complete it.
  [[nodiscard]] AdapterState state() const;

  // Returns the journal of an update; nothing where there is none.
  [[nodiscard]] std::optional<UpdateJournal> journal() const;

  // Returns whether what a journal says holds: its flash is there, under either name. It does not
  // where the update was given up and the journal could not be removed with it.
  [[nodiscard]] bool isDecided(const UpdateJournal& journal) const;

  // Refuses a text that is no description of this adapter.
  [[nodiscard]] AdapterDescription parse(const std::string& text) const;

 private:
  [[nodiscard]] std::optional<FileBytes> readIfThere(const std::filesystem::path& path,
                                                     std::size_t maxSize) const;
  [[nodiscard]] std::string decidedText() const;

  FileSystem& m_files;
  AdapterAddress m_address;
  std::filesystem::path m_path;
};

// The folders in an adapters directory.
struct AdapterFolders {
  std::vector<AdapterAddress> addresses;         // of all adapter folders, in ascending order
  std::vector<std::filesystem::path> strangers;  // the names of other folders
  bool hasLinks = false;                         // as of Folders
};

// Returns what is in a directory; nothing when it does not exist. Throws FlashFault.
[[nodiscard]] AdapterFolders listAdapterFolders(FileSystem& files,
                                                const std::filesystem::path& directory);

}  // namespace ma

#endif  // ORVEX_MIDAPI_VIRTUAL_ADAPTERFOLDER_H_
