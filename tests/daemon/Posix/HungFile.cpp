#include "tests/daemon/Posix/HungFile.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <linux/fuse.h>
#include <memory>
#include <poll.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace test {
namespace {

constexpr std::uint64_t kRoot = FUSE_ROOT_ID;
constexpr std::uint64_t kFile = 2;
constexpr std::size_t kLargestRequest = std::size_t{1} << 16;
constexpr unsigned kLargestWrite = 4096;

}  // namespace

// A request of the kernel, as it comes from the device.
struct HungFile::Request {
  alignas(8) std::array<char, kLargestRequest> bytes{};

  [[nodiscard]] fuse_in_header head() const { return read<fuse_in_header>(0); }
  template <class Body>
  [[nodiscard]] Body body() const {
    return read<Body>(sizeof(fuse_in_header));
  }
  [[nodiscard]] std::string text() const { return bytes.data() + sizeof(fuse_in_header); }

  template <class Value>
  [[nodiscard]] Value read(std::size_t at) const {
    Value value{};
    std::memcpy(&value, bytes.data() + at, sizeof value);
    return value;
  }
};

struct HungFile::Reading {
  std::uint64_t request = 0;
  std::size_t offset = 0;
  std::size_t size = 0;
};

namespace {

// Left alone for a long time, so that it is known by its times at once.
fuse_attr describe(std::uint64_t node, std::uint64_t size) {
  fuse_attr attributes{};
  attributes.ino = node;
  attributes.size = size;
  attributes.mtime = attributes.ctime = attributes.atime = 1'000'000'000;
  attributes.mode = node == kRoot ? S_IFDIR | 0755 : S_IFREG | 0644;
  attributes.nlink = 1;
  attributes.blksize = kLargestWrite;
  return attributes;
}

}  // namespace

HungFile::HungFile(std::string directory, std::string name, std::vector<std::uint8_t> content)
    : m_directory(std::move(directory)),
      m_name(std::move(name)),
      m_content(std::move(content)),
      m_device(::open("/dev/fuse", O_RDWR | O_CLOEXEC)) {
  const std::string options =
      "fd=" + std::to_string(m_device.get()) + ",rootmode=40000,user_id=0,group_id=0";
  m_isMounted = m_device.isOpen() && ::mount("hung", m_directory.c_str(), "fuse",
                                             MS_NOSUID | MS_NODEV, options.c_str()) == 0;
  if (m_isMounted) {
    m_server = std::thread([this] { serve(); });
  }
}

HungFile::~HungFile() {
  if (m_isMounted) {
    m_isOver = true;
    m_server.join();
    m_device = {};
    ::umount2(m_directory.c_str(), MNT_DETACH);
  }
}

void HungFile::serve() {
  constexpr int kPeriod = 20;
  const auto request = std::make_unique<Request>();
  while (!m_isOver) {
    pollfd source{m_device.get(), POLLIN, 0};
    const int found = ::poll(&source, 1, kPeriod);
    if (!m_isHung) {
      answerWaiting();
    }
    if (found != 1) {
      continue;
    }
    if (::read(m_device.get(), request->bytes.data(), request->bytes.size()) <= 0) {
      if (errno == EINTR || errno == ENOENT || errno == EAGAIN) {
        continue;  // who asked has gone
      }
      return;
    }
    answer(*request);
  }
}

void HungFile::answer(const Request& request) {
  switch (request.head().opcode) {
    case FUSE_INIT: {
      const auto asked = request.body<fuse_init_in>();
      fuse_init_out settled{};
      settled.major = FUSE_KERNEL_VERSION;
      settled.minor = std::min<std::uint32_t>(asked.minor, FUSE_KERNEL_MINOR_VERSION);
      settled.max_write = kLargestWrite;
      reply(request, settled);
      break;
    }
    case FUSE_LOOKUP:
      answerLookup(request);
      break;
    case FUSE_GETATTR: {
      fuse_attr_out found{};
      found.attr = describe(request.head().nodeid, m_content.size());
      reply(request, found);
      break;
    }
    case FUSE_OPEN:
    case FUSE_OPENDIR: {
      fuse_open_out opened{};
      opened.open_flags = FOPEN_DIRECT_IO;  // each reading asks here
      reply(request, opened);
      break;
    }
    case FUSE_READDIR:
      listDirectory(request);
      break;
    case FUSE_READ: {
      const auto asked = request.body<fuse_read_in>();
      const Reading reading{request.head().unique, asked.offset, asked.size};
      if (m_isHung) {
        m_waiting.push_back(reading);
        ++m_hung;
      } else {
        answerReading(reading);
      }
      break;
    }
    case FUSE_FLUSH:
    case FUSE_RELEASE:
    case FUSE_RELEASEDIR:
      reply(request, nullptr, 0);
      break;
    case FUSE_FORGET:
    case FUSE_BATCH_FORGET:
    case FUSE_INTERRUPT:
      break;  // nobody waits for an answer
    default:
      reply(request, nullptr, 0, ENOSYS);
      break;
  }
}

void HungFile::answerLookup(const Request& request) {
  if (request.text() != m_name) {
    reply(request, nullptr, 0, ENOENT);
    return;
  }
  fuse_entry_out found{};
  found.nodeid = kFile;
  found.attr = describe(kFile, m_content.size());
  reply(request, found);
}

void HungFile::answerReading(const Reading& reading) const {
  const std::size_t begin = std::min(reading.offset, m_content.size());
  const std::size_t size = std::min(reading.size, m_content.size() - begin);
  reply(reading.request, m_content.data() + begin, size, 0);
}

void HungFile::answerWaiting() {
  for (const Reading& reading : m_waiting) {
    answerReading(reading);
  }
  m_waiting.clear();
}

void HungFile::listDirectory(const Request& request) {
  std::string entry;
  if (request.body<fuse_read_in>().offset == 0) {
    fuse_dirent head{};
    head.ino = kFile;
    head.off = 1;
    head.namelen = static_cast<std::uint32_t>(m_name.size());
    head.type = DT_REG;
    entry.assign(reinterpret_cast<const char*>(&head), FUSE_NAME_OFFSET);
    entry += m_name;
    entry.resize(FUSE_DIRENT_ALIGN(entry.size()));
  }
  reply(request, entry.data(), entry.size());
}

void HungFile::reply(const Request& request, const void* body, std::size_t size, int error) const {
  reply(request.head().unique, body, size, error);
}

void HungFile::reply(std::uint64_t request, const void* body, std::size_t size, int error) const {
  fuse_out_header head{};
  head.len = static_cast<std::uint32_t>(sizeof head + size);
  head.error = -error;
  head.unique = request;
  std::vector<char> message(head.len);
  std::memcpy(message.data(), &head, sizeof head);
  std::copy_n(static_cast<const char*>(body), size, message.data() + sizeof head);
  // Who asked may have gone.
  [[maybe_unused]] const ssize_t written = ::write(m_device.get(), message.data(), message.size());
}

}  // namespace test
