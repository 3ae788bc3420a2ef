#include "midapi/Kernel/InterruptedFlashes.h"

#include <algorithm>

#include "midapi/FlashBackend.h"
#include "midapi/Kernel/FlashOutcome.h"
#include "midapi/Kernel/KernelListing.h"
#include "midapi/Kernel/StagedFirmware.h"
#include "platform/Texts.h"

namespace ma {
namespace {

struct OutcomeText {
  FlashOutcome outcome;
  const char* text;
  const char* advice;
};
constexpr OutcomeText kOutcomeTexts[] = {
    {FlashOutcome::Written, "the kernel has finished it since: the flash holds what the file has",
     ""},
    {FlashOutcome::NotWritten, "the flash holds what it held before", "update it again"},
    {FlashOutcome::Mixed, "the flash holds neither what it held before nor what the file has",
     "update it again before the machine starts anew"},
    {FlashOutcome::Unknown, "its versions do not tell whether the flash holds all of the file",
     "update it again"},
};

const OutcomeText& textsOf(FlashOutcome outcome) {
  return *std::ranges::find(kOutcomeTexts, outcome, &OutcomeText::outcome);
}

}  // namespace

InterruptedFlashes::LeftOver InterruptedFlashes::leftOverOf(
    const KernelAdapter& adapter, const std::filesystem::path& firmwareFolder) const {
  try {
    const auto entry = m_journal.entry(adapter.address);
    if (!entry || adapter.isBeingWritten || m_journal.isClaimed(adapter.address)) {
      return {};
    }
    const auto versions = versionsOf(adapter, adapter.functions.front().pci.id.function);
    const FlashOutcome outcome = judge(*entry, versions);
    const FlashJournal::Attempt attempt = m_journal.tryClaim(adapter.address);
    // Its writer may have lived until now, and then it is none that was interrupted.
    if (attempt.isTaken || m_journal.entry(adapter.address) != entry) {
      return {};
    }
    if (attempt.claim) {
      sweepStagedFirmware(m_files, firmwareFolder, adapter.address);
      if (outcome == FlashOutcome::Written) {
        attempt.claim->clearQuietly();
      }
    }
    const OutcomeText& texts = textsOf(outcome);
    return {std::string("an update was interrupted; ") + texts.text + " (" +
                describeStored(versions) + ")",
            texts.advice};
  } catch (const FlashFault& fault) {
    // Who may not read it cannot mend it either.
    return m_drivers.mayFlash()
               ? LeftOver{fault.what(), "mend what it says, then update the adapter"}
               : LeftOver{};
  }
}

std::vector<AdapterProblem> InterruptedFlashes::leftOverOfAbsent(
    const std::set<AdapterAddress>& present) const {
  std::vector<AdapterProblem> problems;
  for (const AdapterAddress& adapter : m_journal.adapters()) {
    // An adapter that starts anew is not there for a while, and its writer waits for it.
    if (!present.contains(adapter) && !m_journal.isClaimed(adapter) &&
        m_journal.hasEntry(adapter)) {
      problems.push_back(
          {toString(adapter), "an update was interrupted, and the adapter is not there",
           "update it again when it is back, or remove " +
               platform::toShownText(m_journal.entryPath(adapter)) + " if it never will be"});
    }
  }
  return problems;
}

void InterruptedFlashes::sweepUnasked(const std::set<AdapterAddress>& present,
                                      const std::filesystem::path& firmwareFolder) const {
  for (const AdapterAddress& adapter : findStagedFirmware(m_files, firmwareFolder)) {
    // Where there is an entry, the kernel may be about to read it for an adapter that is there.
    const FlashJournal::Attempt attempt = m_journal.tryClaim(adapter);
    if (attempt.claim && !(present.contains(adapter) && m_journal.hasEntry(adapter))) {
      sweepStagedFirmware(m_files, firmwareFolder, adapter);
    }
  }
}

void InterruptedFlashes::refuseUnfinished(const KernelAdapter& adapter,
                                          const PortId& function) const {
  if (adapter.isBeingWritten) {
    throw FlashFault(FlashError::NotActivated, "its flash is being written");
  }
  const auto versions = versionsOf(adapter, function.function);
  const auto entry = readableEntry(adapter.address);
  if (std::ranges::any_of(versions, &FirmwareVersions::isErased) ||
      (entry && judge(*entry, versions) != FlashOutcome::Written)) {
    throw FlashFault(FlashError::NotActivated, "an update was interrupted; update it again first");
  }
}

std::optional<FlashEntry> InterruptedFlashes::readableEntry(const AdapterAddress& adapter) const {
  try {
    return m_journal.entry(adapter);
  } catch (const FlashFault&) {
    if (m_drivers.mayFlash()) {
      throw;
    }
    return std::nullopt;  // who may not read it can do nothing with the flash either
  }
}

}  // namespace ma
