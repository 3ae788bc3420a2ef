#include "query/Statement.h"

namespace query {

std::string Chain::written() const {
  std::string text;
  for (const Step& step : steps) {
    text += text.empty() ? "" : ".";
    text += step.scope ? step.scope->name + "::" : "";
    text += step.name;
  }
  switch (indexing) {
    case Indexing::None:
      break;
    case Indexing::All:
      text += "[*]";
      break;
    case Indexing::Element:
      text += '[' + std::to_string(index) + ']';
      break;
  }
  return text;
}

}  // namespace query
