// System calls of a loaded library that a test answers: the entry in the library's import table
// leads to a function of the test while a patch lives. One thread at a time makes patches.

#ifndef ORVEX_TESTS_SUPPORT_WINDOWS_IMPORTPATCH_H_
#define ORVEX_TESTS_SUPPORT_WINDOWS_IMPORTPATCH_H_

#include <string>

namespace test {

class ImportPatch {
 public:
  // `replacement` is a function of the signature of the system's `name`, which `library` imports.
  // Throws std::runtime_error when it does not.
  template <class Function>
  ImportPatch(const std::string& library, const std::string& name, Function* replacement)
      : ImportPatch(library, name, reinterpret_cast<void*>(replacement)) {}
  ImportPatch(const std::string& library, const std::string& name, void* replacement);
  ImportPatch(const ImportPatch&) = delete;
  ImportPatch& operator=(const ImportPatch&) = delete;
  ~ImportPatch();

 private:
  void** m_entry;
  void* m_original;
};

}  // namespace test

#endif  // ORVEX_TESTS_SUPPORT_WINDOWS_IMPORTPATCH_H_
