#include "http/Connection.h"

#include <algorithm>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/detached.hpp>
#include <boost/asio/error.hpp>
#include <boost/asio/post.hpp>
#include <exception>
#include <utility>

#include "Utils/Log.h"
#include "http/Answer.h"
#include "http/HandledRequest.h"
#include "http/Status.h"

namespace http {
namespace {

constexpr utils::LogSource kLog{"HttpConnection"};

// How long, and for how many bytes, a client that is sending still is listened to, so that it gets
// the answer: a socket closed with bytes unread in it takes the answer back.
constexpr std::chrono::milliseconds kLingerTime{2000};
constexpr std::chrono::milliseconds kLingerTimeAtStop{300};
constexpr std::size_t kLingerBytes = 8 * 1024 * 1024;

// How many bytes of an answer a client has to read in the time of a request: with any progress
// being enough, one that takes byte after byte would keep its connection for ever.
constexpr std::size_t kWriteProgress = 64 * 1024;

constexpr const char* kRetryAfter = "Retry-After: 5\r\n";  // seconds
constexpr const char* kStoppingText = "The server is being stopped.";
constexpr std::string_view kContinue = "HTTP/1.1 100 Continue\r\n\r\n";
constexpr Clock::rep kNoDeadline = Clock::duration::max().count();

}  // namespace

Connection::Connection(Service& service, Executor strand, Peer peer, bool isEncrypted)
    : ListedConnection(peer.group),
      m_service(service),
      m_peer(std::move(peer)),
      m_isEncrypted(isEncrypted),
      m_strand(std::move(strand)),
      m_deadline(kNoDeadline) {}

Connection::~Connection() {
  m_service.connections.remove(*this);
}

void Connection::serve(const std::shared_ptr<Connection>& connection) {
  connection->m_service.connections.addServed(*connection);
  asio::co_spawn(connection->m_strand, runService(connection), asio::detached);
}

void Connection::refuse(const std::shared_ptr<Connection>& connection, std::string reason) {
  connection->m_service.connections.addRefused(*connection);
  connection->m_refusal = Refusal{kStatusServiceUnavailable, std::move(reason)};
  asio::co_spawn(connection->m_strand, runRefusal(connection), asio::detached);
}

void Connection::checkDeadline(Clock::time_point now) {
  // Relaxed: what is read here too early or too late is read again, on the strand or the next time.
  if (m_deadline.load(std::memory_order_relaxed) > now.time_since_epoch().count()) {
    return;
  }
  asio::post(m_strand, [self = self()] { self->endLatePhase(); });
}

void Connection::stop() {
  asio::post(m_strand, [self = self()] { self->endPhaseForStop(); });
}

void Connection::cut() {
  asio::post(m_strand, [self = self()] { self->close(); });
}

void Connection::addWritten(std::size_t count) {
  for (asio::const_buffer& part : m_output) {
    const std::size_t ofPart = std::min(count, part.size());
    part += ofPart;
    count -= ofPart;
  }
}

Awaitable<void> Connection::runService(std::shared_ptr<Connection> connection) {
  try {
    connection->enter(Phase::Handshake, connection->m_service.options.requestTimeout);
    // The stop that asked the connections to end may have been before this one was listed.
    if (!connection->m_service.isStopping) {
      co_await connection->handshake();
    }
    if (!connection->m_fault) {
      co_await connection->serveRequests();
    }
    co_await connection->closeOrderly();
  } catch (const std::exception& fault) {
    utils::logError(kLog, "http::Connection::runService", "The connection from %s ended: %s",
                    connection->m_peer.address.c_str(), fault.what());
  }
}

Awaitable<void> Connection::runRefusal(std::shared_ptr<Connection> connection) {
  try {
    connection->m_exchange = connection->m_service.exchanges.take();
    co_await connection->answerRefusal();
    co_await connection->closeOrderly();
  } catch (const std::exception& fault) {
    utils::logError(kLog, "http::Connection::runRefusal", "The connection from %s ended: %s",
                    connection->m_peer.address.c_str(), fault.what());
  }
}

Awaitable<void> Connection::serveRequests() {
  while (m_isKept && !m_isClosed) {
    ReadEnd end = co_await readHead();
    if (end == ReadEnd::Complete && !handleHead()) {
      passBodyOver();
    } else if (end == ReadEnd::Complete) {
      end = co_await readBody();
      if (end == ReadEnd::Complete) {
        handle();
      }
    }
    switch (end) {
      case ReadEnd::Complete:
        co_await answer();
        break;
      case ReadEnd::Refused:
        co_await answerRefusal();
        break;
      case ReadEnd::Closed:
        m_isKept = false;
        m_isListenedTo = false;
        break;
    }
    if (m_exchange) {
      m_parser.reset();
      m_service.exchanges.give(std::move(m_exchange));
    }
    m_buffer.shrink();
    givingWay().allowFrom(Clock::now());
  }
}

Awaitable<Connection::ReadEnd> Connection::readHead() {
  bool goesOn = true;
  while (goesOn) {
    if (m_service.isStopping && m_phase != Phase::Reading) {
      co_return ReadEnd::Closed;
    }
    const bool isComplete = takeHead();
    if (m_refusal) {
      co_return ReadEnd::Refused;
    }
    if (isComplete) {
      // Where another one has got the place already, the end of this one is on its way.
      co_return givingWay().allowFrom(GivingWay::kNever) ? ReadEnd::Complete : ReadEnd::Closed;
    }
    if (m_exchange && m_phase != Phase::Reading) {
      enter(Phase::Reading, m_service.options.requestTimeout);
    } else if (!m_exchange && m_phase != Phase::Idle) {
      enter(Phase::Idle, m_service.options.idleTimeout);
    }
    goesOn = co_await readMore();
  }
  co_return ReadEnd::Closed;
}

Awaitable<Connection::ReadEnd> Connection::readBody() {
  bool isContinueSent = false;
  bool goesOn = true;
  while (goesOn) {
    const bool isComplete = takeBody();
    if (m_refusal) {
      co_return ReadEnd::Refused;
    }
    if (isComplete) {
      co_return givingWay().allowFrom(GivingWay::kNever) ? ReadEnd::Complete : ReadEnd::Closed;
    }
    if (m_phase != Phase::Reading &&
        !givingWay().allowFrom(Clock::now() + m_service.options.slowBodyTime)) {
      co_return ReadEnd::Closed;
    }
    if (m_parser->expectsContinue() && !isContinueSent) {
      isContinueSent = true;
      co_await write(kContinue, {});
    }
    if (m_phase != Phase::Reading) {
      // The stop that interrupts who reads may have been before this one reads.
      if (m_service.isStopping) {
        m_refusal = Refusal{kStatusServiceUnavailable, kStoppingText};
        co_return ReadEnd::Refused;
      }
      enter(Phase::Reading, m_readTime);
    }
    goesOn = co_await readMore();
  }
  co_return ReadEnd::Closed;
}

Awaitable<bool> Connection::readMore() {
  co_await readSome();
  // A client that has closed its half only may be waiting for the answer still.
  if (m_fault == asio::error::eof && m_exchange && !m_refusal) {
    m_refusal = Refusal{kStatusBadRequest,
                        "The request is incomplete: the connection ended in its middle."};
  }
  co_return !m_isClosed && (!m_fault || m_refusal);
}

Awaitable<void> Connection::answer() {
  Response& response = m_exchange->response;
  // A small answer must not hold what a larger one needed before.
  if (response.body.size() <= AnswerMemory::kSmallAnswer &&
      response.body.capacity() > AnswerMemory::kSmallAnswer) {
    std::string fitting(response.body);
    response.body.swap(fitting);
    m_service.exchanges.giveBody(std::move(fitting));
  }
  const std::optional<AnswerMemory::Share> share = m_service.answers.take(response.body.capacity());
  if (!share) {
    refuseAnswer();
  }
  if (response.delay > std::chrono::milliseconds::zero()) {
    co_await delay(response.delay);
  }
  m_isKept = m_parser->isKeptAlive() && !response.isLast && !m_service.isStopping;
  const Ending ending = !m_isKept              ? Ending::Close
                        : m_parser->isHttp11() ? Ending::KeepAlive
                                               : Ending::SpokenKeepAlive;
  writeHead(response, ending, m_exchange->head);
  const bool isBodySent = hasBody(response.status) && m_exchange->request.method() != "HEAD";
  setTakingLargeAnswer(share && share->isLarge());
  givingWay().allowFrom(Clock::now() + m_service.options.slowAnswerTime);
  co_await write(m_exchange->head, isBodySent ? std::string_view(response.body) : "");
  setTakingLargeAnswer(false);
  m_service.exchanges.giveBody(std::move(response.body));
}

Awaitable<void> Connection::answerRefusal() {
  m_isKept = false;
  Response& response = m_exchange->response;
  setRefusal(*m_refusal, response);
  if (m_refusal->status == kStatusServiceUnavailable) {
    response.fields = kRetryAfter;
  }
  writeHead(response, Ending::Close, m_exchange->head);
  co_await write(m_exchange->head, response.body);
}

Awaitable<void> Connection::delay(std::chrono::milliseconds duration) {
  if (m_service.isStopping) {
    co_return;  // endPhaseForStop() may have been here already, and would not end the delay
  }
  if (!m_timer) {
    m_timer.emplace(m_strand);
  }
  enter(Phase::Delaying);
  givingWay().allowFrom(Clock::now());
  m_timer->expires_after(duration);
  co_await m_timer->async_wait(kAwait);
}

Awaitable<void> Connection::write(std::string_view head, std::string_view body) {
  m_output = {asio::buffer(head), asio::buffer(body)};
  m_fault = {};
  writeAtOnce();
  std::size_t nextLimit = countUnwritten();
  while (!m_fault && !m_isClosed && !isWritten()) {
    const std::size_t left = countUnwritten();
    if (left <= nextLimit) {
      enter(Phase::Writing, m_service.options.requestTimeout);
      nextLimit = left - std::min(left, kWriteProgress);
    }
    co_await writeSome();
  }
  if (m_fault) {
    m_isKept = false;
  }
}

Awaitable<void> Connection::closeOrderly() {
  m_parser.reset();
  if (m_exchange) {
    m_service.exchanges.give(std::move(m_exchange));
  }
  enter(Phase::Closing, m_service.isStopping ? kLingerTimeAtStop : kLingerTime);
  givingWay().allowFrom(Clock::now());
  if (!m_isClosed) {
    co_await farewell();
  }
  if (!m_isClosed) {
    socket().shutdown(Socket::shutdown_send, m_fault);
  }
  std::size_t drained = 0;
  while (m_isListenedTo && !m_isClosed && !m_fault && drained < kLingerBytes) {
    m_buffer.clear();
    const asio::mutable_buffer space = m_buffer.space();
    const auto [fault, count] = co_await socket().async_read_some(space, kAwait);
    m_fault = fault;
    m_buffer.add(count);
    drained += count;
  }
  close();
}

std::shared_ptr<Connection> Connection::self() {
  return std::static_pointer_cast<Connection>(shared_from_this());
}

void Connection::enter(Phase phase) {
  m_phase = phase;
  m_deadline.store(kNoDeadline, std::memory_order_relaxed);
}

void Connection::enter(Phase phase, std::chrono::milliseconds limit) {
  m_phase = phase;
  m_deadline.store((Clock::now() + limit).time_since_epoch().count(), std::memory_order_relaxed);
}

// Returns whether the head is complete; it may have been refused instead.
bool Connection::takeHead() {
  if (!m_exchange) {
    // Some clients send an empty line behind a body.
    while (!m_buffer.isEmpty() && (m_buffer.bytes()[0] == '\r' || m_buffer.bytes()[0] == '\n')) {
      m_buffer.remove(1);
    }
    if (m_buffer.isEmpty()) {
      return false;
    }
    m_exchange = m_service.exchanges.take();
    m_parser.emplace(m_exchange->request, RequestLimits{m_service.options.maxHeaderBytes,
                                                        m_service.options.maxBodyBytes});
  }
  m_buffer.remove(m_parser->takeHead(m_buffer.bytes()));
  if (!m_refusal) {
    m_refusal = m_parser->refusal();
  }
  return m_parser->isHeadComplete();
}

// Returns whether the request is complete; it may have been refused instead.
bool Connection::takeBody() {
  m_buffer.remove(m_parser->take(m_buffer.bytes()));
  if (!m_refusal) {
    m_refusal = m_parser->refusal();
  }
  return m_parser->isComplete();
}

bool Connection::handleHead() {
  // What the handler needs is not taken from the client's time.
  const Clock::duration left = m_phase == Phase::Reading
                                   ? Clock::duration(m_deadline.load(std::memory_order_relaxed)) -
                                         Clock::now().time_since_epoch()
                                   : Clock::duration(m_service.options.requestTimeout);
  m_readTime = std::chrono::duration_cast<std::chrono::milliseconds>(left);
  bool isBodyWanted = false;
  callHandler([this, &isBodyWanted](Request& request, Response& response) {
    isBodyWanted = m_service.handler.handleHead(request, response);
  });
  return isBodyWanted;
}

void Connection::handle() {
  m_exchange->response.body = m_service.exchanges.takeBody();
  callHandler([this](Request& request, Response& response) {
    m_service.handler.handle(request, response);
  });
}

template <class Call>
void Connection::callHandler(Call call) {
  enter(Phase::Handling);
  HandledRequest request(*m_exchange, m_peer, m_isEncrypted);
  Response& response = m_exchange->response;
  clear(response);
  try {
    call(request, response);
    return;
  } catch (const std::exception& fault) {
    utils::logError(kLog, "http::Connection::handle", "A request from %s failed: %s",
                    m_peer.address.c_str(), fault.what());
  } catch (...) {
    utils::logError(kLog, "http::Connection::handle",
                    "A request from %s failed: exception of no standard type",
                    m_peer.address.c_str());
  }
  clear(response);
  response.status = kStatusInternalServerError;
  response.contentType = "text/plain; charset=utf-8";
  response.body = "The server failed at this request. Its log tells why.\n";
}

// A body that is not wanted is not waited for: who sends more of it has to connect anew.
void Connection::passBodyOver() {
  m_buffer.remove(m_parser->take(m_buffer.bytes()));
  if (!m_parser->isComplete()) {
    m_exchange->response.isLast = true;
  }
}

// There is no memory for the answer. A client that has been slow to take one like it loses that, so
// that who comes again finds some.
void Connection::refuseAnswer() {
  if (m_service.answersRefused.isDue()) {
    utils::logError(kLog, "http::Connection::answer",
                    "The answers under way hold %zu of %zu bytes, those are refused that need more",
                    m_service.answers.held(), m_service.answers.most());
  }
  m_service.connections.endSlowestAnswer();
  Response& response = m_exchange->response;
  std::string().swap(response.body);  // with its memory
  setRefusal({kStatusServiceUnavailable,
              "The answers to other clients take the memory that this server has for answers: " +
                  std::to_string(m_service.answers.most()) + " bytes. Try again later."},
             response);
  response.fields = kRetryAfter;
}

void Connection::endLatePhase() {
  if (m_deadline.load(std::memory_order_relaxed) > Clock::now().time_since_epoch().count()) {
    return;  // the next phase has begun
  }
  switch (m_phase) {
    case Phase::Idle:
      m_isKept = false;
      cancel();
      break;
    // A client in the middle of a request is told why it gets no answer to it.
    case Phase::Reading:
      interrupt(kStatusRequestTimeout,
                "The request took longer than this server waits: " +
                    std::to_string(m_service.options.requestTimeout.count()) + " ms.");
      break;
    case Phase::Handshake:
    case Phase::Writing:
    case Phase::Closing:
      close();
      break;
    // They have no deadline: the handler's time is its own, and the delay ends by itself.
    case Phase::Handling:
    case Phase::Delaying:
      break;
  }
}

void Connection::endPhaseForStop() {
  switch (m_phase) {
    case Phase::Idle:
      cancel();
      break;
    case Phase::Reading:
      interrupt(kStatusServiceUnavailable, kStoppingText);
      break;
    case Phase::Handshake:
      close();
      break;
    case Phase::Delaying:
      m_timer->cancel();
      break;
    case Phase::Closing:
      enter(Phase::Closing, kLingerTimeAtStop);
      break;
    case Phase::Handling:
    case Phase::Writing:
      break;
  }
}

// Makes an answer of the request that is being read: the read that is cancelled here finds the
// refusal.
void Connection::interrupt(unsigned status, std::string text) {
  if (!m_refusal) {
    m_refusal = Refusal{status, std::move(text)};
  }
  cancel();
  m_deadline.store(kNoDeadline, std::memory_order_relaxed);
}

void Connection::cancel() {
  error_code ignored;
  socket().cancel(ignored);
}

void Connection::close() {
  m_isClosed = true;
  m_deadline.store(kNoDeadline, std::memory_order_relaxed);
  error_code ignored;
  socket().close(ignored);
  if (m_timer) {
    m_timer->cancel();
  }
}

}  // namespace http
