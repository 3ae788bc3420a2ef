#include "http/Acceptors.h"

#include <boost/asio/error.hpp>
#include <boost/asio/ip/v6_only.hpp>
#include <boost/asio/local/stream_protocol.hpp>
#include <boost/system/system_error.hpp>
#include <optional>
#include <string>
#include <system_error>
#include <utility>

#include "Utils/Log.h"
#include "http/Peer.h"
#include "http/ServerOptions.h"

namespace http {
namespace {

constexpr utils::LogSource kLog{"HttpAcceptors"};

struct Advice {
  boost::system::errc::errc_t reason;
  const char* text;
};

constexpr Advice kAdvice[] = {
    {boost::system::errc::address_in_use,
     "Another program listens there: stop it, or choose another port."},
    {boost::system::errc::permission_denied,
     "Ports below 1024 need a privilege: choose a higher port, or grant it."},
    {boost::system::errc::address_not_available,
     "This machine has no such address: choose one of its own, or 0.0.0.0 or :: for all."},
    {boost::system::errc::address_family_not_supported,
     "This machine does not speak that version of IP: choose an address of the other one."},
    {boost::system::errc::too_many_files_open, "Raise the limit of open files."},
};

std::string describe(const Endpoint& endpoint, const error_code& fault) {
  std::string text = "Cannot listen on " + endpoint.text() + ": " + fault.message() + ".";
  for (const Advice& advice : kAdvice) {
    if (fault == advice.reason) {
      text.append(" ").append(advice.text);
    }
  }
  return text;
}

bool isAddressMissing(const error_code& fault) {
  return fault == boost::system::errc::address_not_available ||
         fault == boost::system::errc::address_family_not_supported;
}

asio::ip::address readAddress(const Endpoint& endpoint) {
  error_code fault;
  asio::ip::address address = asio::ip::make_address(endpoint.address, fault);
  if (fault) {
    throw SetupFault("Cannot listen on " + endpoint.text() + ": '" + endpoint.address +
                     "' is no IP address. Write one such as 127.0.0.1, ::1 or 0.0.0.0.");
  }
  return address;
}

error_code listen(Listener& listener) {
  Acceptor& acceptor = listener.acceptor;
  const asio::ip::address address = readAddress(listener.endpoint);
  const tcp::endpoint endpoint(address, listener.endpoint.port);
  try {
    acceptor.open(Protocol(endpoint.protocol()));
    // A restart need not wait until the system has forgotten the connections of the last run.
    acceptor.set_option(asio::socket_base::reuse_address(true));
    // One endpoint is one address: "::" leaves IPv4 to "0.0.0.0".
    if (address.is_v6()) {
      acceptor.set_option(asio::ip::v6_only(true));
    }
    acceptor.bind(endpoint);
    acceptor.listen();
    listener.endpoint.port = toTcpEndpoint(acceptor.local_endpoint()).port();
  } catch (const boost::system::system_error& fault) {
    return fault.code();
  }
  return {};
}

// Throws SetupFault.
void listenLocally(Listener& listener) {
  const std::string& path = listener.endpoint.path;
  try {
    SocketFile::makeWay(path);
    const asio::local::stream_protocol::endpoint endpoint(path);
    listener.acceptor.open(Protocol(endpoint.protocol()));
    listener.acceptor.bind(endpoint);
    listener.file = std::make_unique<SocketFile>(path);
    listener.acceptor.listen();
  } catch (const std::system_error& fault) {
    throw SetupFault("Cannot listen on " + listener.endpoint.text() + ": " + fault.what() +
                     ". Choose another path, or leave it out.");
  } catch (const boost::system::system_error& fault) {
    throw SetupFault(describe(listener.endpoint, fault.code()));
  }
}

}  // namespace

std::vector<Listener> openListeners(asio::io_context& context,
                                    const std::vector<Endpoint>& endpoints) {
  std::vector<Listener> listeners;
  std::vector<std::string> missing;
  for (const Endpoint& endpoint : endpoints) {
    Listener listener{Acceptor(asio::make_strand(context)), endpoint, nullptr};
    if (!endpoint.path.empty()) {
      listenLocally(listener);
      listeners.push_back(std::move(listener));
      continue;
    }
    const error_code fault = listen(listener);
    if (isAddressMissing(fault)) {
      missing.push_back(describe(endpoint, fault));
      continue;
    }
    if (fault) {
      throw SetupFault(describe(endpoint, fault));
    }
    listeners.push_back(std::move(listener));
  }
  if (listeners.empty()) {
    throw SetupFault(missing.empty() ? "There is no address to listen on: configure one."
                                     : missing.front());
  }
  for (const std::string& text : missing) {
    utils::logError(kLog, "http::openListeners", "%s The other addresses are served.",
                    text.c_str());
  }
  return listeners;
}

}  // namespace http
