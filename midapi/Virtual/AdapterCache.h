// What was read of the adapters in a directory, kept for as long as the files stay what they were.
//
// Every answer is the one that reading the files anew would give: the identities of the directory
// and of each description are asked for at each call (see FileSystem::identity), and what has
// changed, or has no identity, is read again. Any thread may call; none waits for another's
// reading.

#ifndef ORVEX_MIDAPI_VIRTUAL_ADAPTERCACHE_H_
#define ORVEX_MIDAPI_VIRTUAL_ADAPTERCACHE_H_

#include <filesystem>
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

  // Returns the description of one adapter, without a look at the others. Throws FlashFault as
  // AdapterFolder::description.
  [[nodiscard]] std::shared_ptr<const AdapterDescription> description(
      const std::filesystem::path& directory, const AdapterAddress& address);

 private:
  struct Adapter;
  struct Snapshot;

  [[nodiscard]] std::shared_ptr<const Snapshot> latest();
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
};

}  // namespace ma

#endif  // ORVEX_MIDAPI_VIRTUAL_ADAPTERCACHE_H_
