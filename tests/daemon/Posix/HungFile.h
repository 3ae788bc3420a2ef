// A file whose bytes nobody gets from when a test says so, in a file system that goes on to answer
// all else, where the machine lets a test mount one.

#ifndef ORVEX_TESTS_DAEMON_POSIX_HUNGFILE_H_
#define ORVEX_TESTS_DAEMON_POSIX_HUNGFILE_H_

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>
#include <thread>
#include <vector>

#include "platform/Posix/Descriptor.h"

namespace test {

// Stands over a directory while one lives, which so has this file alone. Whoever waits then gets an
// error.
class HungFile {
 public:
  HungFile(std::string directory, std::string name, std::vector<std::uint8_t> content);
  HungFile(const HungFile&) = delete;
  HungFile& operator=(const HungFile&) = delete;
  ~HungFile();

  // Returns false where the machine has no such file systems, or not for this user.
  [[nodiscard]] bool isMounted() const { return m_isMounted; }

  // From now on whoever reads waits.
  void hang() { m_isHung = true; }
  // From now on nobody does: who has been waiting is answered.
  void resume() { m_isHung = false; }
  // Returns how many readings wait, or were given up.
  [[nodiscard]] unsigned countHung() const { return m_hung; }

 private:
  struct Request;
  struct Reading;

  void serve();
  void answer(const Request& request);
  void answerLookup(const Request& request);
  void answerReading(const Reading& reading) const;
  void answerWaiting();
  void listDirectory(const Request& request);
  void reply(const Request& request, const void* body, std::size_t size, int error = 0) const;
  void reply(std::uint64_t request, const void* body, std::size_t size, int error) const;
  template <class Body>
  void reply(const Request& request, const Body& body) const {
    reply(request, &body, sizeof body);
  }

  const std::string m_directory;
  const std::string m_name;
  const std::vector<std::uint8_t> m_content;
  platform::Descriptor m_device;
  bool m_isMounted = false;
  std::atomic<bool> m_isHung{false};
  std::atomic<unsigned> m_hung{0};
  std::atomic<bool> m_isOver{false};
  std::vector<Reading> m_waiting;  // the server's
  std::thread m_server;
};

}  // namespace test

#endif  // ORVEX_TESTS_DAEMON_POSIX_HUNGFILE_H_
