// What is being written to an adapter of the kernel's, kept where it survives the writer.
//
// The kernel goes on with a flash whose process was killed, and nobody is told how it ends. So a
// flash is entered in the journal before it begins, and the entry goes when its outcome is known.
// An entry whose writer is gone is a flash with an unknown outcome: whoever finds it compares.
// Nothing is kept in memory, and any thread may call. Failures are FlashFaults that name the file.
//
//   /var/lib/orvex/kernel/0000-03-00.json   the entry, {"size": 80063,
//                                           "digest": "af63dc4c8601ec8c",
//                                           "running": {"fw.undi": "1.0.0"},
//                                           "before": {"fw.undi": "1.0.0"},
//                                           "expected": {"fw.undi": "1.1.0"}}
//   /var/lib/orvex/kernel/0000-03-00.lock   the writer's lock

#ifndef ORVEX_MIDAPI_KERNEL_FLASHJOURNAL_H_
#define ORVEX_MIDAPI_KERNEL_FLASHJOURNAL_H_

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <set>
#include <vector>

#include "midapi/AdapterId.h"
#include "midapi/FileSystem.h"
#include "midapi/Kernel/DevlinkMessages.h"
#include "platform/Clock.h"

namespace ma {

struct FlashEntry {
  std::uint64_t size = 0;               // bytes of what is written
  std::uint64_t digest = 0;             // FNV-1a of it
  std::vector<NamedVersion> before;     // the stored versions until then
  std::vector<NamedVersion> expected;   // those that the file holds; none where it does not say
  std::vector<NamedVersion> running{};  // until then, for who can ask nobody meanwhile

  friend bool operator==(const FlashEntry&, const FlashEntry&) = default;
};

class FlashJournal {
 public:
  // The right to write one adapter, for a scope: nobody else has it, in this process or another.
  class Claim {
   public:
    Claim(FileSystem& files, std::filesystem::path entry, std::unique_ptr<FileLock> lock);
    Claim(Claim&&) noexcept = default;
    Claim(const Claim&) = delete;
    Claim& operator=(const Claim&) = delete;
    Claim& operator=(Claim&&) = delete;
    ~Claim() = default;

    // Returns the entry that a writer left that is gone; nothing where all ended well.
    [[nodiscard]] std::optional<FlashEntry> leftOver() const;
    // Returns when the disk has the entry.
    void enter(const FlashEntry& entry) const;
    // The outcome is known: removes the entry.
    void clear() const;
    // The same where a failure changes nothing: an entry that stays is compared again by whoever
    // lists the adapters.
    void clearQuietly() const;

   private:
    FileSystem* m_files;
    std::filesystem::path m_entry;
    std::unique_ptr<FileLock> m_lock;
  };

  // Referents outlive the journal. The folder need not exist.
  FlashJournal(FileSystem& files, std::filesystem::path folder, platform::Clock& clock);

  // Waits some seconds for others who write the adapter.
  [[nodiscard]] Claim claim(const AdapterAddress& adapter) const;

  // What comes of asking for the right without waiting: nothing, too, where the caller may not have
  // it.
  struct Attempt {
    std::optional<Claim> claim;
    bool isTaken = false;  // somebody writes the adapter
  };
  [[nodiscard]] Attempt tryClaim(const AdapterAddress& adapter) const;

  // Returns the adapter's entry, whoever may have made it: a flash that is under way, or one whose
  // outcome is unknown.
  [[nodiscard]] std::optional<FlashEntry> entry(const AdapterAddress& adapter) const;
  // Returns whether there is one, be it readable or not.
  [[nodiscard]] bool hasEntry(const AdapterAddress& adapter) const;
  // Returns the adapters of which there is one, be the adapter there or not. Minds no failure.
  [[nodiscard]] std::set<AdapterAddress> adapters() const;
  // Returns the file of an adapter's entry.
  [[nodiscard]] std::filesystem::path entryPath(const AdapterAddress& adapter) const;

  // Returns whether somebody has the right to write the adapter: then the writer of its entry
  // lives. Needs no right, and disturbs nobody. False, too, where it cannot be told (see
  // FileLockTable.h).
  [[nodiscard]] bool isClaimed(const AdapterAddress& adapter) const;

 private:
  [[nodiscard]] std::filesystem::path lockPath(const AdapterAddress& adapter) const;

  FileSystem& m_files;
  const std::filesystem::path m_folder;
  platform::Clock& m_clock;
};

}  // namespace ma

#endif  // ORVEX_MIDAPI_KERNEL_FLASHJOURNAL_H_
