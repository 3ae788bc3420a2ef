// A test that runs the program `quorvel` on virtual adapters of its own.

#ifndef ORVEX_TESTS_SUPPORT_QUORVELFIXTURE_H_
#define ORVEX_TESTS_SUPPORT_QUORVELFIXTURE_H_

#include <filesystem>
#include <gmock/gmock.h>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "tests/support/Programs.h"
#include "tests/support/RomBuilder.h"
#include "tests/support/TempDirectory.h"

namespace test {

class QuorvelFixture : public testing::Test {
 protected:
  using Json = nlohmann::ordered_json;
  using Arguments = std::vector<std::string>;

  // A network boot image for 1af4:1041 of that version.
  static RomImage pxe(std::uint8_t majorRevision = 1);
  static RomImage uefi(std::uint8_t majorRevision = 1);

  // Returns the file: URI of a file, with slashes on every platform.
  static std::string uriOf(const std::string& file);

  // Writes a file into the test's directory and returns its path, with the platform's separators.
  std::string writeFile(const std::string& name, const Bytes& content) const;
  std::string writeRom(const std::string& name, const std::vector<RomImage>& images) const;
  std::string writeDamagedRom(const std::string& name) const;

  [[nodiscard]] std::filesystem::path adapters() const { return m_directory.path() / "adapters"; }
  [[nodiscard]] std::filesystem::path path(const std::string& name) const {
    return (m_directory.path() / name).make_preferred();
  }

  // Makes an adapter of 1af4:1041 with that flash. Rate 0 is no limit.
  void addAdapter(const std::string& pci, const std::string& rom, unsigned ports = 1,
                  unsigned bytesPerSecond = 0) const;
  // The same with a network boot image of version 2 in its flash.
  void addPxeAdapter(const std::string& pci, unsigned ports = 1) const;
  // Makes an adapter that takes about a second for the image that is returned.
  [[nodiscard]] std::string addSlowAdapter(const std::string& pci) const;
  // Adds fields to the description of an adapter.
  void describe(const std::string& folder, const Json& fields) const;

  // Returns what the flash of an adapter holds.
  [[nodiscard]] Bytes flash(const std::string& folder = "0000-03-00") const;

  [[nodiscard]] ProgramResult run(const Arguments& arguments) const;
  // Runs with --json and returns the document, which is all of the output.
  [[nodiscard]] Json runJson(const Arguments& arguments, int exitStatus = 0) const;
  // Runs and expects wrong usage with that message: status 2 and nothing on standard output.
  void expectUsageFault(const Arguments& arguments, const testing::Matcher<std::string>& message);
  // Runs and expects a failure with that message: status 1 and nothing on standard output.
  void expectFailure(const Arguments& arguments, const testing::Matcher<std::string>& message);

  [[nodiscard]] std::vector<EnvironmentChange> environment() const;

 private:
  void expectFault(const Arguments& arguments, int exitStatus,
                   const testing::Matcher<std::string>& message);

  TempDirectory m_directory;
};

}  // namespace test

#endif  // ORVEX_TESTS_SUPPORT_QUORVELFIXTURE_H_
