#include "cli/ShownFirmware.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <utility>

#include "Utils/FirmwareTypes.h"
#include "Utils/Printable.h"
#include "cli/AdapterWords.h"
#include "cli/Remarks.h"
#include "cli/TextTable.h"
#include "client/Texts.h"

namespace cli {
namespace {

// A person looks for one device among some; the document has them all.
constexpr std::size_t kMostShownDevices = 16;
constexpr std::size_t kDevicesOfALine = 4;

std::string describeImages(const std::vector<utils::FirmwareVersionInfo>& images) {
  std::string text;
  for (const utils::FirmwareVersionInfo& image : images) {
    text += (text.empty() ? "" : ", ") + std::string(utils::firmwareTypeName(image.type)) + " " +
            image.version.toString();
  }
  return text;
}

std::vector<std::string> typesOf(const std::vector<utils::FirmwareVersionInfo>& images) {
  std::vector<std::string> types;
  std::transform(images.begin(), images.end(), std::back_inserter(types), [](const auto& image) {
    return std::string(utils::firmwareTypeName(image.type));
  });
  return types;
}

// Returns the devices, some of them a line.
std::vector<std::string> deviceLines(const ma::FirmwareDescription& file) {
  const std::size_t shown = std::min(file.devices.size(), kMostShownDevices);
  std::vector<std::string> lines;
  for (std::size_t index = 0; index < shown; ++index) {
    if (index % kDevicesOfALine == 0) {
      lines.push_back(file.devices[index]);
    } else {
      lines.back() += ", " + file.devices[index];
    }
  }
  if (shown < file.devices.size()) {
    lines.push_back("and " + std::string(file.hasMoreDevices ? "more than " : "") +
                    std::to_string(file.devices.size() - shown) + " more (--json lists them)");
  } else if (file.hasMoreDevices) {
    lines.emplace_back("and more");
  }
  return lines;
}

// Prints facts, each with its name, without those that are not known.
class Facts {
 public:
  explicit Facts(std::ostream& out) : m_out(out) {}

  void add(std::string name, const std::string& text) {
    if (!text.empty()) {
      name.resize(kNameWidth, ' ');
      m_out << "  " << name << utils::toPrintable(text) << '\n';
    }
  }
  void add(const char* name, const std::vector<std::string>& lines) {
    for (const std::string& line : lines) {
      add(std::string(std::exchange(name, "")), line);
    }
  }

 private:
  static constexpr std::size_t kNameWidth = 13;

