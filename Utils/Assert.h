// Assertions. They are always on and never end the process: a condition that does not hold throws
// utils::Exception with "SOURCE:LINE: Assertion failed: 'CONDITION'".

#ifndef ORVEX_UTILS_ASSERT_H_
#define ORVEX_UTILS_ASSERT_H_

#include "Utils/Exception.h"
#include "Utils/Log.h"

// `log` is the utils::LogSource of the file. The text of the condition is part of the message.
#define ORVEX_ASSERT(log, condition)                                                             \
  do {                                                                                           \
    if (!(condition)) {                                                                          \
      throw utils::Exception("%s:%d: Assertion failed: '%s'", (log).name, __LINE__, #condition); \
    }                                                                                            \
  } while (false)

#endif  // ORVEX_UTILS_ASSERT_H_
