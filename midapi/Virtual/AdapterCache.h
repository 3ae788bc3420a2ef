// What was read of the adapters in a directory, kept for as long as the files stay what they were.
//
// Every answer is the one that reading the files anew would give: the identities of the directory,
// of each description and of a flash are asked for at each call (see FileSystem::identity), and
// what has changed, or has no identity, is read again. Any thread may call; none waits for
// another's reading.

#ifndef ORVEX_MIDAPI_VIRTUAL_ADAPTERCACHE_H_
#define ORVEX_MIDAPI_VIRTUAL_ADAPTERCACHE_H_

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <vector>

#include "Utils/FirmwareTypes.h"
#include "midapi/FileSystem.h"
#include "midapi/Virtual/AdapterDescription.h"
#include "platform/Mutex.h"

namespace ma {

class AdapterCache {
 public:
  explicit AdapterCache(FileSystem& files);
  AdapterCache(const AdapterCache&) = delete;
  AdapterCache& operator=(const AdapterCache&) = delete;
  ~AdapterCache();

  // Returns the identifiers of all ports, ordered by PCI address; leaves out adapters that cannot
  // be read. Throws FlashFault as listAdapterFolders.
  [[nodiscard]] utils::StringArray ports(const std::filesystem::path& directory);

  // Returns the descriptions of the adapters that can be read, ordered by PCI address. Throws as
  // ports().
  [[nodiscard]] std::vector<std::shared_ptr<const AdapterDescription>> descriptions(
      const std::filesystem::path& directory);

  // Returns the description of one adapter, without a look at the others. Throws FlashFault as
  // AdapterFolder::description.
  [[nodiscard]] std::shared_ptr<const AdapterDescription> description(
      const std::filesystem::path& directory, const AdapterAddress& address);

  // Returns the digest (see Digest.h) of what AdapterFolder::flash returns. Throws FlashFault as
  // that.
  [[nodiscard]] std::uint64_t flashDigest(const std::filesystem::path& directory,
                                          const AdapterAddress& address);

 private:
  struct Adapter;
  struct Snapshot;
  struct Flash {
    std::filesystem::path path;
    FileIdentity identity;
    std::uint64_t digest = 0;
  };

  [[nodiscard]] std::shared_ptr<const Snapshot> latest();
  [[nodiscard]] std::shared_ptr<const Snapshot> current(const std::filesystem::path& directory);
  void keep(const std::shared_ptr<const Snapshot>& seen);
  [[nodiscard]] std::optional<std::uint64_t> findDigest(const AdapterAddress& address,
                                                        const std::filesystem::path& path,
                                                        const FileIdentity& identity);
  [[nodiscard]] bool isCurrent(const Snapshot& known) const;
  [[nodiscard]] bool isCurrent(const Adapter& known) const;
  [[nodiscard]] std::shared_ptr<const Snapshot> look(const std::filesystem::path& directory,
                                                     const Snapshot* known);
  [[nodiscard]] std::shared_ptr<const Adapter> lookAt(const std::filesystem::path& directory,
                                                      const AdapterAddress& address);

  FileSystem& m_files;
  platform::Mutex m_mutex;
  // A snapshot never changes. Null: nothing was read yet.
  std::shared_ptr<const Snapshot> m_latest ORVEX_GUARDED_BY(m_mutex);
  // Of adapters that were there at the last look, or have come since.
  std::map<AdapterAddress, Flash> m_flashes ORVEX_GUARDED_BY(m_mutex);
};

}  // namespace ma

#endif  // ORVEX_MIDAPI_VIRTUAL_ADAPTERCACHE_H_
