// What the providers of served classes share: a class name and the instances last built. One
// provider differs from another in what its enumeration does (see refresh) and in what it logs.
//
// Any thread may call. One thread enumerates a provider at a time, so that what two of them build
// is never in the list together; the instances stay valid until the next enumeration all the same.
// An enumeration may ask for other classes: the locks follow the classes, of which none asks for
// one that asks for it.

#ifndef ORVEX_CORE_INSTANCEPROVIDER_H_
#define ORVEX_CORE_INSTANCEPROVIDER_H_

#include <memory>
#include <string>

#include "Utils/Export.h"
#include "Utils/Log.h"
#include "Utils/Mutex.h"
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

// What an enumeration does. Apart from CimClass, so that what a provider adds to the operations of
// that follows them directly.
class InstanceSource {
 public:
  InstanceSource(const InstanceSource&) = delete;
  InstanceSource& operator=(const InstanceSource&) = delete;

 protected:
  InstanceSource() = default;
  ~InstanceSource() = default;

  // Brings the instances up to date.
  virtual void refresh() = 0;
};

class ORVEX_CORE_API InstanceProvider : public CimClass, protected InstanceSource {
 public:
  InstanceProvider(std::string className, const EnumerationLog& log);
  ~InstanceProvider() override;

  [[nodiscard]] std::string getName() const override;
  [[nodiscard]] InstanceList::Iterator getInstances() override;

 protected:
  // For refresh(), during which the enumeration is held; elsewhere the lock of the list has to do.
  [[nodiscard]] InstanceList& instances() { return m_instances; }
  // Takes an instance out that the caller owns from then on. Waits for an enumeration on another
  // thread, which may have come upon it.
  void withdraw(CimInstance* instance);
  [[nodiscard]] const EnumerationLog& log() const { return m_log; }

 private:
  InstanceList::Iterator enumerate() ORVEX_REQUIRES(m_enumeration);

  const std::string m_className;
  const EnumerationLog m_log;
  utils::Mutex m_enumeration;  // held while the instances are brought up to date
  InstanceList m_instances ORVEX_GUARDED_BY(m_enumeration);
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
