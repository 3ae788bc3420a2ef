// The folder of one virtual adapter: its description and its flash.
//
// Keeps nothing in memory: each operation reads or replaces files. Failures are FlashFaults whose
// texts name the file. Changes of one description must not overlap; the caller sees to that.

#ifndef ORVEX_MIDAPI_ADAPTERFOLDER_H_
#define ORVEX_MIDAPI_ADAPTERFOLDER_H_

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

#include "midapi/AdapterDescription.h"
#include "midapi/FileSystem.h"
#include "midapi/FlashBackend.h"

namespace ma {

// The largest flash that is read, and so the largest that is written.
inline constexpr std::size_t kMaxFlash = std::size_t{256} << 20;

class AdapterFolder {
 public:
  // The folder of `address` in the adapters directory; it need not exist.
  AdapterFolder(FileSystem& files, const std::filesystem::path& adapters,
                const AdapterAddress& address);

  [[nodiscard]] std::filesystem::path descriptionPath() const { return m_path / "adapter.json"; }
  [[nodiscard]] std::filesystem::path flashPath() const { return m_path / "flash.rom"; }

  // Fails with UnknownAdapter where there is no description, and with InvalidDescription also for
  // one that belongs to another folder.
  [[nodiscard]] AdapterDescription description() const;

  // Returns false when there is no description, whatever else is wrong with it.
  [[nodiscard]] bool hasDescription() const;

  // Returns the content of the flash; empty when there is no file.
  [[nodiscard]] FileBytes flash() const;

  // Replace the description's file by one that has another boot type or capability word.
  void storeBootType(std::uint8_t function, BootType bootType) const;
  void storeCapabilityWord(std::uint32_t word) const;

 private:
  template <class Change>
  void changeDescription(Change change) const;
  [[nodiscard]] std::string descriptionText() const;
  [[nodiscard]] AdapterDescription parse(const std::string& text) const;

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

#endif  // ORVEX_MIDAPI_ADAPTERFOLDER_H_
