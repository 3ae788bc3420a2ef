// The flash library, played by a test: it answers what the test says and notes what it was asked.
//
// The functions of midapi/MidApi.h speak to the one FakeMidApi that lives; without one they abort.
// Answers are set before a job's thread runs. The notes may be read at any time.

#ifndef ORVEX_TESTS_AGENT_FAKEMIDAPI_H_
#define ORVEX_TESTS_AGENT_FAKEMIDAPI_H_

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "midapi/MidApi.h"
#include "platform/Mutex.h"

namespace test {

class ORVEX_MIDAPI_API FakeMidApi {
 public:
  // What an operation with a code and a text answers.
  struct Answer {
    bool isDone = true;
    std::uint32_t code = 0;
    std::string text;
  };

  FakeMidApi();
  FakeMidApi(const FakeMidApi&) = delete;
  FakeMidApi& operator=(const FakeMidApi&) = delete;
  ~FakeMidApi();

  // Returns the one that lives.
  [[nodiscard]] static FakeMidApi& current();

  utils::StringArray adapters{"0000:03:00.0", "0000:03:00.1", "0000:04:00.0"};
  // Those that cannot be updated.
  std::set<std::string> fixedAdapters;
  std::vector<utils::FirmwareVersionInfo> installed;
  ma::PrepareStatus prepareStatus = ma::PrepareStatus::Ok;
  // Why a file is refused.
  std::string reason;
  // What preparation makes of a file; nothing: the file as it is.
  std::optional<std::vector<std::uint8_t>> prepared;
  Answer writeAnswer;
  Answer capabilityWordAnswer;
  std::string remark;  // of a write that succeeded
  bool setBootTypeAnswer = true;
  std::string bootTypeReason;  // why not, with the port behind it
  std::atomic<std::uint32_t> progress{0};
  // Called in the middle of a preparation; what it throws leaves that.
  std::function<void()> onPrepare;
  // Called when the progress is asked for.
  std::function<void()> onProgress;
  // Called in the middle of a write; what it throws leaves the write.
  std::function<void()> onWrite;

  // Writes stay in the library from now on.
  void holdWrites();
  // Returns whether a write came to be held, within a deadline.
  [[nodiscard]] bool awaitHeldWrite();
  // Lets held writes return.
  void releaseWrites();

  // Returns the calls that change something or ask for something, oldest first, without the
  // queries of progress: "setBootType 0000:03:00.0 0".
  [[nodiscard]] std::vector<std::string> calls() const;
  // Returns when updates began and ended: "begin 0000:03:00.0 after 0 calls; end ...; ".
  [[nodiscard]] std::string updates() const;
  void note(const std::string& call);
  void noteUpdate(const std::string& event);
  void passWrite();

 private:
  mutable platform::Mutex m_mutex;
  std::condition_variable_any m_changed;
  std::vector<std::string> m_calls ORVEX_GUARDED_BY(m_mutex);
  std::string m_updates ORVEX_GUARDED_BY(m_mutex);
  bool m_isHolding ORVEX_GUARDED_BY(m_mutex) = false;
  int m_heldWrites ORVEX_GUARDED_BY(m_mutex) = 0;
};

// Returns the bytes of a text, for images whose content does not matter.
[[nodiscard]] ORVEX_MIDAPI_API std::vector<std::uint8_t> bytesOf(const std::string& text);

}  // namespace test

#endif  // ORVEX_TESTS_AGENT_FAKEMIDAPI_H_
