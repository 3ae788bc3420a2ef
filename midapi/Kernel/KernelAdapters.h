// What is known of the adapters that the kernel drives.
//
// What sysfs says is read at each look. What the drivers say is asked for all adapters at once, and
// is a second old at the most; option ROMs and VPD are read once for as long as a function is
// plugged in, and those that could not be read some seconds later again, in ever longer intervals.
// An adapter whose flash is being written is not asked, nor is one that has not
// answered before it does: of those, what was last known is told, at once; who was never answered
// is told, apart from that, what the writer has noted in the journal. Any thread may call; one that
// asks for an adapter whose driver another one is just asking waits until that is over, no longer
// than a driver may keep silent (midapi/Kernel/DriverInquiry.h), and is told the same.

#ifndef ORVEX_MIDAPI_KERNEL_KERNELADAPTERS_H_
#define ORVEX_MIDAPI_KERNEL_KERNELADAPTERS_H_

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "midapi/AdapterId.h"
#include "midapi/Kernel/DriverCalls.h"
#include "midapi/Kernel/FlashJournal.h"
#include "midapi/Kernel/PciFunctions.h"
#include "platform/Clock.h"
#include "platform/Mutex.h"

namespace ma {

struct KernelFunction {
  PciFunction pci;
  // The last one there is; its error is why the driver could not be asked just now. A file that was
  // not read so far has that error, too, or EBUSY.
  DriverAnswer answer;
  bool hasAnswered = false;  // ever: what `answer` lacks, its driver does not have
};

struct KernelAdapter {
  AdapterAddress address;
  std::vector<KernelFunction> functions;  // by number; one at the least
  // Somebody writes its flash, or its driver does not answer by devlink: the answers are the last
  // ones.
  bool isBeingWritten = false;
  // What the writer has noted, where a driver has never answered so far. It says nothing of what a
  // driver can do.
  std::optional<FlashEntry> noted = std::nullopt;
};

class KernelAdapters {
 public:
  static constexpr std::chrono::seconds kFresh{1};
  static constexpr std::chrono::seconds kLongestWait{5};
  // How long an adapter that was asked for is asked along with others.
  static constexpr std::chrono::seconds kCompany{60};

  // Referents outlive the object. `sysfs` is /sys, or a folder that stands for it.
  KernelAdapters(std::filesystem::path sysfs, DriverCalls& drivers, const FlashJournal& journal,
                 platform::Clock& clock);
  KernelAdapters(const KernelAdapters&) = delete;
  KernelAdapters& operator=(const KernelAdapters&) = delete;
  ~KernelAdapters();

  // Returns the functions that there are, ordered by address; asks no driver.
  [[nodiscard]] std::vector<PciFunction> functions() const;
  // Return the adapters, ordered by address; one of them, nothing where there is none.
  [[nodiscard]] std::vector<KernelAdapter> all();
  [[nodiscard]] std::optional<KernelAdapter> find(const AdapterAddress& address);
  // The same for the one who has the right to write the adapter: the drivers are asked now,
  // whatever the journal says. It is being written where they do not answer.
  [[nodiscard]] std::optional<KernelAdapter> findForWriter(const AdapterAddress& address);

  // Waits some seconds for a driver that does not answer, unless the journal says that its adapter
  // is being written.
  void awaitAnswer(const AdapterAddress& address);

  // Something has changed: the next one who wants to know of the adapter asks its driver.
  void forget(const AdapterAddress& address);

 private:
  enum class Asker { Reader, Writer };

  // A function, from when it is plugged in until it is unplugged.
  struct Plug {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;  // sysfs gives none a second time
    PciIds ids;

    friend bool operator==(const Plug&, const Plug&) = default;
  };

  // How far the reading of a file has come.
  struct Reading {
    bool isDone = false;
    int failures = 0;
    platform::Clock::TimePoint retry;  // after a failure

    [[nodiscard]] bool isUntried() const { return !isDone && failures == 0; }
    [[nodiscard]] bool isDue(platform::Clock::TimePoint now) const {
      return !isDone && (failures == 0 || now >= retry);
    }
  };

