// The file by which programs of this machine find a local socket. Private to http/.
//
// It is removed when the object goes, unless another server has put one of its own there meanwhile.

#ifndef ORVEX_HTTP_POSIX_SOCKETFILE_H_
#define ORVEX_HTTP_POSIX_SOCKETFILE_H_

#include <string>
#include <sys/types.h>

namespace http {

class SocketFile {
 public:
  // Makes way for a socket at the path: makes its folder where that is missing, and removes what a
  // server left behind that is no more. Throws std::system_error, whose text says what could not be
  // done.
  static void makeWay(const std::string& path);

  // Takes over the file of a socket that is bound, and lets every user of the machine connect to
  // it: who that is, the kernel tells. Throws as makeWay().
  explicit SocketFile(std::string path);
  SocketFile(const SocketFile&) = delete;
  SocketFile& operator=(const SocketFile&) = delete;
  ~SocketFile();

 private:
  const std::string m_path;
  dev_t m_device = 0;
  ino_t m_number = 0;
};

}  // namespace http

#endif  // ORVEX_HTTP_POSIX_SOCKETFILE_H_
