// The owner of a kernel handle: closes it when it goes.

#ifndef ORVEX_PLATFORM_WINDOWS_HANDLE_H_
#define ORVEX_PLATFORM_WINDOWS_HANDLE_H_

#include <utility>

namespace platform {

class Handle {
 public:
  Handle() = default;
  // Takes the HANDLE over; null is none.
  explicit Handle(void* handle) : m_handle(handle) {}
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;
  Handle(Handle&& other) noexcept : m_handle(std::exchange(other.m_handle, nullptr)) {}
  Handle& operator=(Handle&& other) noexcept {
    std::swap(m_handle, other.m_handle);
    return *this;
  }
  ~Handle() {
    if (isOpen()) {
      static_cast<void>(close());  // who has to know of a failure closes it himself
    }
  }

  bool isOpen() const { return m_handle != nullptr; }
  void* get() const { return m_handle; }

  // Closes the handle now, for an owner that tells of a failure. Returns false, with the system's
  // last error, when the system says that it could not.
  [[nodiscard]] bool close();

 private:
  void* m_handle = nullptr;
};

}  // namespace platform

#endif  // ORVEX_PLATFORM_WINDOWS_HANDLE_H_
