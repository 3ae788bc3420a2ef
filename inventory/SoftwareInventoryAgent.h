// The inventory agent: serves the machine's Ethernet adapters, their ports and their software.

#ifndef ORVEX_INVENTORY_SOFTWAREINVENTORYAGENT_H_
#define ORVEX_INVENTORY_SOFTWAREINVENTORYAGENT_H_

#include <cstdint>
#include <set>
#include <span>
#include <string>

#include "core/CimAgent.h"
#include "core/ClassDeclarer.h"
#include "core/ClassDescriber.h"
#include "core/FirmwareReader.h"
#include "core/LookAhead.h"
#include "inventory/FirmwareComparisons.h"
#include "inventory/FirmwareFiles.h"

namespace inventory {

class SoftwareInventoryAgent : public core::CimAgent,
                               public core::ClassDeclarer,
                               public core::ClassDescriber,
                               public core::FirmwareReader,
                               public core::FileLooker {
 public:
  SoftwareInventoryAgent();
  ~SoftwareInventoryAgent() override;

  // core::ClassDeclarer
  void declareClasses(core::CimSchema& schema) const override;

  // core::ClassDescriber
  void describeClasses(core::ClassTexts& texts) const override;

  // core::FirmwareReader
  [[nodiscard]] std::string describeFirmware(std::span<const std::uint8_t> content) const override;

  // core::FileLooker
  void lookAhead(const std::set<std::string>& classNames) override;

 private:
  FirmwareFiles m_files;
  FirmwareComparisons m_comparisons;
};

// Adds the one agent of the process to the broker. For the module's load hook.
void addSoftwareInventoryAgent();

}  // namespace inventory

#endif  // ORVEX_INVENTORY_SOFTWAREINVENTORYAGENT_H_
