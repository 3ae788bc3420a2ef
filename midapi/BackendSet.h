// Several back ends as one: each adapter is asked of the one that has it.
//
// An address that two of them have is nobody's: it is left out of the enumeration, every operation
// for it fails with a text that names both, and the list has it among its problems. Which back ends
// count may change from one call to the next; an update ends where it has begun.

#ifndef ORVEX_MIDAPI_BACKENDSET_H_
#define ORVEX_MIDAPI_BACKENDSET_H_

#include <functional>
#include <map>
#include <vector>

#include "midapi/FlashBackend.h"
#include "platform/Mutex.h"

namespace ma {

class BackendSet final : public FlashBackend {
 public:
  // `members` gives the back ends that count, one at the least, and is asked at each operation;
  // they outlive the set.
  explicit BackendSet(std::function<std::vector<FlashBackend*>()> members);

  // FlashBackend
  std::string describe(const AdapterAddress& adapter) override;
  bool hasAdapter(const AdapterAddress& adapter) override;
  utils::StringArray enumerateAdapters() override;
  AdapterList list() override;
  AdapterList outline(OutlineDepth depth) override;
  std::vector<std::string> interruptedWrites() override;
  bool isUpdatable(const PortId& port) override;
  std::vector<utils::FirmwareVersionInfo> installedFirmware(const PortId& port) override;
  std::vector<FirmwareVersions> firmwareVersions(const PortId& port) override;
  void awaitAnswer(const AdapterAddress& adapter) override;
  Preparation prepare(const PortId& port, ConstBytes file, std::span<std::uint8_t> buffer,
                      const std::vector<utils::FirmwareType>& types) override;
  ImageComparison compare(const PortId& port, ConstBytes file) override;
  std::uint64_t digest(const PortId& port) override;
  bool beginUpdate(const AdapterAddress& adapter) override;
  void endUpdate(const AdapterAddress& adapter) noexcept override;
  void setBootType(const PortId& port, BootType bootType) override;
  void writeFlash(const PortId& port, ConstBytes image, WriteProgress& progress) override;
  void recordInstalled(const PortId& port, const std::vector<utils::FirmwareType>& types) override;
  Activation activate(const AdapterAddress& adapter) override;

  // Returns what somebody should mend or know, in a line each: interrupted writes, and addresses
  // that several have.
  [[nodiscard]] std::vector<std::string> problems();

 private:
  // Returns the back end that has the adapter; the last one where none has it. Throws FlashFault
  // where several have it.
  [[nodiscard]] FlashBackend& memberFor(const AdapterAddress& adapter);

  // Forgets an update that has begun, and returns where it has; null where none has.
  [[nodiscard]] FlashBackend* takeUpdate(const AdapterAddress& adapter) noexcept;

  const std::function<std::vector<FlashBackend*>()> m_members;
  platform::Mutex m_mutex;
  // Of updates that have begun.
  std::map<AdapterAddress, FlashBackend*> m_updates ORVEX_GUARDED_BY(m_mutex);
};

}  // namespace ma

#endif  // ORVEX_MIDAPI_BACKENDSET_H_
