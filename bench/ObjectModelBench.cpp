// The object model: properties, paths, and debug entries that go nowhere.

#include <benchmark/benchmark.h>
#include <string>

#include "Utils/Log.h"
#include "core/CimPath.h"
#include "core/CimPropertyTypes.h"

namespace {

constexpr utils::LogSource kLog{"ObjectModelBench"};

void constructStringProperty(benchmark::State& state) {
  for (auto _ : state) {
    core::CimPropertyString property("Caption", nullptr);
    benchmark::DoNotOptimize(&property);
  }
}
BENCHMARK(constructStringProperty);

void setStringProperty(benchmark::State& state) {
  core::CimPropertyString property("Caption", nullptr);
  const std::string value = "Ethernet Firmware Update";
  for (auto _ : state) {
    property.setValue(value);
    benchmark::DoNotOptimize(&property);
  }
}
BENCHMARK(setStringProperty);

void printStringProperty(benchmark::State& state) {
  core::CimPropertyString property("Caption", nullptr);
  property.setValue("Ethernet Firmware Update");
  for (auto _ : state) {
    benchmark::DoNotOptimize(property.toString());
  }
}
BENCHMARK(printStringProperty);

void printUint32Property(benchmark::State& state) {
  core::CimPropertyUint32 property("Priority", nullptr);
  property.setValue(1'234'567);
  for (auto _ : state) {
    benchmark::DoNotOptimize(property.toString());
  }
}
BENCHMARK(printUint32Property);

void parseServicePath(benchmark::State& state) {
  const std::string path =
      "Orvex_SoftwareInstallationService.SystemCreationClassName=\"CIM_UnitaryComputerSystem\","
      "SystemName=\"localhost\",CreationClassName=\"Orvex_SoftwareInstallationService\","
      "Name=\"Orvex:FirmwareUpdate\"";
  for (auto _ : state) {
    benchmark::DoNotOptimize(core::CimPath(path));
  }
}
BENCHMARK(parseServicePath);

void debugEntryBelowLevel(benchmark::State& state) {
  int value = 0;
  for (auto _ : state) {
    utils::logDebug(kLog, "debugEntryBelowLevel", "size: %d", value);
    // Another value each time: the compiler must not take the call out of the loop.
    benchmark::DoNotOptimize(++value);
  }
}
BENCHMARK(debugEntryBelowLevel);

}  // namespace
