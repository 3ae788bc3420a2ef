// Declares what interfaces name of the argument parser: its own header takes the compiler long.

#ifndef ORVEX_HOST_PARSERNAMES_H_
#define ORVEX_HOST_PARSERNAMES_H_

namespace CLI {  // NOLINT(readability-identifier-naming): the parser's name
class App;
class Validator;
}  // namespace CLI

#endif  // ORVEX_HOST_PARSERNAMES_H_
