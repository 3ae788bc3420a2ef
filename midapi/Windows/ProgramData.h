// %ProgramData%: where the data of services stand, and where anybody may make folders, also one by
// the name that ours is to have.

#ifndef ORVEX_MIDAPI_WINDOWS_PROGRAMDATA_H_
#define ORVEX_MIDAPI_WINDOWS_PROGRAMDATA_H_

#include <filesystem>
#include <string>

namespace ma {

[[nodiscard]] std::filesystem::path programData();

// Returns whether an absolute path leads into it, however it is spelled: with a short name, through
// a link or by a share, too. What does not exist yet is where it would be made.
[[nodiscard]] bool isInProgramData(const std::filesystem::path& path);

// Returns why nothing may be made or changed in a folder of %ProgramData%, and what to do about it:
// that folder, or one on the way to it, is a link, or belongs to somebody else than the system, the
// administrators and the user of this process, who could put another in its place at any time.
// Returns an empty text where there is no objection; there is none to a folder that is missing, or
// stands elsewhere. `path` is absolute. Throws std::system_error.
[[nodiscard]] std::string objectionTo(const std::filesystem::path& path);

}  // namespace ma

#endif  // ORVEX_MIDAPI_WINDOWS_PROGRAMDATA_H_
