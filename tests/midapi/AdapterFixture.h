// Virtual adapters in a directory of the test's own.

#ifndef QUORVEL_TESTS_MIDAPI_ADAPTERFIXTURE_H_
#define QUORVEL_TESTS_MIDAPI_ADAPTERFIXTURE_H_

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/TempDirectory.h"

namespace test {

// Adapters of 1af4:1041 with two ports and no write limit. Descriptions are written by hand here,
// so that the library's own writer is not what its reader is tested with.
class AdapterFixture {
 public:
  [[nodiscard]] const std::filesystem::path& directory() const { return m_directory.path(); }
  [[nodiscard]] std::filesystem::path folder(const std::string& pci) const;

  // Makes an adapter, or gives one another flash.
  void makeAdapter(const std::string& pci, const std::vector<std::uint8_t>& flash) const;

  // Replaces the description in one step, as an editor that cares for its readers does.
  void describe(const std::string& pci, const std::string& text) const;
  [[nodiscard]] std::string description(const std::string& pci) const;

  // Changes, and returns as compact JSON, what stands at a JSON pointer ("/ports/1/bootType");
  // empty where nothing does.
  void set(const std::string& pci, const char* pointer, const std::string& value) const;
  [[nodiscard]] std::string get(const std::string& pci, const char* pointer) const;

  [[nodiscard]] std::vector<std::uint8_t> flash(const std::string& pci) const;
  // Returns the names of the files in the adapter's folder, sorted.
  [[nodiscard]] std::vector<std::string> filesOf(const std::string& pci) const;

 private:
  TempDirectory m_directory;
};

}  // namespace test

#endif  // QUORVEL_TESTS_MIDAPI_ADAPTERFIXTURE_H_
