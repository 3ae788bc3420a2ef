#include "Os/Windows/WindowsOSLocker.h"

#include <windows.h>

#include "Os/Windows/SystemText.h"
#include "Os/Windows/WindowsSemaphoreWrapper.h"
#include "Utils/Exception.h"

namespace os {
namespace {

constexpr const char* kSemaphoreName = "Global\\RavlApplySemaphore";
constexpr std::int32_t kCount = 1;

utils::WindowsSemaphoreWrapper& semaphores() {
  return *utils::WindowsSemaphoreWrapper::getInstance();
}

// Opens or creates the semaphore with access for everyone: a DACL that is there and null.
HANDLE createSemaphore() {
  SECURITY_DESCRIPTOR descriptor{};
  InitializeSecurityDescriptor(&descriptor, SECURITY_DESCRIPTOR_REVISION);
  SetSecurityDescriptorDacl(&descriptor, TRUE, nullptr, FALSE);
  SECURITY_ATTRIBUTES attributes{sizeof(SECURITY_ATTRIBUTES), &descriptor, TRUE};
  return semaphores().create(&attributes, kCount, kCount, kSemaphoreName);
}

}  // namespace

const utils::LogSource OSLocker::kLog{"Os/Windows/WindowsOSLocker"};

OSLockerWindows::OSLockerWindows() : m_semaphore(createSemaphore()) {
  if (!OSLockerWindows::hasSemaphore()) {
    throw utils::Exception("Could not create synchronisation sempahore");
  }
}

OSLockerWindows::~OSLockerWindows() {
  OSLockerWindows::UnLock();
  CloseHandle(m_semaphore);
}

bool OSLockerWindows::hasSemaphore() const {
  return m_semaphore != nullptr;
}

OSLocker::WaitResult OSLockerWindows::waitForSemaphore(std::uint32_t milliseconds) {
  return static_cast<WaitResult>(semaphores().wait(m_semaphore, milliseconds));
}

std::optional<OSLocker::SystemError> OSLockerWindows::releaseSemaphore() {
  if (semaphores().release(m_semaphore, 1, nullptr)) {
    return std::nullopt;
  }
  const DWORD error = GetLastError();
  return SystemError{static_cast<int>(error), getSystemText(error)};
}

std::unique_ptr<OSLocker> createOSLocker() {
  return std::make_unique<OSLockerWindows>();
}

}  // namespace os
