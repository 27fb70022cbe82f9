// The registry's file as the system sees it: what a system supplies that has no registry of its
// own. Paths are the system's own.
// Internal header.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace kvshare::os::store {

struct FileIdentity {
  std::uint64_t device = 0;
  std::uint64_t number = 0;
  bool operator==(const FileIdentity&) const = default;
};

// Nothing for a missing file. Throws StoreError for what cannot be a store: a folder, an empty
// file, one in a folder that may not be entered.
std::optional<FileIdentity> IdentityOf(const std::string& path);

// Makes the file with its folders: `fill` makes it whole under another name before it gets its own,
// and a file that is there by then is left alone. Throws StoreError.
void CreateWhole(const std::string& path, const std::function<void(const std::string&)>& fill);

// In bytes. Throws StoreError.
std::int64_t SizeOf(const std::string& path);

// Whether this user may write the file itself.
bool MayWrite(const std::string& path);

// Whether writes wait beside the file to be carried into it.
bool HasLog(const std::string& path);

// Whether no file can be made beside this one, and none is that SQLite keeps there.
bool IsInClosedFolder(const std::string& path);

// Throws StoreError for what keeps this user from writing the file, or from making it.
void RequireWritable(const std::string& path);

}  // namespace kvshare::os::store
