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
    return m_real.identity(path);
  }
  std::vector<std::filesystem::path> entries(const std::filesystem::path& path,
                                             std::size_t max) override {
    return m_real.entries(path, max);
  }
  bool exists(const std::filesystem::path& path) override { return m_real.exists(path); }
  std::unique_ptr<ma::WritableFile> create(const std::filesystem::path& path) override {
    return std::make_unique<File>(*this, m_real.create(path));
  }
  void replace(const std::filesystem::path& from, const std::filesystem::path& to) override {
    beforeReplace();
    m_real.replace(from, to);
  }
  void createFolder(const std::filesystem::path& path) override { m_real.createFolder(path); }
  void createFolders(const std::filesystem::path& path) override { m_real.createFolders(path); }
  void syncFolder(const std::filesystem::path& path) override { m_real.syncFolder(path); }
  void remove(const std::filesystem::path& path) override { m_real.remove(path); }
  std::unique_ptr<ma::FileLock> lock(const std::filesystem::path& path) override {
    return m_real.lock(path);
  }
  void removeQuietly(const std::filesystem::path& path) noexcept override {
    m_real.removeQuietly(path);
  }

 private:
  class File final : public ma::WritableFile {
   public:
    File(WatchedFileSystem& owner, std::unique_ptr<ma::WritableFile> real)
        : m_owner(owner), m_real(std::move(real)) {}
    void append(ma::ConstBytes bytes) override {
      m_owner.beforeAppend(m_appended);
      m_owner.blocks.push_back(bytes.size());
      m_appended += bytes.size();
      m_real->append(bytes);
    }
    void sync() override { m_real->sync(); }
    void close() override { m_real->close(); }

   private:
    WatchedFileSystem& m_owner;
    std::unique_ptr<ma::WritableFile> m_real;
    std::size_t m_appended = 0;
  };

  ma::FileSystem& m_real = ma::nativeFileSystem();
};

}  // namespace test

#endif  // ORVEX_TESTS_MIDAPI_WATCHEDFILESYSTEM_H_
