// Answers HTTP requests: CIM messages by POST (DSP0200), and a monitor's GET /health.
//
//   request                          answer
//   POST, any target but /health     the CIM answer, or a refusal with the field CIMError
//   GET, HEAD /health                200 and JSON, without a login; as for a message, 403 where
//                                    nobody logs in and Host, or the server that stands in the
//                                    target, is no loopback name
//   OPTIONS                          200 with Allow
//   another method that HTTP knows   405 with Allow
//   M-POST and anything else         501
//
// Messages take turns with one another for the agents, and one may take long: kMostAnswering are
// answered or wait for their turn at a time, those of one client at an address no more than its
// share (see AnswerPlaces.h), and more are refused by 503 with Retry-After. So a server with more
// threads than that has one for /health and its own upkeep at any time.
//
// All but messages of those who may send them are answered by their heads alone: nobody has a body
// read who has not logged in.

#ifndef ORVEX_DAEMON_CIMXMLHANDLER_H_
#define ORVEX_DAEMON_CIMXMLHANDLER_H_

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "cimxml/Request.h"
#include "daemon/AnswerPlaces.h"
#include "daemon/LoginGate.h"
#include "daemon/RunningJobs.h"
#include "http/Message.h"
#include "wbem/Caller.h"

namespace quorveld {

class CimXmlHandler final : public http::Handler {
 public:
  static constexpr unsigned kMostAnswering = AnswerPlaces::kMost + AnswerPlaces::kKept;

  // What answers the messages. Any thread calls.
  class Service {
   public:
    Service() = default;
    Service(const Service&) = delete;
    Service& operator=(const Service&) = delete;
    virtual ~Service() = default;

    virtual void answer(const cimxml::Request& request, const wbem::Caller& caller,
                        std::string& out) = 0;
    [[nodiscard]] virtual unsigned countRunningJobs() = 0;
  };

  // Service and gate are the caller's and outlive the handler. For the trusted users, by the number
  // of a request's peerUser(), places are kept.
  CimXmlHandler(Service& service, LoginGate& gate, std::string version,
                std::vector<std::uint32_t> trustedUsers = {});

  // http::Handler
  [[nodiscard]] bool handleHead(http::Request& request, http::Response& response) override;
  // Demands that handleHead() has returned true for the request.
  void handle(http::Request& request, http::Response& response) override;

 private:
  [[nodiscard]] bool handlePostHead(http::Request& request, http::Response& response);
  [[nodiscard]] bool isTrusted(const http::Request& request) const;
  void answerHealth(http::Response& response);
  [[nodiscard]] bool admitsHost(const http::Request& request, http::Response& response) const;
  [[nodiscard]] bool admits(const http::Request& request, http::Response& response,
                            wbem::Caller& caller) const;

  Service& m_service;
  RunningJobs m_runningJobs;
  LoginGate& m_gate;
  AnswerPlaces m_places;
  const std::string m_version;
  const std::vector<std::uint32_t> m_trustedUsers;
  const std::chrono::steady_clock::time_point m_start = std::chrono::steady_clock::now();
};

}  // namespace quorveld

#endif  // ORVEX_DAEMON_CIMXMLHANDLER_H_
