// What other providers serve, played by a test: ports, controllers, software identities, and
// whatever else an instance is made of.

#ifndef ORVEX_TESTS_AGENT_FAKESIBLINGS_H_
#define ORVEX_TESTS_AGENT_FAKESIBLINGS_H_

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "core/CimInstance.h"

namespace test {

// What a software identity says of itself: an image that can be installed, unless it is changed.
struct Software {
  std::string identity = "firmware";
  std::uint32_t imageKind = 4;
  std::vector<std::string> targetTypes = {"IMG_PXE"};
  std::string className = "Orvex_SoftwareIdentity";
};

// The agent stays with the broker for the life of the process; what it serves is the test's.
class FakeSiblings {
 public:
  // Adds the agent to the broker where that was not done.
  FakeSiblings();
  FakeSiblings(const FakeSiblings&) = delete;
  FakeSiblings& operator=(const FakeSiblings&) = delete;
  ~FakeSiblings();

  // Each returns the object path of what it adds.

  // A port with this identity text, which may be empty.
  std::string addPort(const std::string& identity,
                      const std::string& className = "Orvex_EthernetPort");
  // A controller that owns the ports with these identities.
  std::string addController(const std::vector<std::string>& ports,
                            const std::string& className = "Orvex_PortController");
  std::string addSoftwareIdentity(const Software& software = {});
  // The resource of a file.
  std::string addResource(const std::string& fileId, const std::string& uri);
  std::string addRegisteredProfile(const std::string& instanceId);
  // A new job for the port with this identity.
  std::string addJob(const std::string& target);
  // The installation service.
  std::string addService();
  // The capabilities of the installation service.
  std::string addCapabilities();
  // Any instance, under its class name.
  std::string add(std::unique_ptr<core::CimInstance> instance);

  // Takes away what was added of the class.
  void clear(const std::string& className);

  // Returns the classes whose instances the broker was asked for since the last call, served or
  // not, in order.
  std::vector<std::string> takeRequests();
};

}  // namespace test

#endif  // ORVEX_TESTS_AGENT_FAKESIBLINGS_H_
