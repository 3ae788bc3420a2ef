// Whether two object paths mean the same instance.
//
//   namespace                left aside
//   names of class and keys  without regard to the case of ASCII letters
//   order of the keys        does not count
//   values                   without their quotes; one that is itself the path of an instance by
//                            these rules, any other byte by byte

#ifndef ORVEX_QUERY_OBJECTPATHCOMPARISON_H_
#define ORVEX_QUERY_OBJECTPATHCOMPARISON_H_

#include <string_view>

namespace query {

// Returns whether the text is the path of an instance.
[[nodiscard]] bool isObjectPath(std::string_view text);

// Returns false, too, where a text is no path.
[[nodiscard]] bool isSameObject(std::string_view left, std::string_view right);

}  // namespace query

#endif  // ORVEX_QUERY_OBJECTPATHCOMPARISON_H_
