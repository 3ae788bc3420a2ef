// What an update of an adapter is about to change, and its text: the update.json that stands in the
// adapter's folder from the moment at which the update is decided until all of it is done.
//
//   {
//     "flash": "flash.rom.new-0123456789abcdef",   the file that becomes the flash
//     "flashSize": 65536, "flashDigest": "af63dc4c8601ec8c",
//     "bootTypes": [{"function": 0, "bootType": 0}],
//     "capabilityWord": 24                         left out where it stays
//   }
//
// Pure: no I/O.

#ifndef ORVEX_MIDAPI_VIRTUAL_UPDATEJOURNAL_H_
#define ORVEX_MIDAPI_VIRTUAL_UPDATEJOURNAL_H_

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "midapi/Virtual/AdapterDescription.h"

namespace ma {

struct UpdateJournal {
  // In the adapter's folder: the new flash, until it has taken the place of the old one.
  std::string flashName;
  // Of the new flash.
  std::uint64_t flashSize = 0;
  std::uint64_t flashDigest = 0;
  DescriptionChange change;

  // Returns whether bytes are those of the new flash.
  [[nodiscard]] bool isNewFlash(std::span<const std::uint8_t> flash) const;
};

// Reads a journal. Throws DescriptionFault, also where the file that it names is none of an
// update's.
[[nodiscard]] UpdateJournal parseJournal(std::string_view text);

// Returns the text of a journal.
[[nodiscard]] std::string formatJournal(const UpdateJournal& journal);

}  // namespace ma

#endif  // ORVEX_MIDAPI_VIRTUAL_UPDATEJOURNAL_H_
