// How many requests a second the host answers, how soon, and in how much memory. Starts a quorveld
// of its own, over virtual adapters in a temporary directory, and loads it from this machine; every
// answer is compared with the first.

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <iostream>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "Os/Environment.h"
#include "bench/BenchAdapters.h"
#include "bench/HostProcess.h"
#include "bench/LoadClient.h"
#include "bench/Questions.h"

namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

// Alone, a few, and more than there are processors to serve them.
constexpr unsigned kConnections[] = {1, 4, 16};
constexpr std::size_t kPortsPerAdapter = 2;
constexpr std::size_t kSlowRomBytes = 512 * 1024;
constexpr unsigned kStarts = 15;  // odd: one of them is the median
constexpr milliseconds kStartPatience{10'000};
// When memory that a load took is looked for again: it may have been given back.
constexpr milliseconds kSettlingTime{5'000};
// Enough to outweigh the start, and few enough to wait for: callgrind slows the host down many
// times.
constexpr std::size_t kProfiledRequests = 100;

struct Options {
  std::string part = "all";
  std::size_t requests = 100'000;  // of the part about memory
  double seconds = 3;              // for each measurement
  std::string host;
  std::string profile = "callgrind.out.quorveld";
};

// Serves the adapters that were made or selected last: it inherits the variable that names them.
class Host {
 public:
  explicit Host(const std::string& program, std::vector<std::string> arguments = {})
      : m_port(bench::findFreePort()),
        m_start(Clock::now()),
        m_process(program, listenAlso(std::move(arguments), m_port)) {}

  [[nodiscard]] std::uint16_t port() const { return m_port; }
  [[nodiscard]] std::size_t residentKib() const { return m_process.residentKib(); }

  // Returns how long after its start the host answered a request for the first time.
  Clock::duration awaitFirstAnswer(const std::string& request) {
    for (;;) {
      try {
        static_cast<void>(bench::ask(m_port, request));
        return Clock::now() - m_start;
      } catch (const std::system_error&) {
        // It does not listen yet.
        if (Clock::now() - m_start > kStartPatience) {
          throw std::runtime_error("the host does not come up");
        }
        // Short beside a start, which takes milliseconds, and no load on the host.
        std::this_thread::sleep_for(std::chrono::microseconds(200));
      }
    }
  }

  void end() {
    if (const int status = m_process.stop(); status != 0) {
      throw std::runtime_error("the host ended with status " + std::to_string(status));
    }
  }

 private:
  static std::vector<std::string> listenAlso(std::vector<std::string> arguments,
                                             std::uint16_t port) {
    arguments.insert(arguments.end(), {"--listen", "127.0.0.1:" + std::to_string(port)});
    return arguments;
  }

  std::uint16_t m_port;
  Clock::time_point m_start;
  bench::HostProcess m_process;
};

bench::Question enumerate(const std::string& className) {
  return {"EnumerateInstances " + className,
          bench::askOperation("EnumerateInstances", {{"ClassName", bench::className(className)}}),
          {}};
}

bench::Question getService() {
  return {"GetInstance service",
          bench::askOperation("GetInstance", {{"InstanceName", bench::serviceName()}}),
          {}};
}

bench::Question askPort(const std::string& operation) {
  return {operation + " port",
          bench::askOperation(operation, {{"ObjectName", bench::portName("0000:00:00.0")}}),
          {}};
}

std::size_t count(const std::string& text, const std::string& part) {
  std::size_t found = 0;
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
    ++found;
  }
  return found;
}

// Takes the first answer for what all others have to be, when it holds that many instances.
void fixAnswer(const Host& host, bench::Question& question, std::size_t instances) {
  question.body = bench::ask(host.port(), question.request);
  if (count(question.body, "<ERROR ") != 0 || count(question.body, "<INSTANCE ") != instances) {
    throw std::runtime_error(question.name + ": " + question.body.substr(0, 400));
  }
}

double toMilliseconds(std::chrono::nanoseconds time) {
  return std::chrono::duration<double, std::milli>(time).count();
}

void measure(const Host& host, const bench::Question& question, const Options& options) {
  for (const unsigned connections : kConnections) {
    const bench::LoadResult result =
        bench::load(host.port(), {question},
                    {connections, 0, milliseconds(static_cast<long>(options.seconds * 1000))});
    std::printf("%-46s %3u connections %9.0f /s   p50 %8.3f ms   p99 %8.3f ms\n",
                question.name.c_str(), connections, result.perSecond(),
                toMilliseconds(result.quantile(0.5)), toMilliseconds(result.quantile(0.99)));
    std::fflush(stdout);
  }
}

void measureRates(const Options& options) {
  {
    const bench::Adapters adapters(50);
    Host host(options.host);
    bench::Question service = enumerate("Orvex_SoftwareInstallationService");
    bench::Question instance = getService();
    bench::Question ports = enumerate("Orvex_EthernetPort");
    host.awaitFirstAnswer(service.request);
    fixAnswer(host, service, 1);
    fixAnswer(host, instance, 1);
    fixAnswer(host, ports, 50 * kPortsPerAdapter);
    ports.name += ", 100";
    measure(host, service, options);
    measure(host, instance, options);
    measure(host, ports, options);
    host.end();
  }
  const bench::Adapters adapters(500);
  Host host(options.host);
  bench::Question ports = enumerate("Orvex_EthernetPort");
  host.awaitFirstAnswer(ports.request);
  fixAnswer(host, ports, 500 * kPortsPerAdapter);
  ports.name += ", 1000";
  measure(host, ports, options);
  host.end();
}

// While a job writes a flash, at a rate that it needs longer for than is measured.
void measureBesideUpdate(const Options& options) {
  const bench::Adapters adapters(50);
  // There are three measurements: time for one more, and for what is round them.
  const auto rate =
      static_cast<std::uint64_t>(static_cast<double>(kSlowRomBytes) / (4 * options.seconds + 4));
  const std::string target = adapters.addSlow(kSlowRomBytes, rate);
  Host host(options.host);
  bench::Question service = enumerate("Orvex_SoftwareInstallationService");
  host.awaitFirstAnswer(service.request);
  fixAnswer(host, service, 1);
  const std::string started =
      bench::ask(host.port(), bench::askInstallation(adapters.slowRomUri(), target));
  // 4096: the job is started.
  if (count(started, "<VALUE>4096</VALUE>") != 1) {
    throw std::runtime_error("no update: " + started);
  }
  service.name += ", updating";
  measure(host, service, options);
  const std::string jobs = bench::ask(host.port(), enumerate("Orvex_ConcreteJob").request);
  // 4: it is running.
  if (count(jobs, "NAME=\"JobState\" TYPE=\"uint16\"><VALUE>4</VALUE>") != 1) {
    throw std::runtime_error("the update did not last as long as the measurement");
  }
  host.end();
}

void measureStart(const Options& options) {
  const bench::Adapters adapters(1);
  const bench::Question service = getService();
  std::vector<std::chrono::nanoseconds> times;
  std::size_t resident = 0;
  for (unsigned start = 0; start < kStarts; ++start) {
    Host host(options.host);
    times.push_back(host.awaitFirstAnswer(service.request));
    resident = host.residentKib();
    host.end();
  }
  std::sort(times.begin(), times.end());
  std::printf("start to first answer: median %.1f ms, best %.1f ms, worst %.1f ms\n",
              toMilliseconds(times[kStarts / 2]), toMilliseconds(times.front()),
              toMilliseconds(times.back()));
  std::printf("resident after the first answer: %.1f MiB\n", static_cast<double>(resident) / 1024);
}

void printResident(const Host& host, const char* when) {
  std::printf("resident %s: %.1f MiB\n", when, static_cast<double>(host.residentKib()) / 1024);
  std::fflush(stdout);
}

void measureMemory(const Options& options) {
  const bench::Adapters adapters(50);
  Host host(options.host);
  std::vector<bench::Question> questions{
      getService(),
      enumerate("Orvex_SoftwareInstallationService"),
      enumerate("Orvex_EthernetPort"),
      enumerate("CIM_RegisteredProfile"),
      enumerate("Orvex_ConcreteJob"),
      askPort("AssociatorNames"),
      askPort("References"),
      {"EnumerateInstanceNames",
       bench::askOperation("EnumerateInstanceNames",
                           {{"ClassName", bench::className("CIM_LogicalDevice")}}),
       {}},
      {"GetClass",
       bench::askOperation("GetClass", {{"ClassName", bench::className("Orvex_ConcreteJob")}}),
       {}},
      {"EnumerateClassNames",
       bench::askOperation("EnumerateClassNames", {{"DeepInheritance", bench::text("TRUE")}}),
       {}},
      {"OpenEnumerateInstances",
       bench::askOperation("OpenEnumerateInstances",
                           {{"ClassName", bench::className("Orvex_EthernetPort")},
                            {"MaxObjectCount", bench::text("1000")}}),
       {}},
      {"no such class",
       bench::askOperation("EnumerateInstances",
                           {{"ClassName", bench::className("Orvex_Nothing")}}),
       {}},
  };
  host.awaitFirstAnswer(questions.front().request);
  printResident(host, "idle");
  const bench::LoadResult result = bench::load(host.port(), questions, {16, options.requests, {}});
  std::printf("%zu requests of %zu kinds, 16 connections: %.0f /s\n", result.answers,
              questions.size(), result.perSecond());
  printResident(host, "after them");
  std::this_thread::sleep_for(kSettlingTime);
  printResident(host, "5 s later");
  host.end();
}

// Has callgrind count the host's instructions, its start and end among them.
void profile(const Options& options) {
  const bench::Adapters adapters(50);
  Host host("/usr/bin/valgrind", {"--quiet", "--tool=callgrind",
                                  "--callgrind-out-file=" + options.profile, options.host});
  bench::Question ports = enumerate("Orvex_EthernetPort");
  host.awaitFirstAnswer(ports.request);
  fixAnswer(host, ports, 50 * kPortsPerAdapter);
  static_cast<void>(bench::load(host.port(), {ports}, {1, kProfiledRequests, {}}));
  host.end();
  std::printf("%zu times 100 ports: callgrind_annotate %s\n", kProfiledRequests,
              options.profile.c_str());
}

int run(int argc, const char* const* argv) {
  CLI::App program("Loads a quorveld of its own and prints how fast it is and what it needs.");
  Options options;
  options.host = (os::getProgramPath().parent_path() / "quorveld").string();
  program.add_option("--part", options.part, "What to measure; all but the profile, or one")
      ->check(CLI::IsMember({"all", "rates", "updating", "start", "memory", "profile"}))
      ->capture_default_str();
  program.add_option("--requests", options.requests, "Requests of the part about memory")
      ->check(CLI::Range(1, 1'000'000'000))
      ->capture_default_str();
  program.add_option("--seconds", options.seconds, "Time for each measurement")
      ->check(CLI::Range(0.1, 600.0))
      ->capture_default_str();
  program.add_option("--profile", options.profile, "File for the part with callgrind's counts")
      ->capture_default_str();
  program.add_option("--quorveld", options.host, "The program to load")->check(CLI::ExistingFile);
  CLI11_PARSE(program, argc, argv);
  const auto isWanted = [&options](const char* part) {
    return options.part == "all" || options.part == part;
  };
  if (isWanted("start")) {
    measureStart(options);
  }
  if (isWanted("rates")) {
    measureRates(options);
  }
  if (isWanted("updating")) {
    measureBesideUpdate(options);
  }
  if (isWanted("memory")) {
    measureMemory(options);
  }
  if (options.part == "profile") {
    profile(options);
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return run(argc, argv);
  } catch (const std::exception& error) {
    std::cerr << "LoadBench: " << error.what() << '\n';
    return 1;
  }
}
