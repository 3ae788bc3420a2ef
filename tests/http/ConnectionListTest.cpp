#include <gmock/gmock.h>

#include "http/Connection.h"
#include "http/ConnectionList.h"
#include "tests/http/TestServer.h"

namespace http {
namespace {

class ConnectionListTest : public testing::Test {
 protected:
  ConnectionListTest() : m_acceptor(asio::make_strand(m_context)) {
    m_acceptor.open(tcp::v4());
    m_acceptor.bind(tcp::endpoint(asio::ip::address_v4::loopback(), 0));
    m_acceptor.listen();
  }

  [[nodiscard]] std::uint16_t port() const { return m_acceptor.local_endpoint().port(); }
  [[nodiscard]] std::shared_ptr<Connection> accept() {
    return makeConnection(m_service, m_acceptor.accept(asio::make_strand(m_context)), Peer());
  }
  // Runs whatever can run without waiting.
  void runAll() {
    m_context.restart();
    m_context.poll();
  }

  ServerOptions m_options;
  test::FunctionHandler m_handler{&test::echo};
  ConnectionList m_list;
  Service m_service{m_options, m_handler, m_list, {}, {}};
  asio::io_context m_context;
  Acceptor m_acceptor;
};

TEST_F(ConnectionListTest, CountsThoseThatAreServedAndThoseThatAreRefused) {
  test::RawClient first(port());
  Connection::serve(accept());
  test::RawClient second(port());
  Connection::refuse(accept());
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
  Connection::serve(accept());
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
  Connection::serve(accept());
  runAll();
  m_list.checkDeadlines();
  runAll();

  EXPECT_TRUE(m_list.isEmpty());
}

TEST_F(ConnectionListTest, LeavesConnectionsAloneThatHaveTime) {
  test::RawClient client(port());
  Connection::serve(accept());
  runAll();
  m_list.checkDeadlines();
  runAll();

  EXPECT_EQ(m_list.countServed(), 1U);
}

TEST_F(ConnectionListTest, StopsIdleConnections) {
  test::RawClient client(port());
  Connection::serve(accept());
  runAll();
  m_service.isStopping = true;
  m_list.stopAll();
  runAll();

  EXPECT_TRUE(m_list.isEmpty());
  EXPECT_TRUE(client.isAtEnd());
}

}  // namespace
}  // namespace http
