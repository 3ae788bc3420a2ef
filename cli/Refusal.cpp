#include "cli/Refusal.h"

#include <string_view>
#include <utility>

#include "Utils/Printable.h"
#include "Utils/RefusalTexts.h"
#include "cim/MethodSignatures.h"
#include "cli/ImageFile.h"
#include "cli/LocalWords.h"
#include "client/ErrorRecords.h"
#include "client/Texts.h"

namespace cli {
namespace {

namespace refusal = utils::refusal;

struct Advice {
  std::string_view reason;  // what the reason contains
  const char* text;
};

constexpr const char* kForce = "to install the older firmware all the same, update with --force";
constexpr const char* kWait = "wait until the running update has ended, then try again";
constexpr const char* kGetAgain =
    "the file is no firmware image or is damaged; get it again from where it came from";

// The setting by which an administrator trusts a driver's own check of files.
constexpr std::string_view kTrustSetting = "TrustDriverCheck";

// The first entry that fits counts.
constexpr Advice kAdvice[] = {
    {refusal::kDowngrade, kForce},
    {refusal::kTargetInUse, kWait},
    {refusal::kJobIsRunning, kWait},
    {refusal::kUnknownType,
     "the image types are IMG_CLP, IMG_iSCSI, IMG_PXE, IMG_UEFI and IMG_FCoE, joined by '+'"},
    {refusal::kInvalidUri, "name a file, or a URI like file:///path/to/image"},
    {refusal::kUriDoesNotExist, "check the path; an image is a regular file below 2 GiB"},
    {refusal::kImageTooLarge,
     "get the right file, or raise MaxImageSize in the configuration of the machine that installs"},
    {refusal::kFileInUse,
     "end the program that has the file open, or wait until it is done, then try again"},
    {refusal::kImageReadError, "check the file and its permissions"},
    {refusal::kCouldNotOpen, "check the file and its permissions"},
    {refusal::kIsDirectory, "name the image file in that directory"},
    {refusal::kAdapterNotSupported,
     "the image is for another device; 'quorvel adapters' shows the device of each adapter"},
    {refusal::kInvalidParameter, kGetAgain},
    {refusal::kNotApplicableForTarget,
     "the firmware of this adapter cannot be replaced; 'quorvel adapters' shows which can"},
};

// Where nothing but the return code is known. IMAGE stands for what the request named.
constexpr std::pair<std::uint32_t, const char*> kAdviceOnCodes[] = {
    {cim::kUnspecifiedError,
     "wait for the end of an update that runs in the host ('quorvel jobs'); where none does, a "
     "check may have reserved a target, which ends with a restart of the host, or the image "
     "cannot be read on its machine"},
    {cim::kFailed, "the log of the host tells why the job could not be started"},
    {cim::kInvalidParameter,
     "check that IMAGE is there on the machine of the host, and a whole firmware file; its log "
     "tells more"},
    {cim::kTargetInUse,
     "wait for the end of the update that runs in the host ('quorvel jobs'); where none does, a "
     "check has reserved the target, which ends with a restart of the host"},
    {cim::kUnsupportedTargetType,
     "IMAGE is for another device; get the file that is made for this adapter"},
    {cim::kDowngradeNotSupported,
     "name the types to install with --types, or, for an older image, update with --force"},
    {cim::kNotApplicableToTarget,
     "the firmware of this adapter cannot be replaced, or the target is none: name a port or an "
     "adapter"},
};

std::string adviseOnCode(std::uint32_t returnValue, const UpdateRequest& request) {
  constexpr std::string_view kImage = "IMAGE";
  for (const auto& [code, text] : kAdviceOnCodes) {
    if (code == returnValue) {
      std::string advice = text;
      if (const std::size_t place = advice.find(kImage); place != std::string::npos) {
        advice.replace(place, kImage.size(),
                       request.imagePath.empty() ? "the image" : "'" + request.imagePath + "'");
      }
      return advice;
    }
  }
  return "the log of the host tells more";
}

std::string adviseOnTypes(const UpdateRequest& request) {
  if (request.hasTypes) {
    return "the file lacks a type that --types names; name only types that it holds";
  }
  if (request.identity) {
    return "update from the file itself and name the types to install: " + request.program +
           " update TARGET " + request.imagePath + " --types " +
           client::join(request.identity->types, "+");
  }
  return request.isForced
             ? "name the types to install with --types; --force alone changes the installed types "
               "only where the configuration allows it (OEMCustomizeable, bit 0x20)"
             : "name the types to install with --types, for example --types IMG_PXE";
}

// Returns why an identity is none that can be installed, empty when it can be. The service tells a
// client no more than that its parameter is invalid.
std::string findDefect(const std::optional<client::Identity>& identity) {
  if (!identity) {
    return "";
  }
  if (!identity->isFile) {
    return identity->label() + " is a component that is installed on an adapter, no firmware file";
  }
  return identity->types.empty() ? identity->label() + " holds no image of a type that is known"
                                 : "";
}

// Returns what is wrong with the file as such, empty when it is there.
std::string adviseOnFile(const UpdateRequest& request) {
  return request.imagePath.empty() || request.isRemote ? "" : findFileFault(request.imagePath);
}

void explain(std::ostream& err, const char* heading, const std::string& text) {
  if (!text.empty()) {
    err << "  " << heading << ": " << utils::toPrintable(text) << '\n';
  }
}

std::string findReason(const Context& context, const client::MethodAnswer& answer,
                       const UpdateRequest& request) {
  if (!answer.reason.empty()) {
    return client::withoutType(answer.reason);
  }
  if (std::string defect = findDefect(request.identity); !defect.empty()) {
    return defect;
  }
  return context.options.logLevel == "0" && !request.isRemote
             ? "not known, since --log-level 0 keeps no records"
             : "";
}

// Puts the program as the user has to call it into what quotes a command: 'quorvel jobs'.
std::string nameProgram(std::string advice, const std::string& program) {
  constexpr std::string_view kQuoted = "'quorvel ";
  for (std::size_t place = advice.find(kQuoted); place != std::string::npos;
       place = advice.find(kQuoted, place + program.size())) {
    advice.replace(place, kQuoted.size(), "'" + program + " ");
  }
  return advice;
}

std::string findAdvice(std::uint32_t returnValue, const std::string& reason,
                       const UpdateRequest& request) {
  if (std::string advice = adviseOnFile(request); !advice.empty()) {
    return advice;
  }
  if (!findDefect(request.identity).empty()) {
    return "name another; 'quorvel identities' shows the firmware files that can be installed";
  }
  if (reason.find(refusal::kTypesDiffer) != std::string::npos) {
    return adviseOnTypes(request);
  }
  // What was found out in this process says what is missing.
  if (request.why.find(kTrustSetting) != std::string::npos) {
    return "make sure that the file is for this adapter; then name the driver in that setting";
  }
  if (!request.why.empty() && reason.find(refusal::kNotApplicableForTarget) != std::string::npos) {
    return "'quorvel adapters' shows which adapters can be updated, and why others cannot";
  }
  if (!request.why.empty() && reason.find(refusal::kAdapterNotSupported) != std::string::npos) {
    return "get the file that is made for this adapter; 'quorvel show FILE' tells what one is for";
  }
  for (const Advice& advice : kAdvice) {
    if (reason.find(advice.reason) != std::string::npos) {
      return toLocalWords(advice.text);
    }
  }
  if (request.isRemote && reason.empty()) {
    return adviseOnCode(returnValue, request);
  }
  return returnValue == cim::kNotApplicableToTarget
             ? "name a port or an adapter; 'quorvel adapters' shows what there is"
             : "";
}

}  // namespace

UpdateRequest requestIdentity(const client::Identity& identity, bool isForced,
                              const client::Connection& connection) {
  return {identity.isFile ? identity.name : "",
          false,
          isForced,
          connection.isRemote(),
          identity,
          connection.program()};
}

std::string adviseOnRefusal(std::uint32_t returnValue, const std::string& reason,
                            const UpdateRequest& request) {
  return nameProgram(findAdvice(returnValue, reason, request), request.program);
}

void reportRefusal(const Context& context, const std::string& what,
                   const client::MethodAnswer& answer, const UpdateRequest& request) {
  context.err << "quorvel: " << what << " refused: " << answer.returnValue << ", "
              << answer.returnText << '\n';
  explain(context.err, "reason", findReason(context, answer, request));
  explain(context.err, "why", request.why);
  explain(context.err, "next", adviseOnRefusal(answer.returnValue, answer.reason, request));
}

std::string adviseOnFailure(const client::JobReport& job, const client::Connection& connection) {
  if (job.errorText != refusal::kTimeout) {
    return nameProgram("'quorvel adapters' shows what the adapter holds now", connection.program());
  }
  if (job.flashHolder.find(refusal::kSemaphoreIsOpenIn) != std::string::npos) {
    return std::string(
               "wait until the program that updates an adapter is done, then try again. Where none "
               "of those that are named does, one that has died left the flash taken: end them "
               "all, and it is free") +
           (job.flashHolder.find(refusal::kMayBeOpenInOthers) != std::string::npos
                ? " unless others have it open, too; an administrator is shown more of them, and a "
                  "restart of the machine frees it in any case"
                : "");
  }
  if (connection.isRemote()) {
    return "the host could not have the flash: another program on its machine had it for longer "
           "than its Timeout, or its flash lock cannot be had; the log of the host tells which";
  }
  if (!job.lockFailure.empty()) {
    return "nothing was written. Mend what keeps this user from the flash lock, then try again";
  }
  return job.flashHolder.empty()
             ? "nothing tells why; update with --log-level 3 to see each step"
             : "nothing was written. Try again when that program has ended, or wait longer "
               "(Timeout in the configuration, or --lock-timeout)";
}

}  // namespace cli
