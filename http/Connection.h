// One connection: reads requests, has them handled, sends the answers. Private to this folder.
//
// Life: handshake (TLS), then for each request idle, reading and handling its head, reading its
// body and handling the whole, delaying, writing; last closing. A connection is a coroutine on the
// strand of its socket, and owned by that coroutine. Whoever else wants something of it posts to
// the strand: the functions that any thread may call say so. There is no timer of its own: it
// publishes until when its phase may last, and the list of connections looks at that from time to
// time.
//
// Without a request that is served, it may give way to a new connection: until the head of a
// request is there, which trickling bytes do not put off, while an answer is delayed, and when it
// is closed; also when its client has been slow to take an answer.

#ifndef ORVEX_HTTP_CONNECTION_H_
#define ORVEX_HTTP_CONNECTION_H_

#include <array>
#include <atomic>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "http/AnswerMemory.h"
#include "http/Asio.h"
#include "http/ConnectionList.h"
#include "http/Exchange.h"
#include "http/Message.h"
#include "http/Peer.h"
#include "http/ReadBuffer.h"
#include "http/Refusal.h"
#include "http/Reminder.h"
#include "http/RequestParser.h"
#include "http/ServerOptions.h"

namespace http {

// What the connections of a server share. Outlives them.
struct Service {
  Service(const ServerOptions& theOptions, Handler& theHandler, ConnectionList& theConnections)
      : options(theOptions), handler(theHandler), connections(theConnections) {}

  const ServerOptions& options;
  Handler& handler;
  ConnectionList& connections;
  ExchangePool exchanges;
  AnswerMemory answers{options.maxAnswerBytes};
  Reminder answersRefused;
  std::atomic<bool> isStopping{false};
};

// What is the same for plain and encrypted connections.
class Connection : public ListedConnection {
 public:
  ~Connection() override;

  // Starts the coroutine.
  static void serve(const std::shared_ptr<Connection>& connection);
  // Starts one that says why it cannot be served now.
  static void refuse(const std::shared_ptr<Connection>& connection, std::string reason);

  // ListedConnection
  void checkDeadline(Clock::time_point now) override;
  void stop() override;
  void cut() override;

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
  enum class Phase { Handshake, Idle, Reading, Handling, Delaying, Writing, Closing };
  enum class ReadEnd { Complete, Refused, Closed };

  static Awaitable<void> runService(std::shared_ptr<Connection> connection);
  static Awaitable<void> runRefusal(std::shared_ptr<Connection> connection);

  Awaitable<void> serveRequests();
  // Both return Closed also where the connection gives way or is to end.
  Awaitable<ReadEnd> readHead();
  Awaitable<ReadEnd> readBody();
  // Returns whether there is something further to do for a request.
  Awaitable<bool> readMore();
  Awaitable<void> answer();
  Awaitable<void> answerRefusal();
  Awaitable<void> delay(std::chrono::milliseconds duration);
  Awaitable<void> write(std::string_view head, std::string_view body);
  Awaitable<void> closeOrderly();

  [[nodiscard]] std::shared_ptr<Connection> self();
  void enter(Phase phase);
  void enter(Phase phase, std::chrono::milliseconds limit);
  [[nodiscard]] bool takeHead();
  [[nodiscard]] bool takeBody();
  [[nodiscard]] bool handleHead();
  void handle();
  template <class Call>
  void callHandler(Call call);
  void passBodyOver();
  void refuseAnswer();
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
  std::chrono::milliseconds m_readTime{0};  // what a request has left to be read
  std::unique_ptr<Exchange> m_exchange;     // from a request's first byte to the end of its answer
  std::optional<RequestParser> m_parser;
  std::optional<Timer> m_timer;  // of a delay
};

}  // namespace http

#endif  // ORVEX_HTTP_CONNECTION_H_
