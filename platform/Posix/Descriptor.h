// The owner of a file descriptor: closes it when it goes.

#ifndef ORVEX_PLATFORM_POSIX_DESCRIPTOR_H_
#define ORVEX_PLATFORM_POSIX_DESCRIPTOR_H_

#include <unistd.h>
#include <utility>

namespace platform {

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
      ::close(m_number);
    }
  }

  bool isOpen() const { return m_number >= 0; }
  int get() const { return m_number; }

  // Closes the descriptor now, for an owner that tells of a failure. Returns false, with errno,
  // when the system reports one; the number is free again all the same.
  [[nodiscard]] bool close() { return ::close(std::exchange(m_number, -1)) == 0; }

 private:
  int m_number = -1;
};

}  // namespace platform

#endif  // ORVEX_PLATFORM_POSIX_DESCRIPTOR_H_
