// A back end whose adapters hold a chain of PCI Expansion ROM images, which is read and replaced as
// a whole.
//
// Checks, prepares and compares for such adapters; a derived class knows them and their flash. As
// FlashBackend in everything else.

#ifndef ORVEX_MIDAPI_CHAINFLASHBACKEND_H_
#define ORVEX_MIDAPI_CHAINFLASHBACKEND_H_

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "Utils/FirmwareTypes.h"
#include "midapi/FlashBackend.h"
#include "midapi/ImagePreparation.h"

namespace ma {

class ChainFlashBackend : public FlashBackend {
 public:
  [[nodiscard]] virtual AdapterFacts facts(const PortId& port) = 0;

  // Returns the content of the flash; empty when it was never written.
  [[nodiscard]] virtual FileBytes readFlash(const PortId& port) = 0;

  // Returns what the flash will hold when the update is made; without one, what it holds.
  [[nodiscard]] virtual FileBytes readFlashToBe(const PortId& port) = 0;

  // Returns the digest of that content (see Digest.h), which a back end may know without reading
  // it.
  [[nodiscard]] virtual std::uint64_t digestFlash(const PortId& port);

  // Stores the capability word: bit n stands for image type number n.
  virtual void setCapabilityWord(const PortId& port, std::uint32_t word) = 0;

  // FlashBackend
  std::vector<std::string> interruptedWrites() override;
  bool isUpdatable(const PortId& port) override;
  std::vector<utils::FirmwareVersionInfo> installedFirmware(const PortId& port) override;
  std::vector<FirmwareVersions> firmwareVersions(const PortId& port) override;
  void awaitAnswer(const AdapterAddress& /*adapter*/) override {}  // each answers at once
  Preparation prepare(const PortId& port, ConstBytes file, std::span<std::uint8_t> buffer,
                      const std::vector<utils::FirmwareType>& types) override;
  ImageComparison compare(const PortId& port, ConstBytes file) override;
  std::uint64_t digest(const PortId& port) override;
  void recordInstalled(const PortId& port, const std::vector<utils::FirmwareType>& types) override;
  Activation activate(const AdapterAddress& adapter) override;
};

}  // namespace ma

#endif  // ORVEX_MIDAPI_CHAINFLASHBACKEND_H_
