// The agents: job objects, enumerations, and updates from request to end.

#include <benchmark/benchmark.h>
#include <chrono>
#include <malloc.h>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "Os/OSLocker.h"
#include "agent/Orvex_ConcreteJob.h"
#include "agent/Orvex_SoftwareInstallationService.h"
#include "bench/BenchAdapters.h"
#include "cim/InstallOptions.h"
#include "cim/JobState.h"
#include "cim/MethodSignatures.h"
#include "core/CimBroker.h"
#include "core/CimPropertyRef.h"
#include "inventory/Orvex_EthernetPort.h"
#include "inventory/Orvex_PortController.h"
#include "midapi/MidApi.h"

namespace {

using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;

// The pause that every job makes before it begins: no work, so it is taken off.
constexpr Seconds kJobThreadDelay{0.010};
constexpr std::size_t kMebibyte = 1 << 20;

// Counts what is in use, whatever the allocator keeps of what was freed.
std::size_t heapBytes() {
  return mallinfo2().uordblks;
}

std::unique_ptr<Orvex_ConcreteJob> makeFilledJob() {
  auto job =
      std::make_unique<Orvex_ConcreteJob>(bench::Adapters::firstPort(), 1, agent::VerifiedImage{});
  job->setPropertyValues();
  return job;
}

void constructFillDestroyJob(benchmark::State& state) {
  // The function runs several times and its last counters stand, so what a process makes once is
  // not among them.
  const std::size_t before = heapBytes();
  const std::unique_ptr<Orvex_ConcreteJob> measured = makeFilledJob();
  state.counters["bytes"] = static_cast<double>(heapBytes() - before);
  for (auto _ : state) {
    benchmark::DoNotOptimize(makeFilledJob());
  }
}
BENCHMARK(constructFillDestroyJob);

// Makes each number of adapters once: a benchmark runs its function many times.
const bench::Adapters& sharedAdapters(std::size_t count) {
  static std::map<std::size_t, std::unique_ptr<bench::Adapters>> all;
  std::unique_ptr<bench::Adapters>& adapters = all[count];
  if (adapters == nullptr) {
    adapters = std::make_unique<bench::Adapters>(count);
  }
  return *adapters;
}

void enumerate(benchmark::State& state, const char* className) {
  bench::registerAgents();
  const auto adapterCount = static_cast<std::size_t>(state.range(0));
  sharedAdapters(adapterCount).select();
  const core::CimBroker::Request request(core::GetCimBroker());
  for (auto _ : state) {
    benchmark::DoNotOptimize(core::GetCimBroker().getInstances(className));
  }
  const auto ports = static_cast<double>(2 * adapterCount);
  // The rate of ports, inverted: the time for one.
  state.counters["timePerPort"] = benchmark::Counter(
      ports, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

// Reads the value as a front end does that writes it: by its type, without a copy. Returns a number
// that depends on it.
std::size_t readValue(const core::CimProperty& property) {
  switch (property.getType()) {
    case core::kCimString:
      return static_cast<const core::CimPropertyString&>(property).getValue().size();
    case core::kCimStringArray:
      return static_cast<const core::CimPropertyString_arr&>(property).getValue().size();
    case core::kCimUint16:
      return static_cast<const core::CimPropertyUint16&>(property).getValue();
    case core::kCimUint16Array:
      return static_cast<const core::CimPropertyUint16_arr&>(property).getValue().size();
    case core::kCimUint64:
      return static_cast<const core::CimPropertyUint64&>(property).getValue();
    default:
      return property.getType();
  }
}

// One request: enumerates the class and reads every property. Not inlined, so that a profile can
// count its instructions.
[[gnu::noinline]] std::size_t readInstances(const std::string& className) {
  const core::CimBroker::Request request(core::GetCimBroker());
  std::size_t read = 0;
  std::vector<core::CimProperty*> properties;
  for (core::CimInstance* instance : core::GetCimBroker().getInstances(className)) {
    instance->getProperties().copyTo(properties);
    for (const core::CimProperty* property : properties) {
      read += property->getName().size();
      if (!property->isNull()) {
        read += readValue(*property);
      }
    }
  }
  return read;
}

// Reads all ports; there are as many as the benchmark's argument says.
void readPorts(benchmark::State& state) {
  bench::registerAgents();
  sharedAdapters(static_cast<std::size_t>(state.range(0)) / 2).select();
  const std::string className = Orvex_EthernetPort::kClassName;
  for (auto _ : state) {
    benchmark::DoNotOptimize(readInstances(className));
  }
}
BENCHMARK(readPorts)->Arg(2)->Arg(100)->Arg(1000)->Unit(benchmark::kMicrosecond);

// Takes the classes from the agents, so that one that is added is measured, too.
void registerEnumerations() {
  bench::registerAgents();
  for (core::CimAgent* agent : core::GetCimBroker().getAgents()) {
    for (const std::string& className : agent->getClassNames()) {
      const std::string name = "enumerate/" + agent->getName() + "/" + className;
      auto* benchmark = benchmark::RegisterBenchmark(
          name.c_str(),
          [className](benchmark::State& state) { enumerate(state, className.c_str()); });
      benchmark->Arg(1)->Arg(10)->Arg(100)->Arg(1000)->Unit(benchmark::kMicrosecond);
    }
  }
}

void prepareImage(benchmark::State& state) {
  const auto size = static_cast<std::size_t>(state.range(0)) * kMebibyte;
  const bench::Adapters adapters(1);
  const std::vector<std::uint8_t> file = bench::makeRom(size);
  std::vector<std::uint8_t> image(file.size());
  for (auto _ : state) {
    auto imageSize = static_cast<std::uint32_t>(image.size());
    const ma::PrepareStatus status =
        ma::prepareFlashImage(bench::Adapters::firstPort(), file.data(), imageSize, image.data(),
                              imageSize, {utils::FirmwareType::Uefi});
    if (status != ma::PrepareStatus::Ok) {
      state.SkipWithError("the image was refused");
    }
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(file.size()));
}
BENCHMARK(prepareImage)->Arg(1)->Arg(16);

// One InstallFromURI of the first port; returns its job.
Orvex_ConcreteJob& startUpdate(const bench::Adapters& adapters) {
  core::CimBroker& broker = core::GetCimBroker();
  const core::CimBroker::Request request(broker);
  core::CimPropertyString uri("URI", nullptr);
  uri.setValue(adapters.romUri());
  core::CimPropertyRef target("Target", nullptr);
  target.setText(broker.getInstances(Orvex_EthernetPort::kClassName).first()->getPath());
  core::CimPropertyUint16_arr options("InstallOptions", nullptr);
  options.setValue({cim::kUpdate});
  core::CimPropertyString_arr values("InstallOptionsValues", nullptr);
  core::CimPropertyList in;
  core::CimPropertyList out;
  for (core::CimProperty* argument :
       std::initializer_list<core::CimProperty*>{&uri, &target, &options, &values}) {
    in.add(argument);
  }
  core::CimInstance* job = nullptr;
  core::CimInstance* service =
      broker.getInstances(Orvex_SoftwareInstallationService::kClassName).first();
  if (service->invokeMethod("InstallFromURI", &in, &out, &job) != cim::kJobStarted) {
    throw std::runtime_error("the update was refused");
  }
  return static_cast<Orvex_ConcreteJob&>(*job);
}

// Times requests of 1 MiB: until they are answered, or until their job is completed.
void update(benchmark::State& state, bool toCompletion) {
  bench::registerAgents();
  // The module's load hook makes it for a host; here the agent is linked in.
  const std::unique_ptr<os::OSLocker> locker = os::createOSLocker();
  const bench::Adapters adapters(1, kMebibyte);
  for (auto _ : state) {
    const Clock::time_point start = Clock::now();
    Orvex_ConcreteJob& job = startUpdate(adapters);
    const Clock::time_point answered = Clock::now();
    while (!job.threadControl(Orvex_ConcreteJob::kDeleteThread, 0)) {
      // Short beside an update, and long enough to leave the job's thread the processor.
      std::this_thread::sleep_for(std::chrono::microseconds(100));
    }
    if (job.getJobState() != cim::JobState::Completed) {
      state.SkipWithError("the update failed");
    }
    const Seconds time =
        toCompletion ? Seconds(Clock::now() - start) - kJobThreadDelay : Seconds(answered - start);
    state.SetIterationTime(time.count());
  }
}
BENCHMARK_CAPTURE(update, requestToAnswer, false)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(update, requestToCompleted, true)->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
  registerEnumerations();
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
    return 1;
  }
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
