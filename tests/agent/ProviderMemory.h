// Memory that there is not: for objects that the agent allocates without wanting an exception, as
// it does with its providers, and for any others.

#ifndef ORVEX_TESTS_AGENT_PROVIDERMEMORY_H_
#define ORVEX_TESTS_AGENT_PROVIDERMEMORY_H_

namespace test {

// While one lives, one such request of this thread gets nothing. The program that has this has an
// operator new of its own (not under ThreadSanitizer, which lets no program have one).
class ProviderMemory {
 public:
  // `refused` is the number of the request that gets nothing, from 0 on.
  explicit ProviderMemory(int refused);
  ProviderMemory(const ProviderMemory&) = delete;
  ProviderMemory& operator=(const ProviderMemory&) = delete;
  ~ProviderMemory();

  // Returns how many requests there were.
  [[nodiscard]] int getRequests() const;
  // Returns how many of the objects live.
  [[nodiscard]] int getLive() const;
};

// Has one allocation of this thread throw std::bad_alloc, that behind `passed` others; none where
// the number is negative. Of none but those of the program that has this.
void refuseMemoryOnce(int passed);
// Returns how many have been refused so, of all threads.
[[nodiscard]] int countRefusedMemory();

}  // namespace test

#endif  // ORVEX_TESTS_AGENT_PROVIDERMEMORY_H_
