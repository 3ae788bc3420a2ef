// A library that can be loaded and registers no agent.

namespace {

const int s_isLoaded = 1;

}  // namespace

const int* idleModule() {
  return &s_isLoaded;
}
