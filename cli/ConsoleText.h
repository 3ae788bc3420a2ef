// Makes the console show the program's texts while this object lives. Defined per platform.
//
// Windows: a console has a code page of its own, in which letters beyond ASCII are others; it gets
// the one that the texts are in, and its own back at the end, also when Ctrl-C ends the program.
// Where there is no console nothing happens. POSIX terminals take the bytes as they are. One at a
// time, in the first thread.

#ifndef ORVEX_CLI_CONSOLETEXT_H_
#define ORVEX_CLI_CONSOLETEXT_H_

namespace cli {

class ConsoleText {
 public:
  ConsoleText();
  ConsoleText(const ConsoleText&) = delete;
  ConsoleText& operator=(const ConsoleText&) = delete;
  // NOLINTNEXTLINE(performance-trivially-destructible): on Windows it does something
  ~ConsoleText();
};

// Gives the console its own back now, before the process ends in a way that destroys no object.
void giveConsoleBack() noexcept;

// Says whether the program goes on when it is interrupted: then its texts do.
void keepConsoleOnInterrupt(bool isKept) noexcept;

}  // namespace cli

#endif  // ORVEX_CLI_CONSOLETEXT_H_
