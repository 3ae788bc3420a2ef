// The types of Asio as this folder uses them. Private to it.
//
// Every connection runs as one coroutine on a strand of its own: what touches its socket does so on
// that strand, so a connection needs no lock. In GCC 12 each co_await has to be a statement of its
// own: temporaries that live across it are destroyed twice.

#ifndef ORVEX_HTTP_ASIO_H_
#define ORVEX_HTTP_ASIO_H_

#include <boost/asio/as_tuple.hpp>
#include <boost/asio/awaitable.hpp>
#include <boost/asio/basic_socket_acceptor.hpp>
#include <boost/asio/basic_stream_socket.hpp>
#include <boost/asio/basic_waitable_timer.hpp>
#include <boost/asio/buffer.hpp>
#include <boost/asio/generic/stream_protocol.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/strand.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <boost/system/error_code.hpp>

#include "http/Clock.h"

namespace http {

namespace asio = boost::asio;
using asio::ip::tcp;
using boost::system::error_code;

using Executor = asio::strand<asio::io_context::executor_type>;
// Of TCP, or of this machine alone.
using Protocol = asio::generic::stream_protocol;
using Socket = asio::basic_stream_socket<Protocol, Executor>;
using Acceptor = asio::basic_socket_acceptor<Protocol, Executor>;
using Timer = asio::basic_waitable_timer<Clock, asio::wait_traits<Clock>, Executor>;

template <class Result>
using Awaitable = asio::awaitable<Result, Executor>;

// Makes an operation's outcome, error included, the value of its co_await.
inline constexpr auto kAwait = asio::as_tuple(asio::use_awaitable_t<Executor>{});

}  // namespace http

#endif  // ORVEX_HTTP_ASIO_H_
