// The file by which programs of this machine find a local socket. Private to http/.
//
// It is removed when the object goes, unless another server has put one of its own there meanwhile.
// Each folder on the way to it, from the root of the file system on, has to be root's or the
// server's own, and nobody else's to write (or sticky, as /tmp is), and each link root's or the
// server's own: who could put another socket there would get what clients send. So the way leads
// the same way whenever it is gone: by makeWay(), by the system when the socket is bound, and by
// the constructor, which keeps the folder open, so that the file is removed from that one.

#ifndef ORVEX_HTTP_POSIX_SOCKETFILE_H_
#define ORVEX_HTTP_POSIX_SOCKETFILE_H_

#include <string>
#include <sys/types.h>

#include "platform/Posix/Descriptor.h"

namespace http {

class SocketFile {
 public:
  // Makes way for a socket at the path: makes its folder where that is missing, and removes what a
  // server left behind that is no more. Throws SetupFault for a folder or a link that others could
  // change, std::system_error for what could not be done, whose text says what.
  static void makeWay(const std::string& path);

  // Takes over the file of a socket that is bound, and lets every user of the machine connect to
  // it: who that is, the kernel tells. Throws as makeWay().
  explicit SocketFile(const std::string& path);
  SocketFile(const SocketFile&) = delete;
  SocketFile& operator=(const SocketFile&) = delete;
  ~SocketFile();

 private:
  const platform::Descriptor m_folder;
  const std::string m_name;
  dev_t m_device = 0;
  ino_t m_number = 0;
};

}  // namespace http

#endif  // ORVEX_HTTP_POSIX_SOCKETFILE_H_
