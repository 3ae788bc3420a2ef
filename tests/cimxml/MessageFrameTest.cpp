#include <gmock/gmock.h>

#include "cimxml/MessageFrame.h"

namespace {

TEST(MessageFrame, HoldsTheIdentifierAndTheVersions) {
  cimxml::Buffer out;
  cimxml::beginMessage(out, "1&2");
  out += "...";
  cimxml::endMessage(out);
  EXPECT_EQ(out,
            "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
            "<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><MESSAGE ID=\"1&amp;2\""
            " PROTOCOLVERSION=\"1.0\">...</MESSAGE></CIM>\n");
}

}  // namespace
