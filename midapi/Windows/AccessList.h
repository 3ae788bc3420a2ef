// Who may do what with files and folders.

#ifndef ORVEX_MIDAPI_WINDOWS_ACCESSLIST_H_
#define ORVEX_MIDAPI_WINDOWS_ACCESSLIST_H_

#include <cstdint>
#include <filesystem>
#include <memory>

namespace ma {

// The attributes of a folder with an access list of its own, whatever the list of the folder round
// it: the system, the administrators and who makes it may do anything, the other users may read.
// What is made in it has the same list. (In %ProgramData% anybody may make files.)
class PrivateFolderAttributes {
 public:
  // Throws std::system_error.
  PrivateFolderAttributes();
  PrivateFolderAttributes(const PrivateFolderAttributes&) = delete;
  PrivateFolderAttributes& operator=(const PrivateFolderAttributes&) = delete;
  ~PrivateFolderAttributes();

  // Returns the SECURITY_ATTRIBUTES, which live as long as this object.
  [[nodiscard]] void* get() const;

 private:
  struct State;

  std::unique_ptr<State> m_state;
};

// Gives one file or folder the access list of another, with what it has inherited. Nothing happens
// where the other one is missing, or the file system keeps no lists. Returns the system's error, 0
// for none.
[[nodiscard]] std::uint32_t copyAccessList(const std::filesystem::path& from,
                                           const std::filesystem::path& to);

}  // namespace ma

#endif  // ORVEX_MIDAPI_WINDOWS_ACCESSLIST_H_
