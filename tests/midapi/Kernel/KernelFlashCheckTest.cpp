// A check of a file, and something that happens before the file is written.

#include <cerrno>
#include <filesystem>
#include <functional>
#include <gmock/gmock.h>
#include <string>

#include "tests/midapi/Kernel/KernelBackendFixture.h"
#include "tests/support/VpdBuilder.h"

namespace {

using ma::DriverAnswer;
using ma::NetlinkAck;
using test::Bytes;
using test::kernelPackage;
using test::kKernelFunction;
using test::kKernelPort;
using test::kOtherFunction;
using testing::HasSubstr;
using testing::IsEmpty;

class KernelFlashWriteAfterACheck : public test::KernelBackendFixture {
 protected:
  KernelFlashWriteAfterACheck() {
    m_drivers.onDevlinkFlash = [this](const std::string&, const std::string&, const auto&) {
      ++m_flashes;
      store("1.1.0", "7.2.0");
      return NetlinkAck{};
    };
    m_drivers.onEthtoolFlash = [this](const std::string& interface, const std::string&) {
      ++m_flashes;
      m_interface = interface;
      return NetlinkAck{};
    };
    m_drivers.answers[kKernelFunction].vpd = serialNumber("A1");
    m_sysfs.setAttribute(kKernelFunction, "vpd", "");
  }

  static ma::FileAnswer serialNumber(const std::string& number) {
    return {0, test::VpdBuilder().name("x").readOnly({{"SN", number}}).build()};
  }
  // Returns what is to be written.
  Bytes check(const Bytes& file = kernelPackage("1.1.0", "7.2.0"),
              const ma::PortId& port = kKernelPort) {
    Bytes image(file.size());
    const ma::Preparation preparation = m_backend.prepare(port, file, image, {});
    EXPECT_EQ(preparation.status, ma::PrepareStatus::Ok) << preparation.reason;
    image.resize(preparation.filled);
    return image;
  }
  void expectRefusal(const std::string& text, std::uint32_t code = 213) {
    try {
      write();
      ADD_FAILURE() << "it was written: " << text;
    } catch (const ma::FlashFault& fault) {
      EXPECT_EQ(fault.code(), code);
      EXPECT_THAT(fault.what(), HasSubstr(text));
      EXPECT_THAT(fault.what(), HasSubstr(code == 213 ? "; check the file against it again" : ""));
    }
    EXPECT_EQ(m_flashes, 0);
    EXPECT_THAT(staged(), IsEmpty());
    EXPECT_FALSE(hasEntry());
  }
  // As late as anything can happen.
  void beforeTheFlash(const std::function<void()>& act) {
    m_files.afterStep = [this, act](const std::string& name, const std::filesystem::path& path) {
      if (name == "replace" && path.parent_path() == m_places.journal) {
        act();
      }
    };
  }

  int m_flashes = 0;
  std::string m_interface;
};

TEST_F(KernelFlashWriteAfterACheck, WritesTheAdapterThatWasChecked) {
  check();
  passASecond();
  write();
  EXPECT_EQ(m_flashes, 1);
}

TEST_F(KernelFlashWriteAfterACheck, DoesNotWriteADeviceOfOtherIds) {
  check();
  m_sysfs.setAttribute(kKernelFunction, "subsystem_device", "0x1101");
  expectRefusal(
      "The adapter is not as it was when the file was checked: 0000:03:00.0: its device was "
      "8086:10d3 sub 1af4:1100, and is 8086:10d3 sub 1af4:1101 now");
}

TEST_F(KernelFlashWriteAfterACheck, DoesNotWriteThroughAnotherDriver) {
  check();
  std::filesystem::remove(m_sysfs.folder(kKernelFunction) / "driver");
  m_sysfs.bindDriver(kKernelFunction, "ice");
  expectRefusal("its driver was testnic, and is ice now");
}

TEST_F(KernelFlashWriteAfterACheck, DoesNotWriteACardOfAnotherSerialNumber) {
  check();
  m_drivers.answers[kKernelFunction].vpd = serialNumber("B2");
  expectRefusal("the serial number in the VPD of 0000:03:00.0 was A1, and is B2 now");
}

TEST_F(KernelFlashWriteAfterACheck, DoesNotWriteOverVersionsThatNobodyCompared) {
  check();
  store("1.0.5", "7.1.0");
  expectRefusal("fw.undi was 1.0.0, and is 1.0.5 now");
}

TEST_F(KernelFlashWriteAfterACheck, DoesNotWriteOverImagesThatNobodyCompared) {
  check();
  m_drivers.answers[kKernelFunction].rom = {
      0, test::RomBuilder().add(test::kernelRomImage().version(9, 9)).build()};
  expectRefusal("image 1 of its option ROM was ");
}

TEST_F(KernelFlashWriteAfterACheck, LooksAtTheLastCheckOfTheFile) {
  check();
  store("1.0.5", "7.1.0");
  passASecond();
  check();
  write();
  EXPECT_EQ(m_flashes, 1);
}

TEST_F(KernelFlashWriteAfterACheck, WaitsForADriverThatDoesNotSayWhetherItIsTheSame) {
  check();
  const DriverAnswer awake = m_drivers.answers[kKernelFunction];
  m_drivers.answers[kKernelFunction] = {};
  m_drivers.answers[kKernelFunction].isAway = true;
  m_clock.afterEachSleep([this, awake](int sleeps) {
    if (sleeps == 2) {
      m_drivers.answers[kKernelFunction] = awake;
    }
  });
  write();
  EXPECT_EQ(m_flashes, 1);
}

TEST_F(KernelFlashWriteAfterACheck, DoesNotWriteWhatNobodyCanTellFromAnother) {
  check();
  m_drivers.answers[kKernelFunction].error = EBUSY;
  expectRefusal("its driver testnic does not answer, so nobody can tell whether 0000:03:00.0 is as",
                203);
}

TEST_F(KernelFlashWriteAfterACheck, DoesNotWriteWhatIsExchangedInTheLastMoment) {
  check();
  beforeTheFlash([this] { m_sysfs.setAttribute(kKernelFunction, "device", "0x10d4"); });
  expectRefusal("its device was 8086:10d3 sub");
  beforeTheFlash(
      [this] { std::filesystem::remove(m_sysfs.root() / "bus/pci/devices" / kKernelFunction); });
  m_sysfs.setAttribute(kKernelFunction, "device", "0x10d3");
  expectRefusal("0000:03:00.0 has been taken away");
}

TEST_F(KernelFlashWriteAfterACheck, FollowsAnInterfaceThatIsRenamed) {
  addFunction(kOtherFunction, "qede");
  m_settings.trustedDrivers = {"qede"};
  const Bytes file = {0x87, 0x56, 0x43, 0x12, 0, 0, 0, 0, 0, 0, 0, 0};
  const ma::PortId port{{0, 4, 0}, 0};
  check(file, port);
  const auto net = m_sysfs.folder(kOtherFunction) / "net";
  beforeTheFlash([&] { std::filesystem::rename(net / "eth040", net / "lan0"); });
  write(file, port);
  EXPECT_EQ(m_interface, "lan0");
  beforeTheFlash([&] { std::filesystem::remove_all(net / "lan0"); });
  EXPECT_THROW(write(file, port), ma::FlashFault);
  EXPECT_EQ(m_flashes, 1);
  EXPECT_FALSE(hasEntry("0000-04-00.json"));
}

}  // namespace
