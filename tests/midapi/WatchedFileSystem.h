// The machine's file system, counted and failing where a test wants it to.

#ifndef ORVEX_TESTS_MIDAPI_WATCHEDFILESYSTEM_H_
#define ORVEX_TESTS_MIDAPI_WATCHEDFILESYSTEM_H_

#include <cstddef>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "midapi/FileSystem.h"

namespace test {

// Passes everything on to the machine's file system. Set up and read by one thread, or while no
// other uses it.
class WatchedFileSystem final : public ma::FileSystem {
 public:
  std::size_t reads = 0;
  std::size_t listings = 0;
  // The sizes of what was appended to files, in order.
  std::vector<std::size_t> blocks;
  // Called before each append with the number of bytes appended so far, and before each replace.
  std::function<void(std::size_t)> beforeAppend = [](std::size_t) {};
  std::function<void()> beforeReplace = [] {};
  // Changes what a read returns, where set.
  std::function<void(const std::filesystem::path&, ma::FileBytes&)> afterRead =
      [](const std::filesystem::path&, ma::FileBytes&) {};

  // Called before and after each step that changes something, with its name ("create", "append",
  // "sync", "close", "replace", "syncFolder", "remove", "lock") and what it is done to. What they
  // throw is the step's failure.
  using StepHook = std::function<void(const std::string&, const std::filesystem::path&)>;
  StepHook beforeStep = [](const std::string&, const std::filesystem::path&) {};
  StepHook afterStep = [](const std::string&, const std::filesystem::path&) {};
  // Nothing can be told of what stands at any path.
  bool isInDoubt = false;
  // Nothing is tidied up any more: the process is as good as dead.
  bool isDead = false;

  // For the hooks: fails as a full disk does.
  [[noreturn]] static void failAsFullDisk(const std::string& operation,
                                          const std::filesystem::path& path) {
    throw ma::FileFault(operation, path, std::make_error_code(std::errc::no_space_on_device));
  }

  // ma::FileSystem
  ma::FileBytes read(const std::filesystem::path& path, std::size_t maxSize) override {
    ++reads;
    ma::FileBytes content = m_real.read(path, maxSize);
    afterRead(path, content);
    return content;
  }
  ma::Folders folders(const std::filesystem::path& path) override {
    ++listings;
    return m_real.folders(path);
  }
  std::optional<ma::FileIdentity> identity(
      const std::filesystem::path& path) const noexcept override {
    return isInDoubt ? std::nullopt : m_real.identity(path);
  }
  std::vector<std::filesystem::path> entries(const std::filesystem::path& path,
                                             std::size_t max) override {
    return m_real.entries(path, max);
  }
  bool exists(const std::filesystem::path& path) override { return m_real.exists(path); }
  std::unique_ptr<ma::WritableFile> create(const std::filesystem::path& path) override {
    beforeStep("create", path);
    auto file = std::make_unique<File>(*this, path, m_real.create(path));
    afterStep("create", path);
    return file;
  }
  void replace(const std::filesystem::path& from, const std::filesystem::path& to) override {
    beforeReplace();
    step("replace", to, [&] { m_real.replace(from, to); });
  }
  void createFolder(const std::filesystem::path& path) override { m_real.createFolder(path); }
  void createFolders(const std::filesystem::path& path) override { m_real.createFolders(path); }
  void syncFolder(const std::filesystem::path& path) override {
    step("syncFolder", path, [&] { m_real.syncFolder(path); });
  }
  void remove(const std::filesystem::path& path) override {
    step("remove", path, [&] { m_real.remove(path); });
  }
  std::unique_ptr<ma::FileLock> lock(const std::filesystem::path& path) override {
    beforeStep("lock", path);
    return m_real.lock(path);
  }
  void removeQuietly(const std::filesystem::path& path) noexcept override {
    if (!isDead) {
      m_real.removeQuietly(path);
    }
  }

 private:
  class File final : public ma::WritableFile {
   public:
    File(WatchedFileSystem& owner, std::filesystem::path path,
         std::unique_ptr<ma::WritableFile> real)
        : m_owner(owner), m_path(std::move(path)), m_real(std::move(real)) {}
    void append(ma::ConstBytes bytes) override {
      m_owner.beforeAppend(m_appended);
      m_owner.blocks.push_back(bytes.size());
      m_appended += bytes.size();
      m_owner.step("append", m_path, [&] { m_real->append(bytes); });
    }
    void sync() override {
      m_owner.step("sync", m_path, [&] { m_real->sync(); });
    }
    void close() override {
      m_owner.step("close", m_path, [&] { m_real->close(); });
    }

   private:
    WatchedFileSystem& m_owner;
    std::filesystem::path m_path;
    std::unique_ptr<ma::WritableFile> m_real;
    std::size_t m_appended = 0;
  };

  template <class Step>
  void step(const std::string& name, const std::filesystem::path& path, Step take) {
    beforeStep(name, path);
    take();
    afterStep(name, path);
  }

  ma::FileSystem& m_real = ma::nativeFileSystem();
};

}  // namespace test

#endif  // ORVEX_TESTS_MIDAPI_WATCHEDFILESYSTEM_H_
