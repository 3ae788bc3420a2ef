#include "Os/Windows/WindowsSemaphoreWrapper.h"

#include <windows.h>

namespace utils {

template <>
Singleton<WindowsSemaphoreWrapper>*& Singleton<WindowsSemaphoreWrapper>::slot() {
  static Singleton* current = nullptr;
  return current;
}

WindowsSemaphoreWrapper::~WindowsSemaphoreWrapper() = default;

WindowsSemaphoreWrapper::Handle WindowsSemaphoreWrapper::create(void* securityAttributes,
                                                                std::int32_t initialCount,
                                                                std::int32_t maximumCount,
                                                                const char* name) {
  return CreateSemaphoreA(static_cast<SECURITY_ATTRIBUTES*>(securityAttributes), initialCount,
                          maximumCount, name);
}

std::uint32_t WindowsSemaphoreWrapper::wait(Handle semaphore, std::uint32_t milliseconds) {
  return WaitForSingleObject(semaphore, milliseconds);
}

bool WindowsSemaphoreWrapper::release(Handle semaphore, std::int32_t count,
                                      std::int32_t* previousCount) {
  LONG previous = 0;
  const bool isReleased = ReleaseSemaphore(semaphore, count, &previous) != FALSE;
  if (isReleased && previousCount != nullptr) {
    *previousCount = previous;
  }
  return isReleased;
}

}  // namespace utils
