// A folder on a disk, and what is left of it where the power goes.
//
// The disk keeps what was synchronised: the content of a file as of its last fsync, and a change of
// a name as of the next fsync of the folder. What was not, it may keep or lose, name by name and
// file by file; a rename alone is never half done. A model: it knows what the system calls were,
// and does nothing itself. One thread.

#ifndef ORVEX_TESTS_TORTURE_DISK_H_
#define ORVEX_TESTS_TORTURE_DISK_H_

#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "tests/torture/SystemCalls.h"

namespace test {

// What is lost of all that was not synchronised.
enum class Loss {
  All,
  Contents,  // names reach the disk at once: the file is there, and nothing in it
  Some,      // by chance
};

class Disk {
 public:
  using Files = std::map<std::string, std::string>;  // contents by path
  using Random = std::mt19937_64;

  // All of the files have reached the disk.
  explicit Disk(const Files& files);

  void apply(const Change& change);

  // Returns the files that are found when the power is back.
  [[nodiscard]] Files filesAfter(Loss loss, Random& random) const;

 private:
  struct File {
    std::string content;
    std::string kept;  // what the disk has of it for sure
  };
  using Names = std::map<std::string, std::shared_ptr<File>>;

  [[nodiscard]] static Names namesOf(const Files& files);
  // Makes a change of names, of that file.
  static void apply(const Change& change, const std::shared_ptr<File>& file, Names& names);
  [[nodiscard]] static std::string contentAfter(const File& file, Loss loss, Random& random);

  struct NameChange {
    Change change;
    std::shared_ptr<File> file;
  };

  Names m_names;
  Names m_keptNames;
  std::vector<NameChange> m_nameChanges;  // since m_keptNames
};

}  // namespace test

#endif  // ORVEX_TESTS_TORTURE_DISK_H_
