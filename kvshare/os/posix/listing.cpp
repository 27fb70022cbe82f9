#include "kvshare/os/posix/listing.h"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "kvshare/os/posix/descriptor.h"
#include "kvshare/rtl/cp874.h"

namespace kvshare::os::posix {

namespace {

EntryKind KindOf(unsigned char type) {
  switch (type) {
    case DT_DIR:
      return EntryKind::Folder;
    case DT_LNK:
      return EntryKind::Link;
    case DT_UNKNOWN:
      return EntryKind::Unknown;
    default:
      return EntryKind::File;
  }
}

// The letter at the front of UTF-8 and the bytes it takes; one byte and no letter where there is
// none.
struct Letter {
  char32_t value = 0;
  std::size_t size = 1;
};
Letter FirstLetter(std::string_view utf8) {
  const auto byte = [&utf8](std::size_t i) { return static_cast<unsigned char>(utf8[i]); };
  const unsigned lead = byte(0);
  if (lead < 0x80) return {lead, 1};
  const std::size_t size = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  if (lead < 0xC2 || lead > 0xF4 || utf8.size() < size) return {};
  char32_t value = lead & (0x7Fu >> size);
  for (std::size_t i = 1; i < size; ++i) {
    if ((byte(i) & 0xC0u) != 0x80) return {};
    value = value << 6 | (byte(i) & 0x3Fu);
  }
  return {value, size};
}

}  // namespace

int FolderListing::Read(int folder) {
  constexpr std::size_t kBlock = 64 << 10;
  alignas(dirent64) char block[kBlock];
  for (;;) {
    const ssize_t size = ::getdents64(folder, block, sizeof block);
    if (size == 0) return 0;
    if (size < 0 && errno == EINTR) continue;
    if (size < 0) return errno;
    for (ssize_t at = 0; at < size;) {
      const auto* entry = reinterpret_cast<const dirent64*>(block + at);
      const std::size_t length = std::strlen(entry->d_name);
      entries_.push_back(
          {names_.size(), static_cast<std::uint32_t>(length), KindOf(entry->d_type)});
      names_.append(entry->d_name, length + 1);
      at += entry->d_reclen;
    }
  }
}

ResolvedKind Resolve(int folder, const char* name, EntryKind kind) {
  if (kind == EntryKind::File) return {false, false};
  if (kind == EntryKind::Folder) return {true, false};
  struct stat facts = {};
  if (kind == EntryKind::Unknown) {
    if (::fstatat(folder, name, &facts, AT_SYMLINK_NOFOLLOW) != 0) return {};
    if (!S_ISLNK(facts.st_mode)) return {S_ISDIR(facts.st_mode), false};
  }
  const bool leads = ::fstatat(folder, name, &facts, 0) == 0;
  return {leads && S_ISDIR(facts.st_mode), true};
}

void AppendListedName(std::string& out, std::string_view native) {
  while (!native.empty()) {
    const Letter letter = FirstLetter(native);
    const auto byte = UnicodeToCp874(letter.value);
    const bool shown = byte && letter.value != 0 && letter.value != U'\\';
    out += shown ? static_cast<char>(*byte) : '?';
    native.remove_prefix(letter.size);
  }
}

}  // namespace kvshare::os::posix
