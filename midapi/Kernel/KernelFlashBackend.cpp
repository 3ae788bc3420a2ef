#include "midapi/Kernel/KernelFlashBackend.h"

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <optional>
#include <system_error>
#include <utility>

#include "midapi/Digest.h"
#include "midapi/FirmwareFormat.h"
#include "midapi/ImagePreparation.h"
#include "midapi/Kernel/FirmwareCheck.h"
#include "midapi/Kernel/FlashProgress.h"
#include "midapi/Kernel/FlashRoute.h"
#include "midapi/Kernel/KernelListing.h"
#include "midapi/Kernel/PciFunctions.h"
#include "midapi/Kernel/ReadBack.h"
#include "midapi/Kernel/StagedFirmware.h"
#include "midapi/Kernel/StoredFirmware.h"
#include "platform/Texts.h"

namespace ma {
namespace {

// Some adapters start anew after a flash, and do not answer meanwhile.
constexpr std::chrono::seconds kLongestAbsence{30};
constexpr std::chrono::milliseconds kBetweenLooks{500};

constexpr const char* kNoRight =
    "writing firmware needs the capability CAP_NET_ADMIN, as root has it";

[[noreturn]] void failAsUnknown(const std::string& adapter) {
  throw FlashFault(FlashError::UnknownAdapter, adapter);
}

std::string wordsOf(const NetlinkAck& ack) {
  return ack.text.empty() ? std::generic_category().message(ack.error) : ack.text;
}

std::string adviceFor(const NetlinkAck& ack, const std::filesystem::path& folder) {
  return ack.error == ENOENT ? "; the kernel must take firmware from " +
                                   platform::toShownText(folder) + " (setting FirmwareFolder)"
                             : "";
}

std::vector<NamedVersion> runningOf(const std::vector<FirmwareVersions>& versions) {
  std::vector<NamedVersion> running;
  for (const FirmwareVersions& version : versions) {
    if (!version.running.empty()) {
      running.push_back({version.name, version.running});
    }
  }
  return running;
}

// What the flash holds, also where the driver tells that it holds nothing.
std::vector<NamedVersion> storedOf(const std::vector<FirmwareVersions>& versions) {
  std::vector<NamedVersion> stored;
  for (const FirmwareVersions& version : versions) {
    if (version.tellsStored()) {
      stored.push_back({version.name, version.stored});
    }
  }
  return stored;
}

const KernelFunction* findFunction(const KernelAdapter& adapter, const PortId& id) {
  const auto found = std::ranges::find_if(
      adapter.functions, [&id](const KernelFunction& function) { return function.pci.id == id; });
  return found != adapter.functions.end() ? &*found : nullptr;
}

KernelAdapter needed(std::optional<KernelAdapter> adapter, const AdapterAddress& address) {
  if (!adapter) {
    failAsUnknown(toString(address));
  }
  return std::move(*adapter);
}

// `whyNobodyCan` is why no adapter can be updated.
void tellUpdatability(const KernelAdapter& adapter, const std::string& whyNobodyCan,
                      AdapterListing& listing) {
  const FlashRoute route = findRoute(adapter, adapter.functions.front().pci.id.function);
  listing.whyNotUpdatable = route.way == FlashWay::None ? route.whyNone : whyNobodyCan;
  listing.isUpdatable = listing.whyNotUpdatable.empty();
}

// Returns whether the function's driver has answered just now: where it could not be asked, the
// last answer is one from before.
bool hasAnswered(const std::optional<KernelAdapter>& adapter, const PortId& id) {
  const KernelFunction* const function =
      adapter && !adapter->isBeingWritten ? findFunction(*adapter, id) : nullptr;
  return function != nullptr && function->answer.error == 0 && function->answer.devlink;
}

// Returns whether what is known of the function is from before.
bool isSilent(const KernelAdapter& adapter, const PortId& id) {
  const KernelFunction* const function = findFunction(adapter, id);
  return adapter.isBeingWritten || function == nullptr || function->answer.error != 0;
}

// Returns whether the function's driver may yet answer.
bool isBusy(const std::optional<KernelAdapter>& adapter, const PortId& id) {
  const KernelFunction* const function = adapter ? findFunction(*adapter, id) : nullptr;
  return function != nullptr && !function->pci.driver.empty() && !hasAnswered(adapter, id);
}

}  // namespace

// An adapter, as one of its ports is asked for.
struct KernelFlashBackend::Subject {
  KernelAdapter adapter;
  std::uint8_t port = 0;
  FlashRoute route;
  std::vector<FirmwareVersions> versions;
  std::string whyNotUpdatable;
  bool isTrusted = false;

