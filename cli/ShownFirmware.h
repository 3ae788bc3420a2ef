// A firmware file as the command line shows it: what it is, and what it would mean for adapters.

#ifndef ORVEX_CLI_SHOWNFIRMWARE_H_
#define ORVEX_CLI_SHOWNFIRMWARE_H_

#include <ostream>
#include <string>
#include <vector>

#include "client/Value.h"
#include "midapi/FirmwareDescription.h"
#include "midapi/FlashTypes.h"

namespace cli {

// What an update from the file would mean for one adapter.
struct AdapterVerdict {
  std::string adapter;  // "0000:03:00"
  std::string name;
  ma::ImageComparison comparison = ma::ImageComparison::Unknown;
  std::string reason;  // where the comparison does not say it all
};

struct ShownFirmware {
  std::string file;  // its path
  ma::FirmwareDescription description;
  std::vector<AdapterVerdict> adapters;
};

void printFirmware(std::ostream& out, const ShownFirmware& firmware);

[[nodiscard]] client::Value toJson(const ShownFirmware& firmware);

}  // namespace cli

#endif  // ORVEX_CLI_SHOWNFIRMWARE_H_
