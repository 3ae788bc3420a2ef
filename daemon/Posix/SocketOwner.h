// Which user of this machine is at the other end of a connection: what the kernel says, which the
// other end cannot.

#ifndef ORVEX_DAEMON_POSIX_SOCKETOWNER_H_
#define ORVEX_DAEMON_POSIX_SOCKETOWNER_H_

#include <optional>
#include <sys/socket.h>
#include <sys/types.h>

namespace quorveld {

// Returns the user who made the socket at the other end of a TCP connection within this machine.
// `client` is the client's address, `server` the one that it connected to. Nothing where the
// client is no socket of this machine, or not connected any more: a socket that its process has
// closed belongs to nobody, though the kernel gives it the number of root. Any thread; throws
// nothing.
[[nodiscard]] std::optional<uid_t> findTcpClient(const sockaddr_storage& client,
                                                 const sockaddr_storage& server) noexcept;

// How the user of a TCP connection is found.
using FindTcpClient = std::optional<uid_t> (*)(const sockaddr_storage& client,
                                               const sockaddr_storage& server) noexcept;

// Logs an error where the kernel does not tell whose TCP connections are: it needs modules for it.
// Tries that with a connection to this process, and says nothing where none can be made.
void checkTcpClients(FindTcpClient find = findTcpClient) noexcept;

// Returns the user who connected a local stream socket, nothing where `socket` is none.
[[nodiscard]] std::optional<uid_t> findLocalClient(int socket) noexcept;

// Returns the same for a connected socket of either kind.
[[nodiscard]] std::optional<uid_t> findClient(int socket) noexcept;

}  // namespace quorveld

#endif  // ORVEX_DAEMON_POSIX_SOCKETOWNER_H_
