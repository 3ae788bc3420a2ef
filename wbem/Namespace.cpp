#include "wbem/Namespace.h"

#include <utility>

#include "wbem/Status.h"

namespace wbem {
namespace {

// Of a namespace: enough for each class in each way that clients ask for it.
constexpr std::size_t kMostFormats = 1024;

}  // namespace

Namespace::Namespace(std::string name, std::shared_ptr<const core::CimSchema> schema,
                     std::vector<ServedClass> served)
    : m_name(std::move(name)), m_schema(std::move(schema)) {
  for (ServedClass& entry : served) {
    const std::string_view className = entry.declaration->name;
    m_served.emplace(className, std::move(entry));
  }
}

const core::ClassDeclaration& Namespace::demandClass(std::string_view className) const {
  const core::ClassDeclaration* declaration = m_schema->find(className);
  if (declaration == nullptr) {
    throw StatusFault(Status::InvalidClass,
                      "there is no class '" + std::string(className) + "' in namespace " + m_name);
  }
  return *declaration;
}

const ServedClass* Namespace::findServed(std::string_view className) const {
  const auto found = m_served.find(className);
  return found != m_served.end() ? &found->second : nullptr;
}

std::vector<const ServedClass*> Namespace::demandServedBelow(std::string_view className) const {
  const core::ClassDeclaration& declaration = demandClass(className);
  std::vector<const ServedClass*> found;
  if (const ServedClass* own = findServed(declaration.name)) {
    found.push_back(own);
  }
  for (const core::ClassDeclaration* descendant : m_schema->getDescendants(declaration.name)) {
    if (const ServedClass* below = findServed(descendant->name)) {
      found.push_back(below);
    }
  }
  return found;
}

std::vector<const ServedClass*> Namespace::served() const {
  std::vector<const ServedClass*> all;
  all.reserve(m_served.size());
  for (const auto& [className, entry] : m_served) {
    all.push_back(&entry);
  }
  return all;
}

Namespace::Format Namespace::format(const core::ClassDeclaration& declaration,
                                    const FormatOptions& options) const {
  const utils::ScopedLock lock(m_formatsMutex);
  const Key key{&declaration, options};
  if (const auto found = m_formats.find(key); found != m_formats.end()) {
    return found->second;
  }
  auto made = std::make_shared<const cimxml::InstanceFormat>(
      declaration,
      cimxml::InstanceFormat::Options{options.isLocalOnly, options.hasClassOrigin, nullptr,
                                      options.ancestor},
      m_name);
  if (m_formats.size() < kMostFormats) {
    m_formats.emplace(key, made);
  }
  return made;
}

}  // namespace wbem
