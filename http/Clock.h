// The clock of all deadlines in this folder.

#ifndef ORVEX_HTTP_CLOCK_H_
#define ORVEX_HTTP_CLOCK_H_

#include <chrono>

namespace http {

using Clock = std::chrono::steady_clock;

}  // namespace http

#endif  // ORVEX_HTTP_CLOCK_H_
