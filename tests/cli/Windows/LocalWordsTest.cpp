#include <gmock/gmock.h>

#include "cli/LocalWords.h"

namespace {

using cli::toLocalHelp;
using cli::toLocalWords;

TEST(LocalWords, HaveThePathsOfWindows) {
  EXPECT_EQ(toLocalWords("name a file, or a URI like file:///path/to/image"),
            "name a file, or a URI like file://C:/path/to/image");
  EXPECT_EQ(toLocalWords("(FWFilePath = /srv/firmware)"), "(FWFilePath = C:\\firmware)");
  EXPECT_EQ(toLocalWords("/tmp/adapters /tmp/adapters"), "C:\\adapters C:\\adapters");
  EXPECT_EQ(toLocalWords("check the path"), "check the path");
}

TEST(LocalWords, SayNothingOfHosts) {
  EXPECT_EQ(toLocalHelp("Lists the jobs. A host (--host) lists\nevery job. There is no other.\n"
                        "\n"
                        "With a host's address the hosts are asked.\n"
                        "\n"
                        "A ghost\nstays.\n"),
            "Lists the jobs. There is no other.\n"
            "\n"
            "A ghost\nstays.\n");
  EXPECT_FALSE(cli::hasHosts());
}

TEST(LocalWords, AreQuotedInExamplesAsThePromptTakesThem) {
  EXPECT_EQ(toLocalHelp("'quorvel jobs' shows them.\n"
                        "\n"
                        "Examples:\n"
                        "  quorvel watch 'Orvex:Job#1'\n"
                        "  quorvel watch 1 --host http://127.0.0.1:5988\n"),
            "'quorvel jobs' shows them.\n"
            "\n"
            "Examples:\n"
            "  quorvel watch \"Orvex:Job#1\"\n");
}

TEST(LocalWords, HaveVariablesAndContinuedLinesAsThePromptTakesThem) {
  EXPECT_EQ(toLocalHelp("Examples ('quorvel instances X' prints object paths):\n"
                        "  quorvel invoke \"$SERVICE\" A=1 \\\n"
                        "      B='C.ID=\"x\"' D=\"$PORT\"\n"),
            "Examples ('quorvel instances X' prints object paths; write \\\" for each \" in one):\n"
            "  quorvel invoke \"%SERVICE%\" A=1 ^\n"
            "      B=\"C.ID=\\\"x\\\"\" D=\"%PORT%\"\n");
}

TEST(LocalWords, LeaveNoHeadingWithoutExamples) {
  EXPECT_EQ(toLocalHelp("A text.\n\nExamples:\n  quorvel jobs --host http://127.0.0.1:5988\n"),
            "A text.\n");
}

TEST(LocalWords, LeaveTablesAsTheyAre) {
  EXPECT_EQ(toLocalHelp("STATE is one of:\n  same   'quorvel update' does $nothing\n"),
            "STATE is one of:\n  same   'quorvel update' does $nothing\n");
}

TEST(LocalWords, AreWrappedWhereASentenceIsLeftOut) {
  const std::string words = "word word word word word word word word word word word word word word";
  const std::string help = toLocalHelp("Not of hosts. " + words + " " + words + ".\n");
  for (std::size_t start = 0, end = 0; end != std::string::npos; start = end + 1) {
    end = help.find('\n', start);
    EXPECT_LE(help.substr(start, end - start).size(), 95U);
  }
  EXPECT_THAT(help, testing::StartsWith(words));
}

}  // namespace
