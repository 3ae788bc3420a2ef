#include "http/ClientTls.h"

#include <boost/asio/error.hpp>
#include <boost/asio/ip/address.hpp>
#include <boost/asio/ssl/error.hpp>
#include <cerrno>
#include <fstream>
#include <openssl/err.h>
#include <openssl/x509_vfy.h>
#include <system_error>

namespace http {
namespace {

struct VerifyFault {
  long result;
  const char* text;
};

constexpr VerifyFault kVerifyFaults[] = {
    {X509_V_ERR_HOSTNAME_MISMATCH,
     "its certificate is for another name. Use a name that the certificate has."},
    {X509_V_ERR_IP_ADDRESS_MISMATCH,
     "its certificate is not for this address. Use a name or an address that the certificate has."},
    {X509_V_ERR_CERT_HAS_EXPIRED, "its certificate has expired. Renew it on the server."},
    {X509_V_ERR_CERT_NOT_YET_VALID,
     "its certificate is not valid yet. Compare the clocks of both machines."},
    {X509_V_ERR_CERT_REVOKED, "its certificate has been revoked. Renew it on the server."},
};

bool isAddress(const std::string& host) {
  boost::system::error_code fault;
  boost::asio::ip::make_address(host, fault);
  return !fault;
}

std::string describeVerification(long result) {
  for (const VerifyFault& fault : kVerifyFaults) {
    if (fault.result == result) {
      return fault.text;
    }
  }
  return std::string("its certificate is not signed by a trusted authority (") +
         X509_verify_cert_error_string(result) + ").";
}

bool isOtherProtocol(int reason) {
  return reason == SSL_R_WRONG_VERSION_NUMBER || reason == SSL_R_HTTP_REQUEST ||
         reason == SSL_R_PACKET_LENGTH_TOO_LONG || reason == SSL_R_UNKNOWN_PROTOCOL;
}

}  // namespace

boost::asio::ssl::context makeClientTls(const std::string& caFile) {
  boost::asio::ssl::context context(boost::asio::ssl::context::tls_client);
  SSL_CTX_set_min_proto_version(context.native_handle(), TLS1_2_VERSION);
  SSL_CTX_set_options(context.native_handle(), SSL_OP_NO_RENEGOTIATION | SSL_OP_NO_COMPRESSION);
  boost::system::error_code fault;
  context.set_verify_mode(boost::asio::ssl::verify_peer, fault);
  if (caFile.empty()) {
    context.set_default_verify_paths(fault);
    if (fault) {
      throw ClientFault(
          "Cannot read the authorities that the system trusts: " + fault.message() + ".",
          ClientFault::Kind::Usage);
    }
    return context;
  }
  errno = 0;
  if (!std::ifstream(caFile)) {
    throw ClientFault("Cannot read the authorities to trust from '" + caFile +
                          "': " + std::generic_category().message(errno) + ".",
                      ClientFault::Kind::Usage);
  }
  context.load_verify_file(caFile, fault);
  if (fault) {
    throw ClientFault("Cannot read the authorities to trust from '" + caFile +
                          "': it has no certificate in PEM (" + fault.message() + ").",
                      ClientFault::Kind::Usage);
  }
  return context;
}

void setExpectedHost(SSL* session, const std::string& host) {
  X509_VERIFY_PARAM* const parameters = SSL_get0_param(session);
  bool isSet = false;
  if (isAddress(host)) {
    isSet = X509_VERIFY_PARAM_set1_ip_asc(parameters, host.c_str()) == 1;
  } else {
    X509_VERIFY_PARAM_set_hostflags(parameters, X509_CHECK_FLAG_NO_PARTIAL_WILDCARDS);
    isSet = X509_VERIFY_PARAM_set1_host(parameters, host.c_str(), host.size()) == 1 &&
            SSL_set_tlsext_host_name(session, host.c_str()) == 1;
  }
  if (!isSet) {
    throw ClientFault("'" + host + "' is no name that a certificate can be for.",
                      ClientFault::Kind::Usage);
  }
}

ClientFault describeHandshakeFault(SSL* session, const boost::system::error_code& fault,
                                   const std::string& server) {
  const std::string beginning = "Cannot connect to " + server + " over TLS: ";
  const long verification = SSL_get_verify_result(session);
  if (verification != X509_V_OK) {
    return ClientFault(beginning + describeVerification(verification), ClientFault::Kind::Usage);
  }
  if (fault.category() == boost::asio::error::get_ssl_category()) {
    if (isOtherProtocol(ERR_GET_REASON(static_cast<unsigned long>(fault.value())))) {
      return ClientFault(
          beginning + "it does not speak TLS on this port. Use http, or another port.",
          ClientFault::Kind::Usage);
    }
    return ClientFault(beginning + "client and server do not agree (" + fault.message() + ").",
                       ClientFault::Kind::Usage);
  }
  return ClientFault(beginning + "it closed the connection (" + fault.message() +
                     "). Is this a port for https, and does the server run?");
}

}  // namespace http
