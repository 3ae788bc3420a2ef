// The owner of a file descriptor: closes it when it goes.

#ifndef ORVEX_OS_POSIX_DESCRIPTOR_H_
#define ORVEX_OS_POSIX_DESCRIPTOR_H_

#include <unistd.h>
#include <utility>

namespace os {

class Descriptor {
 public:
  Descriptor() = default;
  // Takes the descriptor over; a negative number is none.
  explicit Descriptor(int number) : m_number(number) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  Descriptor(Descriptor&& other) noexcept : m_number(std::exchange(other.m_number, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(m_number, other.m_number);
    return *this;
  }
  ~Descriptor() {
    if (isOpen()) {
      close(m_number);
    }
  }

  bool isOpen() const { return m_number >= 0; }
  int get() const { return m_number; }

 private:
  int m_number = -1;
};

}  // namespace os

#endif  // ORVEX_OS_POSIX_DESCRIPTOR_H_