  // The last turn in which somebody asked the driver.
  struct Asked {
    std::uint64_t turn = 0;  // turns are numbered; 0 where there was none
    std::uint64_t changes = 0;
    bool hasVpd = false;
    bool hasRom = false;
    bool isOver = false;
    bool isAnswered = false;
    int error = 0;  // why it could not be asked
  };

  // What is known of a function. Looks are numbered: of two that go on at the same time, what the
  // later one has learnt counts.
  struct Known {
    Plug plug;
    std::string driver;
    DriverAnswer answer;  // the last one; its VPD and option ROM, the first ones that were read
    bool hasAnswered = false;
    bool isAway = false;
    Reading vpd;
    Reading rom;
    platform::Clock::TimePoint fresh;  // until then
    std::uint64_t changes = 0;         // how often it was to be forgotten
    std::uint64_t toldChanges = 0;  // as many there had been when it was asked for the last answer
    std::uint64_t seenBy = 0;
    std::uint64_t askedBy = 0;
    Asked asked;
    platform::Clock::TimePoint wanted;  // when somebody last asked for it

    [[nodiscard]] bool isFresh(const std::string& boundDriver,
                               platform::Clock::TimePoint now) const {
      return !isAway && driver == boundDriver && now < fresh;
    }
    // Returns whether it can be asked beside another one without keeping that waiting.
    [[nodiscard]] bool mayBeCompany(platform::Clock::TimePoint now) const {
      return hasAnswered && !isAway && changes == toldChanges && now >= fresh &&
             now - wanted < kCompany;
    }
  };

  struct Subject;
  struct Adapter;  // of a look
  struct Look;
  struct Turn;
  enum class Step { None, Ask, Wait };

  [[nodiscard]] std::optional<KernelAdapter> findFor(const AdapterAddress& address, Asker asker);
  // The steps of a look at all adapters, or at one.
  [[nodiscard]] Look begin(const AdapterAddress* wanted, Asker asker);
  void addFunctions(std::vector<PciFunction> functions, Asker asker, Look& look) const;
  void addCompany(Look& look);
  void ask(Look& look);
  [[nodiscard]] std::vector<KernelAdapter> tell(Look& look);

  [[nodiscard]] bool isAnyStale(const Look& look, platform::Clock::TimePoint now)
      ORVEX_REQUIRES(m_mutex);
  [[nodiscard]] bool takeTurn(Look& look, Turn& turn);
  [[nodiscard]] Step nextStep(const Adapter& adapter, Subject& subject, const Look& look)
      ORVEX_REQUIRES(m_mutex);

  // Returns the entry that somebody's journal has of the adapter, be the writer alive or not.
  [[nodiscard]] std::optional<FlashEntry> entryOf(const AdapterAddress& adapter) const;
  // Returns what is known of the function; null where a later look has seen another one there.
  Known* recognise(const Subject& subject, std::uint64_t look) ORVEX_REQUIRES(m_mutex);
  // Returns whether somebody writes it who has noted that.
  [[nodiscard]] bool hasWriter(const AdapterAddress& adapter,
                               const std::optional<FlashEntry>& entry) const;
  void noteFile(FileAnswer file, bool isUnchanged, Reading& reading, FileAnswer& known) const;
  void note(const Subject& subject, DriverAnswer answer, std::uint64_t look, std::uint64_t turn)
      ORVEX_REQUIRES(m_mutex);

  const std::filesystem::path m_sysfs;
  DriverCalls& m_drivers;
  const FlashJournal& m_journal;
  platform::Clock& m_clock;

  platform::Mutex m_mutex;
  std::condition_variable_any m_isOver;  // somebody's turn
  std::uint64_t m_looks ORVEX_GUARDED_BY(m_mutex) = 0;
  std::uint64_t m_turns ORVEX_GUARDED_BY(m_mutex) = 0;
  std::map<PortId, Known> m_known ORVEX_GUARDED_BY(m_mutex);
};

}  // namespace ma

#endif  // ORVEX_MIDAPI_KERNEL_KERNELADAPTERS_H_
