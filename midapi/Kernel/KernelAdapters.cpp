#include "midapi/Kernel/KernelAdapters.h"

#include <algorithm>
#include <cerrno>
#include <set>
#include <sys/stat.h>
#include <utility>

#include "midapi/FlashBackend.h"

namespace ma {
namespace {

constexpr std::chrono::milliseconds kBetweenLooks{250};

// A function that sleeps, or is being reset, cannot be read, and is awake some seconds later. One
// whose option ROM can never be read costs a try each time, which hardware may take a second for.
constexpr std::chrono::seconds kFirstRetry{5};
constexpr std::chrono::seconds kLastRetry{600};

std::chrono::seconds retryAfter(int failures) {
  std::chrono::seconds time = kFirstRetry;
  for (int failure = 1; failure < failures && time < kLastRetry; ++failure) {
    time *= 2;
  }
  return std::min(time, kLastRetry);
}

// Who lacks the right will lack it the next time.
bool isFinal(const FileAnswer& file) {
  return file.error == 0 || file.error == EACCES || file.error == EPERM;
}

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
  bool isDone = false;        // there is nothing more to be asked in this look
  std::uint64_t awaited = 0;  // the turn of somebody else's that was waited for
  int error = 0;              // why it could not be asked
};

struct KernelAdapters::Adapter {
  AdapterAddress address;
  std::vector<Subject> functions;
  std::optional<FlashEntry> entry;
  bool mayBeAsked = true;
  // It is asked because somebody will want to know it soon, and not told.
  bool isCompany = false;
};

struct KernelAdapters::Look {
  std::uint64_t number = 0;
  bool isOfAll = false;
  std::vector<Adapter> adapters;
};

// What a look asks at once; others wait for it until this goes.
struct KernelAdapters::Turn {
  explicit Turn(KernelAdapters& asker) : owner(asker) {}
  Turn(const Turn&) = delete;
  Turn& operator=(const Turn&) = delete;
  ~Turn() {
    {
      const platform::Lock lock(owner.m_mutex);
      for (const Subject* const subject : subjects) {
        const auto known = owner.m_known.find(subject->question.function.id);
        if (known != owner.m_known.end() && known->second.plug == subject->plug &&
            known->second.asked.turn == number) {
          known->second.asked.isOver = true;
        }
      }
    }
    owner.m_isOver.notify_all();
  }

