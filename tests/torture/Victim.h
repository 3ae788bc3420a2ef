// A virtual adapter that is updated to and fro between two firmwares, and what may be seen of it.

#ifndef ORVEX_TESTS_TORTURE_VICTIM_H_
#define ORVEX_TESTS_TORTURE_VICTIM_H_

#include <array>
#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "midapi/FlashTypes.h"
#include "tests/midapi/AdapterFixture.h"
#include "tests/midapi/AdaptersVariable.h"
#include "tests/support/RomBuilder.h"

namespace test {

class Victim {
 public:
  // One of the two firmwares, with the settings that belong to it.
  struct Firmware {
    const char* name;
    Bytes image;
    ma::BootType bootType;
    std::uint32_t capabilityWord;
  };

  // Makes the adapter, with the first firmware.
  Victim();

  [[nodiscard]] std::filesystem::path folder() const;
  [[nodiscard]] const Firmware& other(const Firmware& firmware) const;

  // Updates the adapter as the update agent does. Returns whether it says that it is done; keeps
  // what it says else.
  [[nodiscard]] bool update(const Firmware& firmware);
  [[nodiscard]] const std::string& lastError() const { return m_error; }

  // Updates the adapter to the firmware that it has not. Throws std::runtime_error where that does
  // not work, or leaves anything behind.
  void updateInPeace();

  // Asks for all that can be asked, and so completes what is left to be done. Returns the firmware
  // that the adapter has as a whole. Throws std::runtime_error, with what is wrong, where it has
  // none of both, or a part of each.
  [[nodiscard]] const Firmware& look() const;

  // Returns the contents of the files in its folder, by their paths, and puts others in their
  // place.
  [[nodiscard]] std::map<std::string, std::string> files() const;
  void replaceFiles(const std::map<std::string, std::string>& files) const;

  // Moves the adapter to a file system of its own with room for so much more, for this process
  // alone. Returns false where the system does not let it.
  [[nodiscard]] bool moveToSmallDisk(std::uint64_t room) const;

  // Makes another adapter, as a command line does, and takes it away again. Throws
  // std::runtime_error where it cannot be made, or has its name before all of it is on the disk.
  void makeAnother() const;

  // Throws std::runtime_error where there is anything in the folder but the adapter's own two
  // files.
  void demandTidiness() const;

 private:
  AdapterFixture m_adapters;
  AdaptersVariable m_variable{m_adapters.directory()};
  std::array<Firmware, 2> m_firmwares;
  std::string m_error;
};

}  // namespace test

#endif  // ORVEX_TESTS_TORTURE_VICTIM_H_
