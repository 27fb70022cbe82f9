#include "kvshare/os/version/versionresource.h"

#include <algorithm>

#include "kvshare/os/version/imagereader.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare::os {

namespace {

using std::uint16_t;
using std::uint32_t;

constexpr std::size_t kNodeHead = 6;  // three 16-bit numbers before the key

constexpr std::size_t Aligned(std::size_t at) {
  return (at + 3) / 4 * 4;
}

// Letters up to the first zero; a letter of two units is one `?`.
std::string Cp874OfUtf16(std::string_view bytes) {
  std::string text;
  for (std::size_t at = 0; at + 2 <= bytes.size(); at += 2) {
    const auto unit = Load<uint16_t>(bytes, at);
    if (unit == 0) break;
    const bool high = unit >= 0xD800 && unit < 0xDC00;
    if (high && at + 4 <= bytes.size() && (Load<uint16_t>(bytes, at + 2) & 0xFC00) == 0xDC00) {
      at += 2;
    }
    text += static_cast<char>(UnicodeToCp874(unit).value_or('?'));
  }
  return text;
}

// One node of the tree: where its parts lie in the block. All lie inside it.
struct Node {
  std::string key;
  std::string_view value;
  std::size_t children = 0;
  std::size_t end = 0;
};

class ResourceReader {
 public:
  explicit ResourceReader(std::string_view block) : block_(block) {}

  std::optional<VersionResource> Parse() {
    const auto root = ReadNode(0, block_.size());
    if (!root || root->key != "VS_VERSION_INFO" || !TakeFixedInfo(root->value)) return std::nullopt;
    const bool whole = EachChild(*root, [this](const Node& info) {
      if (SameText(info.key, "StringFileInfo")) return TakeTables(info);
      return !SameText(info.key, "VarFileInfo") || TakeTranslations(info);
    });
    if (!whole) return std::nullopt;
    return std::move(resource_);
  }

 private:
  std::optional<Node> ReadNode(std::size_t at, std::size_t limit) const {
    if (limit - at < kNodeHead) return std::nullopt;
    const std::size_t length = Load<uint16_t>(block_, at);
    if (length < kNodeHead || length > limit - at) return std::nullopt;
    Node node;
    node.end = at + length;

    const std::size_t key = at + kNodeHead;
    std::size_t keyEnd = key;
    while (keyEnd + 2 <= node.end && Load<uint16_t>(block_, keyEnd) != 0) keyEnd += 2;
    if (keyEnd + 2 > node.end) return std::nullopt;
    node.key = Cp874OfUtf16(block_.substr(key, keyEnd - key));

    // The length of a text counts letters, in the files of some compilers bytes: what is too much
    // is cut at the node's end.
    const bool text = Load<uint16_t>(block_, at + 4) == 1;
    const std::size_t value = std::min(Aligned(keyEnd + 2), node.end);
    const std::size_t size = Load<uint16_t>(block_, at + 2) * (text ? std::size_t{2} : 1);
    if (!text && size > node.end - value) return std::nullopt;
    node.value = block_.substr(value, std::min(size, node.end - value));
    node.children = std::min(Aligned(value + node.value.size()), node.end);
    return node;
  }

  // False when a child is not whole. Each child lies behind the one before and inside its parent,
  // so that the work is bounded by the block's size on every level. Zeros behind the last are
  // padding.
  template <typename Take>
  bool EachChild(const Node& parent, Take take) const {
    std::size_t at = parent.children;
    while (at < parent.end && parent.end - at >= kNodeHead && Load<uint16_t>(block_, at) != 0) {
      const auto child = ReadNode(at, parent.end);
      if (!child || !take(*child)) return false;
      at = Aligned(child->end);
    }
    return true;
  }

  bool TakeFixedInfo(std::string_view info) {
    constexpr std::size_t kSize = 52;
    constexpr uint32_t kSignature = 0xFEEF04BD;
    if (info.size() < kSize || Load<uint32_t>(info, 0) != kSignature) return false;
    resource_.fileVersion = NumberAt(info, 8);
    resource_.productVersion = NumberAt(info, 16);
    return true;
  }

  static VersionNumber NumberAt(std::string_view info, std::size_t at) {
    return {Load<uint16_t>(info, at + 2), Load<uint16_t>(info, at), Load<uint16_t>(info, at + 6),
            Load<uint16_t>(info, at + 4)};
  }

  // A table is keyed by eight hexadecimal digits; by another key nobody could ask for it.
  bool TakeTables(const Node& info) {
    return EachChild(info, [this](const Node& table) {
      const auto language = LanguageOf(table.key);
      return !language || EachChild(table, [this, &language](const Node& text) {
        resource_.strings.push_back({*language, text.key, Cp874OfUtf16(text.value)});
        return true;
      });
    });
  }

  static std::optional<VersionLanguage> LanguageOf(std::string_view key) {
    uint32_t both = 0;
    if (key.size() != 8) return std::nullopt;
    for (const char c : key) {
      const char digit = UpCase(c);
      const bool letter = digit >= 'A' && digit <= 'F';
      if (!letter && (digit < '0' || digit > '9')) return std::nullopt;
      both = both << 4 | static_cast<uint32_t>(letter ? digit - 'A' + 10 : digit - '0');
    }
    return VersionLanguage{static_cast<Word>(both >> 16), static_cast<Word>(both & 0xFFFF)};
  }

  bool TakeTranslations(const Node& info) {
    return EachChild(info, [this](const Node& entry) {
      if (!SameText(entry.key, "Translation")) return true;
      for (std::size_t at = 0; at + 4 <= entry.value.size(); at += 4) {
        resource_.translations.push_back(
            {Load<uint16_t>(entry.value, at), Load<uint16_t>(entry.value, at + 2)});
      }
      return true;
    });
  }

  std::string_view block_;
  VersionResource resource_;
};

}  // namespace

VersionLanguage VersionResource::MainLanguage() const {
  constexpr VersionLanguage kEnglish{1033, 1252};
  return translations.empty() ? kEnglish : translations.front();
}

std::string_view VersionResource::Value(VersionLanguage table, std::string_view name) const {
  const auto found = std::ranges::find_if(strings, [&](const VersionString& text) {
    return text.table == table && SameText(text.name, name);
  });
  if (found == strings.end()) return {};
  return found->value;
}

std::optional<VersionResource> ParseVersionResource(std::string_view block) {
  return ResourceReader(block).Parse();
}

}  // namespace kvshare::os
