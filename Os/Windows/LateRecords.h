// Records for the event log that are made where it must not be called.
//
// The loader of the system holds a lock while it loads or unloads a library and runs what is in it
// for that. The event log is a service, and who calls one with that lock may wait for ever. Such
// records are kept, and written by the next call that may: that of a later record, of whoever has
// loaded a library (os::loadSharedLibrary), or, where a module keeps this library loaded for it
// (LateRecordWriter), of a thread of its own. Those that are left when this library is unloaded go
// to the debugger; those of the end of a process, when no thread is left to write, are lost. Any
// thread may call.

#ifndef ORVEX_OS_WINDOWS_LATERECORDS_H_
#define ORVEX_OS_WINDOWS_LATERECORDS_H_

#include <string>
#include <vector>
#include <windows.h>

#include "Utils/Export.h"

namespace os {

// Returns whether the calling thread has the loader's lock.
[[nodiscard]] ORVEX_CORE_API bool isInLoader();

// Keeps a line. One for which there is no memory is lost, as are those after the hundredth; the
// debugger is told.
void keepRecord(const std::string& line) noexcept;

// Returns the lines that were kept, in their order, and keeps them no more.
[[nodiscard]] std::vector<std::string> takeRecords() noexcept;

// Writes what is kept, where the calling thread may.
ORVEX_CORE_API void writeRecordsNow() noexcept;

// Hands what is kept to the debugger. For the end of this library, after which nobody can write it.
void abandonRecords() noexcept;

// Has a record that is kept start a thread, which writes it as soon as the loader has let go of its
// lock; nobody waits for that thread. Returns this library, which is kept loaded meanwhile, for
// endWriting(); null where the system refuses that, and then records wait for another writer.
[[nodiscard]] ORVEX_CORE_API HMODULE beginWriting() noexcept;

// Starts no more threads for the caller, who may let the library go then. Returns false where he
// must not: at the end of the process, for it may be used after its own.
[[nodiscard]] ORVEX_CORE_API bool endWriting() noexcept;

// Does this for its life. For modules that need this library, as their first static object: then it
// is so for all that they log while they are loaded and unloaded, whether that succeeds or not, and
// whoever loads them.
class LateRecordWriter {
 public:
  LateRecordWriter() noexcept : m_library(beginWriting()) {}
  LateRecordWriter(const LateRecordWriter&) = delete;
  LateRecordWriter& operator=(const LateRecordWriter&) = delete;
  // Code of the module, not of the library, lets that go: it may be gone at once. A thread that
  // writes keeps it for itself.
  ~LateRecordWriter() {
    if (m_library != nullptr && endWriting()) {
      static_cast<void>(FreeLibrary(m_library));  // it fails for what is no library alone
    }
  }

 private:
  HMODULE m_library;
};

}  // namespace os

#endif  // ORVEX_OS_WINDOWS_LATERECORDS_H_
