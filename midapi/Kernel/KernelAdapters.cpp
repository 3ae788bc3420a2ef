#include "midapi/Kernel/KernelAdapters.h"

#include <algorithm>
#include <cerrno>
#include <sys/stat.h>
#include <utility>

#include "midapi/FlashBackend.h"

namespace ma {
namespace {

constexpr std::chrono::milliseconds kBetweenLooks{250};

// Tells a file that was not read so far from one that is empty.
void noteUnread(FileAnswer& file, bool isWanted, int why) {
  if (isWanted && file.bytes.empty()) {
    file.error = why;
  }
}

// Returns whether a file was asked for and has not come in time.
bool isLate(const DriverAnswer& answer, const FileAnswer& file) {
  return answer.isPartial && file.error == EBUSY;
}

}  // namespace

// One function in one look.
struct KernelAdapters::Subject {
  DriverQuestion question;
  Plug plug;
  std::uint64_t changes = 0;  // of what was known when it was asked
  bool isAsked = false;
  int error = 0;  // why it could not be asked
};

struct KernelAdapters::Look {
  struct Adapter {
    AdapterAddress address;
    std::vector<Subject> functions;
    std::optional<FlashEntry> entry;
    bool mayBeAsked = true;
  };

  std::uint64_t number = 0;
  bool isOfAll = false;
  std::vector<Adapter> adapters;
};

KernelAdapters::KernelAdapters(std::filesystem::path sysfs, DriverCalls& drivers,
                               const FlashJournal& journal, platform::Clock& clock)
    : m_sysfs(std::move(sysfs)), m_drivers(drivers), m_journal(journal), m_clock(clock) {}

KernelAdapters::~KernelAdapters() = default;

std::vector<PciFunction> KernelAdapters::functions() const {
  return findPciFunctions(m_sysfs);
}

std::vector<KernelAdapter> KernelAdapters::all() {
  Look look = begin(nullptr, Asker::Reader);
  choose(look);
  ask(look);
  return tell(look);
}

std::optional<KernelAdapter> KernelAdapters::find(const AdapterAddress& address) {
  return findFor(address, Asker::Reader);
}

std::optional<KernelAdapter> KernelAdapters::findForWriter(const AdapterAddress& address) {
  forget(address);
  return findFor(address, Asker::Writer);
}

std::optional<KernelAdapter> KernelAdapters::findFor(const AdapterAddress& address, Asker asker) {
  Look look = begin(&address, asker);
  choose(look);
  ask(look);
  std::vector<KernelAdapter> adapters = tell(look);
  return adapters.empty() ? std::nullopt : std::optional(std::move(adapters.front()));
}

void KernelAdapters::awaitAnswer(const AdapterAddress& address) {
  const auto isSilent = [this, &address] {
    const auto adapter = find(address);
    return adapter && adapter->isBeingWritten && !hasWriter(address, entryOf(address));
  };
  const auto end = m_clock.now() + kLongestWait;
  while (isSilent() && m_clock.now() < end) {
    m_clock.sleepFor(kBetweenLooks);
  }
}

void KernelAdapters::forget(const AdapterAddress& address) {
  const platform::Lock lock(m_mutex);
  for (auto& [id, known] : m_known) {
    if (id.adapter == address) {
      ++known.changes;
      known.fresh = {};
      known.hasVpd = false;
      known.hasRom = false;
    }
  }
}

KernelAdapters::Look KernelAdapters::begin(const AdapterAddress* wanted, Asker asker) {
  Look look;
  look.isOfAll = wanted == nullptr;
  {
    const platform::Lock lock(m_mutex);
    look.number = ++m_looks;
  }
  for (PciFunction& function :
       wanted != nullptr ? findPciFunctions(m_sysfs, *wanted) : findPciFunctions(m_sysfs)) {
    const AdapterAddress address = function.id.adapter;
    struct stat folder {};
    if (::stat(function.folder.c_str(), &folder) != 0) {
      continue;
    }
    if (look.adapters.empty() || look.adapters.back().address != address) {
      auto entry = entryOf(address);
      const bool isBeingWritten = asker == Asker::Reader && hasWriter(address, entry);
      look.adapters.push_back({address, {}, std::move(entry), !isBeingWritten});
    }
    const Plug plug{folder.st_dev, folder.st_ino, function.ids};
    look.adapters.back().functions.push_back({{std::move(function), false, false, false}, plug});
  }
  return look;
}

// Decides what is asked of whom, and forgets what was unplugged.
void KernelAdapters::choose(Look& look) {
  const auto now = m_clock.now();
  const platform::Lock lock(m_mutex);
  for (Look::Adapter& adapter : look.adapters) {
    for (Subject& subject : adapter.functions) {
      const PciFunction& function = subject.question.function;
      const Known* const known = recognise(subject, look.number);
      if (known == nullptr) {
        continue;
      }
      const bool isFresh = !known->isAway && known->driver == function.driver && now < known->fresh;
      subject.isAsked = adapter.mayBeAsked && !isFresh;
      subject.changes = known->changes;
      subject.question.wantsLatest = known->changes != known->toldChanges;
      subject.question.wantsVpd = function.hasVpd && !known->hasVpd;
      subject.question.wantsRom = function.hasRom && !known->hasRom;
    }
  }
  if (look.isOfAll) {
    std::erase_if(m_known,
                  [&look](const auto& known) { return known.second.seenBy < look.number; });
  }
}

void KernelAdapters::ask(Look& look) {
  std::vector<DriverQuestion> questions;
  std::vector<Subject*> subjects;
  for (Look::Adapter& adapter : look.adapters) {
    for (Subject& subject : adapter.functions) {
      if (subject.isAsked) {
        questions.push_back(subject.question);
        subjects.push_back(&subject);
      }
    }
  }
  if (questions.empty()) {
    return;
  }
  std::vector<DriverAnswer> answers = m_drivers.ask(questions);
  const platform::Lock lock(m_mutex);
  for (std::size_t i = 0; i < subjects.size(); ++i) {
    subjects[i]->error = answers.at(i).error;
    note(*subjects[i], std::move(answers[i]), look.number);
  }
}

std::vector<KernelAdapter> KernelAdapters::tell(Look& look) {
  std::vector<KernelAdapter> adapters;
  const platform::Lock lock(m_mutex);
  for (Look::Adapter& seen : look.adapters) {
    KernelAdapter adapter{seen.address, {}, !seen.mayBeAsked, {}};
    const Known nothing;
    std::vector<const Known*> known;
    for (Subject& subject : seen.functions) {
      const Known* const found = recognise(subject, look.number);
      known.push_back(found != nullptr ? found : &nothing);
      adapter.isBeingWritten = adapter.isBeingWritten || known.back()->isAway;
    }
    const bool isAnyUnknown =
        std::ranges::any_of(known, [](const Known* one) { return !one->hasAnswered; });
    if (adapter.isBeingWritten && isAnyUnknown) {
      adapter.noted = std::move(seen.entry);
    }
    for (std::size_t i = 0; i < known.size(); ++i) {
      Subject& subject = seen.functions[i];
      KernelFunction function{std::move(subject.question.function), known[i]->answer,
                              known[i]->hasAnswered};
      function.answer.error = subject.error;
      const int whyUnread = subject.error != 0 ? subject.error : EBUSY;
      noteUnread(function.answer.vpd, function.pci.hasVpd && !known[i]->hasVpd, whyUnread);
      noteUnread(function.answer.rom, function.pci.hasRom && !known[i]->hasRom, whyUnread);
      adapter.functions.push_back(std::move(function));
    }
    adapters.push_back(std::move(adapter));
  }
  return adapters;
}

std::optional<FlashEntry> KernelAdapters::entryOf(const AdapterAddress& adapter) const {
  try {
    return m_journal.entry(adapter);
  } catch (const FlashFault&) {
    return std::nullopt;  // who writes the adapter, or wants to, is told of it
  }
}

bool KernelAdapters::hasWriter(const AdapterAddress& adapter,
                               const std::optional<FlashEntry>& entry) const {
  return entry.has_value() && m_journal.isClaimed(adapter);
}

KernelAdapters::Known* KernelAdapters::recognise(const Subject& subject, std::uint64_t look) {
  Known& known = m_known[subject.question.function.id];
  if (known.plug != subject.plug) {
    if (known.seenBy > look) {
      return nullptr;
    }
    known = {};
    known.plug = subject.plug;
  }
  known.seenBy = std::max(known.seenBy, look);
  return &known;
}

void KernelAdapters::note(const Subject& subject, DriverAnswer answer, std::uint64_t look) {
  Known* const known = recognise(subject, look);
  // Who has devlink and did not answer there has answered all else.
  const bool isMuteNow = answer.error != 0 && answer.devlink;
  if (known == nullptr || (answer.error != 0 && !isMuteNow)) {
    return;
  }
  const bool isUnchanged = subject.changes == known->changes;
  if (!answer.isAway && subject.question.wantsVpd && !known->hasVpd &&
      !isLate(answer, answer.vpd)) {
    known->answer.vpd = std::move(answer.vpd);
    known->hasVpd = isUnchanged;
  }
  if (!answer.isAway && subject.question.wantsRom && !known->hasRom &&
      !isLate(answer, answer.rom)) {
    known->answer.rom = std::move(answer.rom);
    known->hasRom = isUnchanged;
  }
  if (known->askedBy > look) {
    return;
  }
  known->askedBy = look;
  known->isAway = answer.isAway;
  if (isMuteNow) {
    if (!known->answer.devlink) {
      known->answer.devlink = std::move(answer.devlink);
    }
    known->fresh = {};
  } else if (!answer.isAway) {
    known->answer.devlink = std::move(answer.devlink);
    if (answer.info || !answer.isPartial) {
      known->answer.info = std::move(answer.info);
    }
    if (answer.speed) {
      known->answer.speed = answer.speed;
    }
    known->hasAnswered = true;
    known->toldChanges = subject.changes;
    known->driver = subject.question.function.driver;
    known->fresh = isUnchanged ? m_clock.now() + kFresh : platform::Clock::TimePoint{};
  }
}

}  // namespace ma
