// Any datagram is an answer of the kernel's or none, and all texts in it are fit for a terminal.

#include <vector>

#include "midapi/Kernel/DevlinkMessages.h"
#include "midapi/Kernel/FlashProgress.h"
#include "tests/fuzz/Fuzz.h"

namespace {

constexpr std::uint32_t kSequence = 7;  // of the answers in the corpus
constexpr ma::DevlinkFamily kFamily{21, 5};

void requireShown(const std::vector<ma::NamedVersion>& versions) {
  for (const ma::NamedVersion& version : versions) {
    test::requirePrintable(version.name);
    test::requirePrintable(version.value);
  }
}

void requireInfo(ma::NetlinkBytes datagram) {
  if (const auto info = ma::findInfo(datagram, kFamily, kSequence)) {
    test::requirePrintable(info->driver);
    test::requirePrintable(info->serialNumber);
    test::requirePrintable(info->boardSerialNumber);
    requireShown(info->fixed);
    requireShown(info->running);
    requireShown(info->stored);
  }
}

void requireProgress(ma::NetlinkBytes datagram) {
  ma::FlashProgress progress(1000);
  for (const ma::DevlinkFlashEvent& event : ma::findFlashEvents(datagram, kFamily)) {
    test::requirePrintable(event.device);
    test::requirePrintable(event.text);
    test::requirePrintable(event.component);
    const std::uint64_t before = progress.done();
    progress.note(event);
    test::require(progress.done() >= before, "a progress does not fall");
    test::require(progress.done() <= progress.total(), "no more is done than there is");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::vector<std::uint8_t> bytes(data, data + size);
  if (const auto ack = ma::findAck(bytes, kSequence)) {
    test::require(ack->error >= 0, "an error is an errno value");
    test::requirePrintable(ack->text);
  }
  const auto family = ma::findFamily(bytes, kSequence);
  test::require(!family || family->id != 0, "a family has a number");
  requireInfo(bytes);
  requireProgress(bytes);
  return 0;
}
