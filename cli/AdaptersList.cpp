#include "cli/AdaptersList.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "Utils/FirmwareTypes.h"
#include "Utils/Printable.h"
#include "cli/AdapterWords.h"
#include "cli/Remarks.h"
#include "cli/TextTable.h"
#include "client/Texts.h"

namespace cli {
namespace {

constexpr const char* kNothing = "-";
constexpr const char* kVirtual = "virtual";

bool isKernels(const ma::AdapterListing& adapter) {
  return adapter.kind == ma::AdapterKind::Kernel;
}

std::string orNothing(const std::string& text) {
  return text.empty() ? kNothing : text;
}

// ---- virtual adapters alone

std::string describeFlash(const ma::AdapterListing& adapter) {
  if (!adapter.flashDefect.empty()) {
    return "damaged";
  }
  const std::string images = describeImages(adapter.components);
  return images.empty() ? "none" : images;
}

void printVirtualAdapters(std::ostream& out, const ma::AdapterList& list) {
  TextTable table({"PORT", "ADAPTER", "NAME", "DEVICE", "BOOT", "UPDATABLE", "FIRMWARE"});
  for (const ma::AdapterListing& adapter : list.adapters) {
    for (const ma::AdapterPort& port : adapter.ports) {
      table.addRow({port.identifier, adapter.pci, adapter.name, toDeviceText(adapter),
                    std::string(bootTypeName(port.bootType)), adapter.isUpdatable ? "yes" : "no",
                    describeFlash(adapter)});
    }
  }
  table.print(out);
}

// ---- with adapters of the kernel

const char* describeUpdatable(const ma::AdapterListing& adapter) {
  if (adapter.isBeingWritten) {
    return "being written";
  }
  return adapter.isUpdatable ? "yes" : "no";
}

void printPorts(std::ostream& out, const ma::AdapterList& list) {
  TextTable table({"PORT", "INTERFACE", "DRIVER", "DEVICE", "UPDATABLE"});
  for (const ma::AdapterListing& adapter : list.adapters) {
    const std::string driver = isKernels(adapter) ? orNothing(adapter.driver) : kVirtual;
    for (const ma::AdapterPort& port : adapter.ports) {
      table.addRow({port.identifier, orNothing(client::join(port.interfaces, ",")), driver,
                    toDeviceText(adapter), describeUpdatable(adapter)});
    }
  }
  table.print(out);
}

void addKnown(std::vector<std::string>& lines, const char* what, const std::string& text) {
  if (!text.empty()) {
    lines.push_back(what + text);
  }
}

// Returns a line for each version that a driver tells, and one for the images of the flash.
std::vector<std::string> describeFirmware(const ma::AdapterListing& adapter) {
  std::vector<std::string> lines;
  std::transform(adapter.versions.begin(), adapter.versions.end(), std::back_inserter(lines),
                 describeVersions);
  if (!adapter.flashDefect.empty()) {
    lines.emplace_back(isKernels(adapter) ? "option ROM damaged" : "flash damaged");
  } else {
    addKnown(lines, "", describeImages(adapter.components));
  }
  if (lines.empty()) {
    lines.emplace_back(isKernels(adapter) ? "firmware not known" : "no firmware");
  }
  return lines;
}

// A block for each adapter: names are long, and so none of it stands beside another.
void printContents(std::ostream& out, const ma::AdapterList& list) {
  TextTable table({"ADAPTER", "IDENTITY AND FIRMWARE"});
  for (const ma::AdapterListing& adapter : list.adapters) {
    std::vector<std::string> lines;
    addKnown(lines, "", adapter.name);
    addKnown(lines, "part number ", adapter.partNumber);
    addKnown(lines, "serial number ", adapter.serialNumber);
    std::vector<std::string> firmware = describeFirmware(adapter);
    std::move(firmware.begin(), firmware.end(), std::back_inserter(lines));
    std::string pci = adapter.pci;
    for (std::string& line : lines) {
      table.addRow({std::exchange(pci, ""), std::move(line)});
    }
  }
  table.print(out);
}

void printRemarks(std::ostream& out, const ma::AdapterList& list) {
  Remarks reasons("Not updatable");
  Remarks notes("Notes");
  for (const ma::AdapterListing& adapter : list.adapters) {
    if (adapter.isBeingWritten) {
      notes.add(adapter.pci, "its flash is being written, and this is what was known before");
    }
    if (!adapter.isUpdatable && !adapter.whyNotUpdatable.empty()) {
      reasons.add(adapter.pci, adapter.whyNotUpdatable);
    }
    for (const std::string& note : adapter.notes) {
      notes.add(adapter.pci, note);
    }
    if (std::any_of(adapter.versions.begin(), adapter.versions.end(), isWaiting)) {
      notes.add(adapter.pci,
                "'quorvel activate' puts stored firmware into force, or says what that takes");
    }
  }
  reasons.print(out);
  notes.print(out);
}

// ---- documents

client::Value toJson(const ma::AdapterListing& adapter, const ma::AdapterPort& port) {
  client::Value value;
  value.set("identifier", port.identifier);
  value.set("mac", port.mac);
  if (isKernels(adapter)) {
    value.set("interfaces", port.interfaces);
  } else {
    value.set("bootType", bootTypeName(port.bootType));
  }
  return value;
}

client::Value toJson(const ma::AdapterComponent& component) {
  return client::Value::object({{"type", utils::firmwareTypeName(component.type)},
                                {"version", component.version.toString()},
                                {"vendorId", toIdText(component.vendor)},
                                {"deviceId", toIdText(component.device)},
                                {"forAdapter", component.isForAdapter},
                                {"length", component.length},
                                {"digest", toDigestText(component.digest)}});
}

client::Value toJson(const ma::FirmwareVersions& versions) {
  return client::Value::object({{"name", versions.name},
                                {"running", textOrNull(versions.running)},
                                {"stored", textOrNull(versions.stored)}});
}

template <class Item>
client::Value toArray(const std::vector<Item>& items) {
  client::Value array = client::Value::array();
  for (const Item& item : items) {
    array.push(toJson(item));
  }
  return array;
}

}  // namespace

void printAdapters(std::ostream& out, const ma::AdapterList& list) {
  if (std::none_of(list.adapters.begin(), list.adapters.end(), isKernels)) {
    printVirtualAdapters(out, list);
    return;
  }
  printPorts(out, list);
  out << '\n';
  printContents(out, list);
  printRemarks(out, list);
}

void warnAboutAdapters(std::ostream& err, const ma::AdapterList& list) {
  std::set<std::string> listed;
  for (const ma::AdapterListing& adapter : list.adapters) {
    listed.insert(adapter.pci);
  }
  for (const ma::AdapterProblem& problem : list.problems) {
    err << "quorvel: warning: " << utils::toPrintable(problem.place)
        << (listed.contains(problem.place) ? ": " : " is passed over: ")
        << utils::toPrintable(problem.text) << "\n  next: " << utils::toPrintable(problem.advice)
        << "\n";
  }
  for (const ma::AdapterListing& adapter : list.adapters) {
    if (!adapter.flashDefect.empty()) {
      err << "quorvel: warning: the " << (isKernels(adapter) ? "option ROM" : "flash") << " of "
          << adapter.pci << " holds no valid images: " << utils::toPrintable(adapter.flashDefect)
          << '\n';
      if (adapter.isUpdatable || !isKernels(adapter)) {
        err << "  next: install firmware with 'quorvel update'\n";
      }
    }
  }
}

client::Value toJson(const ma::AdapterListing& adapter) {
  client::Value ports = client::Value::array();
  for (const ma::AdapterPort& port : adapter.ports) {
    ports.push(toJson(adapter, port));
  }
  client::Value result;
  result.set("pci", adapter.pci);
  result.set("kind", isKernels(adapter) ? "kernel" : kVirtual);
  result.set("name", isKernels(adapter) ? textOrNull(adapter.name) : client::Value(adapter.name));
  result.set("vendorId", toIdText(adapter.vendor));
  result.set("deviceId", toIdText(adapter.device));
  result.set("updatable", adapter.isUpdatable);
  result.set("ports", std::move(ports));
  result.set("components", toArray(adapter.components));
  result.set("flashDefect", textOrNull(adapter.flashDefect));
  result.set("flashBytes", adapter.flashBytes);
  if (!isKernels(adapter)) {
    result.set("writeRate", adapter.writeRate);
    result.set("capabilityWord", adapter.capabilityWord);
    return result;
  }
  result.set("driver", textOrNull(adapter.driver));
  result.set("partNumber", textOrNull(adapter.partNumber));
  result.set("serialNumber", textOrNull(adapter.serialNumber));
  result.set("versions", toArray(adapter.versions));
  result.set("whyNotUpdatable", textOrNull(adapter.whyNotUpdatable));
  result.set("isBeingWritten", adapter.isBeingWritten);
  result.set("notes", adapter.notes);
  return result;
}

}  // namespace cli
