#include <algorithm>
#include <chrono>
#include <limits>
#include <optional>
#include <sys/stat.h>

#include "Os/FileCalls.h"
#include "Os/Files.h"
#include "Os/Posix/FileReading.h"
#include "Utils/Exception.h"
#include "Utils/Log.h"
#include "Utils/RefusalTexts.h"

namespace os {
namespace {

constexpr utils::LogSource kLog{"Os/Posix/PosixFiles"};

using LogFunction = const char*;

// Logs why nothing is known of a file, where that is so.
void reportSilence(FileSilence silence, LogFunction function, const std::string& path) {
  switch (silence) {
    case FileSilence::None:
      break;
    case FileSilence::GivenUp:
      utils::logError(kLog, function,
                      "The file system of '%s' does not answer; what is there counts as missing "
                      "until it does",
                      path.c_str());
      break;
    case FileSilence::StillAway:
      utils::logError(kLog, function,
                      "The file system of '%s' has not answered an earlier question yet; what is "
                      "there counts as missing until it does",
                      path.c_str());
      break;
    case FileSilence::TooSlow:
      utils::logError(kLog, function,
                      "The file system of '%s' is too slow; the file was given up after %d seconds",
                      path.c_str(),
                      static_cast<int>(std::chrono::duration_cast<std::chrono::seconds>(
                                           fileCalls().wholePatience())
                                           .count()));
      break;
    case FileSilence::NoTurn:
      utils::logError(kLog, function,
                      "'%s' was not read, since too many files were read at the same time; try "
                      "again later",
                      path.c_str());
      break;
  }
}

FileStatus lookInTime(LogFunction function, const std::string& path) {
  const FileFindings* const ahead = findAhead(path);
  FileStatus look = ahead != nullptr ? ahead->look : readFileStatus(path);
  reportSilence(look.silence, function, path);
  return look;
}

// Returns what is there of the first bytes of a file.
FileBytes readInTime(const std::string& path, std::size_t count) {
  FileFindings* const ahead = findAhead(path);
  if (ahead == nullptr || !ahead->content) {
    return readFileBytes(path, count);
  }
  FileBytes content = *ahead->content;
  content.size = std::min(content.size, count);
  const std::optional<struct stat>& status = ahead->look.status;
  ahead->isTaken = status && content.size == static_cast<std::size_t>(status->st_size);
  return content;
}

}  // namespace

std::int32_t getFileSize(const std::string& path) {
  constexpr LogFunction kFunction = "os::getFileSize";
  const std::optional<struct stat> status = lookInTime(kFunction, path).status;
  if (status && S_ISDIR(status->st_mode)) {
    throw utils::Exception("The specyfied URI '%s' %s ", path.c_str(),
                           utils::refusal::kIsDirectory);
  }
  if (!status || !S_ISREG(status->st_mode) ||
      status->st_size > std::numeric_limits<std::int32_t>::max()) {
    throw utils::Exception("%s '%s'", utils::refusal::kCouldNotOpen, path.c_str());
  }
  const auto size = static_cast<std::int32_t>(status->st_size);
  utils::logDebug(kLog, kFunction, "Output size of Provider file: %d", size);
  return size;
}

FileContent readContent(const std::string& path, std::int32_t count) {
  constexpr LogFunction kFunction = "os::readFile";
  utils::logDebug(kLog, kFunction, "Reading %d bytes from file %s", count, path.c_str());
  const FileBytes read = readInTime(path, static_cast<std::size_t>(std::max(count, 0)));
  reportSilence(read.silence, kFunction, path);
  const auto total = static_cast<std::int32_t>(read.size);
  utils::logDebug(kLog, kFunction, "Read %d bytes", total);
  return {read.bytes, total};
}

std::int32_t readFile(const std::string& path, std::uint8_t* buffer, std::int32_t count) {
  const FileContent content = readContent(path, count);
  std::copy_n(content.bytes.get(), content.size, buffer);
  return content.size;
}

bool isInUse(const std::string& /*path*/) {
  return false;
}

bool isThisADir(const std::string& path) {
  utils::logDebug(kLog, "os::isThisADir", "Checking if the declared path %s points to a directory",
                  path.c_str());
  const FileStatus look = readFileStatus(path);
  // Who asks for the directories of the settings asks often, and reports a change by itself.
  if (look.silence == FileSilence::GivenUp) {
    reportSilence(look.silence, "os::isThisADir", path);
  }
  const std::optional<struct stat>& status = look.status;
  if (!status || !S_ISDIR(status->st_mode)) {
    return false;
  }
  utils::logDebug(kLog, "os::isThisADir", "It is a directory");
  return true;
}

}  // namespace os
