#include "cli/ImageFile.h"

#include <memory>

#include "Os/FileCalls.h"
#include "Os/QuorvelConfig.h"
#include "client/Fault.h"
#include "platform/FileLook.h"
#include "platform/Texts.h"

namespace cli {
namespace {

struct Look {
  platform::FileLook file;
  std::string fault;
};

Look lookAt(const std::string& path) {
  const auto found = std::make_shared<platform::FileLook>();
  const os::FileAnswer answer = os::fileCalls().make(
      path, [found, path] { *found = platform::lookAtFile(platform::toPath(path)); });
  if (answer != os::FileAnswer::InTime) {
    return {{}, "the file system of '" + path + "' does not answer; try again when it does"};
  }
  switch (found->kind) {
    case platform::FileKind::Missing:
      return {{}, "there is no file '" + path + "'; check the path"};
    case platform::FileKind::Directory:
      return {{}, "'" + path + "' is a directory; name the image file in it"};
    case platform::FileKind::Other:
      return {{}, "'" + path + "' is no regular file; name an image file"};
    case platform::FileKind::Regular:
      break;
  }
  return {*found, ""};
}

}  // namespace

std::string findFileFault(const std::string& path) {
  return lookAt(path).fault;
}

ImageFile::ImageFile(const std::string& path) {
  const Look look = lookAt(path);
  if (!look.fault.empty()) {
    throw client::Fault(look.fault);
  }
  const std::string excess = utils::QuorvelConfig::getInstance()->findSizeExcess(look.file.size);
  if (!excess.empty()) {
    throw client::Fault("the file '" + path + "' is too large: " + excess +
                        "; get the right file, or raise MaxImageSize");
  }
  // MaxImageSize is below the largest size of the interface.
  const auto size = static_cast<std::int32_t>(look.file.size);
  m_content = os::readContent(path, size);
  if (m_content.size != size) {
    throw client::Fault(os::isInUse(path)
                            ? "the file '" + path +
                                  "' is in use by another program; end that, or wait until it is "
                                  "done, then try again"
                            : "the file '" + path + "' cannot be read; check its permissions");
  }
}

}  // namespace cli
