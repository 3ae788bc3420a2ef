// An adapter holds a piece of software, or a firmware image could be installed on it.

#ifndef ORVEX_INVENTORY_ORVEX_ELEMENTSOFTWAREIDENTITY_H_
#define ORVEX_INVENTORY_ORVEX_ELEMENTSOFTWAREIDENTITY_H_

#include <cstddef>
#include <string>

#include "cim/CIM_ElementSoftwareIdentity.h"
#include "core/CimPropertyTypes.h"
#include "core/InstanceProvider.h"
#include "inventory/FirmwareComparisons.h"
#include "inventory/Orvex_PortController.h"

class Orvex_ElementSoftwareIdentity : public CIM_ElementSoftwareIdentity {
 public:
  static constexpr const char* kClassName = "Orvex_ElementSoftwareIdentity";
  using Superclass = CIM_ElementSoftwareIdentity;

  // From the software (Antecedent) to the controller that it is for (Dependent). The other
  // properties follow from the comparison: ElementSoftwareStatus is 6 Installed, 2 Current, 3 Next,
  // and 8 Available for an image that could be installed; NULL for one that could not, or where
  // that is not known.
  Orvex_ElementSoftwareIdentity(core::CimInstance* software, Orvex_PortController* controller,
                                const std::string& comparison);

  [[nodiscard]] std::string getClassName() const override { return kClassName; }

  // What the software is to the adapter:
  //   installed      a component in its flash
  //   running        the version of a part of its firmware that works now, as its driver says
  //   stored         the version that its flash holds, which takes effect at the next activation
  //   newer, older   an image of a newer or of an older version than the adapter holds
  //   same           an image whose bytes the flash holds
  //   same version   an image of the installed versions in other bytes
  //   other types    an image whose types are not those that the adapter holds
  //   not updatable  an image for an adapter whose firmware cannot be replaced
  //   unknown        an image, where the adapter's flash or the image could not be read, or not in
  //                  time, or the adapter has changed since
  core::CimPropertyString Comparison{"Comparison", this};
};

// Rebuilds the associations at every enumeration. There is none between an image and an adapter
// that it is not for. Files are compared first, unless this thread has had that done (see
// core/LookAhead.h), since others must not wait for them. Comparisons that take too long are
// unknown, with an error record, once until all were compared.
class Orvex_ElementSoftwareIdentityClass : public core::InstanceProvider {
 public:
  // `comparisons` must live as long as the provider.
  explicit Orvex_ElementSoftwareIdentityClass(inventory::FirmwareComparisons& comparisons);

 protected:
  void refresh() override;

 private:
  void report(std::size_t uncompared);

  inventory::FirmwareComparisons& m_comparisons;
  bool m_isReported = false;  // guarded by the request, as the instances are
};

#endif  // ORVEX_INVENTORY_ORVEX_ELEMENTSOFTWAREIDENTITY_H_
