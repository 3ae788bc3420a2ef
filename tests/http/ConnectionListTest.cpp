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

class ConnectionListTest : public testing::Test {
 protected:
  ConnectionListTest() : m_acceptor(asio::make_strand(m_context)) {
    m_acceptor.open(http::tcp::v4());
    m_acceptor.bind(http::tcp::endpoint(asio::ip::address_v4::loopback(), 0));
    m_acceptor.listen();
  }

  [[nodiscard]] std::uint16_t port() const { return m_acceptor.local_endpoint().port(); }
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
  http::Service m_service{m_options, m_handler, m_list, {}, {}};
  asio::io_context m_context;
  http::Acceptor m_acceptor;
};

TEST_F(ConnectionListTest, CountsThoseThatAreServedAndThoseThatAreRefused) {
  test::RawClient first(port());
  http::Connection::serve(accept());
  test::RawClient second(port());
  http::Connection::refuse(accept());
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
