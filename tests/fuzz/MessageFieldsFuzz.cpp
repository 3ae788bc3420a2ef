// The fields of a CIM message are refused with a status of HTTP, whatever a client has in them. The
// input has a field in each line, and the method and the object of the message behind them.

#include <array>
#include <sstream>
#include <string>

#include "daemon/MessageFields.h"
#include "tests/daemon/FakeHttpRequest.h"
#include "tests/fuzz/Fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::istringstream lines(std::string(reinterpret_cast<const char*>(data), size));
  constexpr std::array<const char*, 6> kNames{"Content-Type", "CIMOperation", "CIMProtocolVersion",
                                              "CIMMethod",    "CIMObject",    "CIMBatch"};
  test::FakeHttpRequest request;
  for (const char* const name : kNames) {
    std::string value;
    std::getline(lines, value);
    request.fields[name] = value;
  }
  cimxml::Request message;
  std::getline(lines, message.name);
  std::getline(lines, message.nameSpace);
  std::getline(lines, message.target.className);
  message.isExtrinsic = !message.target.className.empty();
  try {
    quorveld::demandCimMessage(request);
    quorveld::demandSameFields(request, message);
    test::require(quorveld::decodePercent(request.fields["CIMMethod"]) == message.name,
                  "the method is that of the message");
  } catch (const quorveld::FieldsFault& fault) {
    test::require(fault.status() >= 400 && fault.status() < 600, "a fault is one of HTTP");
  }
  return 0;
}
