// The system calls on a named Windows semaphore, so that they can be replaced one and all.

#ifndef ORVEX_OS_WINDOWS_WINDOWSSEMAPHOREWRAPPER_H_
#define ORVEX_OS_WINDOWS_WINDOWSSEMAPHOREWRAPPER_H_

#include <cstdint>

#include "Utils/Export.h"
#include "Utils/Singleton.h"

namespace utils {

class WindowsSemaphoreWrapper;
template <>
ORVEX_CORE_API Singleton<WindowsSemaphoreWrapper>*& Singleton<WindowsSemaphoreWrapper>::slot();

class ORVEX_CORE_API WindowsSemaphoreWrapper : public AutoSingleton<WindowsSemaphoreWrapper> {
 public:
  static constexpr const char* kTypeName = "utils::WindowsSemaphoreWrapper";

  using Handle = void*;  // HANDLE

  ~WindowsSemaphoreWrapper() override;

  // CreateSemaphoreA. `securityAttributes` is a SECURITY_ATTRIBUTES. Returns null on failure.
  [[nodiscard]] virtual Handle create(void* securityAttributes, std::int32_t initialCount,
                                      std::int32_t maximumCount, const char* name);
  // WaitForSingleObject. Returns 0 signalled, 258 timed out, anything else failed.
  [[nodiscard]] virtual std::uint32_t wait(Handle semaphore, std::uint32_t milliseconds);
  // ReleaseSemaphore. `previousCount` may be null.
  [[nodiscard]] virtual bool release(Handle semaphore, std::int32_t count,
                                     std::int32_t* previousCount);
};

}  // namespace utils

#endif  // ORVEX_OS_WINDOWS_WINDOWSSEMAPHOREWRAPPER_H_
