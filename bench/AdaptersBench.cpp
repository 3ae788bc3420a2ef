// `quorvel adapters` on a machine with many adapters that the kernel drives. A folder stands for
// the machine: its files are read, and no driver is asked.

#include <benchmark/benchmark.h>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>

#include "Utils/Format.h"
#include "midapi/MidApi.h"
#include "tests/midapi/Kernel/SysfsFixture.h"
#include "tests/support/Programs.h"
#include "tests/support/TempDirectory.h"
#include "tests/support/Variables.h"

namespace {

constexpr int kFunctions = 64;
constexpr int kPorts = 2;  // of an adapter
constexpr const char* kRoot = "ORVEX_KERNEL_ROOT";

class Machine {
 public:
  Machine() {
    std::filesystem::create_directories(m_directory.path() / "lib/firmware");
    std::filesystem::create_directory_symlink(m_sysfs.root(), m_directory.path() / "sys");
    m_directory.write("quorvel.conf", std::string("Adapters = kernel\n"));
    for (int number = 0; number < kFunctions; ++number) {
      const std::string pci =
          utils::format("0000:%02x:00.%d", 1 + number / kPorts, number % kPorts);
      m_sysfs.addFunction(pci);
      m_sysfs.bindDriver(pci, "cxgb4");
      m_sysfs.addInterface(pci, utils::format("eth%d", number),
                           utils::format("02:54:4e:00:00:%02x", number));
    }
  }

  [[nodiscard]] std::string root() const { return m_directory.path().string(); }
  [[nodiscard]] std::string configuration() const {
    return (m_directory.path() / "quorvel.conf").string();
  }

 private:
  test::TempDirectory m_directory;
  test::SysfsFixture m_sysfs;
};

// The program, from its start to its end.
void runQuorvelAdapters(benchmark::State& state) {
  const Machine machine;
  const std::filesystem::path program = test::programBeside("quorvel");
  for (auto _ : state) {
    const test::ProgramResult result =
        test::runProgram(program, {"--config", machine.configuration(), "adapters"},
                         {{kRoot, machine.root()}, {"ORVEX_ADAPTERS", std::nullopt}});
    if (result.exitStatus != 0 || result.output.find("eth63") == std::string::npos) {
      state.SkipWithError("the adapters were not listed");
    }
  }
}
BENCHMARK(runQuorvelAdapters)->UseRealTime()->Unit(benchmark::kMillisecond);

// What a program that goes on asks the library, as the inventory does at each request.
void askLibrary(benchmark::State& state, void (*ask)()) {
  const Machine machine;
  test::setVariable(kRoot, machine.root());
  test::unsetVariable("ORVEX_ADAPTERS");
  ma::useSettings([] {
    utils::FlashSettings settings;
    settings.hasVirtualAdapters = false;
    return settings;
  });
  for (auto _ : state) {
    ask();
  }
  test::unsetVariable(kRoot);
}

void demandPorts(std::size_t count) {
  if (count != kFunctions) {
    throw std::runtime_error("there are not the ports that there should be");
  }
}

void enumeratePorts() {
  demandPorts(ma::enumerateAdapters().size());
}

void listAll() {
  std::size_t ports = 0;
  for (const ma::AdapterListing& adapter : ma::listAdapters().adapters) {
    ports += adapter.ports.size();
  }
  demandPorts(ports);
}

BENCHMARK_CAPTURE(askLibrary, enumerateAdapters, enumeratePorts)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(askLibrary, listAdapters, listAll)->UseRealTime()->Unit(benchmark::kMillisecond);

}  // namespace
