// What is wrong with one field of a binary structure that came from outside.

#ifndef ORVEX_MIDAPI_FIELDDEFECT_H_
#define ORVEX_MIDAPI_FIELDDEFECT_H_

#include <cstddef>
#include <string>

#include "midapi/Hex.h"

namespace ma {

struct FieldDefect {
  std::string field;       // "components[1].location"
  std::size_t offset = 0;  // of the field, from the start of the bytes
  std::string reason;

  // Returns for example "components[1].location at 0xac: is 0x20, inside the header, which ends at
  // 0xbf".
  [[nodiscard]] std::string toString() const {
    return field + " at 0x" + hexText(offset, 1) + ": " + reason;
  }
};

}  // namespace ma

#endif  // ORVEX_MIDAPI_FIELDDEFECT_H_
