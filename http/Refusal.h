// Why a request is answered without asking the handler. Private to this folder.

#ifndef ORVEX_HTTP_REFUSAL_H_
#define ORVEX_HTTP_REFUSAL_H_

#include <string>

namespace http {

struct Refusal {
  unsigned status = 0;
  std::string text;  // for the client
};

}  // namespace http

#endif  // ORVEX_HTTP_REFUSAL_H_
