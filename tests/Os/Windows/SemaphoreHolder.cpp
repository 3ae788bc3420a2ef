// Another program of the machine that programs adapter flash: takes the flash semaphore, sets the
// event that its first argument names, and gives the semaphore back when the second one is set.
// Exits with 0, or 1 where it could not have one of them.

#include <windows.h>

namespace {

constexpr DWORD kPatience = 30'000;  // milliseconds

bool waitFor(HANDLE object) {
  return WaitForSingleObject(object, kPatience) == WAIT_OBJECT_0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    return 1;
  }
  const HANDLE semaphore =
      OpenSemaphoreA(SEMAPHORE_ALL_ACCESS, FALSE, "Global\\RavlApplySemaphore");
  const HANDLE ready = OpenEventA(EVENT_ALL_ACCESS, FALSE, argv[1]);
  const HANDLE go = OpenEventA(EVENT_ALL_ACCESS, FALSE, argv[2]);
  if (ready == nullptr || go == nullptr || !waitFor(semaphore)) {
    return 1;
  }
  SetEvent(ready);
  const bool isTold = waitFor(go);
  const bool isGivenBack = ReleaseSemaphore(semaphore, 1, nullptr) != FALSE;
  return isTold && isGivenBack ? 0 : 1;
}
