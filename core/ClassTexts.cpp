#include "core/ClassTexts.h"

#include "core/ClassDescriber.h"

namespace core {

void ClassTexts::add(std::span<const ClassText> table) {
  for (const ClassText& text : table) {
    m_texts.emplace(text.name, &text);
  }
}

const ClassText* ClassTexts::find(std::string_view className) const {
  const auto found = m_texts.find(className);
  return found != m_texts.end() ? found->second : nullptr;
}

ClassTexts getClassTexts(const CimBroker& broker) {
  ClassTexts texts;
  for (const CimAgent* agent : broker.getAgents()) {
    if (const auto* describer = dynamic_cast<const ClassDescriber*>(agent)) {
      describer->describeClasses(texts);
    }
  }
  return texts;
}

}  // namespace core
