// The agent's settings.
//
// Every getter reads the store again, so a change takes effect at the next use; a value that is
// missing or unusable is logged and the default, or the value read before, stands. What cannot be
// used of what is written there (a name that nobody knows, too) is an error record, once until it
// was mended. Any thread may call; none waits for another's reading, which a file system may hold
// up. The store is the configuration file on POSIX, the registry on Windows
// (which alone has keys):
//
//   name              store key  type    effect
//   Timeout           Quorvel    number  flash lock timeout in milliseconds; 0 is ignored
//   Namespace         Quorvel    text    taken when it begins with "root"
//   OEMCustomizeable  RAVL       number  bit 0x20 allows a forced change of image types
//   FWFilePath        Quorvel    text    directories of firmware files, separated by ';'
//   MaxImageSize      Quorvel    number  bytes of the largest firmware file that is read, from 1 to
//                                        2^31 - 1
//   Adapters          Quorvel    text    "kernel", "virtual" or both, parted by blanks: the
//   adapters
//                                        that count, where the platform has both
//   TrustDriverCheck  Quorvel    text    drivers parted by blanks whose own check of a firmware
//   file
//                                        is trusted where the file does not say for which devices
//                                        it is
//   FirmwareFolder    Quorvel    text    folder from which the kernel takes firmware, absolute

#ifndef ORVEX_OS_QUORVELCONFIG_H_
#define ORVEX_OS_QUORVELCONFIG_H_

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "Utils/Export.h"
#include "Utils/FlashSettings.h"
#include "Utils/Mutex.h"
#include "Utils/Singleton.h"

namespace utils {

class QuorvelConfig;
template <>
ORVEX_CORE_API Singleton<QuorvelConfig>*& Singleton<QuorvelConfig>::slot();

class ORVEX_CORE_API QuorvelConfig : public AutoSingleton<QuorvelConfig> {
 public:
  static constexpr const char* kTypeName = "utils::QuorvelConfig";
  static constexpr const char* kDefaultPath = "/etc/OrvexQuorvelProvider.conf";
  static constexpr const char* kDefaultNamespace = "root/DCIM/zolan";
  static constexpr std::uint32_t kDefaultMaxImageSize = std::uint32_t{64} << 20;  // bytes

  // `path` is the configuration file; Windows does not read it.
  explicit QuorvelConfig(const std::string& path = kDefaultPath);
  ~QuorvelConfig() override;

  // Returns what a person calls the place of the settings when the configuration file is `path`:
  // that file, or the registry key.
  [[nodiscard]] static std::string placeOf(const std::string& path);

  virtual std::string getNamespace();
  virtual std::uint32_t getTimeout();  // milliseconds
  virtual bool getDowngradeEnable();
  virtual std::vector<std::string> getFWFilePaths();
  // Reads the store.
  virtual void initialize();
  // Reads its one setting alone, without the records of initialize().
  virtual std::uint32_t getMaxImageSize();  // bytes
  // The same for its settings: what is missing or cannot be used is as in a FlashSettings that
  // nobody changed.
  virtual FlashSettings getFlashSettings();
  // Those of the current instance, as the flash library asks for them.
  [[nodiscard]] static FlashSettings currentFlashSettings();

  // Asks each directory of FWFilePath whether it is there, as initialize() does, and changes
  // nothing: one whose file system does not answer is known then (see Os/FileCalls.h), so who needs
  // a setting next does not wait for it.
  void askFirmwarePaths() const;

  // Returns why a firmware file of that many bytes is too large, with the limit and where it is
  // set; an empty text where it is not.
  [[nodiscard]] std::string findSizeExcess(std::uint64_t size);

 private:
  // What one reading of the store found; nothing for what is missing or cannot be used.
  struct Reading {
    std::optional<std::uint32_t> timeout;
    std::optional<std::string> nameSpace;
    std::optional<bool> isDowngradeEnabled;
    std::vector<std::string> firmwarePaths;
    std::set<std::string> problems;
  };

  [[nodiscard]] Reading readSettings() const;
  static void readFirmwarePaths(const std::string& text, const std::string& place,
                                Reading& reading);
  // Logs a problem of a setting that is read alone, unless it was the last one that was logged.
  static void reportOnce(const char* function, const std::string& problem, std::string& reported);
  // Puts a reading in force, unless one that began later is. `number` counts readings.
  void takeOver(std::uint64_t number, Reading reading);

  const std::string m_path;
  Mutex m_lock;
  std::uint64_t m_lastBegun ORVEX_GUARDED_BY(m_lock) = 0;
  std::uint64_t m_lastTaken ORVEX_GUARDED_BY(m_lock) = 0;
  std::set<std::string> m_reported ORVEX_GUARDED_BY(m_lock);
  std::string m_reportedMaxImageSize ORVEX_GUARDED_BY(m_lock);
  std::string m_reportedAdapters ORVEX_GUARDED_BY(m_lock);
  std::string m_reportedFirmwareFolder ORVEX_GUARDED_BY(m_lock);
  std::string m_reportedTrustDriverCheck ORVEX_GUARDED_BY(m_lock);
  std::string m_namespace ORVEX_GUARDED_BY(m_lock);
  std::uint32_t m_timeout ORVEX_GUARDED_BY(m_lock);
  bool m_isDowngradeEnabled ORVEX_GUARDED_BY(m_lock) = false;
  std::vector<std::string> m_firmwarePaths ORVEX_GUARDED_BY(m_lock);
};

}  // namespace utils

#endif  // ORVEX_OS_QUORVELCONFIG_H_
