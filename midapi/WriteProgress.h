// The progress of flash writes, shared by the thread that writes and those that watch.

#ifndef ORVEX_MIDAPI_WRITEPROGRESS_H_
#define ORVEX_MIDAPI_WRITEPROGRESS_H_

#include <atomic>
#include <cstdint>
#include <map>
#include <string>

#include "midapi/AdapterId.h"
#include "platform/Mutex.h"

namespace ma {

// The progress of the running or last write of one adapter, in percent. Any thread may read it; one
// write at a time reports to it: start(), advance() any number of times, complete() on success.
class WriteProgress {
 public:
  static constexpr std::uint32_t kComplete = 100;

  void start();

  // Reports that `done` of `total` units are written. Never makes the progress fall, and never
  // completes it.
  void advance(std::uint64_t done, std::uint64_t total);

  void complete() { m_percent.store(kComplete); }

  [[nodiscard]] std::uint32_t percent() const { return m_percent.load(); }

  // What a person should know of a write that succeeds, in one line; empty from the start on.
  void remark(std::string text);
  [[nodiscard]] std::string remark() const;

 private:
  std::atomic<std::uint32_t> m_percent{0};
  mutable platform::Mutex m_mutex;
  std::string m_remark ORVEX_GUARDED_BY(m_mutex);
};

// The progress of every adapter that was written to in this process. Any thread may call.
class WriteProgressTable {
 public:
  // Returns the adapter's progress for a write, started; valid as long as the table.
  [[nodiscard]] WriteProgress& start(const AdapterAddress& adapter);

  // Returns the adapter's progress in percent; 0 when nothing was written to it.
  [[nodiscard]] std::uint32_t percent(const AdapterAddress& adapter) const;
  // Returns its remark; empty, too, when nothing was written to it.
  [[nodiscard]] std::string remark(const AdapterAddress& adapter) const;

 private:
  mutable platform::Mutex m_mutex;
  // Its elements never move.
  std::map<AdapterAddress, WriteProgress> m_progress ORVEX_GUARDED_BY(m_mutex);
};

}  // namespace ma

#endif  // ORVEX_MIDAPI_WRITEPROGRESS_H_
