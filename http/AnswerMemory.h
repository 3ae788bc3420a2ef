// The memory of the answers under way, which clients that read slowly, or never, hold for long:
// bounds what they hold together. Private to this folder. Any thread may call.

#ifndef ORVEX_HTTP_ANSWERMEMORY_H_
#define ORVEX_HTTP_ANSWERMEMORY_H_

#include <atomic>
#include <cstddef>
#include <optional>
#include <utility>

namespace http {

class AnswerMemory {
 public:
  // Answers up to here are not counted: what they hold is bounded by the number of connections, and
  // who asks for little is served beside those who have asked for much.
  static constexpr std::size_t kSmallAnswer = 64 * 1024;

  // What one answer holds, until the object's end, which the memory outlives.
  class Share {
   public:
    Share(AnswerMemory& memory, std::size_t bytes) : m_memory(&memory), m_bytes(bytes) {}
    Share(Share&& other) noexcept
        : m_memory(other.m_memory), m_bytes(std::exchange(other.m_bytes, 0)) {}
    Share(const Share&) = delete;
    Share& operator=(const Share&) = delete;
    Share& operator=(Share&&) = delete;
    ~Share() { m_memory->m_held -= m_bytes; }

    [[nodiscard]] bool isLarge() const { return m_bytes > 0; }

   private:
    AnswerMemory* m_memory;
    std::size_t m_bytes;
  };

  explicit AnswerMemory(std::size_t most) : m_most(most) {}
  AnswerMemory(const AnswerMemory&) = delete;
  AnswerMemory& operator=(const AnswerMemory&) = delete;

  // Returns null where the others leave no room for so many bytes. An answer that is larger than
  // all that there is room for gets its share while there is no other.
  [[nodiscard]] std::optional<Share> take(std::size_t bytes) {
    if (bytes <= kSmallAnswer) {
      return Share(*this, 0);
    }
    std::size_t held = m_held.load();
    do {
      if (held > 0 && (bytes > m_most || held > m_most - bytes)) {
        return std::nullopt;
      }
    } while (!m_held.compare_exchange_weak(held, held + bytes));
    return Share(*this, bytes);
  }

  [[nodiscard]] std::size_t most() const { return m_most; }
  [[nodiscard]] std::size_t held() const { return m_held; }

 private:
  const std::size_t m_most;
  std::atomic<std::size_t> m_held{0};
};

}  // namespace http

#endif  // ORVEX_HTTP_ANSWERMEMORY_H_
