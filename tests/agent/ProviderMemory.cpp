#include "tests/agent/ProviderMemory.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

namespace test {
namespace {

// Without destructors: memory is given back until the thread ends.
thread_local bool s_isWatched = false;
thread_local int s_refused = 0;
thread_local int s_requests = 0;
thread_local std::array<void*, 32> s_live{};
thread_local int s_passed = -1;
std::atomic<int> s_refusedOnce{0};

}  // namespace

ProviderMemory::ProviderMemory(int refused) {
  s_refused = refused;
  s_requests = 0;
  s_live.fill(nullptr);
  s_isWatched = true;
}

ProviderMemory::~ProviderMemory() {
  s_isWatched = false;
}

int ProviderMemory::getRequests() const {
  return s_requests;
}

int ProviderMemory::getLive() const {
  return static_cast<int>(
      std::count_if(s_live.begin(), s_live.end(), [](void* object) { return object != nullptr; }));
}

void refuseMemoryOnce(int passed) {
  s_passed = passed;
}

int countRefusedMemory() {
  return s_refusedOnce;
}

namespace {

[[maybe_unused]] bool takeRefusal() {
  if (s_passed < 0 || s_passed-- != 0) {
    return false;
  }
  ++s_refusedOnce;
  return true;
}

[[maybe_unused]] void* allocate(std::size_t size) {
  return std::malloc(size != 0 ? size : 1);
}

[[maybe_unused]] void* allocateWatched(std::size_t size) {
  if (s_requests++ == s_refused) {
    return nullptr;
  }
  return *std::find(s_live.begin(), s_live.end(), nullptr) = allocate(size);
}

[[maybe_unused]] void giveBack(void* memory) {
  if (s_isWatched && memory != nullptr) {
    std::replace(s_live.begin(), s_live.end(), memory, static_cast<void*>(nullptr));
  }
  std::free(memory);
}

}  // namespace
}  // namespace test

#ifndef QUORVEL_TEST_THREAD_SANITIZER
// The libraries look for these in the program first.
#pragma GCC visibility push(default)

void* operator new(std::size_t size) {
  if (void* memory = test::takeRefusal() ? nullptr : test::allocate(size)) {
    return memory;
  }
  throw std::bad_alloc();
}

void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
  return test::s_isWatched ? test::allocateWatched(size) : test::allocate(size);
}

void operator delete(void* memory) noexcept {
  test::giveBack(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
  test::giveBack(memory);
}

void operator delete(void* memory, const std::nothrow_t& /*tag*/) noexcept {
  test::giveBack(memory);
}

#pragma GCC visibility pop
#endif
