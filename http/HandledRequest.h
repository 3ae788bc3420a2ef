// A request as its handler sees it: the exchange of a connection, and who is at its other end.
// Private to this folder.

#ifndef ORVEX_HTTP_HANDLEDREQUEST_H_
#define ORVEX_HTTP_HANDLEDREQUEST_H_

#include <any>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "http/Exchange.h"
#include "http/Message.h"
#include "http/Peer.h"

namespace http {

class HandledRequest final : public Request {
 public:
  // Exchange and peer are the connection's, and outlive this.
  HandledRequest(Exchange& exchange, const Peer& peer, bool isEncrypted)
      : m_exchange(exchange), m_peer(peer), m_isEncrypted(isEncrypted) {}

  // Request
  [[nodiscard]] std::string_view method() const override { return m_exchange.request.method(); }
  [[nodiscard]] std::string_view target() const override { return m_exchange.request.target(); }
  [[nodiscard]] std::optional<std::string_view> authority() const override {
    return m_exchange.request.authority();
  }
  [[nodiscard]] std::string_view field(std::string_view name) const override {
    return m_exchange.request.field(name);
  }
  [[nodiscard]] std::size_t countFields(std::string_view name) const override {
    return m_exchange.request.countFields(name);
  }
  [[nodiscard]] std::string& body() override { return m_exchange.request.body(); }
  [[nodiscard]] std::any& memo() override { return m_exchange.memo; }
  [[nodiscard]] const std::string& peerAddress() const override { return m_peer.address; }
  [[nodiscard]] const std::string& peerGroup() const override { return m_peer.group; }
  [[nodiscard]] bool isLoopback() const override { return m_peer.isLoopback; }
  [[nodiscard]] std::optional<std::uint32_t> peerUser() const override { return m_peer.user; }
  [[nodiscard]] bool isEncrypted() const override { return m_isEncrypted; }

 private:
  Exchange& m_exchange;
  const Peer& m_peer;
  const bool m_isEncrypted;
};

}  // namespace http

#endif  // ORVEX_HTTP_HANDLEDREQUEST_H_