  // Points into this.
  [[nodiscard]] FirmwareTarget target() const {
    const PciFunction& function = route.function->pci;
    return {function.ids,    route.driver,         function.driver,     isTrusted,
            whyNotUpdatable, romOf(adapter, port), isRomKnown(adapter), versions};
  }
  [[nodiscard]] SeenAdapter seen() const { return see(adapter, *route.function, versions); }
  [[nodiscard]] AdapterFacts facts() const {
    const PciIds& ids = route.function->pci.ids;
    return {ids.vendor, ids.device, whyNotUpdatable.empty()};
  }
};

KernelFlashBackend::KernelFlashBackend(FileSystem& files, KernelPlaces places, DriverCalls& drivers,
                                       PciNames& names,
                                       std::function<utils::FlashSettings()> settings,
                                       platform::Clock& clock)
    : m_files(files),
      m_places(std::move(places)),
      m_drivers(drivers),
      m_names(names),
      m_settings(std::move(settings)),
      m_clock(clock),
      m_journal(files, m_places.journal, clock),
      m_interrupted(files, m_journal, drivers),
      m_adapters(m_places.sysfs, drivers, m_journal, clock) {}

std::string KernelFlashBackend::describe(const AdapterAddress& /*adapter*/) {
  return "a network adapter of this machine";
}

bool KernelFlashBackend::hasAdapter(const AdapterAddress& adapter) {
  return hasPciFunctions(m_places.sysfs, adapter);
}

utils::StringArray KernelFlashBackend::enumerateAdapters() {
  utils::StringArray names;
  std::ranges::transform(m_adapters.functions(), std::back_inserter(names),
                         [](const PciFunction& function) { return toString(function.id); });
  return names;
}

AdapterList KernelFlashBackend::list() {
  const std::string whyNobodyCan = whyNobody();
  const std::filesystem::path folder = firmwareFolder();
  AdapterList list;
  std::set<AdapterAddress> addresses;
  for (const KernelAdapter& adapter : m_adapters.all()) {
    addresses.insert(adapter.address);
    AdapterListing listing = describeKernelAdapter(adapter, m_names);
    tellUpdatability(adapter, whyNobodyCan, listing);
    if (auto leftOver = m_interrupted.leftOverOf(adapter, folder); !leftOver.text.empty()) {
      listing.notes.push_back(leftOver.text);
      if (!leftOver.advice.empty()) {
        list.problems.push_back(
            {listing.pci, std::move(leftOver.text), std::move(leftOver.advice)});
      }
    }
    list.adapters.push_back(std::move(listing));
  }
  m_interrupted.sweepUnasked(addresses, folder);
  for (AdapterProblem& problem : m_interrupted.leftOverOfAbsent(addresses)) {
    list.problems.push_back(std::move(problem));
  }
  return list;
}

AdapterList KernelFlashBackend::outline(OutlineDepth depth) {
  const std::string whyNobodyCan = whyNobody();
  AdapterList list;
  for (const KernelAdapter& adapter : m_adapters.all()) {
    AdapterListing listing = depth == OutlineDepth::Flash ? describeKernelAdapter(adapter, m_names)
                                                          : outlineKernelAdapter(adapter, m_names);
    tellUpdatability(adapter, whyNobodyCan, listing);
    list.adapters.push_back(std::move(listing));
  }
  return list;
}

std::vector<std::string> KernelFlashBackend::interruptedWrites() {
  // Often asked for, and hardly ever is there one: no driver is asked without an entry.
  std::set<AdapterAddress> addresses;
  for (const PciFunction& function : m_adapters.functions()) {
    addresses.insert(function.id.adapter);
  }
  const std::filesystem::path folder = firmwareFolder();
  m_interrupted.sweepUnasked(addresses, folder);
  std::vector<std::string> texts;
  for (const AdapterAddress& address : addresses) {
    const auto adapter =
        m_journal.hasEntry(address) ? m_adapters.find(address) : std::optional<KernelAdapter>();
    const auto leftOver =
        adapter ? m_interrupted.leftOverOf(*adapter, folder) : InterruptedFlashes::LeftOver{};
    if (!leftOver.text.empty()) {
      texts.push_back(toString(address) + ": " + leftOver.text +
                      (leftOver.advice.empty() ? "" : "; " + leftOver.advice));
    }
  }
  for (const AdapterProblem& problem : m_interrupted.leftOverOfAbsent(addresses)) {
    texts.push_back(problem.place + ": " + problem.text + "; " + problem.advice);
  }
  return texts;
}

bool KernelFlashBackend::isUpdatable(const PortId& port) {
  return subjectOf(port).whyNotUpdatable.empty();
}

std::vector<utils::FirmwareVersionInfo> KernelFlashBackend::installedFirmware(const PortId& port) {
  const Subject subject = subjectOf(port);
  return firmwareOf(subject.facts(), parseRomChain(romOf(subject.adapter, port.function)));
}

std::vector<FirmwareVersions> KernelFlashBackend::firmwareVersions(const PortId& port) {
  return subjectOf(port).versions;
}

void KernelFlashBackend::awaitAnswer(const AdapterAddress& adapter) {
  m_adapters.awaitAnswer(adapter);
}

Preparation KernelFlashBackend::prepare(const PortId& port, ConstBytes file,
                                        std::span<std::uint8_t> buffer,
                                        const std::vector<utils::FirmwareType>& types) {
  const Subject subject = subjectOf(port);
  Preparation preparation = prepareFirmware(subject.target(), file, buffer, types);
  if (preparation.filled != 0) {
    m_checked.note(port.adapter, digestOf(buffer.first(preparation.filled)), subject.seen());
  }
  return preparation;
}

ImageComparison KernelFlashBackend::compare(const PortId& port, ConstBytes file) {
  const Subject subject = subjectOf(port);
  return compareFirmware(subject.target(), file);
}

std::uint64_t KernelFlashBackend::digest(const PortId& port) {
  const Subject subject = subjectOf(port);
  const FirmwareTarget target = subject.target();
  std::string decisive = describeDevice(target.ids) + '\n' + std::string(target.driverName) + '\n' +
                         std::string(target.driver->name) +
                         (target.driver->canWrite() ? "\nwrites\n" : "\n") +
                         (target.isTrusted ? "trusted\n" : "\n") + subject.whyNotUpdatable + '\n';
  for (const FirmwareVersions& version : subject.versions) {
    decisive += version.name + '\n' + version.running + '\n' + version.stored +
                (version.isErased ? "\nerased\n" : "\n");
  }
  return digestOf({reinterpret_cast<const std::uint8_t*>(decisive.data()), decisive.size()},
                  digestOf(target.rom));
}

bool KernelFlashBackend::beginUpdate(const AdapterAddress& adapter) {
  const platform::Lock lock(m_mutex);
  return m_updates.insert(adapter).second;
}

void KernelFlashBackend::endUpdate(const AdapterAddress& adapter) noexcept {
  const platform::Lock lock(m_mutex);
  m_updates.erase(adapter);
}

void KernelFlashBackend::setBootType(const PortId& port, BootType /*bootType*/) {
  const Subject subject = subjectOf(port);
  throw FlashFault(FlashError::NotOffered, "what " + toString(port) +
                                               " boots from cannot be set through its driver " +
                                               subject.route.function->pci.driver);
}

void KernelFlashBackend::writeFlash(const PortId& port, ConstBytes image, WriteProgress& progress) {
  const FlashJournal::Claim claim = m_journal.claim(port.adapter);
  if (const std::string why = hasAdapter(port.adapter) ? whyNobody() : ""; !why.empty()) {
    throw FlashFault(FlashError::NotUpdatable, why);
  }
  const std::filesystem::path folder = firmwareFolder();
  sweepStagedFirmware(m_files, folder, port.adapter);
  // Before the entry: where there is one, the kernel may have been asked. And before the last look
  // at the adapter: a large file takes its time.
  const StagedFirmware staged(m_files, folder, port.adapter, image);
  const std::uint64_t digest = digestOf(image);
  Subject subject = subjectToWrite(port, digest);
  const FlashPlan plan = planFlash(subject.target(), image);
  const FlashEntry entry{image.size(), digest, storedOf(subject.versions), plan.versions,
                         runningOf(subject.versions)};
  claim.enter(entry);
  try {
    lookAgain(subject);
  } catch (const FlashFault&) {
    claim.clearQuietly();
    throw;
  }
  const NetlinkAck ack = flash(subject, staged.name(), plan.bytes, progress);
  m_adapters.forget(port.adapter);
  if (ack.isLost) {
    // The entry stays, and is compared by whoever lists the adapters.
    throw FlashFault(FlashError::NotCompared, wordsOf(ack));
  }
  if (ack.error != 0) {
    claim.clearQuietly();
    throw FlashFault(FlashError::WriteRefused, wordsOf(ack) + adviceFor(ack, folder));
  }
  progress.remark(verify(subject, image, entry, claim));
  claim.clearQuietly();
  progress.complete();
}

// The flash itself is the record, also of an adapter that starts anew just now and is not there.
void KernelFlashBackend::recordInstalled(const PortId& /*port*/,
                                         const std::vector<utils::FirmwareType>& /*types*/) {}

Activation KernelFlashBackend::activate(const AdapterAddress& adapter) {
  const KernelAdapter known = need(adapter);
  const FlashRoute route = findRoute(known, known.functions.front().pci.id.function);
  if (route.way == FlashWay::None) {
    throw FlashFault(FlashError::NotActivated, route.whyNone);
  }
  const PciFunction& function = route.function->pci;
  // Whatever puts it into force: nobody is advised to do so with a half of it.
  m_interrupted.refuseUnfinished(known, function.id);
  const StoredFirmware stored = judgeStored(versionsOf(known, function.id.function));
  if (stored == StoredFirmware::InForce) {
    return {true, "what its flash holds is in force"};
  }
  Activation otherwise{false, whatItTakes(route, stored)};
  if (!route.driver->canActivate || route.way != FlashWay::Devlink) {
    return otherwise;
  }
  if (!m_drivers.mayFlash()) {
    throw FlashFault(FlashError::NotActivated, kNoRight);
  }
  const FlashJournal::Claim claim = m_journal.claim(adapter);
  m_interrupted.refuseUnfinished(needed(m_adapters.findForWriter(adapter), adapter), function.id);
  const NetlinkAck ack = m_drivers.activate(function.id);
  m_adapters.forget(adapter);
  if (ack.error == EOPNOTSUPP) {
    return otherwise;
  }
  if (ack.error != 0) {
    throw FlashFault(FlashError::NotActivated, wordsOf(ack));
  }
  return {true, "its driver " + function.driver + " has put the stored firmware into force"};
}

KernelAdapter KernelFlashBackend::need(const AdapterAddress& address) {
  return needed(m_adapters.find(address), address);
}

KernelFlashBackend::Subject KernelFlashBackend::subjectOf(const PortId& port) {
  return subjectOf(port, m_adapters.find(port.adapter));
}

KernelFlashBackend::Subject KernelFlashBackend::subjectOf(
    const PortId& port, std::optional<KernelAdapter> adapter) const {
  const utils::FlashSettings settings = m_settings();
  Subject subject{needed(std::move(adapter), port.adapter), port.function, {}, {}, {}, false};
  if (findFunction(subject.adapter, port) == nullptr) {
    failAsUnknown(toString(port));
  }
  subject.route = findRoute(subject.adapter, port.function);
  subject.versions = versionsOf(subject.adapter, subject.route.function->pci.id.function);
  subject.whyNotUpdatable =
      subject.route.way == FlashWay::None ? subject.route.whyNone : whyNobody();
  subject.isTrusted =
      std::ranges::find(settings.trustedDrivers, subject.route.function->pci.driver) !=
      settings.trustedDrivers.end();
  return subject;
}

std::filesystem::path KernelFlashBackend::firmwareFolder() const {
  return platform::toPath(m_settings().firmwareFolder);
}

std::string KernelFlashBackend::whyNobody() const {
  std::string folder = whyNotStageable(firmwareFolder());
  if (m_drivers.mayFlash()) {
    return folder;
  }
  return kNoRight + (folder.empty() ? "" : "; besides, " + folder);
}

KernelFlashBackend::Subject KernelFlashBackend::subjectToWrite(const PortId& port,
                                                               std::uint64_t digest) {
  const auto end = m_clock.now() + kLongestAbsence;
  const auto checked = m_checked.find(port.adapter, digest);
  for (;;) {
    Subject subject = subjectOf(port, m_adapters.findForWriter(port.adapter));
    const PortId& function = subject.route.function->pci.id;
    const std::string change = checked ? findChange(*checked, subject.seen()) : "";
    if (!change.empty()) {
      throw FlashFault(FlashError::Changed,
                       toString(function) + ": " + change + "; check the file against it again");
    }
    if (!subject.whyNotUpdatable.empty()) {
      throw FlashFault(FlashError::NotUpdatable, subject.whyNotUpdatable);
    }
    // What is known from before says nothing of a card that was exchanged.
    if (!checked || checked->versions.empty() || !isSilent(subject.adapter, function)) {
      return subject;
    }
    if (m_clock.now() >= end) {
      throw FlashFault(FlashError::NotUpdatable,
                       "its driver " + subject.route.function->pci.driver +
                           " does not answer, so nobody can tell whether " + toString(function) +
                           " is as it was when the file was checked; try again when it does");
    }
    m_clock.sleepFor(kBetweenLooks);
  }
}

void KernelFlashBackend::lookAgain(Subject& subject) const {
  const PciFunction& looked = subject.route.function->pci;
  const std::string where = toString(looked.id);
  const auto functions = findPciFunctions(m_places.sysfs, looked.id.adapter);
  const auto now = std::ranges::find(functions, looked.id, &PciFunction::id);
  const std::string advice = "; check the file against it again";
  if (now == functions.end()) {
    throw FlashFault(FlashError::Changed, where + " has been taken away" + advice);
  }
  if (const auto change =
          findChange({looked.ids, looked.driver, {}, {}, {}}, {now->ids, now->driver, {}, {}, {}});
      !change.empty()) {
    throw FlashFault(FlashError::Changed, where + ": " + change + advice);
  }
  if (subject.route.way == FlashWay::Ethtool) {
    if (now->interfaces.empty()) {
      throw FlashFault(FlashError::Changed,
                       where + ": its driver " + now->driver +
                           " writes firmware through a network interface, and has none any more" +
                           advice);
    }
    subject.route.interface = now->interfaces.front().name;
  }
}

NetlinkAck KernelFlashBackend::flash(const Subject& subject, const std::string& file,
                                     std::uint64_t bytes, WriteProgress& progress) {
  const FlashRoute& route = subject.route;
  if (route.way == FlashWay::Ethtool) {
    return m_drivers.flashByEthtool(route.interface, file);
  }
  const PortId function = route.function->pci.id;
  FlashProgress measure(bytes);
  return m_drivers.flashByDevlink(
      function, file, "",
      [&measure, &progress, device = toString(function)](const DevlinkFlashEvent& event) {
        if (event.device != device) {
          return;
        }
        measure.note(event);
        if (measure.total() > 0) {
          progress.advance(measure.done(), measure.total());
        }
      });
}

std::string KernelFlashBackend::verify(const Subject& written, ConstBytes image,
                                       const FlashEntry& entry, const FlashJournal::Claim& claim) {
  const PciFunction& function = written.route.function->pci;
  const bool hasVersions =
      written.route.way == FlashWay::Devlink && !(entry.expected.empty() && entry.before.empty());
  const auto end = m_clock.now() + kLongestAbsence;
  auto adapter = m_adapters.findForWriter(function.id.adapter);
  while (hasVersions && isBusy(adapter, function.id) && m_clock.now() < end) {
    m_clock.sleepFor(kBetweenLooks);
    adapter = m_adapters.findForWriter(function.id.adapter);
  }
  const std::string isWritten = "the driver has written it, and does not tell ";
  ReadBack versions;
  if (hasVersions) {
    if (!hasAnswered(adapter, function.id)) {
      throw FlashFault(FlashError::NotCompared,
                       isWritten + "any versions since; look at them when it does");
    }
    versions = readBackVersions(entry, versionsOf(*adapter, function.id.function));
    if (versions.verdict == ReadBack::Verdict::Untold) {
      throw FlashFault(FlashError::NotCompared,
                       isWritten + versions.text + " any more; look at it when it does");
    }
  }
  ReadBack rom;
  if (firmwareFormatOf(image) == FirmwareFormat::OptionRom && adapter && isRomKnown(*adapter)) {
    rom = readBackRom(function.ids, image, romOf(written.adapter, written.port),
                      romOf(*adapter, written.port));
  }
  for (const ReadBack& found : {versions, rom}) {
    if (found.verdict == ReadBack::Verdict::Different) {
      claim.clearQuietly();
      throw FlashFault(FlashError::CompareMismatch, found.text);
    }
  }
  const bool isSame =
      versions.verdict == ReadBack::Verdict::Same || rom.verdict == ReadBack::Verdict::Same;
  return isSame ? ""
                : "its driver " + function.driver +
                      " says that it is written, and nothing shows what the flash holds now";
}

}  // namespace ma
