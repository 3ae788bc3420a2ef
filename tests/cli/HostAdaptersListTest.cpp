#include <gmock/gmock.h>
#include <sstream>

#include "cli/HostAdaptersList.h"

namespace {

std::string printed(const std::vector<client::HostAdapter>& adapters, bool isJson) {
  std::ostringstream out;
  std::ostringstream err;
  cli::Context context{out, err, {}, {}};
  context.options.isJson = isJson;
  cli::printHostAdapters(context, adapters);
  return out.str();
}

TEST(HostAdaptersList, HasALineForEachPort) {
  EXPECT_EQ(printed({{"0000:03:00",
                      {{"0000:03:00.0"}, {"0000:03:00.1"}},
                      {{"IMG_PXE", "1.0"}, {"IMG_UEFI", "2.0"}},
                      {}},
                     {"0000:04:00", {{"0000:04:00.0"}}, {}, {}}},
                    false),
            "PORT          ADAPTER     FIRMWARE\n"
            "0000:03:00.0  0000:03:00  IMG_PXE 1.0, IMG_UEFI 2.0\n"
            "0000:03:00.1  0000:03:00  IMG_PXE 1.0, IMG_UEFI 2.0\n"
            "0000:04:00.0  0000:04:00  none\n");
}

TEST(HostAdaptersList, IsADocumentForPrograms) {
  EXPECT_EQ(printed({{"0000:03:00", {{"0000:03:00.0"}}, {{"IMG_PXE", "1.0"}}, {}}}, true),
            "[\n"
            "  {\n"
            "    \"pci\": \"0000:03:00\",\n"
            "    \"ports\": [\n"
            "      {\n"
            "        \"identifier\": \"0000:03:00.0\"\n"
            "      }\n"
            "    ],\n"
            "    \"components\": [\n"
            "      {\n"
            "        \"type\": \"IMG_PXE\",\n"
            "        \"version\": \"1.0\",\n"
            "        \"digest\": null\n"
            "      }\n"
            "    ],\n"
            "    \"versions\": []\n"
            "  }\n"
            "]\n");
}

TEST(HostAdaptersList, HasFirmwareBelowThePortsWhereDriversTellVersions) {
  const std::vector<client::HostAdapter> adapters = {
      {"0000:03:00",
       {{"0000:03:00.0"}, {"0000:03:00.1"}},
       {{"IMG_PXE", "1.0"}},
       {{"fw.mgmt", "7.1.0", ""}, {"fw.undi", "1.0.0", "1.1.0"}}},
      {"0000:04:00", {{"0000:04:00.0"}}, {}, {}}};
  EXPECT_EQ(printed(adapters, false),
            "PORT          ADAPTER\n"
            "0000:03:00.0  0000:03:00\n"
            "0000:03:00.1  0000:03:00\n"
            "0000:04:00.0  0000:04:00\n"
            "\n"
            "ADAPTER     FIRMWARE\n"
            "0000:03:00  fw.mgmt 7.1.0\n"
            "            fw.undi 1.0.0, stored 1.1.0\n"
            "            IMG_PXE 1.0\n"
            "0000:04:00  none\n");
  EXPECT_THAT(printed(adapters, true), testing::HasSubstr("\"stored\": null"));
}

TEST(HostAdaptersList, ShowsWhatAHostTellsAsOnThisMachine) {
  client::HostAdapter adapter{
      "0000:03:00",
      {{"0000:03:00.0", "02:00:00:03:00:00", 1U}},
      {{"IMG_PXE", "1.0", "0123456789abcdef"}},
      {},
      client::HostAdapter::Description{"Lab adapter", 0x1AF4, 0x1041, true}};
  EXPECT_EQ(printed({adapter}, false),
            "PORT          ADAPTER     NAME         DEVICE     BOOT  UPDATABLE  FIRMWARE\n"
            "0000:03:00.0  0000:03:00  Lab adapter  1af4:1041  PXE   yes        IMG_PXE 1.0 "
            "(01234567)\n");
  const std::string document = printed({adapter}, true);
  for (const char* field :
       {"\"mac\": \"02:00:00:03:00:00\"", "\"bootType\": \"PXE\"", "\"name\": \"Lab adapter\"",
        "\"vendorId\": \"1af4\"", "\"deviceId\": \"1041\"", "\"updatable\": true",
        "\"whyNotUpdatable\": null", "\"digest\": \"0123456789abcdef\""}) {
    EXPECT_THAT(document, testing::HasSubstr(field));
  }
}

TEST(HostAdaptersList, SaysWhyAnAdapterCannotBeUpdated) {
  client::HostAdapter adapter{"0000:03:00",
                              {{"0000:03:00.0", "", {}, {"eth0", "eth1"}}},
                              {},
                              {{"fw.undi", "1.0.0", "1.1.0"}},
                              client::HostAdapter::Description{"Lab adapter", 0x1AF4, 0x1041}};
  adapter.description->driver = "testnic";
  adapter.description->partNumber = "TN-1";
  adapter.description->whyNotUpdatable = "its driver testnic writes no firmware";
  EXPECT_EQ(printed({adapter}, false),
            "PORT          INTERFACE  DRIVER   DEVICE     UPDATABLE\n"
            "0000:03:00.0  eth0,eth1  testnic  1af4:1041  no\n"
            "\n"
            "ADAPTER     IDENTITY AND FIRMWARE\n"
            "0000:03:00  Lab adapter\n"
            "            part number TN-1\n"
            "            fw.undi 1.0.0, stored 1.1.0\n"
            "\n"
            "Not updatable:\n"
            "  0000:03:00: its driver testnic writes no firmware\n");
}

TEST(HostAdaptersList, SaysSoWhenThereIsNone) {
  EXPECT_EQ(printed({}, false), "The host has no adapters.\n");
  EXPECT_EQ(printed({}, true), "[]\n");
}

}  // namespace
