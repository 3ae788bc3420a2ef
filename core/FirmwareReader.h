// What an agent may offer beside its three operations: to tell what the bytes of a firmware file
// hold. A front end asks each agent whether it is one.
//
// Any thread calls, at any time; the broker's request is not needed.

#ifndef ORVEX_CORE_FIRMWAREREADER_H_
#define ORVEX_CORE_FIRMWAREREADER_H_

#include <cstdint>
#include <span>
#include <string>

#include "Utils/Export.h"

namespace core {

class ORVEX_CORE_API FirmwareReader {
 public:
  FirmwareReader() = default;
  FirmwareReader(const FirmwareReader&) = delete;
  FirmwareReader& operator=(const FirmwareReader&) = delete;

  // Returns the types of the images and their versions, "IMG_PXE 0.1, IMG_UEFI 1.2"; an empty text
  // for content that is no firmware that the agent knows.
  [[nodiscard]] virtual std::string describeFirmware(
      std::span<const std::uint8_t> content) const = 0;

 protected:
  ~FirmwareReader() = default;
};

}  // namespace core

#endif  // ORVEX_CORE_FIRMWAREREADER_H_
