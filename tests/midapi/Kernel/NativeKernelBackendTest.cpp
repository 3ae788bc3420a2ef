#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <string>

#include "midapi/KernelBackend.h"
#include "midapi/MidApi.h"
#include "tests/midapi/Kernel/SysfsFixture.h"
#include "tests/support/RomBuilder.h"
#include "tests/support/TempDirectory.h"
#include "tests/support/Variables.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

utils::FlashSettings settings() {
  utils::FlashSettings settings;
  settings.firmwareFolder = "/lib/firmware";
  return settings;
}

// A machine in a folder, with one adapter.
class NativeKernelBackend : public testing::Test {
 public:
  ~NativeKernelBackend() override { test::unsetVariable("ORVEX_KERNEL_ROOT"); }

 protected:
  NativeKernelBackend() {
    std::filesystem::create_directory_symlink(m_sysfs.root(), m_root.path() / "sys");
    m_sysfs.addFunction("0000:03:00.0");
    m_sysfs.bindDriver("0000:03:00.0", "qede");
    m_sysfs.addInterface("0000:03:00.0", "eth0", "02:54:4e:00:00:30");
    test::setVariable("ORVEX_KERNEL_ROOT", m_root.path().string());
  }
  static ma::FlashBackend& backend() { return *ma::kernelBackend(settings); }
  static ma::AdapterListing listing() {
    const ma::AdapterList list = backend().list();
    EXPECT_EQ(list.adapters.size(), 1U);
    return list.adapters.at(0);
  }

  test::TempDirectory m_root;
  test::SysfsFixture m_sysfs;
};

TEST_F(NativeKernelBackend, HasTheAdaptersOfAFolderThatStandsForTheMachine) {
  EXPECT_THAT(backend().enumerateAdapters(), ElementsAre("0000:03:00.0"));
  EXPECT_EQ(&backend(), &backend());
}

TEST_F(NativeKernelBackend, ReadsTheFilesOfTheFolder) {
  const test::Bytes rom =
      test::RomBuilder().add(test::RomImage::efi().device(0x8086, 0x10D3)).build();
  const std::filesystem::path file = m_sysfs.folder("0000:03:00.0") / "rom";
  std::ofstream(file).write(reinterpret_cast<const char*>(rom.data()),
                            static_cast<std::streamsize>(rom.size()));
  EXPECT_EQ(listing().components.size(), 1U);
  EXPECT_EQ(test::readBytes(file), rom);
}

TEST_F(NativeKernelBackend, LooksForTheFirmwareFolderThere) {
  EXPECT_THAT(
      listing().whyNotUpdatable,
      StartsWith("firmware cannot be put into " + m_root.path().string() + "/lib/firmware, where"));
  std::filesystem::create_directories(m_root.path() / "lib/firmware");
  EXPECT_EQ(listing().whyNotUpdatable, "");
}

TEST_F(NativeKernelBackend, SaysInTheJobWhyAnAdapterCannotBeWrittenAnyMore) {
  ma::useSettings(settings);
  const test::Bytes image(600, 0x11);
  std::uint32_t code = 0;
  std::string text;
  EXPECT_FALSE(ma::writeFlashImage("0000:03:00.0", image.data(), 600, code, text));
  ma::useSettings(nullptr);
  EXPECT_EQ(code, 203U);
  EXPECT_THAT(
      text, StartsWith("The adapter's firmware cannot be replaced: firmware cannot be put into "));
}

TEST_F(NativeKernelBackend, KeepsTheJournalThereAndTellsNoDriver) {
  std::filesystem::create_directories(m_root.path() / "lib/firmware");
  const ma::PortId port{{0, 3, 0}, 0};
  ma::WriteProgress progress;
  try {
    backend().writeFlash(port, test::Bytes(600, 0x11), progress);
    FAIL() << "it was written";
  } catch (const ma::FlashFault& fault) {
    EXPECT_THAT(fault.what(), HasSubstr("The adapter's driver has not written the firmware: "));
  }
  EXPECT_TRUE(std::filesystem::is_directory(m_root.path() / "var/lib/orvex/kernel"));
  EXPECT_TRUE(std::filesystem::is_empty(m_root.path() / "lib/firmware"));
}

TEST_F(NativeKernelBackend, IsTheOneOfTheFolderThatIsNamedNow) {
  ma::FlashBackend& first = backend();
  const test::TempDirectory other;
  test::setVariable("ORVEX_KERNEL_ROOT", other.path().string());
  EXPECT_NE(&backend(), &first);
  EXPECT_TRUE(backend().enumerateAdapters().empty());
}

}  // namespace
