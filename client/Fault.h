// How an operation of a connection ends that could not be done.

#ifndef ORVEX_CLIENT_FAULT_H_
#define ORVEX_CLIENT_FAULT_H_

#include <exception>
#include <string>
#include <utility>

namespace client {

// what() says what happened, to what, and what to do next.
class Fault : public std::exception {
 public:
  enum class Kind {
    Refused,  // by an agent or a host, or failed
    Usage,    // what the caller named is none of its sort: nothing was tried
  };

  explicit Fault(std::string text, Kind kind = Kind::Refused)
      : m_text(std::move(text)), m_kind(kind) {}

  [[nodiscard]] const char* what() const noexcept override { return m_text.c_str(); }
  [[nodiscard]] Kind kind() const { return m_kind; }

 private:
  std::string m_text;
  Kind m_kind;
};

// A fault that may be over a moment later: nobody answers, or somebody is too busy to.
class PassingFault final : public Fault {
 public:
  using Fault::Fault;
};

}  // namespace client

#endif  // ORVEX_CLIENT_FAULT_H_
