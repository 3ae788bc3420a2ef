// The adapters that the kernel drives, asked for while one of them is written and while none is. A
// folder stands for the machine, and a class for its drivers: whoever asks the driver of an adapter
// that is being written waits as long as the library has patience, and is not waited for again.

#include <benchmark/benchmark.h>
#include <chrono>
#include <condition_variable>
#include <exception>
#include <filesystem>
#include <set>
#include <span>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "midapi/FileSystem.h"
#include "midapi/Kernel/DriverInquiry.h"
#include "midapi/Kernel/KernelFlashBackend.h"
#include "platform/Clock.h"
#include "platform/Mutex.h"
#include "tests/midapi/Kernel/SysfsFixture.h"
#include "tests/support/RomBuilder.h"
#include "tests/support/TempDirectory.h"

namespace {

constexpr int kAdapters = 32;
constexpr int kPorts = 2;
constexpr ma::AdapterAddress kWritten{0, 1, 0};

std::vector<std::uint8_t> makeRom() {
  return test::RomBuilder().add(test::RomImage::efi().device(0x8086, 0x10D3)).build();
}

// Drivers with devlink. A flash goes on until end().
class Drivers final : public ma::DriverCalls {
 public:
  std::vector<ma::DriverAnswer> ask(std::span<const ma::DriverQuestion> questions) override {
    std::vector<ma::DriverAnswer> answers;
    for (const ma::DriverQuestion& question : questions) {
      answers.push_back(answerOf(question));
    }
    return answers;
  }

  ma::NetlinkAck flashByDevlink(const ma::PortId&, const std::string&, const std::string&,
                                const std::function<void(const ma::DevlinkFlashEvent&)>&) override {
    const platform::Lock lock(m_mutex);
    m_isWriting = true;
    m_changed.notify_all();
    while (m_isWriting) {
      m_changed.wait(m_mutex);
    }
    return {};
  }
  ma::NetlinkAck flashByEthtool(const std::string&, const std::string&) override { return {}; }
  ma::NetlinkAck activate(const ma::PortId&) override { return {}; }
  [[nodiscard]] bool mayFlash() const override { return true; }

  void awaitWrite() {
    const platform::Lock lock(m_mutex);
    while (!m_isWriting) {
      m_changed.wait(m_mutex);
    }
  }
  void end() {
    const platform::Lock lock(m_mutex);
    m_isWriting = false;
    m_changed.notify_all();
  }

 private:
  ma::DriverAnswer answerOf(const ma::DriverQuestion& question) {
    ma::DriverAnswer answer;
    if (const platform::Lock lock(m_mutex);
        m_isWriting && question.function.id.adapter == kWritten) {
      answer.isAway = true;
      if (m_away.insert(question.function.id).second) {
        platform::steadyClock().sleepFor(ma::InquirySettings().patience);
      }
      return answer;
    }
    answer.devlink =
        ma::DevlinkInfo{"testnic", "", "", {}, {{"fw.undi", "1.0.0"}}, {{"fw.undi", "1.0.0"}}};
    if (question.wantsRom) {
      answer.rom = {0, makeRom()};
    }
    return answer;
  }

  platform::Mutex m_mutex;
  std::condition_variable_any m_changed;
  bool m_isWriting ORVEX_GUARDED_BY(m_mutex) = false;
  std::set<ma::PortId> m_away ORVEX_GUARDED_BY(m_mutex);  // whose driver has been waited for
};

class Machine {
 public:
  Machine() {
    std::filesystem::create_directories(m_directory.path() / "firmware");
    m_settings.firmwareFolder = (m_directory.path() / "firmware").string();
    for (int number = 0; number < kAdapters * kPorts; ++number) {
      const ma::PortId port{{0, static_cast<std::uint8_t>(1 + number / kPorts), 0},
                            static_cast<std::uint8_t>(number % kPorts)};
      const std::string pci = toString(port);
      m_sysfs.addFunction(pci);
      m_sysfs.bindDriver(pci, "testnic");
      m_sysfs.addInterface(pci, "eth" + std::to_string(number), "02:54:4e:00:00:01");
      m_sysfs.setAttribute(pci, "rom", "");
    }
    // What is told of an adapter that is written is what was known before.
    list();
  }

  void list() {
    std::size_t ports = 0;
    for (const ma::AdapterListing& adapter : m_backend.list().adapters) {
      ports += adapter.ports.size();
    }
    demandPorts(ports);
  }
  void enumerate() { demandPorts(m_backend.enumerateAdapters().size()); }
  void tellVersions() {
    if (m_backend.firmwareVersions({kWritten, 0}).empty() ||
        m_backend.firmwareVersions({{0, 2, 0}, 0}).empty()) {
      throw std::runtime_error("the versions are not told");
    }
  }

  void write() {
    m_progress.start();
    m_backend.writeFlash({kWritten, 0}, m_rom, m_progress);
  }
  Drivers& drivers() { return m_drivers; }

 private:
  static void demandPorts(std::size_t count) {
    if (count != kAdapters * kPorts) {
      throw std::runtime_error("there are not the ports that there should be");
    }
  }

  test::TempDirectory m_directory;
  test::SysfsFixture m_sysfs;
  utils::FlashSettings m_settings;
  const std::vector<std::uint8_t> m_rom = makeRom();
  Drivers m_drivers;
  ma::PciNames m_names{m_directory.path() / "pci.ids"};  // none
  ma::WriteProgress m_progress;
  ma::KernelFlashBackend m_backend{ma::nativeFileSystem(),
                                   {m_sysfs.root(), m_directory.path() / "kernel"},
                                   m_drivers,
                                   m_names,
                                   [this] { return m_settings; },
                                   platform::steadyClock()};
};

// Writes from its construction to its end.
class Write {
 public:
  explicit Write(Machine& machine) : m_machine(machine), m_thread([this] { run(); }) {
    m_machine.drivers().awaitWrite();
  }
  Write(const Write&) = delete;
  Write& operator=(const Write&) = delete;
  ~Write() {
    m_machine.drivers().end();
    m_thread.join();
  }

 private:
  void run() {
    try {
      m_machine.write();
    } catch (const std::exception&) {
      // The flash does not hold what was written; nobody looks at it.
    }
  }

  Machine& m_machine;
  std::thread m_thread;
};

void whileNoneIsWritten(benchmark::State& state, void (Machine::*ask)()) {
  Machine machine;
  for (auto _ : state) {
    (machine.*ask)();
  }
}

void whileOneIsWritten(benchmark::State& state, void (Machine::*ask)()) {
  Machine machine;
  const Write write(machine);
  for (auto _ : state) {
    (machine.*ask)();
  }
}

#define ORVEX_BENCHMARK(question)                                     \
  BENCHMARK_CAPTURE(whileNoneIsWritten, question, &Machine::question) \
      ->UseRealTime()                                                 \
      ->Unit(benchmark::kMillisecond);                                \
  BENCHMARK_CAPTURE(whileOneIsWritten, question, &Machine::question)  \
      ->UseRealTime()                                                 \
      ->Unit(benchmark::kMillisecond)

ORVEX_BENCHMARK(enumerate);
ORVEX_BENCHMARK(list);
ORVEX_BENCHMARK(tellVersions);

}  // namespace