  KernelAdapters& owner;
  std::uint64_t number = 0;
  std::vector<Subject*> subjects;
  std::vector<DriverQuestion> questions;
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
  if (asker == Asker::Reader) {
    addCompany(look);
  }
  ask(look);
  std::vector<KernelAdapter> adapters = tell(look);
  if (asker == Asker::Writer && !adapters.empty() && adapters.front().isBeingWritten &&
      !std::ranges::all_of(adapters.front().functions, &KernelFunction::hasAnswered)) {
    adapters.front().noted = entryOf(address);
  }
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
      known.vpd = {};
      known.rom = {};
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
  addFunctions(wanted != nullptr ? findPciFunctions(m_sysfs, *wanted) : findPciFunctions(m_sysfs),
               asker, look);
  return look;
}

void KernelAdapters::addFunctions(std::vector<PciFunction> functions, Asker asker,
                                  Look& look) const {
  for (PciFunction& function : functions) {
    const AdapterAddress address = function.id.adapter;
    struct stat folder {};
    if (::stat(function.folder.c_str(), &folder) != 0) {
      continue;
    }
    if (look.adapters.empty() || look.adapters.back().address != address) {
      // The writer knows better than the journal.
      auto entry = asker == Asker::Reader ? entryOf(address) : std::nullopt;
      const bool isBeingWritten = asker == Asker::Reader && hasWriter(address, entry);
      look.adapters.push_back({address, {}, std::move(entry), !isBeingWritten, false});
    }
    const Plug plug{folder.st_dev, folder.st_ino, function.ids};
    look.adapters.back().functions.push_back({{std::move(function), false, false, false}, plug});
  }
}

// Who asks for an adapter of which nothing fresh is known will ask for the next one: those that
// were asked for of late are asked by the same child.
void KernelAdapters::addCompany(Look& look) {
  std::set<AdapterAddress> company;
  {
    const auto now = m_clock.now();
    const platform::Lock lock(m_mutex);
    if (!isAnyStale(look, now)) {
      return;
    }
    for (const auto& [id, known] : m_known) {
      if (known.mayBeCompany(now) && id.adapter != look.adapters.front().address) {
        company.insert(id.adapter);
      }
    }
  }
  const std::size_t wanted = look.adapters.size();
  for (const AdapterAddress& address : company) {
    addFunctions(findPciFunctions(m_sysfs, address), Asker::Reader, look);
  }
  for (std::size_t i = wanted; i < look.adapters.size(); ++i) {
    look.adapters[i].isCompany = true;
  }
}

bool KernelAdapters::isAnyStale(const Look& look, platform::Clock::TimePoint now) {
  return std::ranges::any_of(look.adapters, [&](const Adapter& adapter) ORVEX_REQUIRES(m_mutex) {
    return adapter.mayBeAsked &&
           std::ranges::any_of(
               adapter.functions, [&](const Subject& subject) ORVEX_REQUIRES(m_mutex) {
                 const Known* const known = recognise(subject, look.number);
                 return known != nullptr && !known->isFresh(subject.question.function.driver, now);
               });
  });
}

// Returns whether there is something to ask; waits for what others ask.
bool KernelAdapters::takeTurn(Look& look, Turn& turn) {
  const platform::Lock lock(m_mutex);
  turn.number = ++m_turns;
  for (;;) {
    bool isAnyAwaited = false;
    for (Adapter& adapter : look.adapters) {
      for (Subject& subject : adapter.functions) {
        const Step step = subject.isDone || (adapter.isCompany && turn.subjects.empty())
                              ? Step::None
                              : nextStep(adapter, subject, look);
        isAnyAwaited = isAnyAwaited || step == Step::Wait;
        if (step == Step::Ask) {
          turn.subjects.push_back(&subject);
        }
        subject.isDone = subject.isDone || step == Step::None;
      }
    }
    if (!turn.subjects.empty() || !isAnyAwaited) {
      break;
    }
    m_isOver.wait(m_mutex);
  }
  turn.questions.reserve(turn.subjects.size());
  for (const Subject* const subject : turn.subjects) {
    turn.questions.push_back(subject->question);
  }
  for (const Subject* const subject : turn.subjects) {
    const DriverQuestion& question = subject->question;
    m_known[question.function.id].asked = {
        turn.number, subject->changes, question.wantsVpd, question.wantsRom, false, false, 0};
  }
  return !turn.subjects.empty();
}

// Decides what is to be asked of a function.
KernelAdapters::Step KernelAdapters::nextStep(const Adapter& adapter, Subject& subject,
                                              const Look& look) {
  const auto now = m_clock.now();
  Known* const known = recognise(subject, look.number);
  if (known == nullptr) {
    return Step::None;
  }
  const PciFunction& function = subject.question.function;
  if (!adapter.isCompany) {
    known->wanted = now;
  }
  subject.changes = known->changes;
  if (!adapter.mayBeAsked || known->isFresh(function.driver, now)) {
    return Step::None;
  }
  subject.question.wantsLatest = known->changes != known->toldChanges;
  subject.question.wantsVpd = !adapter.isCompany && function.hasVpd && known->vpd.isDue(now);
  subject.question.wantsRom = !adapter.isCompany && function.hasRom && known->rom.isDue(now);
  const Asked& asked = known->asked;
  const bool isSame = asked.turn != 0 && asked.changes == known->changes &&
                      asked.hasVpd >= subject.question.wantsVpd &&
                      asked.hasRom >= subject.question.wantsRom;
  // It was asked since this look has begun to wait, and whoever asks again hears the same.
  if (isSame && subject.awaited != 0 && asked.isAnswered && asked.turn >= subject.awaited) {
    subject.error = asked.error;
    return Step::None;
  }
  if (asked.turn != 0 && !asked.isOver && asked.changes == known->changes) {
    subject.awaited = subject.awaited == 0 ? asked.turn : subject.awaited;
    return adapter.isCompany ? Step::None : Step::Wait;
  }
  return Step::Ask;
}

void KernelAdapters::ask(Look& look) {
  for (;;) {
    Turn turn(*this);
    if (!takeTurn(look, turn)) {
      break;
    }
    std::vector<DriverAnswer> answers = m_drivers.ask(turn.questions);
    const platform::Lock lock(m_mutex);
    for (std::size_t i = 0; i < turn.subjects.size(); ++i) {
      Subject& subject = *turn.subjects[i];
      subject.error = answers.at(i).error;
      subject.isDone = true;
      note(subject, std::move(answers[i]), look.number, turn.number);
    }
  }
  if (look.isOfAll) {
    const platform::Lock lock(m_mutex);
    std::erase_if(m_known,
                  [&look](const auto& known) { return known.second.seenBy < look.number; });
  }
}

std::vector<KernelAdapter> KernelAdapters::tell(Look& look) {
  std::vector<KernelAdapter> adapters;
  const platform::Lock lock(m_mutex);
  for (Adapter& seen : look.adapters) {
    if (seen.isCompany) {
      continue;
    }
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
      noteUnread(function.answer.vpd, function.pci.hasVpd && known[i]->vpd.isUntried(), whyUnread);
      noteUnread(function.answer.rom, function.pci.hasRom && known[i]->rom.isUntried(), whyUnread);
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

void KernelAdapters::noteFile(FileAnswer file, bool isUnchanged, Reading& reading,
                              FileAnswer& known) const {
  if (reading.isDone) {
    return;
  }
  known = std::move(file);
  if (isUnchanged) {
    reading.isDone = isFinal(known);
    reading.failures += reading.isDone ? 0 : 1;
    reading.retry = m_clock.now() + retryAfter(reading.failures);
  }
}

void KernelAdapters::note(const Subject& subject, DriverAnswer answer, std::uint64_t look,
                          std::uint64_t turn) {
  Known* const known = recognise(subject, look);
  if (known == nullptr) {
    return;
  }
  if (known->asked.turn == turn) {
    known->asked.isAnswered = true;
    known->asked.error = answer.error;
  }
  const bool isUnchanged = subject.changes == known->changes;
  if (!answer.isAway && subject.question.wantsVpd && !isLate(answer, answer.vpd)) {
    noteFile(std::move(answer.vpd), isUnchanged, known->vpd, known->answer.vpd);
  }
  if (!answer.isAway && subject.question.wantsRom && !isLate(answer, answer.rom)) {
    noteFile(std::move(answer.rom), isUnchanged, known->rom, known->answer.rom);
  }
  // Whether a driver that could not be asked at all is away is not known better than before.
  const bool isMuteNow = answer.error != 0 && answer.devlink;
  if (known->askedBy > look || (answer.error != 0 && !isMuteNow)) {
    return;
  }
  known->askedBy = look;
  known->isAway = answer.isAway;
  known->answer.silentSince = answer.silentSince;
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
    known->hasAnswered = true;
    known->toldChanges = subject.changes;
    known->driver = subject.question.function.driver;
    known->fresh = isUnchanged ? m_clock.now() + kFresh : platform::Clock::TimePoint{};
  }
}

}  // namespace ma
