// What a server answered.

#ifndef ORVEX_HTTP_CLIENTRESPONSE_H_
#define ORVEX_HTTP_CLIENTRESPONSE_H_

#include <map>
#include <string>

namespace http {

struct ClientResponse {
  unsigned status = 0;
  std::map<std::string, std::string> fields;  // names in lower case
  std::string body;
};

}  // namespace http

#endif  // ORVEX_HTTP_CLIENTRESPONSE_H_
