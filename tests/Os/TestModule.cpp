// A module whose loading shows in the environment of its process.

#include "Os/Environment.h"

namespace {

struct Loaded {
  Loaded() { os::setEnvironment("QUORVEL_TEST_MODULE", "loaded"); }
};
const Loaded kLoaded;

}  // namespace
