#include <gmock/gmock.h>
#include <string>
#include <string_view>
#include <utility>

#include "http/Connection.h"
#include "http/ConnectionList.h"
#include "http/Transport.h"
#include "tests/http/TestServer.h"
#include "tests/support/WaitUntil.h"

namespace {

namespace asio = http::asio;

using http::Places;
using http::Room;

// One that ends when it is asked to, and has no client.
class FakeConnection final : public http::ListedConnection {
 public:
  FakeConnection(http::ConnectionList& list, const std::string& group)
      : http::ListedConnection(group), m_list(list) {
    m_list.addServed(*this);
  }
  ~FakeConnection() override { m_list.remove(*this); }

  void checkDeadline(http::Clock::time_point /*now*/) override {}
  void stop() override {}
  void cut() override { isCut = true; }

  bool isCut = false;

 private:
  http::ConnectionList& m_list;
};

// Has one request, and a client that takes the answer byte by byte.
class TrickledConnection final : public http::Connection {
 public:
  TrickledConnection(http::Service& service, http::Socket socket)
      : http::Connection(service, socket.get_executor(), http::Peer(), false),
        m_socket(std::move(socket)),
        m_pause(m_socket.get_executor()) {}

 private:
  http::Awaitable<void> handshake() override { co_return; }
  http::Awaitable<void> readSome() override {
    constexpr std::string_view kRequest = "GET / HTTP/1.1\r\nHost: a\r\n\r\n";
    asio::buffer_copy(m_buffer.space(), asio::buffer(kRequest));
    m_buffer.add(kRequest.size());
    co_return;
  }
  void writeAtOnce() override {}
  http::Awaitable<void> writeSome() override {
    m_pause.expires_after(std::chrono::milliseconds(1));
    co_await m_pause.async_wait(http::kAwait);
    addWritten(1);
  }
  http::Awaitable<void> farewell() override { co_return; }
  http::Socket& socket() override { return m_socket; }

  http::Socket m_socket;
  http::Timer m_pause;
};

class PlacesTest : public testing::Test {
 protected:
  std::shared_ptr<FakeConnection> add(const std::string& group) {
    return std::make_shared<FakeConnection>(m_list, group);
  }
  std::shared_ptr<FakeConnection> addServing(const std::string& group) {
    std::shared_ptr<FakeConnection> connection = add(group);
    connection->givingWay().allowFrom(http::GivingWay::kNever);
    return connection;
  }
  // One that has been idle since so many minutes.
  std::shared_ptr<FakeConnection> addIdle(const std::string& group, int minutes) {
    std::shared_ptr<FakeConnection> connection = add(group);
    connection->givingWay().allowFrom(http::Clock::now() - std::chrono::minutes(minutes));
    return connection;
  }

  http::ConnectionList m_list;
};

TEST_F(PlacesTest, AreThereUntilTheyAreFull) {
  EXPECT_EQ(m_list.makeRoom("a", Places{1, 1}), Room::There);
  const auto connection = addServing("a");
  EXPECT_EQ(m_list.makeRoom("b", Places{2, 1}), Room::There);
  EXPECT_EQ(m_list.makeRoom("b", Places{1, 1}), Room::NoneAtAll);
}

TEST_F(PlacesTest, AreTakenFromWhoHasBeenIdleLongest) {
  const auto younger = addIdle("a", 1);
  const auto oldest = addIdle("b", 3);
  const auto older = addIdle("c", 2);
  const auto serving = addServing("d");

  EXPECT_EQ(m_list.makeRoom("e", Places{4, 4}), Room::Made);
  EXPECT_TRUE(oldest->isCut);
  EXPECT_EQ(m_list.countServed(), 3U);
  EXPECT_EQ(m_list.makeRoom("e", Places{3, 3}), Room::Made);
  EXPECT_TRUE(older->isCut);
  EXPECT_FALSE(younger->isCut);
  EXPECT_FALSE(serving->isCut);
}

TEST_F(PlacesTest, AreNeverTakenFromWhoIsServed) {
  const auto first = addServing("a");
  const auto second = addServing("b");

  EXPECT_EQ(m_list.makeRoom("c", Places{2, 2}), Room::NoneAtAll);
  EXPECT_FALSE(first->isCut || second->isCut);
}

TEST_F(PlacesTest, AreNotTakenFromWhoMayGiveWayLaterOnly) {
  const auto slow = add("a");
  slow->givingWay().allowFrom(http::Clock::now() + std::chrono::hours(1));

  EXPECT_EQ(m_list.makeRoom("b", Places{1, 1}), Room::NoneAtAll);
}

TEST_F(PlacesTest, OfAGroupAreTakenFromThatGroup) {
  const auto elsewhere = addIdle("other", 5);
  const auto idle = addIdle("group", 1);
  const auto serving = addServing("group");

  EXPECT_EQ(m_list.makeRoom("group", Places{9, 2}), Room::Made);
  EXPECT_TRUE(idle->isCut);
  EXPECT_FALSE(elsewhere->isCut);
}

TEST_F(PlacesTest, OfAGroupLeaveRoomToTheOthers) {
  const auto first = addServing("group");
  const auto second = addServing("group");

  EXPECT_EQ(m_list.makeRoom("group", Places{3, 2}), Room::NoneForGroup);
  EXPECT_EQ(m_list.makeRoom("other", Places{3, 2}), Room::There);
}

TEST_F(PlacesTest, OfAGroupAreFreeWhenItsConnectionsHaveEnded) {
  auto first = addServing("group");
  EXPECT_EQ(m_list.makeRoom("group", Places{9, 1}), Room::NoneForGroup);
  first.reset();
  EXPECT_EQ(m_list.makeRoom("group", Places{9, 1}), Room::There);
}

TEST_F(PlacesTest, AreNotMadeWhileAsManyHaveNotEnded) {
  auto first = addIdle("a", 2);
  ASSERT_EQ(m_list.makeRoom("a", Places{1, 1}), Room::Made);
  const auto second = addIdle("a", 1);

  EXPECT_EQ(m_list.makeRoom("a", Places{1, 1}), Room::NoneForGroup);
  EXPECT_FALSE(m_list.isEmpty());
  first.reset();
  EXPECT_EQ(m_list.makeRoom("a", Places{1, 1}), Room::Made);
}

TEST_F(PlacesTest, OfSlowestAnswersAreFreedWhereMemoryIsShort) {
  const auto idle = addIdle("a", 9);
  const auto slow = addIdle("a", 2);
  const auto slowest = addIdle("a", 3);
  const auto quick = add("a");
  quick->givingWay().allowFrom(http::Clock::now() + std::chrono::hours(1));
  for (const auto& taking : {slow, slowest, quick}) {
    taking->setTakingLargeAnswer(true);
  }

  m_list.endSlowestAnswer();
  EXPECT_TRUE(slowest->isCut);
  EXPECT_FALSE(slow->isCut);
  m_list.endSlowestAnswer();
  m_list.endSlowestAnswer();
  EXPECT_TRUE(slow->isCut);
  EXPECT_FALSE(idle->isCut || quick->isCut);
}

class ConnectionListTest : public testing::Test {
 protected:
  ConnectionListTest() : m_acceptor(asio::make_strand(m_context)) {
    m_acceptor.open(http::tcp::v4());
    m_acceptor.bind(http::tcp::endpoint(asio::ip::address_v4::loopback(), 0));
    m_acceptor.listen();
  }

