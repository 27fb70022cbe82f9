// Names of any bytes: one on a drive or a share never leaves its folder and comes back as a name of
// the same file; a mask matches as a slow reader of it says. A table of drives of any bytes gives
// usable drives alone.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "kvshare/os/filesearch.h"
#include "kvshare/os/paths.h"
#include "kvshare/os/posix/drivetable.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/strutils.h"

namespace {

namespace os = kvshare::os;

constexpr std::string_view kHome = "/nonexistent/kvshare-fuzz";

void Require(bool holds) {
  if (!holds) std::abort();
}

bool HasPart(std::string_view path, std::string_view part) {
  const std::string whole = std::string(path) + "/";
  return whole.find("/" + std::string(part) + "/") != std::string::npos;
}

void CheckName(std::string_view text) {
  const std::string root = std::string(kHome) + "/drive_c";
  try {
    const std::string native = os::NativePath("C:" + std::string(text));
    Require(native.starts_with(root + "/") && native.find('\0') == std::string::npos);
    Require(!HasPart(native, "..") && !HasPart(native, "."));
    Require(os::NativePath(os::WindowsPath(native)) == native);
  } catch (const kvshare::EInOutError& e) {
    Require(e.ErrorCode() == 3);
  }
}

// One letter after the other, all ways tried.
bool MatchesSlowly(std::string_view name, std::string_view mask, std::string_view whole) {
  if (mask.empty()) return name.empty();
  const std::string_view rest = mask.substr(1);
  const char next = rest.empty() ? '\0' : rest[0];
  const bool point = !name.empty() && name[0] == '.';
  switch (mask[0]) {
    case '*': {
      const bool last = next == '.' && whole.size() - name.size() == whole.rfind('.');
      return MatchesSlowly(name, rest, whole) ||
             (!name.empty() && !last && MatchesSlowly(name.substr(1), mask, whole));
    }
    case '?':
      return name.empty() || point ? MatchesSlowly(name, rest, whole)
                                   : MatchesSlowly(name.substr(1), rest, whole);
    case '.':
      if (name.empty() && (next == '*' || next == '?')) return MatchesSlowly(name, rest, whole);
      [[fallthrough]];
    default:
      return !name.empty() && kvshare::UpCase(name[0]) == kvshare::UpCase(mask[0]) &&
             MatchesSlowly(name.substr(1), rest, whole);
  }
}

void CheckMask(std::string_view text) {
  constexpr std::size_t kLongest = 12;  // the slow reader's time doubles with each star
  const std::size_t half = text.find('\n');
  if (half == std::string_view::npos) return;
  const std::string_view name = text.substr(0, half).substr(0, kLongest);
  const std::string_view mask = text.substr(half + 1).substr(0, kLongest);
  // Points at the end of a mask are a matter of their own.
  if (mask.empty() || mask.ends_with('.') || mask == "*.*") return;
  Require(os::MatchesMask(name, mask) == MatchesSlowly(name, mask, name));
}

void CheckTable(std::string_view text) {
  const os::posix::DriveTable table = os::posix::ParseDriveTable(text, kHome);
  Require(table.drives.size() >= 2);
  for (const os::Drive& drive : table.drives) {
    Require(drive.root.empty() || (drive.root.starts_with('/') && !drive.root.ends_with('/')));
    Require(drive.root.find('\0') == std::string::npos);
    Require(os::posix::DriveOf(drive.name + "\\x") == drive.name);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  setenv("KVSHARE_HOME", std::string(kHome).c_str(), 1);
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  CheckName(text);
  CheckMask(text);
  CheckTable(text);
  return 0;
}
