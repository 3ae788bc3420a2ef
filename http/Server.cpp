#include "http/Server.h"

#include <algorithm>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/detached.hpp>
#include <boost/asio/error.hpp>
#include <boost/asio/post.hpp>
#include <exception>
#include <optional>
#include <string>
#include <system_error>
#include <thread>

#include "Utils/Log.h"
#include "http/Acceptors.h"
#include "http/Connection.h"
#include "http/ConnectionList.h"
#include "http/Reminder.h"
#include "http/ServerTls.h"
#include "http/Transport.h"

namespace http {
namespace {

constexpr utils::LogSource kLog{"HttpServer"};

// How many that come too many are told so at the same time; others are just closed.
constexpr std::size_t kMostRefused = 32;
// The wait after a connection could not be taken, for want of descriptors or memory.
constexpr std::chrono::milliseconds kAcceptPause{100};
// What the system keeps of an answer that its client does not take. Left to itself, it keeps
// megabytes for each connection.
constexpr int kSendBuffer = 128 * 1024;

constexpr std::chrono::milliseconds kShortestSweep{5};
constexpr std::chrono::milliseconds kLongestSweep{1000};
constexpr std::chrono::milliseconds kStoppingSweep{20};

// Deadlines are kept to an eighth of them.
std::chrono::milliseconds sweepInterval(const ServerOptions& options) {
  return std::clamp(std::min(options.requestTimeout, options.idleTimeout) / 8, kShortestSweep,
                    kLongestSweep);
}

// Returns the places of those for whom none are kept.
Places findPlacesOfOthers(const ServerOptions& options) {
  constexpr std::size_t kMostKept = 4;
  constexpr std::size_t kShareKept = 16;
  const std::size_t kept = options.findUser && !options.trustedUsers.empty()
                               ? std::min(kMostKept, options.maxConnections / kShareKept)
                               : 0;
  return {options.maxConnections - kept, options.maxConnectionsPerAddress};
}

bool hasTls(const ServerOptions& options) {
  return std::any_of(options.endpoints.begin(), options.endpoints.end(),
                     [](const Endpoint& endpoint) { return endpoint.isTls; });
}

std::string describeLack(Room room, const Places& places) {
  const bool isOfGroup = room == Room::NoneForGroup;
  return std::string("The server has as many connections ") +
         (isOfGroup ? "from this address " : "") +
         "as it takes: " + std::to_string(isOfGroup ? places.perGroup : places.all) +
         ". Try again later.";
}

}  // namespace

struct Server::Implementation {
  Implementation(ServerOptions serverOptions, Handler& handler);
  Implementation(const Implementation&) = delete;
  Implementation& operator=(const Implementation&) = delete;
  ~Implementation();

  void runThread();
  Awaitable<void> accept(Listener& listener);
  void tryToTake(const Listener& listener, Socket socket);
  void take(const Listener& listener, Socket socket);
  [[nodiscard]] const Places& findPlaces(const Peer& peer) const;
  void noteRoom(Room room, const Peer& peer, const Places& ofPeer);
  void noteAcceptFault(const Listener& listener, const error_code& fault);
  Awaitable<void> sweep();
  void tidyUp();
  void beginStop();

  const ServerOptions options;
  std::optional<asio::ssl::context> tls;
  // These outlive the connections, which the context's end destroys.
  ConnectionList connections;
  Service service;
  asio::io_context context;
  std::vector<Listener> listeners;

  // On the strand of the sweep.
  Executor strand;
  Timer sweepTimer;
  Clock::time_point stopDeadline = Clock::time_point::max();

