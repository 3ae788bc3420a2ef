#include "daemon/CimXmlHandler.h"

#include <algorithm>
#include <any>
#include <iterator>
#include <optional>
#include <utility>

#include "daemon/Addresses.h"
#include "daemon/MessageFields.h"
#include "http/Status.h"

namespace quorveld {
namespace {

constexpr std::string_view kHealth = "/health";
constexpr const char* kText = "text/plain; charset=utf-8";
constexpr const char* kXml = "application/xml; charset=utf-8";
constexpr const char* kAllow = "Allow: OPTIONS, POST\r\n";
constexpr const char* kAllowOfHealth = "Allow: GET, HEAD, OPTIONS\r\n";

// Those that HTTP knows and nothing here offers.
constexpr std::string_view kOtherMethods[] = {"GET",   "HEAD",  "POST",   "PUT",
                                              "PATCH", "TRACE", "DELETE", "CONNECT"};

void refuse(http::Response& response, unsigned status, std::string_view text) {
  response.status = status;
  response.contentType = kText;
  response.body.assign(text);
  response.body += '\n';
}

// What an answer may hold already when it turns out that there is none, goes.
void refuseMessage(http::Response& response, unsigned status, const std::string& cimError,
                   std::string_view text) {
  refuse(response, status, text);
  response.fields = cimError.empty() ? "" : "CIMError: " + cimError + "\r\n";
}

unsigned statusOf(cimxml::RequestFault::Kind kind) {
  switch (kind) {
    case cimxml::RequestFault::Kind::Malformed:
      break;
    case cimxml::RequestFault::Kind::Unsupported:
      return http::kStatusNotImplemented;
  }
  return http::kStatusBadRequest;
}

bool isKnownMethod(std::string_view method) {
  return std::ranges::find(kOtherMethods, method) != std::end(kOtherMethods);
}

std::string_view pathOf(std::string_view target) {
  return target.substr(0, target.find('?'));
}

}  // namespace

CimXmlHandler::CimXmlHandler(Service& service, LoginGate& gate, std::string version,
                             std::vector<std::uint32_t> trustedUsers)
    : m_service(service),
      m_runningJobs([&service] { return service.countRunningJobs(); }),
      m_gate(gate),
      m_version(std::move(version)),
      m_trustedUsers(std::move(trustedUsers)) {}

bool CimXmlHandler::handleHead(http::Request& request, http::Response& response) {
  const bool isHealth = pathOf(request.target()) == kHealth;
  const std::string_view method = request.method();
  if (!isHealth && method == "POST") {
    return handlePostHead(request, response);
  }
  if (isHealth && (method == "GET" || method == "HEAD")) {
    if (admitsHost(request, response)) {
      answerHealth(response);
    }
  } else if (method == "OPTIONS") {
    response.fields = isHealth ? kAllowOfHealth : kAllow;
  } else if (isKnownMethod(method)) {
    refuse(response, http::kStatusMethodNotAllowed, "CIM clients send POST, monitors GET /health.");
    response.fields = isHealth ? kAllowOfHealth : kAllow;
  } else {
    refuse(response, http::kStatusNotImplemented,
           "This method is not offered; CIM clients send POST.");
  }
  return false;
}

bool CimXmlHandler::handlePostHead(http::Request& request, http::Response& response) {
  wbem::Caller caller;
  if (!admits(request, response, caller)) {
    return false;
  }
  try {
    demandCimMessage(request);
  } catch (const FieldsFault& fault) {
    refuseMessage(response, fault.status(), fault.cimError(), fault.what());
    return false;
  }
  request.memo() = std::move(caller);
  return true;
}

void CimXmlHandler::handle(http::Request& request, http::Response& response) {
  const auto& caller = std::any_cast<const wbem::Caller&>(request.memo());
  // Users who have logged in from one address are not to take one another's places.
  const AnswerPlaces::Place place(m_places, request.peerGroup() + '\0' + caller.user,
                                  isTrusted(request));
  if (!place.isTaken()) {
    refuse(response, http::kStatusServiceUnavailable,
           "Too many requests wait for their turn. Try again later.");
    response.fields = "Retry-After: 1\r\n";
    return;
  }
  try {
    const cimxml::Request message = cimxml::parseRequest(request.body());
    demandSameFields(request, message);
    response.contentType = kXml;
    response.fields = "CIMOperation: MethodResponse\r\n";
    m_service.answer(message, caller, response.body);
  } catch (const FieldsFault& fault) {
    refuseMessage(response, fault.status(), fault.cimError(), fault.what());
  } catch (const cimxml::RequestFault& fault) {
    refuseMessage(response, statusOf(fault.kind()), fault.cimError(), fault.what());
  }
}

bool CimXmlHandler::isTrusted(const http::Request& request) const {
  const std::optional<std::uint32_t> user = request.peerUser();
  return user && std::ranges::find(m_trustedUsers, *user) != m_trustedUsers.end();
}

// A page of the web that a browser on this machine shows can send requests here, and have its own
// name resolve to 127.0.0.1, but cannot change what the browser gives as Host.
bool CimXmlHandler::admitsHost(const http::Request& request, http::Response& response) const {
  // Clients of HTTP/1.0 may leave the field out, which no browser does.
  const bool isHost = request.countFields("Host") == 0 || isLoopbackHost(request.field("Host"));
  const std::optional<std::string_view> authority = request.authority();
  if (m_gate.demandsLogin() || (isHost && (!authority || isLoopbackHost(*authority)))) {
    return true;
  }
  refuse(response, http::kStatusForbidden,
         "Nobody has to log in here, so this host answers by a loopback name alone.");
  return false;
}

bool CimXmlHandler::admits(const http::Request& request, http::Response& response,
                           wbem::Caller& caller) const {
  if (!admitsHost(request, response)) {
    return false;
  }
  LoginGate::Decision decision =
      m_gate.admit(request.field("Authorization"),
                   {request.peerAddress(), request.isLoopback(), request.isEncrypted(),
                    request.peerUser(), request.peerGroup()});
  response.delay = decision.delay;
  switch (decision.verdict) {
    case LoginGate::Verdict::Passed:
      caller = std::move(decision.caller);
      return true;
    case LoginGate::Verdict::Unauthorized:
      refuse(response, http::kStatusUnauthorized, "Log in with a user of this host.");
      response.fields = "WWW-Authenticate: Basic realm=\"quorveld\", charset=\"UTF-8\"\r\n";
      return false;
    case LoginGate::Verdict::Busy:
      refuse(response, http::kStatusServiceUnavailable,
             m_gate.demandsLogin() ? "Too many logins wait for their check. Try again later."
                                   : "This machine's directory of users does not tell for now who "
                                     "you are. Try again later.");
      response.fields = "Retry-After: 1\r\n";
      return false;
    case LoginGate::Verdict::Unknown:
      refuse(response, http::kStatusForbidden,
             "Users of this machine alone are served here, and this connection tells of none.");
      return false;
    case LoginGate::Verdict::InTheClear:
      refuse(response, http::kStatusForbidden,
             "No password is taken in the clear over a network; use HTTPS.");
      return false;
  }
  return false;
}

void CimXmlHandler::answerHealth(http::Response& response) {
  const auto uptime =
      std::chrono::duration_cast<std::chrono::seconds>(std::chrono::steady_clock::now() - m_start);
  const std::optional<unsigned> runningJobs = m_runningJobs.get();
  response.contentType = "application/json";
  response.body = R"({"version": ")" + m_version + R"(", "uptime": )" +
                  std::to_string(uptime.count()) + R"(, "runningJobs": )" +
                  (runningJobs ? std::to_string(*runningJobs) : "null") + "}\n";
}

}  // namespace quorveld
