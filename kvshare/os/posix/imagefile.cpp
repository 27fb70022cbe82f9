#include "kvshare/os/posix/imagefile.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>

#include "kvshare/os/paths.h"
#include "kvshare/os/posix/descriptor.h"
#include "kvshare/os/posix/errors.h"
#include "kvshare/os/version/imagereader.h"
#include "kvshare/os/version/versionresource.h"
#include "kvshare/rtl/exceptions.h"

namespace kvshare::os {

namespace {

class ImageFile : public ImageReader {
 public:
  // Throws EInOutError. Opening waits for nobody: a name may turn out to be a pipe.
  explicit ImageFile(std::string path)
      : path_(std::move(path)), file_(path_.c_str(), O_RDONLY | O_NONBLOCK) {
    struct stat facts = {};
    if (!file_.IsOpen() || ::fstat(file_.Value(), &facts) != 0) posix::ThrowFailed(path_, errno);
    // A folder or a device holds no image.
    if (S_ISREG(facts.st_mode)) size_ = static_cast<std::uint64_t>(facts.st_size);
  }

  std::uint64_t Size() const override { return size_; }

 private:
  bool Fill(std::uint64_t offset, std::span<char> to) const override {
    while (!to.empty()) {
      const ssize_t n = ::pread(file_.Value(), to.data(), to.size(), static_cast<off_t>(offset));
      if (n == 0) return false;
      if (n < 0 && errno == EINTR) continue;
      if (n < 0) posix::ThrowFailed(path_, errno);
      to = to.subspan(static_cast<std::size_t>(n));
      offset += static_cast<std::uint64_t>(n);
    }
    return true;
  }

  std::string path_;
  posix::Descriptor file_;
  std::uint64_t size_ = 0;
};

bool TellsMissing(int code) {
  constexpr int kNameTooLong = 206;
  return code == posix::kFileNotFound || code == posix::kPathNotFound || code == kNameTooLong;
}

}  // namespace

bool posix::FileIsCutShort(const std::string& path) {
  try {
    return IsCutShort(ImageFile(path));
  } catch (const EInOutError&) {
    return false;
  }
}

std::string VersionBlockOfFile(std::string_view fileName) {
  try {
    return VersionBlockOfImage(ImageFile(NativePath(fileName)));
  } catch (const EInOutError& e) {
    if (!TellsMissing(e.ErrorCode())) throw;
    return {};
  }
}

}  // namespace kvshare::os
