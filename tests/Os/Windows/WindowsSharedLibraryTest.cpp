// Where the system looks for libraries, and whom it asks about damaged ones.

#include <gmock/gmock.h>
#include <string>
#include <windows.h>

#include "Os/Environment.h"
#include "Os/SharedLibrary.h"
#include "Utils/Exception.h"
#include "tests/support/TempDirectory.h"
#include "tests/support/Throws.h"
#include "tests/support/Windows/ImportPatch.h"
#include "tests/support/Windows/Umlauts.h"

namespace {

namespace fs = std::filesystem;

using testing::HasSubstr;
using testing::Not;

// A call of the system.
std::wstring s_path;
DWORD s_flags = 0;
DWORD s_errorMode = 0;

HMODULE WINAPI loadLibrary(const wchar_t* path, HANDLE file, DWORD flags) {
  s_path = path;
  s_flags = flags;
  s_errorMode = GetThreadErrorMode();
  return LoadLibraryExW(path, file, flags);
}

class WindowsSharedLibrary : public testing::Test {
 protected:
  // A library that is there already, so that no start-up code runs.
  static fs::path libraryPath() {
    return os::getProgramPath().replace_filename("OrvexCimCore.dll");
  }
  // Returns what the loader says of a damaged library at that path.
  std::string faultOf(const fs::path& name) const {
    const fs::path path = m_directory.write(name, std::string("no library"));
    try {
      os::loadSharedLibrary(path);
    } catch (const utils::Exception& fault) {
      return fault.what();
    }
    return "loaded";
  }

  test::TempDirectory m_directory;
  test::ImportPatch m_call{"OrvexCimCore.dll", "LoadLibraryExW", &loadLibrary};
};

TEST_F(WindowsSharedLibrary, FindsWhatItNeedsBesideItselfTheProgramAndTheSystem) {
  os::loadSharedLibrary(libraryPath());

  EXPECT_EQ(s_flags, DWORD{LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | LOAD_LIBRARY_SEARCH_DEFAULT_DIRS});
}

TEST_F(WindowsSharedLibrary, MayBeNamedWithSlashes) {
  os::loadSharedLibrary(libraryPath().generic_wstring());

  EXPECT_EQ(s_path, libraryPath().make_preferred().native());
}

TEST_F(WindowsSharedLibrary, ThatIsDamagedAsksNobody) {
  const DWORD before = GetThreadErrorMode();
  EXPECT_THAT(faultOf("text.dll"), HasSubstr("Could not load the library"));

  EXPECT_EQ(s_errorMode, DWORD{SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX});
  EXPECT_EQ(GetThreadErrorMode(), before);
}

TEST_F(WindowsSharedLibrary, ThatIsDamagedIsNamedInTheCodePage) {
  test::demandWesternCodePage();
  EXPECT_THAT(faultOf(test::kUmlautPath), HasSubstr(std::string(test::kUmlautText) + "': "));
  EXPECT_THAT(faultOf(test::kUmlautPath), Not(HasSubstr("%1")));
}

}  // namespace