  const Places places;
  const Places placesOfOthers;
  Reminder acceptFault;
  Reminder givingWay;
  Reminder tooMany;
};

Server::Implementation::Implementation(ServerOptions serverOptions, Handler& handler)
    : options(std::move(serverOptions)),
      service{options, handler, connections},
      context(static_cast<int>(std::max(options.threads, 1U))),  // a hint for its locks
      strand(asio::make_strand(context)),
      sweepTimer(strand),
      places{options.maxConnections, options.maxConnectionsPerAddress},
      placesOfOthers(findPlacesOfOthers(options)) {
  if (hasTls(options)) {
    tls.emplace(makeServerTls(options.certificateFile, options.keyFile));
  }
  listeners = openListeners(context, options.endpoints);
  for (Listener& listener : listeners) {
    const Executor executor = listener.acceptor.get_executor();
    asio::co_spawn(executor, accept(listener), asio::detached);
  }
  asio::co_spawn(strand, sweep(), asio::detached);
  connections.setWhenEmpty([this] {
    if (service.isStopping) {
      asio::post(strand, [this] { sweepTimer.cancel(); });
    }
  });
}

Server::Implementation::~Implementation() {
  connections.setWhenEmpty({});
}

void Server::Implementation::runThread() {
  while (true) {
    try {
      context.run();
      return;
    } catch (const std::exception& fault) {
      utils::logError(kLog, "http::Server::run", "The server goes on after a fault: %s",
                      fault.what());
    }
  }
}

Awaitable<void> Server::Implementation::accept(Listener& listener) {
  Timer pause(listener.acceptor.get_executor());
  while (!service.isStopping) {
    const Executor connectionStrand = asio::make_strand(context);
    auto [fault, socket] = co_await listener.acceptor.async_accept(connectionStrand, kAwait);
    if (!fault) {
      tryToTake(listener, std::move(socket));
      continue;
    }
    if (!service.isStopping) {
      noteAcceptFault(listener, fault);
      pause.expires_after(kAcceptPause);
      co_await pause.async_wait(kAwait);
    }
  }
}

// What goes wrong with one connection must not end the taking of others.
void Server::Implementation::tryToTake(const Listener& listener, Socket socket) {
  try {
    take(listener, std::move(socket));
  } catch (const std::exception& fault) {
    utils::logError(kLog, "http::Server::accept", "A connection to %s is lost: %s",
                    listener.endpoint.text().c_str(), fault.what());
  }
}

void Server::Implementation::take(const Listener& listener, Socket socket) {
  error_code fault;
  const Protocol::endpoint peer = socket.remote_endpoint(fault);
  if (fault || service.isStopping) {
    return;
  }
  error_code ignored;
  // Head and body go out by one call each time: waiting for more to send would only cost time.
  socket.set_option(tcp::no_delay(true), ignored);  // of TCP alone
  socket.set_option(asio::socket_base::send_buffer_size(kSendBuffer), ignored);
  const std::optional<std::uint32_t> user =
      options.findUser ? options.findUser(socket.native_handle()) : std::nullopt;
  Peer description = describePeer(peer, user);
  const Places& ofPeer = findPlaces(description);
  const Room room = connections.makeRoom(description.group, ofPeer);
  noteRoom(room, description, ofPeer);
  const bool isTooMany = room == Room::NoneAtAll || room == Room::NoneForGroup;
  // To say so over TLS would cost the handshake that there is no room for.
  if (isTooMany && (listener.endpoint.isTls || connections.countRefused() >= kMostRefused)) {
    return;
  }
  const std::shared_ptr<Connection> connection =
      listener.endpoint.isTls
          ? makeConnection(service, std::move(socket), std::move(description), *tls)
          : makeConnection(service, std::move(socket), std::move(description));
  if (isTooMany) {
    Connection::refuse(connection, describeLack(room, ofPeer));
  } else {
    Connection::serve(connection);
  }
}

const Places& Server::Implementation::findPlaces(const Peer& peer) const {
  const std::vector<std::uint32_t>& trusted = options.trustedUsers;
  const bool isTrusted =
      peer.user && std::find(trusted.begin(), trusted.end(), *peer.user) != trusted.end();
  return isTrusted ? places : placesOfOthers;
}

void Server::Implementation::noteRoom(Room room, const Peer& peer, const Places& ofPeer) {
  switch (room) {
    case Room::There:
      break;
    case Room::Made:
      if (givingWay.isDue()) {
        utils::logError(kLog, "http::Server::take",
                        "No place for a connection from %s: those give way to new ones that have "
                        "been idle longest",
                        peer.address.c_str());
      }
      break;
    case Room::NoneAtAll:
      if (tooMany.isDue()) {
        utils::logError(kLog, "http::Server::take",
                        "%zu connections, no further ones are taken until one ends", ofPeer.all);
      }
      break;
    case Room::NoneForGroup:
      if (tooMany.isDue()) {
        utils::logError(
            kLog, "http::Server::take",
            "%zu connections from %s, no further ones are taken from there until one ends",
            ofPeer.perGroup, peer.address.c_str());
      }
      break;
  }
}

void Server::Implementation::noteAcceptFault(const Listener& listener, const error_code& fault) {
  if (acceptFault.isDue()) {
    utils::logError(kLog, "http::Server::accept",
                    "%s takes no new connections for now: %s. It tries on.",
                    listener.endpoint.text().c_str(), fault.message().c_str());
  }
}

Awaitable<void> Server::Implementation::sweep() {
  const std::chrono::milliseconds interval = sweepInterval(options);
  // At the stop it watches over the closing time until the last connection has gone.
  while (!service.isStopping || !connections.isEmpty()) {
    sweepTimer.expires_after(service.isStopping ? std::min(interval, kStoppingSweep) : interval);
    co_await sweepTimer.async_wait(kAwait);
    tidyUp();
  }
}

// What goes wrong once must not end the watch over the deadlines.
void Server::Implementation::tidyUp() {
  try {
    if (options.onSweep) {
      options.onSweep();
    }
    connections.checkDeadlines();
    service.exchanges.trim();
    if (Clock::now() >= stopDeadline) {
      connections.cutAll();
    }
  } catch (const std::exception& fault) {
    utils::logError(kLog, "http::Server::sweep", "Deadlines are not watched for a moment: %s",
                    fault.what());
  }
}

void Server::Implementation::beginStop() {
  stopDeadline = Clock::now() + options.closingTime;
  // Each on its own strand: an acceptor bears one thread at a time.
  for (Listener& listener : listeners) {
    asio::post(listener.acceptor.get_executor(), [&listener] {
      error_code ignored;
      listener.acceptor.close(ignored);
    });
  }
  connections.stopAll();
  sweepTimer.cancel();
}

Server::Server(ServerOptions options, Handler& handler)
    : m_implementation(std::make_unique<Implementation>(std::move(options), handler)) {}

Server::~Server() = default;

std::vector<Endpoint> Server::endpoints() const {
  std::vector<Endpoint> endpoints;
  for (const Listener& listener : m_implementation->listeners) {
    endpoints.push_back(listener.endpoint);
  }
  return endpoints;
}

void Server::run() {
  std::vector<std::thread> threads;
  try {
    while (threads.size() + 1 < m_implementation->options.threads) {
      threads.emplace_back([this] { m_implementation->runThread(); });
    }
  } catch (const std::system_error& fault) {
    utils::logError(kLog, "http::Server::run", "The server runs with fewer threads: %s",
                    fault.what());
  }
  m_implementation->runThread();
  for (std::thread& thread : threads) {
    thread.join();
  }
}

void Server::stop() {
  if (!m_implementation->service.isStopping.exchange(true)) {
    asio::post(m_implementation->strand, [this] { m_implementation->beginStop(); });
  }
}

}  // namespace http
