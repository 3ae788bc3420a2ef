#include "daemon/Posix/FileDigest.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <memory>
#include <openssl/evp.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

#include "Os/FileCalls.h"
#include "Utils/Format.h"
#include "platform/Posix/Descriptor.h"

namespace quorveld {
namespace {

constexpr const char* kUnreadable = "not known: the file cannot be read";
constexpr const char* kSilent = "not known: the file system does not answer";
constexpr const char* kChanged = "not known: the file has changed meanwhile";

struct FreeContext {
  void operator()(EVP_MD_CTX* context) const { EVP_MD_CTX_free(context); }
};

// Returns the hash in hexadecimal digits; null where the file cannot be read, or hashed.
std::optional<std::string> hash(const platform::Descriptor& file) {
  constexpr std::size_t kPiece = 65'536;
  const std::unique_ptr<EVP_MD_CTX, FreeContext> context(EVP_MD_CTX_new());
  if (context == nullptr || EVP_DigestInit_ex(context.get(), EVP_sha256(), nullptr) != 1) {
    return std::nullopt;
  }
  const auto buffer = std::make_unique<std::array<unsigned char, kPiece>>();
  while (true) {
    const ssize_t got = read(file.get(), buffer->data(), buffer->size());
    if (got == 0) {
      break;
    }
    if (got < 0 && errno == EINTR) {
      continue;
    }
    if (got < 0 ||
        EVP_DigestUpdate(context.get(), buffer->data(), static_cast<std::size_t>(got)) != 1) {
      return std::nullopt;
    }
  }
  std::array<unsigned char, EVP_MAX_MD_SIZE> bytes{};
  unsigned length = 0;
  if (EVP_DigestFinal_ex(context.get(), bytes.data(), &length) != 1) {
    return std::nullopt;
  }
  std::string text;
  for (unsigned i = 0; i < length; ++i) {
    text += utils::format("%02x", static_cast<unsigned>(bytes.at(i)));
  }
  return text;
}

std::string digestOf(const std::string& path, const platform::FileStamp& stamp) {
  const platform::Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  if (!file.isOpen()) {
    return kUnreadable;
  }
  const std::optional<std::string> text = hash(file);
  if (platform::findStamp(path) != stamp) {
    return kChanged;
  }
  return text.value_or(kUnreadable);
}

}  // namespace

FileDigest::FileDigest(std::string path) : m_path(std::move(path)) {
  const auto stamp = std::make_shared<std::optional<platform::FileStamp>>();
  m_isAnswered = os::fileCalls().make(os::directoryOf(m_path), [path = m_path, stamp] {
    *stamp = platform::findStamp(path);
  }) == os::FileAnswer::InTime;
  if (m_isAnswered) {
    m_stamp = *stamp;
  }
}

std::string FileDigest::digest() const {
  if (!m_isAnswered) {
    return kSilent;
  }
  if (!m_stamp || !S_ISREG(m_stamp->mode)) {
    return kUnreadable;
  }
  const auto text = std::make_shared<std::string>();
  const os::FileAnswer answer = os::fileCalls().make(
      os::directoryOf(m_path),
      [path = m_path, stamp = *m_stamp, text] { *text = digestOf(path, stamp); });
  return answer == os::FileAnswer::InTime ? *text : kSilent;
}

}  // namespace quorveld
