// What the providers of served classes share: a class name and the instances last built. One
// provider differs from another in what its enumeration does (see refresh) and in what it logs.

#ifndef ORVEX_CORE_INSTANCEPROVIDER_H_
#define ORVEX_CORE_INSTANCEPROVIDER_H_

#include <memory>
#include <string>

#include "Utils/Export.h"
#include "Utils/Log.h"
#include "core/CimClass.h"

namespace core {

// The records of an enumeration. They name the place where this is made, in the provider's own
// file, since the source is that file's. The texts must live as long as the provider.
struct EnumerationLog {
  utils::LogSource source{};
  utils::LogOrigin function = nullptr;
  const char* firstRecord = nullptr;  // null: none
  const char* blockName = nullptr;    // the timed block round the enumeration; null: none
};

class ORVEX_CORE_API InstanceProvider : public CimClass {
 public:
  InstanceProvider(std::string className, const EnumerationLog& log);
  ~InstanceProvider() override;

  [[nodiscard]] std::string getName() const override;
  [[nodiscard]] InstanceList::Iterator getInstances() override;

 protected:
  // Brings the instances up to date.
  virtual void refresh() = 0;

  [[nodiscard]] InstanceList& instances() { return m_instances; }
  [[nodiscard]] const EnumerationLog& log() const { return m_log; }

 private:
  InstanceList::Iterator enumerate();

  const std::string m_className;
  const EnumerationLog m_log;
  InstanceList m_instances;
};

// The provider of a class with one instance, which is made by the first enumeration and then kept.
// Instance fills its properties in setPropertyValues().
template <class Instance>
class SingleInstanceProvider : public InstanceProvider {
 public:
  using InstanceProvider::InstanceProvider;

 protected:
  void refresh() override {
    if (instances().iterator().first() == nullptr) {
      utils::logDebug(log().source, log().function, "create new instance");
      auto instance = std::make_unique<Instance>();
      instance->setPropertyValues();
      instances().add(instance.get());
      static_cast<void>(instance.release());
    }
  }
};

}  // namespace core

#endif  // ORVEX_CORE_INSTANCEPROVIDER_H_
