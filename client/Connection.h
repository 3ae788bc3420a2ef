// Where a command finds its CIM instances: the broker of this process, or a host. Commands do not
// know which; what they get are copies, valid for good. One thread.

#ifndef ORVEX_CLIENT_CONNECTION_H_
#define ORVEX_CLIENT_CONNECTION_H_

#include <chrono>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "client/ClassDescription.h"
#include "client/MethodCall.h"
#include "client/Snapshot.h"
#include "core/CimPropertyList.h"

namespace client {

// The names of the agents that serve each class, in the order in which they are asked; none where
// that is not known. The classes are in alphabetical order.
using ServingAgents = std::map<std::string, std::vector<std::string>>;

// What a caller does directly before a method starts.
using OnStart = std::function<void()>;

// Every operation throws Fault where the other side cannot be asked or refuses, and what a provider
// throws in this process.
class Connection {
 public:
  Connection() = default;
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;
  virtual ~Connection() = default;

  [[nodiscard]] virtual ServingAgents getClasses() = 0;

  // Returns what there is to say of a class; nothing for one that is not declared.
  [[nodiscard]] virtual std::optional<ClassDescription> findClass(const std::string& className) = 0;

  // Returns the instances of a class and of those below it, in the order in which they are served;
  // nothing for a class that is neither served nor declared.
  [[nodiscard]] virtual std::optional<Instances> findInstances(const std::string& className) = 0;

  // Returns the instance at an object path, nothing when there is none.
  [[nodiscard]] virtual std::optional<InstanceSnapshot> findInstance(const std::string& path) = 0;

  // The same for an instance that is looked at time and again: gives up after a few seconds, so
  // that whoever waits for the answer can do something else.
  [[nodiscard]] virtual std::optional<InstanceSnapshot> lookAgain(const std::string& path) = 0;

  // Returns the associations of any class that refer to an instance, by its path as a snapshot has
  // it; by class in alphabetical order, then as served.
  [[nodiscard]] virtual Instances findReferencing(const std::string& path) = 0;

  // Calls a method of the instance at an object path. `out` names the output arguments that the
  // method has; the answer holds their values. `onStart` may be empty; it runs directly before the
  // call itself, once all is known that had to be asked for it. Throws Fault, too, when there is no
  // such instance, and what the method throws.
  [[nodiscard]] virtual MethodAnswer invoke(const std::string& path, const std::string& method,
                                            core::CimPropertyList& in, core::CimPropertyList& out,
                                            const OnStart& onStart) = 0;

  // Returns whether instances, files and jobs are those of another process, perhaps on another
  // machine.
  [[nodiscard]] virtual bool isRemote() const = 0;

  // Returns how a user calls this program for the same instances, for a shell: "quorvel", with the
  // options that lead there.
  [[nodiscard]] virtual std::string program() const = 0;

  // Returns the command by which a user follows a job once this process has ended, for a shell;
  // empty where the jobs end with this process.
  [[nodiscard]] virtual std::string watchCommand(const std::string& jobId) const = 0;

  // How long to wait between two looks at something that changes.
  [[nodiscard]] virtual std::chrono::milliseconds pollInterval() const = 0;

  // For how long such looks may fail with PassingFault before they are given up.
  [[nodiscard]] virtual std::chrono::milliseconds patience() const = 0;
};

}  // namespace client

#endif  // ORVEX_CLIENT_CONNECTION_H_
