// One connection: reads requests, has them handled, sends the answers. Private to this folder.
//
// Life: handshake (TLS), then for each request idle, reading, handling, delaying, writing; last
// closing. A connection is a coroutine on the strand of its socket, and owned by that coroutine.
// Whoever else wants something of it posts to the strand: the functions that any thread may call
// say so. There is no timer of its own: it publishes until when its phase may last, and the list of
// connections looks at that from time to time.

#ifndef ORVEX_HTTP_CONNECTION_H_
#define ORVEX_HTTP_CONNECTION_H_

#include <array>
#include <atomic>
#include <boost/asio/ssl/context.hpp>
#include <boost/asio/ssl/stream.hpp>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "http/Answer.h"
#include "http/Asio.h"
#include "http/Exchange.h"
#include "http/Peer.h"
#include "http/RequestParser.h"
#include "http/Server.h"

namespace http {

class ConnectionList;

// What the connections of a server share. Outlives them.
struct Service {
  const ServerOptions& options;
  Handler& handler;
  ConnectionList& connections;
  ExchangePool exchanges;
  std::atomic<bool> isStopping{false};
};

// The bytes that have been read and not been taken yet.
class ReadBuffer {
 public:
  [[nodiscard]] std::string_view bytes() const {
    return {m_memory.data() + m_begin, m_end - m_begin};
  }
  [[nodiscard]] bool isEmpty() const { return m_begin == m_end; }
  // Returns where to read to: never nothing.
  [[nodiscard]] asio::mutable_buffer space();
  void add(std::size_t count);
  void remove(std::size_t count) { m_begin += count; }
  void clear() { m_begin = m_end; }
  // Gives up what a large request needed.
  void shrink();

 private:
  std::vector<char> m_memory;
  std::size_t m_begin = 0;
  std::size_t m_end = 0;
  bool m_wasFull = false;  // by the last read
};

// What is the same for plain and encrypted connections.
class Connection : public std::enable_shared_from_this<Connection> {
 public:
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;
  virtual ~Connection();

  // Starts the coroutine.
  static void serve(const std::shared_ptr<Connection>& connection);
  // Starts one that says that there are too many connections.
  static void refuse(const std::shared_ptr<Connection>& connection);

  // Any thread: ends the phase if its time is over.
  void checkDeadline(Clock::time_point now);
  // Any thread: ends the connection as soon as no request is handled or answered.
  void stop();
  // Any thread: ends it now.
  void cut();

 protected:
  Connection(Service& service, Executor strand, Peer peer, bool isEncrypted);

  // Each sets m_fault.
  virtual Awaitable<void> handshake() = 0;
  virtual Awaitable<void> readSome() = 0;   // into m_buffer
  virtual void writeAtOnce() = 0;           // of m_output, what is possible without waiting
  virtual Awaitable<void> writeSome() = 0;  // of m_output
  virtual Awaitable<void> farewell() = 0;   // what encryption has to say at the end
  virtual Socket& socket() = 0;

  void addWritten(std::size_t count);
  [[nodiscard]] std::size_t countUnwritten() const {
    return m_output[0].size() + m_output[1].size();
  }
  [[nodiscard]] bool isWritten() const { return countUnwritten() == 0; }

  ReadBuffer m_buffer;
  std::array<asio::const_buffer, 2> m_output;
  error_code m_fault;  // of the last operation

 private:
  class HandledRequest;
  enum class Phase { Handshake, Idle, Reading, Handling, Delaying, Writing, Closing };
  enum class ReadEnd { Complete, Refused, Closed };

  static Awaitable<void> runService(std::shared_ptr<Connection> connection);
  static Awaitable<void> runRefusal(std::shared_ptr<Connection> connection);

  Awaitable<void> serveRequests();
  Awaitable<ReadEnd> readRequest();
  Awaitable<void> answer();
  Awaitable<void> answerRefusal();
  Awaitable<void> delay(std::chrono::milliseconds duration);
  Awaitable<void> write(std::string_view head, std::string_view body);
  Awaitable<void> closeOrderly();

  void enter(Phase phase);
  void enter(Phase phase, std::chrono::milliseconds limit);
  [[nodiscard]] bool takeBytes();
  void handle();
  void endLatePhase();
  void endPhaseForStop();
  void interrupt(unsigned status, std::string text);
  void cancel();
  void close();

  // Constant.
  Service& m_service;
  const Peer m_peer;
  const bool m_isEncrypted;
  const Executor m_strand;

  // Any thread.
  std::atomic<Clock::rep> m_deadline;

  // On the strand.
  Phase m_phase = Phase::Handshake;
  bool m_isClosed = false;
  bool m_isKept = true;        // for a next request
  bool m_isListenedTo = true;  // while it is being closed
  std::optional<Refusal> m_refusal;
  std::unique_ptr<Exchange> m_exchange;  // from a request's first byte to the end of its answer
  std::optional<RequestParser> m_parser;
  std::optional<Timer> m_timer;  // of a delay
};

[[nodiscard]] std::shared_ptr<Connection> makeConnection(Service& service, Socket socket,
                                                         Peer peer);
[[nodiscard]] std::shared_ptr<Connection> makeConnection(Service& service, Socket socket, Peer peer,
                                                         asio::ssl::context& tls);

}  // namespace http

#endif  // ORVEX_HTTP_CONNECTION_H_
