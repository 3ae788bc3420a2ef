// Any text is a journal or a fault; a journal names a new flash of its own folder, and what is
// written of it reads the same.

#include <string>
#include <string_view>

#include "midapi/DescriptionFault.h"
#include "midapi/Virtual/UpdateJournal.h"
#include "tests/fuzz/Fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  try {
    const ma::UpdateJournal read = ma::parseJournal(text);
    test::require(read.flashName.starts_with("flash.rom.new") &&
                      read.flashName.find('/') == std::string::npos,
                  "it names a file beside it");
    const ma::UpdateJournal again = ma::parseJournal(ma::formatJournal(read));
    test::require(again.flashName == read.flashName && again.flashSize == read.flashSize &&
                      again.flashDigest == read.flashDigest &&
                      again.change.bootTypes == read.change.bootTypes &&
                      again.change.capabilityWord == read.change.capabilityWord,
                  "what is written reads the same");
  } catch (const ma::DescriptionFault& fault) {
    test::require(*fault.what() != '\0', "a fault says what it is");
  }
  return 0;
}
