// The exception family in which every failure of the system travels.
//
// Building an exception logs its text at error level, so that a failure leaves a trace even where
// it is caught and dropped. Building one fails only for want of memory (std::bad_alloc).

#ifndef ORVEX_UTILS_EXCEPTION_H_
#define ORVEX_UTILS_EXCEPTION_H_

#include <exception>
#include <string>

#include "Utils/Export.h"
#include "Utils/Format.h"

namespace utils {

class ORVEX_CORE_API Exception : public std::exception {
 public:
  // what() is "Quorvel: " and `text`; the log gets `text` alone. `text` may hold anything.
  explicit Exception(const std::string& text);
  // what() and the log get the formatted text, without a prefix. `text` must be the program's own.
  explicit Exception(const char* text, ...) ORVEX_PRINTF(2, 3);
  Exception(const Exception&) = default;
  Exception& operator=(const Exception&) = default;
  ~Exception() override;

  const char* what() const noexcept override;

 private:
  std::string m_message;
};

// Defines an exception type whose texts begin with the type's name and a colon.
#define ORVEX_DEFINE_EXCEPTION(Name)                                               \
  class Name : public utils::Exception {                                           \
   public:                                                                         \
    explicit Name(const std::string& text) : utils::Exception(#Name ":" + text) {} \
  }

// Any failure without a closer type.
ORVEX_DEFINE_EXCEPTION(EUnspecifiedError);
// An operation that the object does not offer.
class ENotSupported : public Exception {
 public:
  explicit ENotSupported(const std::string& text) : Exception("ENotSupported:" + text) {}
  // A property's missing operation: what() is "ENotSupported:" and nothing else.
  ENotSupported() : Exception("ENotSupported:") {}
};
// A method argument or a new property value that fails validation.
ORVEX_DEFINE_EXCEPTION(EInvalidParameter);
// An attempt to change a property that forbids it.
ORVEX_DEFINE_EXCEPTION(EForbidden);
// Malformed object-path text.
ORVEX_DEFINE_EXCEPTION(ESyntaxError);

}  // namespace utils

#endif  // ORVEX_UTILS_EXCEPTION_H_
