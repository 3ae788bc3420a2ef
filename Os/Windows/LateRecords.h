// Records for the event log that are made where it must not be called.
//
// The loader of the system holds a lock while it loads or unloads a library and runs what is in it
// for that. The event log is a service, and who calls one with that lock may wait for ever. Such
// records are kept, and written by the next call that may: that of a later record, of whoever has
// loaded a library (os::loadSharedLibrary), or of a thread of its own. Those of the end of a
// process, which the loader sees to as well, are lost. Any thread may call.

#ifndef ORVEX_OS_WINDOWS_LATERECORDS_H_
#define ORVEX_OS_WINDOWS_LATERECORDS_H_

#include <string>
#include <vector>

#include "Utils/Export.h"

namespace os {

// Returns whether the calling thread has the loader's lock.
[[nodiscard]] ORVEX_CORE_API bool isInLoader();

// Keeps a line. One for which there is no memory is lost, as are those after the hundredth.
void keepRecord(const std::string& line) noexcept;

// Returns the lines that were kept, in their order, and keeps them no more.
[[nodiscard]] std::vector<std::string> takeRecords();

// Has a thread of its own write what is kept, once the loader has let go of its lock; does nothing
// where there is nothing. For who is in the loader and knows that this library stays: the load hook
// of a module that needs it.
ORVEX_CORE_API void writeRecordsSoon() noexcept;

// Writes what is kept, where the calling thread may.
ORVEX_CORE_API void writeRecordsNow() noexcept;

}  // namespace os

#endif  // ORVEX_OS_WINDOWS_LATERECORDS_H_
