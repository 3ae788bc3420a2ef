// What the firmware files mean for the adapters, found out for requests.

#ifndef ORVEX_INVENTORY_FIRMWARECOMPARISONS_H_
#define ORVEX_INVENTORY_FIRMWARECOMPARISONS_H_

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Os/FileCalls.h"
#include "inventory/Adapters.h"
#include "inventory/FirmwareSearch.h"
#include "midapi/MidApi.h"

namespace inventory {

// An adapter, and all of it that a comparison depends on, at a moment (see ma::digestAdapter).
struct AdapterState {
  Adapter adapter;
  std::uint64_t digest = 0;
};

// Returns the adapters as they are now. Reads their flash.
[[nodiscard]] std::vector<AdapterState> digestAdapters(const std::vector<Adapter>& adapters);

// Compares files with adapters on a thread of its own, and remembers what it has found for as long
// as neither the file nor the adapter changes. Who asks waits so long and no longer; the look goes
// on then, and until it has ended all get at once what is known already. Any thread may call.
// Destruction waits for nobody.
class FirmwareComparisons {
 public:
  // Returns the content of a file as readFirmwareFile does.
  using ReadFile = std::function<std::optional<std::vector<std::uint8_t>>(const std::string& path)>;

  static constexpr os::FileCalls::Patience kPatience{10'000};

  explicit FirmwareComparisons(os::FileCalls::Patience patience = kPatience,
                               ReadFile readFile = readFirmwareFile);
  FirmwareComparisons(const FirmwareComparisons&) = delete;
  FirmwareComparisons& operator=(const FirmwareComparisons&) = delete;
  ~FirmwareComparisons();

  // Compares each of the files with all adapters. Reads one file at a time, each once for all
  // adapters, and none whose comparisons are known. Files that are not among these are forgotten.
  void look(std::vector<FirmwareFilePtr> files);

  // Returns what a file means for each adapter, as it was last found; asks no file. Unknown where
  // that was not found out yet, and where file or adapter are not those that were compared.
  [[nodiscard]] std::vector<ma::ImageComparison> find(const FirmwareFile& file,
                                                      const std::vector<AdapterState>& adapters);

  // Returns how many files the last look had not compared when it was waited for no longer.
  [[nodiscard]] std::size_t countUncompared() const { return m_uncompared; }

  // Returns whether a look goes on that is waited for no longer.
  [[nodiscard]] bool isLooking() const { return m_looks.countAway() > 0; }

  // Changes how long later looks are waited for.
  void setPatience(os::FileCalls::Patience patience) { m_looks.setPatience(patience); }

 private:
  class Catalogue;

  os::FileCalls m_looks;
  const std::shared_ptr<Catalogue> m_catalogue;
  std::atomic<std::size_t> m_uncompared{0};
};

}  // namespace inventory

#endif  // ORVEX_INVENTORY_FIRMWARECOMPARISONS_H_
