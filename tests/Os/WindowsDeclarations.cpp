// Has every platform's compiler read the declarations of the classes that only Windows defines.

#include "Os/Windows/WindowsOSLocker.h"
#include "Os/Windows/WindowsRegistry.h"
#include "Os/Windows/WindowsSemaphoreWrapper.h"
