#include "Os/Windows/WindowsOSLocker.h"

#include <exception>
#include <string>
#include <windows.h>

#include "Os/Windows/HandleOwners.h"
#include "Os/Windows/SystemText.h"
#include "Os/Windows/WindowsSemaphoreWrapper.h"
#include "Utils/Exception.h"
#include "Utils/RefusalTexts.h"

namespace os {
namespace {

constexpr const char* kSemaphoreName = "Global\\RavlApplySemaphore";
constexpr std::int32_t kCount = 1;

utils::WindowsSemaphoreWrapper& semaphores() {
  return *utils::WindowsSemaphoreWrapper::getInstance();
}

// Opens or creates the semaphore with access for everyone: a DACL that is there and null.
platform::Handle createSemaphore() {
  SECURITY_DESCRIPTOR descriptor{};
  if (InitializeSecurityDescriptor(&descriptor, SECURITY_DESCRIPTOR_REVISION) == FALSE ||
      SetSecurityDescriptorDacl(&descriptor, TRUE, nullptr, FALSE) == FALSE) {
    throw LockFault(getSystemText(GetLastError()));
  }
  SECURITY_ATTRIBUTES attributes{sizeof(SECURITY_ATTRIBUTES), &descriptor, TRUE};
  return platform::Handle(semaphores().create(&attributes, kCount, kCount, kSemaphoreName));
}

// Returns those who may have it. One who has died is none of them, and yet has it for as long as
// others keep the semaphore open; this process is one that does. Returns none where there is no
// memory for the machine's handles.
std::string describeOwners(void* semaphore) noexcept {
  try {
    const HandleOwners owners = findOwners(semaphore);
    std::string text;
    for (const HandleOwner& owner : owners.known) {
      text += (text.empty() ? "" : "; ") + owner.toString();
    }
    if (!text.empty() && !owners.areAll) {
      text += std::string("; ") + utils::refusal::kMayBeOpenInOthers;
    }
    return text;
  } catch (const std::exception&) {
    return {};
  }
}

}  // namespace

const utils::LogSource OSLocker::kLog{"Os/Windows/WindowsOSLocker"};

OSLockerWindows::OSLockerWindows() : m_semaphore(createSemaphore()) {
  if (!OSLockerWindows::hasSemaphore()) {
    throw LockFault(getSystemText(GetLastError()));
  }
}

OSLockerWindows::~OSLockerWindows() {
  OSLockerWindows::UnLock();
}

bool OSLockerWindows::hasSemaphore() const {
  return m_semaphore.isOpen();
}

OSLocker::WaitResult OSLockerWindows::waitForSemaphore(std::uint32_t milliseconds) {
  // A semaphore does not tell who has it.
  noteWait(std::nullopt);
  const auto result = static_cast<WaitResult>(semaphores().wait(m_semaphore.get(), milliseconds));
  if (result == WaitResult::TimedOut) {
    noteCandidates(describeOwners(m_semaphore.get()));
  }
  return result;
}

std::optional<OSLocker::SystemError> OSLockerWindows::releaseSemaphore() {
  if (semaphores().release(m_semaphore.get(), 1, nullptr)) {
    return std::nullopt;
  }
  const DWORD error = GetLastError();
  return SystemError{static_cast<int>(error), getSystemText(error)};
}

std::unique_ptr<OSLocker> createOSLocker() {
  return std::make_unique<OSLockerWindows>();
}

}  // namespace os
