#include "tests/support/QuorvelFixture.h"

#include <nlohmann/json.hpp>

namespace test {

RomImage QuorvelFixture::pxe(std::uint8_t majorRevision) {
  return RomImage::legacy().version(majorRevision, 0);
}

RomImage QuorvelFixture::uefi(std::uint8_t majorRevision) {
  return RomImage::efi().version(majorRevision, 0);
}

std::string QuorvelFixture::uriOf(const std::string& file) {
  return "file://" + std::filesystem::path(file).generic_string();
}

std::string QuorvelFixture::writeFile(const std::string& name, const Bytes& content) const {
  return m_directory.write(name, content).make_preferred().string();
}

std::string QuorvelFixture::writeRom(const std::string& name,
                                     const std::vector<RomImage>& images) const {
  RomBuilder rom;
  for (const RomImage& image : images) {
    rom.add(image);
  }
  return writeFile(name, rom.build());
}

std::string QuorvelFixture::writeDamagedRom(const std::string& name) const {
  return writeFile(name, RomBuilder().add(pxe()).damage(0, RomDamage::ByteSum).build());
}

void QuorvelFixture::addAdapter(const std::string& pci, const std::string& rom, unsigned ports,
                                unsigned bytesPerSecond) const {
  const ProgramResult result =
      run({"adapters", "add", "--pci", pci, "--vendor", "1af4", "--device", "1041", "--rom", rom,
           "--ports", std::to_string(ports), "--rate", std::to_string(bytesPerSecond)});
  ASSERT_EQ(result.exitStatus, 0) << result.errors;
}

void QuorvelFixture::addPxeAdapter(const std::string& pci, unsigned ports) const {
  addAdapter(pci, writeRom("installed.rom", {pxe(2)}), ports);
}

std::string QuorvelFixture::addSlowAdapter(const std::string& pci) const {
  constexpr unsigned kUnits = 64;
  addAdapter(pci, writeRom("installed.rom", {pxe(2)}), 1, kUnits * 512);
  return writeRom("new.rom", {pxe(3).units(kUnits)});
}

void QuorvelFixture::describe(const std::string& folder, const Json& fields) const {
  const std::filesystem::path file = adapters() / folder / "adapter.json";
  Json description = Json::parse(readText(file));
  description.update(fields);
  m_directory.write(file, description.dump());
}

Bytes QuorvelFixture::flash(const std::string& folder) const {
  return readBytes(adapters() / folder / "flash.rom");
}

ProgramResult QuorvelFixture::run(const Arguments& arguments) const {
  return runProgram(programBeside("quorvel"), arguments, environment());
}

QuorvelFixture::Json QuorvelFixture::runJson(const Arguments& arguments, int exitStatus) const {
  Arguments withJson = arguments;
  withJson.emplace_back("--json");
  const ProgramResult result = run(withJson);
  EXPECT_EQ(result.exitStatus, exitStatus) << result.errors;
  EXPECT_TRUE(Json::accept(result.output)) << result.output;
  return Json::parse(result.output, nullptr, false);
}

void QuorvelFixture::expectUsageFault(const Arguments& arguments,
                                      const testing::Matcher<std::string>& message) {
  expectFault(arguments, 2, message);
}

void QuorvelFixture::expectFailure(const Arguments& arguments,
                                   const testing::Matcher<std::string>& message) {
  expectFault(arguments, 1, message);
}

void QuorvelFixture::expectFault(const Arguments& arguments, int exitStatus,
                                 const testing::Matcher<std::string>& message) {
  const ProgramResult result = run(arguments);
  EXPECT_EQ(result.exitStatus, exitStatus) << testing::PrintToString(arguments);
  EXPECT_THAT(result.errors, message) << testing::PrintToString(arguments);
  EXPECT_EQ(result.output, "") << testing::PrintToString(arguments);
}

std::vector<EnvironmentChange> QuorvelFixture::environment() const {
  return {{"ORVEX_ADAPTERS", adapters().string()},
          {"ZOLAN_Quorvel_LOG_LEVEL", std::nullopt},
          {"COMPUTERNAME", "lab"}};
}

}  // namespace test
