// What the inventory's associations say, as texts.

#ifndef ORVEX_TESTS_INVENTORY_ASSOCIATIONFIXTURE_H_
#define ORVEX_TESTS_INVENTORY_ASSOCIATIONFIXTURE_H_

#include <gmock/gmock.h>
#include <string>
#include <vector>

#include "Os/Environment.h"
#include "core/CimPath.h"
#include "tests/inventory/InventoryFixture.h"

namespace test {

// A machine called "lab-7" whose agent is with the broker.
class AssociationFixture : public InventoryFixture {
 protected:
  AssociationFixture() { os::setEnvironment("COMPUTERNAME", "lab-7"); }

  // Returns what tells an instance from others of its class.
  static std::string nameOf(const std::string& objectPath) {
    const core::CimPath path(objectPath);
    for (const char* key : {"DeviceID", "InstanceID", "Name"}) {
      if (path.contains(key)) {
        return path.at(key);
      }
    }
    return objectPath;
  }

  // Returns "name > name" of each association of the class, in their order. Expects that both ends
  // are instances that the broker serves.
  std::vector<std::string> relations(const std::string& className) {
    struct Ends {
      std::string from;
      std::string to;
    };
    std::vector<Ends> all;
    for (core::CimInstance* association : m_broker.getInstances(className)) {
      const core::CimPath path(association->getPath());
      EXPECT_EQ(path.size(), 2u) << association->getPath();
      std::vector<std::string> ends;
      core::CimPropertyList::Iterator cursor = association->getProperties().iterator();
      for (const core::CimProperty* property = cursor.first(); property != nullptr;
           property = cursor.next()) {
        if (property->isKey()) {
          ends.push_back(property->toString());
        }
      }
      all.push_back({ends.at(0), ends.at(1)});
    }
    std::vector<std::string> texts;
    for (const Ends& ends : all) {
      for (const std::string& end : {ends.from, ends.to}) {
        EXPECT_NE(m_broker.getInstanceByPath(core::CimPath(end)), nullptr) << end;
      }
      texts.push_back(nameOf(ends.from) + " > " + nameOf(ends.to));
    }
    return texts;
  }

  core::CimBroker& m_broker = brokerWithInventory();
};

}  // namespace test

#endif  // ORVEX_TESTS_INVENTORY_ASSOCIATIONFIXTURE_H_
