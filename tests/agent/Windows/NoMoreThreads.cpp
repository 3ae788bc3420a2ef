#include "tests/agent/NoMoreThreads.h"

#include <windows.h>

#include "tests/support/Windows/ImportPatch.h"

namespace test {
namespace {

HANDLE WINAPI refuseThread(SECURITY_ATTRIBUTES*, SIZE_T, LPTHREAD_START_ROUTINE, void*, DWORD,
                           DWORD*) {
  SetLastError(ERROR_NOT_ENOUGH_MEMORY);
  return nullptr;
}

}  // namespace

struct NoMoreThreads::Refusal {
  ImportPatch patch{"OrvexCimCore.dll", "CreateThread", &refuseThread};
};

NoMoreThreads::NoMoreThreads() : m_refusal(std::make_unique<Refusal>()) {}

NoMoreThreads::~NoMoreThreads() = default;

}  // namespace test
