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
                      {"0000:03:00.0", "0000:03:00.1"},
                      {{"IMG_PXE", "1.0"}, {"IMG_UEFI", "2.0"}},
                      {}},
                     {"0000:04:00", {"0000:04:00.0"}, {}, {}}},
                    false),
            "PORT          ADAPTER     FIRMWARE\n"
            "0000:03:00.0  0000:03:00  IMG_PXE 1.0, IMG_UEFI 2.0\n"
            "0000:03:00.1  0000:03:00  IMG_PXE 1.0, IMG_UEFI 2.0\n"
            "0000:04:00.0  0000:04:00  none\n");
}

TEST(HostAdaptersList, IsADocumentForPrograms) {
  EXPECT_EQ(printed({{"0000:03:00", {"0000:03:00.0"}, {{"IMG_PXE", "1.0"}}, {}}}, true),
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
            "        \"version\": \"1.0\"\n"
            "      }\n"
            "    ],\n"
            "    \"versions\": []\n"
            "  }\n"
            "]\n");
}

TEST(HostAdaptersList, HasFirmwareBelowThePortsWhereDriversTellVersions) {
  const std::vector<client::HostAdapter> adapters = {
      {"0000:03:00",
       {"0000:03:00.0", "0000:03:00.1"},
       {{"IMG_PXE", "1.0"}},
       {{"fw.mgmt", "7.1.0", ""}, {"fw.undi", "1.0.0", "1.1.0"}}},
      {"0000:04:00", {"0000:04:00.0"}, {}, {}}};
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

TEST(HostAdaptersList, SaysSoWhenThereIsNone) {
  EXPECT_EQ(printed({}, false), "The host has no adapters.\n");
  EXPECT_EQ(printed({}, true), "[]\n");
}

}  // namespace
