#include "midapi/Virtual/UpdateJournal.h"

#include <limits>
#include <optional>

#include "midapi/BoundedJson.h"
#include "midapi/Digest.h"
#include "midapi/FieldReader.h"
#include "midapi/Hex.h"
#include "midapi/TemporaryFiles.h"

namespace ma {
namespace {

DescriptionChange readChange(const FieldReader& fields) {
  DescriptionChange change;
  const Json& list = fields.need("bootTypes");
  if (!list.is_array()) {
    refuseField("bootTypes", "must be a list");
  }
  for (const Json& entry : list) {
    const std::string name = "bootTypes[" + std::to_string(change.bootTypes.size()) + "]";
    if (!entry.is_object()) {
      refuseField(name, "must be an object");
    }
    const FieldReader port(entry, name + ".");
    const auto function = static_cast<std::uint8_t>(port.number("function", 0, kMaxPorts - 1));
    change.bootTypes[function] = static_cast<BootType>(port.number("bootType", 0, kMaxBootType));
  }
  if (fields.find("capabilityWord") != nullptr) {
    change.capabilityWord =
        static_cast<std::uint32_t>(fields.number("capabilityWord", 0, kMaxUint32));
  }
  return change;
}

}  // namespace

bool UpdateJournal::isNewFlash(std::span<const std::uint8_t> flash) const {
  return flash.size() == flashSize && digestOf(flash) == flashDigest;
}

UpdateJournal parseJournal(std::string_view text) {
  const Json json = parseJsonObject(text);
  const FieldReader fields(json, "");
  UpdateJournal journal;
  journal.flashName = fields.text("flash");
  if (baseOfTemporary(journal.flashName) != "flash.rom") {
    refuseField("flash", "must be like \"flash.rom.new-0123456789abcdef\"");
  }
  journal.flashSize = fields.number("flashSize", 0, std::numeric_limits<std::uint64_t>::max());
  journal.flashDigest = fields.digest("flashDigest");
  journal.change = readChange(fields);
  return journal;
}

std::string formatJournal(const UpdateJournal& journal) {
  Json json = {
      {"flash", journal.flashName},
      {"flashSize", journal.flashSize},
      {"flashDigest", hexText(journal.flashDigest, kDigestDigits)},
      {"bootTypes", Json::array()},
  };
  for (const auto& [function, bootType] : journal.change.bootTypes) {
    json["bootTypes"].push_back(
        {{"function", function}, {"bootType", static_cast<std::uint32_t>(bootType)}});
  }
  if (journal.change.capabilityWord) {
    json["capabilityWord"] = *journal.change.capabilityWord;
  }
  return formatJson(json);
}

}  // namespace ma
