// Any bytes are an answer of a CIM server or a fault.

#include <string>

#include "cimxml/Response.h"
#include "tests/fuzz/Fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string body(reinterpret_cast<const char*>(data), size);
  try {
    const cimxml::Response response = cimxml::parseResponse(body);
    test::require(response.isExtrinsic || response.outputs.empty(),
                  "operations have no output arguments");
    test::require(!response.isExtrinsic || response.instances.empty(),
                  "methods return no instances");
  } catch (const cimxml::ResponseFault& fault) {
    test::require(*fault.what() != '\0', "a fault says what it is");
  }
  return 0;
}
