// Version resources: the company, product and version that a program's file tells about itself.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "kvshare/export.h"
#include "kvshare/rtl/types.h"

namespace kvshare::os {

using VersionNumber = std::array<Word, 4>;  // major, minor, release, build

struct VersionLanguage {
  Word language = 0;  // 1054 Thai, 1033 English
  Word codePage = 0;
  bool operator==(const VersionLanguage&) const = default;
};

struct VersionString {
  VersionLanguage table;
  std::string name;   // code page 874
  std::string value;  // code page 874; a letter that it lacks is `?`
  bool operator==(const VersionString&) const = default;
};

struct VersionResource {
  VersionNumber fileVersion{};
  VersionNumber productVersion{};
  std::vector<VersionLanguage> translations;
  std::vector<VersionString> strings;  // in the file's order

  // The table that named values are read from: the first translation, 1033 and 1252 without any.
  KVSHARE_API VersionLanguage MainLanguage() const;

  // The value of a name in one table, names without regard to case; "" when it is absent.
  KVSHARE_API std::string_view Value(VersionLanguage table, std::string_view name) const;
};

// The resource of a block of bytes (VS_VERSION_INFO). None when the block is no whole one, its
// fixed part included: every length is checked, nothing is believed. What follows it is ignored.
KVSHARE_API std::optional<VersionResource> ParseVersionResource(std::string_view block);

// The block that a file carries: a Windows executable or library of 32 or 64 bits, or a program
// or library of this system that was built with kvshare_version_resource. "" for a file without
// one, for a broken one, for a folder and for a missing file. Throws EInOutError when the file is
// there and cannot be read. Reads its headers and the block alone.
KVSHARE_API std::string VersionBlockOfFile(std::string_view fileName);

}  // namespace kvshare::os
