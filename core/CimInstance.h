// One CIM object: its properties, its methods, and a mark for one that is deleted.
//
// Concrete classes declare their properties as members, each built with the instance as its owner,
// and register their methods while they are constructed. An instance belongs to the InstanceList
// that holds it; pointers to it are valid until the next enumeration of its class. Method look-up
// takes no lock: methods are registered before an instance is shared.

#ifndef ORVEX_CORE_CIMINSTANCE_H_
#define ORVEX_CORE_CIMINSTANCE_H_

#include <atomic>
#include <cstdint>
#include <map>
#include <string>

#include "Utils/Export.h"
#include "core/CimPropertyList.h"

namespace core {

class ORVEX_CORE_API CimInstance {
 public:
  // An extrinsic method: input arguments, output arguments, the job that it created. Returns the
  // CIM return code.
  using Method = std::uint32_t (CimInstance::*)(CimPropertyList* in, CimPropertyList* out,
                                                CimInstance** job);

  CimInstance();
  CimInstance(const CimInstance&) = delete;
  CimInstance& operator=(const CimInstance&) = delete;

  // The methods of a software installation service; here they throw utils::ENotSupported.
  virtual std::uint32_t InstallFromSoftwareIdentity(CimPropertyList* in, CimPropertyList* out,
                                                    CimInstance** job);
  virtual std::uint32_t InstallFromURI(CimPropertyList* in, CimPropertyList* out,
                                       CimInstance** job);
  virtual std::uint32_t CheckSoftwareIdentity(CimPropertyList* in, CimPropertyList* out,
                                              CimInstance** job);

  // Returns the name of the CIM class.
  [[nodiscard]] virtual std::string getClassName() const = 0;

  // Takes new values: verifies all of them, then applies them, so that a refused value leaves every
  // property as it was. Throws what CimProperty::verify throws, and utils::Exception for a property
  // that the instance lacks.
  virtual void modify(CimPropertyList& newValues);

  // Calls the method that is registered under the name, which is case-sensitive. Throws
  // utils::ENotSupported when there is none or when it is only declared, else what the method
  // throws.
  virtual std::uint32_t invokeMethod(std::string name, CimPropertyList* in, CimPropertyList* out,
                                     CimInstance** job);

  virtual ~CimInstance();

  // Returns whether a method is registered or declared under the name.
  [[nodiscard]] bool hasMethod(const std::string& name) const { return m_methods.contains(name); }
  // Returns whether one is registered, so that it does something.
  [[nodiscard]] bool offersMethod(const std::string& name) const;

  // Returns the object path: "Class.Key=Value,...", in property order, string and reference values
  // quoted; "Class." without keys. CimPath parses it.
  [[nodiscard]] std::string getPath();

  [[nodiscard]] CimPropertyList& getProperties() { return m_properties; }
  // Returns the property in force under the name, null when there is none.
  [[nodiscard]] CimProperty* getProperty(const std::string& name) { return m_properties.get(name); }

  // A deleted instance is passed over when its class is enumerated.
  [[nodiscard]] bool isDeleted() const { return m_isDeleted.load(std::memory_order_relaxed); }
  void setDeleted(bool isDeleted) { m_isDeleted.store(isDeleted, std::memory_order_relaxed); }

 protected:
  // Registers a method of the class, replacing an earlier one of that name. For constructors of
  // concrete classes, since getClassName() must answer by then.
  void addMethod(const std::string& name, Method method);
  // Notes that the class has the method, which throws utils::ENotSupported until one is registered.
  // For constructors of schema classes; logs nothing, since those have no name yet.
  void declareMethod(const std::string& name);

 private:
  std::uint32_t refuseMethod(CimPropertyList* in, CimPropertyList* out, CimInstance** job);

  CimPropertyList m_properties;
  std::atomic<bool> m_isDeleted{false};
  std::map<std::string, Method> m_methods;
};

}  // namespace core

#endif  // ORVEX_CORE_CIMINSTANCE_H_
