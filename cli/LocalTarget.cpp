#include "cli/LocalTarget.h"

#include <algorithm>
#include <vector>

#include "cli/TargetName.h"
#include "client/Fault.h"
#include "client/Texts.h"
#include "midapi/MidApi.h"

namespace cli {
namespace {

std::string describeTargets(const std::vector<std::string>& ports) {
  if (ports.empty()) {
    return "; there are no adapters here (see --adapters and 'quorvel adapters')";
  }
  std::vector<std::string> adapters;
  for (const std::string& port : ports) {
    std::string adapter = adapterOfPort(port);
    if (adapters.empty() || adapters.back() != adapter) {
      adapters.push_back(std::move(adapter));
    }
  }
  return "; there are\n  adapters: " + client::join(adapters, " ") +
         "\n  ports:    " + client::join(ports, " ");
}

}  // namespace

std::string findLocalPort(const std::string& text) {
  const client::TargetName name = parseTarget(text);
  const std::vector<std::string> ports = ma::enumerateAdapters();
  const auto found = std::find_if(ports.begin(), ports.end(), [&name](const std::string& port) {
    return name.kind == client::TargetKind::Port      ? port == name.text
           : name.kind == client::TargetKind::Adapter ? adapterOfPort(port) == name.text
                                                      : false;
  });
  if (found == ports.end()) {
    throw client::Fault("there is no adapter or port '" + text + "'" + describeTargets(ports));
  }
  return *found;
}

std::string adapterOfPort(const std::string& port) {
  return port.substr(0, port.rfind('.'));
}

}  // namespace cli
