// A reader of PCI Expansion ROM chains that judges, for tests, what the flash library wrote.
//
// It shares no code with the library and goes about its work differently, so that a mistake in one
// shows against the other. Any bytes may be given to it.

#ifndef QUORVEL_TESTS_SUPPORT_ROMPARSER_H_
#define QUORVEL_TESTS_SUPPORT_ROMPARSER_H_

#include <cstddef>
#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

#include "Utils/FirmwareTypes.h"

namespace test {

struct ParsedImage {
  std::size_t offset = 0;
  std::size_t length = 0;
  std::uint16_t vendor = 0;
  std::uint16_t device = 0;
  std::vector<std::uint16_t> deviceList;
  std::uint8_t codeType = 0;
  utils::FirmwareType type = utils::FirmwareType::None;
  utils::FirmwareVersion version;
  bool isLast = false;
  std::uint8_t sum = 0;
  // Product strings of the $PnP headers, in their order.
  std::vector<std::string> products;
};

struct ParsedRom {
  // The images up to the first fault.
  std::vector<ParsedImage> images;
  // Empty for a valid chain.
  std::string fault;

  [[nodiscard]] bool isValid() const { return fault.empty(); }
  [[nodiscard]] std::vector<utils::FirmwareType> types() const;
};

[[nodiscard]] ParsedRom parseRom(const std::vector<std::uint8_t>& bytes);

// For messages of failed assertions.
std::ostream& operator<<(std::ostream& out, const ParsedRom& rom);

}  // namespace test

#endif  // QUORVEL_TESTS_SUPPORT_ROMPARSER_H_