  [[nodiscard]] std::uint16_t port() const {
    return http::toTcpEndpoint(m_acceptor.local_endpoint()).port();
  }
  [[nodiscard]] std::shared_ptr<http::Connection> accept() {
    return http::makeConnection(m_service, m_acceptor.accept(asio::make_strand(m_context)),
                                http::Peer());
  }
  // Runs whatever can run without waiting.
  void runAll() {
    m_context.restart();
    m_context.poll();
  }

  http::ServerOptions m_options;
  std::string m_answer;
  test::FunctionHandler m_handler{
      [this](http::Request& /*request*/, http::Response& response) { response.body = m_answer; }};
  http::ConnectionList m_list;
  http::Service m_service{m_options, m_handler, m_list};
  asio::io_context m_context;
  http::Acceptor m_acceptor;
};

TEST_F(ConnectionListTest, CountsThoseThatAreServedAndThoseThatAreRefused) {
  test::RawClient first(port());
  http::Connection::serve(accept());
  test::RawClient second(port());
  http::Connection::refuse(accept(), "no place");
  runAll();

  EXPECT_EQ(m_list.countServed(), 1U);
  EXPECT_EQ(m_list.countRefused(), 1U);
  EXPECT_FALSE(m_list.isEmpty());
  EXPECT_EQ(test::statusOf(second.readAnswer()), "503");
}

TEST_F(ConnectionListTest, IsToldOfTheEndOfAConnection) {
  int calls = 0;
  m_list.setWhenEmpty([&] { ++calls; });
  test::RawClient client(port());
  http::Connection::serve(accept());
  runAll();
  EXPECT_EQ(calls, 0);
  m_list.cutAll();
  runAll();

  EXPECT_EQ(calls, 1);
  EXPECT_TRUE(m_list.isEmpty());
  EXPECT_TRUE(client.isAtEnd());
}

TEST_F(ConnectionListTest, EndsConnectionsWhoseTimeIsOver) {
  m_options.idleTimeout = std::chrono::milliseconds(0);
  test::RawClient client(port());
  http::Connection::serve(accept());
  runAll();
  m_list.checkDeadlines();
  runAll();

  EXPECT_TRUE(m_list.isEmpty());
}

TEST_F(ConnectionListTest, LeavesConnectionsAloneThatHaveTime) {
  test::RawClient client(port());
  http::Connection::serve(accept());
  runAll();
  m_list.checkDeadlines();
  runAll();

  EXPECT_EQ(m_list.countServed(), 1U);
}

TEST_F(ConnectionListTest, EndsConnectionsWhoseAnswersAreTakenByteByByte) {
  m_options.requestTimeout = std::chrono::milliseconds(100);
  m_answer.assign(1024 * 1024, 'x');
  const test::RawClient client(port());
  http::Connection::serve(std::make_shared<TrickledConnection>(
      m_service, m_acceptor.accept(asio::make_strand(m_context))));

  EXPECT_TRUE(test::waitUntil([&] {
    runAll();
    m_list.checkDeadlines();
    return m_list.isEmpty();
  }));
}

TEST_F(ConnectionListTest, StopsIdleConnections) {
  test::RawClient client(port());
  http::Connection::serve(accept());
  runAll();
  m_service.isStopping = true;
  m_list.stopAll();
  runAll();

  EXPECT_TRUE(m_list.isEmpty());
  EXPECT_TRUE(client.isAtEnd());
}

}  // namespace
