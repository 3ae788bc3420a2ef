#include "tests/torture/Crowd.h"

#include <cstdint>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "midapi/Hex.h"
#include "midapi/Virtual/VirtualAdapters.h"
#include "tests/midapi/AdapterFixture.h"
#include "tests/torture/SystemCalls.h"

namespace test {
namespace {

constexpr unsigned kAdapters = 1000;
constexpr const char* kLeft = "0000:10:05";
constexpr const char* kNewFlash = "flash.rom.new-0123456789abcdef";
constexpr std::uint32_t kNewWord = 24;

// What a query may cost: for an adapter as it is, and for an update that is left to be done.
constexpr std::uint64_t kMostCallsOfAdapter = 20;
constexpr std::uint64_t kMostCallsOfUpdate = 60;

using Bytes = std::vector<std::uint8_t>;

void makeAdapters(const AdapterFixture& adapters) {
  for (unsigned number = 0; number < kAdapters; ++number) {
    adapters.makeAdapter("0000:" + ma::hexText(number / 32, 2) + ":" + ma::hexText(number % 32, 2),
                         Bytes(512, 0xFF));
  }
}

void leaveUpdate(const AdapterFixture& adapters) {
  std::ofstream(adapters.folder(kLeft) / kNewFlash) << std::string(1024, '\0');
  std::ofstream(adapters.folder(kLeft) / "update.json")
      << R"({"flash": ")" << kNewFlash
      << R"(", "flashSize": 1024, "flashDigest": "0000000000000000", "bootTypes": [],)"
      << R"( "capabilityWord": )" << kNewWord << "}";
}

// Returns the number of system calls of a query, which finds all adapters.
std::uint64_t countCallsOfQuery(const AdapterFixture& adapters) {
  watchSystemCalls(adapters.directory().string(), {});
  const ma::AdapterList list = ma::VirtualAdapters(adapters.directory()).list();
  ignoreSystemCalls();
  if (list.adapters.size() != kAdapters || !list.problems.empty()) {
    throw std::runtime_error("a query finds " + std::to_string(list.adapters.size()) + " adapters");
  }
  for (const ma::AdapterListing& adapter : list.adapters) {
    const bool isLeft = adapter.pci == kLeft;
    if (adapter.flashBytes != (isLeft ? 1024 : 512) ||
        adapter.capabilityWord != (isLeft ? kNewWord : 0)) {
      throw std::runtime_error("a query finds another " + adapter.pci);
    }
  }
  return watchedCalls();
}

void demandChangesOfLeftAlone(const AdapterFixture& adapters) {
  const std::string folder = adapters.folder(kLeft).string();
  for (const Change& change : watchedChanges()) {
    if (!change.path.starts_with(folder)) {
      throw std::runtime_error("a query changes " + change.path);
    }
  }
  if (adapters.filesOf(kLeft) != std::vector<std::string>{"adapter.json", "flash.rom"} ||
      adapters.flash(kLeft) != Bytes(1024, 0)) {
    throw std::runtime_error("a query leaves an update to be done");
  }
}

}  // namespace

void demandThatOneQuerySettles() {
  const AdapterFixture adapters;
  makeAdapters(adapters);
  leaveUpdate(adapters);
  const std::uint64_t settling = countCallsOfQuery(adapters);
  demandChangesOfLeftAlone(adapters);
  const std::uint64_t settled = countCallsOfQuery(adapters);
  if (!watchedChanges().empty()) {
    throw std::runtime_error("a query changes what is done");
  }
  if (settled > kAdapters * kMostCallsOfAdapter || settling > settled + kMostCallsOfUpdate) {
    throw std::runtime_error("a query of " + std::to_string(kAdapters) + " adapters makes " +
                             std::to_string(settled) + " system calls, and " +
                             std::to_string(settling) + " where one update is left");
  }
}

}  // namespace test