  std::ostream& m_out;
};

std::string describeDrivers(const ma::FirmwareDescription& file) {
  std::string drivers = client::join(file.drivers, ", ");
  return file.format == ma::FirmwareFormat::Unknown && !drivers.empty()
             ? drivers + " (their files cannot be told from others)"
             : drivers;
}

void printFacts(std::ostream& out, const ma::FirmwareDescription& file) {
  Facts facts(out);
  facts.add("format", file.formatName);
  facts.add("damaged", file.problem);
  facts.add("version", file.version);
  facts.add("released", file.releaseTime);
  facts.add("size", std::to_string(file.size) + " bytes");
  facts.add("digest", toDigestText(file.digest));
  if (file.problem.empty()) {
    facts.add("devices", deviceLines(file));
    if (!file.tellsDevices) {
      facts.add(file.devices.empty() ? "devices" : "",
                std::string("the file does not say which devices it is for"));
    }
  }
  facts.add("image types", client::join(typesOf(file.images), "+"));
  facts.add("drivers", describeDrivers(file));
  if (file.protectsComponents) {
    facts.add("checksum", *file.protectsComponents
                              ? "of the whole package"
                              : "of the header alone: compare the file with what its maker tells");
  }
  facts.add("kernel", file.kernelRefusal.empty() ? "" : "refuses it: " + file.kernelRefusal);
}

// The component of an option ROM is an image, whose name and version stand there already.
std::string imagesIn(const ma::FirmwareComponent& component) {
  const bool isImage = component.images.size() == 1 &&
                       utils::firmwareTypeName(component.images.front().type) == component.name;
  return isImage ? "" : describeImages(component.images);
}

void printComponents(std::ostream& out, const ma::FirmwareDescription& file) {
  if (file.components.empty()) {
    return;
  }
  const bool hasImages =
      std::any_of(file.components.begin(), file.components.end(),
                  [](const auto& component) { return !imagesIn(component).empty(); });
  std::vector<std::string> headings = {"COMPONENT", "VERSION", "BYTES", "KIND", "TAKES EFFECT BY"};
  if (hasImages) {
    headings.insert(headings.end() - 1, "IMAGES");
  }
  TextTable table(std::move(headings));
  for (const ma::FirmwareComponent& component : file.components) {
    std::vector<std::string> cells = {component.name, component.version,
                                      std::to_string(component.size), component.classification,
                                      component.activation};
    if (hasImages) {
      cells.insert(cells.end() - 1, imagesIn(component));
    }
    table.addRow(std::move(cells));
  }
  out << '\n';
  table.print(out);
  if (file.hasMoreComponents) {
    out << "and more\n";
  }
}

void printVerdicts(std::ostream& out, const std::vector<AdapterVerdict>& adapters) {
  out << '\n';
  if (adapters.empty()) {
    out << "There are no adapters to compare it with.\n";
    return;
  }
  TextTable table({"ADAPTER", "STATE", "NAME"});
  Remarks reasons("Reasons");
  for (const AdapterVerdict& adapter : adapters) {
    table.addRow({adapter.adapter, std::string(comparisonName(adapter.comparison)), adapter.name});
    if (!adapter.reason.empty()) {
      reasons.add(adapter.adapter, adapter.reason);
    }
  }
  table.print(out);
  reasons.print(out);
}

client::Value toJson(const std::vector<utils::FirmwareVersionInfo>& images) {
  client::Value result = client::Value::array();
  for (const utils::FirmwareVersionInfo& image : images) {
    result.push(client::Value::object(
        {{"type", utils::firmwareTypeName(image.type)}, {"version", image.version.toString()}}));
  }
  return result;
}

client::Value toJson(const std::vector<ma::FirmwareComponent>& components) {
  client::Value result = client::Value::array();
  for (const ma::FirmwareComponent& component : components) {
    result.push(client::Value::object({{"name", component.name},
                                       {"classification", component.classification},
                                       {"version", textOrNull(component.version)},
                                       {"size", component.size},
                                       {"activation", textOrNull(component.activation)},
                                       {"images", toJson(component.images)}}));
  }
  return result;
}

client::Value toJson(const std::vector<AdapterVerdict>& adapters) {
  client::Value result = client::Value::array();
  for (const AdapterVerdict& adapter : adapters) {
    result.push(client::Value::object({{"adapter", adapter.adapter},
                                       {"name", textOrNull(adapter.name)},
                                       {"state", comparisonName(adapter.comparison)},
                                       {"reason", textOrNull(adapter.reason)}}));
  }
  return result;
}

}  // namespace

void printFirmware(std::ostream& out, const ShownFirmware& firmware) {
  out << utils::toPrintable(firmware.file) << '\n';
  printFacts(out, firmware.description);
  printComponents(out, firmware.description);
  printVerdicts(out, firmware.adapters);
}

client::Value toJson(const ShownFirmware& firmware) {
  const ma::FirmwareDescription& file = firmware.description;
  client::Value result;
  result.set("file", firmware.file);
  result.set("format", file.formatName);
  result.set("problem", textOrNull(file.problem));
  result.set("version", textOrNull(file.version));
  result.set("released", textOrNull(file.releaseTime));
  result.set("size", file.size);
  result.set("digest", toDigestText(file.digest));
  result.set("tellsDevices", file.tellsDevices);
  result.set("devices", file.devices);
  result.set("hasMoreDevices", file.hasMoreDevices);
  result.set("types", typesOf(file.images));
  result.set("components", toJson(file.components));
  result.set("hasMoreComponents", file.hasMoreComponents);
  result.set("drivers", file.drivers);
  result.set("protectsComponents",
             file.protectsComponents ? client::Value(*file.protectsComponents) : client::Value());
  result.set("kernelRefusal", textOrNull(file.kernelRefusal));
  result.set("adapters", toJson(firmware.adapters));
  return result;
}

}  // namespace cli
