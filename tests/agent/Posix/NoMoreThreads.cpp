#include "tests/agent/NoMoreThreads.h"

#include <cstddef>
#include <pthread.h>
#include <system_error>

namespace test {
namespace {

// No address space has room for a stack of this size.
constexpr std::size_t kImpossibleSize = std::size_t{1} << 47;

void check(int error, const char* operation) {
  if (error != 0) {
    throw std::system_error(error, std::generic_category(), operation);
  }
}

// Returns the size that threads had by default before.
std::size_t exchangeStackSize(std::size_t size) {
  pthread_attr_t attributes;
  check(pthread_getattr_default_np(&attributes), "pthread_getattr_default_np");
  std::size_t previous = 0;
  check(pthread_attr_getstacksize(&attributes, &previous), "pthread_attr_getstacksize");
  check(pthread_attr_setstacksize(&attributes, size), "pthread_attr_setstacksize");
  check(pthread_setattr_default_np(&attributes), "pthread_setattr_default_np");
  pthread_attr_destroy(&attributes);
  return previous;
}

}  // namespace

struct NoMoreThreads::Refusal {
  std::size_t stackSize = exchangeStackSize(kImpossibleSize);
};

NoMoreThreads::NoMoreThreads() : m_refusal(std::make_unique<Refusal>()) {}

NoMoreThreads::~NoMoreThreads() {
  exchangeStackSize(m_refusal->stackSize);
}

}  // namespace test
