// The back end of virtual adapters: folders with a description and a flash file, see
// AdapterDescription.h. An adapter is found by its folder's name, never by a search.

#ifndef ORVEX_MIDAPI_VIRTUAL_VIRTUALFLASHBACKEND_H_
#define ORVEX_MIDAPI_VIRTUAL_VIRTUALFLASHBACKEND_H_

#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <string>

#include "midapi/ChainFlashBackend.h"
#include "midapi/Virtual/AdapterCache.h"
#include "midapi/Virtual/AdapterFolder.h"
#include "midapi/Virtual/AdapterUpdate.h"
#include "platform/Clock.h"
#include "platform/Mutex.h"

namespace ma {

class VirtualFlashBackend final : public ChainFlashBackend {
 public:
  // `directory` gives the adapters directory and is asked at each operation. A directory that does
  // not exist holds no adapters. Writes are paced by `clock`.
  VirtualFlashBackend(FileSystem& files, std::function<std::filesystem::path()> directory,
                      platform::Clock& clock);

  // FlashBackend
  std::string describe(const AdapterAddress& adapter) override;
  bool hasAdapter(const AdapterAddress& adapter) override;
  utils::StringArray enumerateAdapters() override;
  AdapterList list() override;
  AdapterList outline(OutlineDepth depth) override;
  bool beginUpdate(const AdapterAddress& adapter) override;
  void endUpdate(const AdapterAddress& adapter) noexcept override;
  void setBootType(const PortId& port, BootType bootType) override;
  void writeFlash(const PortId& port, ConstBytes image, WriteProgress& progress) override;

  // ChainFlashBackend
  AdapterFacts facts(const PortId& port) override;
  FileBytes readFlash(const PortId& port) override;
  FileBytes readFlashToBe(const PortId& port) override;
  std::uint64_t digestFlash(const PortId& port) override;
  void setCapabilityWord(const PortId& port, std::uint32_t word) override;

 private:
  // Of updates that have begun; null before their first change.
  using Updates = std::map<AdapterAddress, std::shared_ptr<AdapterUpdate>>;

  [[nodiscard]] AdapterFolder folderOf(const AdapterAddress& adapter) const;
  [[nodiscard]] std::shared_ptr<AdapterUpdate> runningUpdate(const PortId& port)
      ORVEX_REQUIRES(m_mutex);

  FileSystem& m_files;
  const std::function<std::filesystem::path()> m_directory;
  platform::Clock& m_clock;
  AdapterCache m_cache;

  // Held while an adapter is taken for a change, so that the threads of this process wait for each
  // other as long as it takes.
  platform::Mutex m_mutex;
  Updates m_updates ORVEX_GUARDED_BY(m_mutex);
};

}  // namespace ma

#endif  // ORVEX_MIDAPI_VIRTUAL_VIRTUALFLASHBACKEND_H_
