#include "apps/kvshare/commands/settingsvalues.h"

#include "apps/kvshare/terminal/outputrow.h"
#include "kvshare/rtl/cp874.h"

namespace kvshare::app {

namespace {

using os::RegistryValue;
using os::ValueKind;

struct KindRow {
  ValueKind kind;
  std::string_view name;
};
constexpr KindRow kKinds[] = {
    {ValueKind::None, "none"},           {ValueKind::Text, "text"},
    {ValueKind::ExpandText, "expand"},   {ValueKind::Binary, "binary"},
    {ValueKind::Integer, "integer"},     {ValueKind::MultiText, "multi"},
    {ValueKind::Integer64, "integer64"},
};

bool IsNumber(const RegistryValue& value) {
  return (value.kind == ValueKind::Integer && value.data.size() == 4) ||
         (value.kind == ValueKind::Integer64 && value.data.size() == 8);
}

std::string Decimal(const RegistryValue& value) {
  std::uint64_t number = 0;
  for (std::size_t i = value.data.size(); i-- > 0;) {
    number = number << 8 | static_cast<unsigned char>(value.data[i]);
  }
  if (value.kind == ValueKind::Integer) return std::to_string(static_cast<std::int32_t>(number));
  return std::to_string(static_cast<std::int64_t>(number));
}

void AppendHex(std::string& out, unsigned char byte) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  out += kDigits[byte >> 4];
  out += kDigits[byte & 15];
}

std::string Hex(std::string_view bytes) {
  std::string text;
  for (const char byte : bytes) {
    if (!text.empty()) text += ' ';
    AppendHex(text, static_cast<unsigned char>(byte));
  }
  return text;
}

// Each text of a list has an end mark, and the list has one more.
std::string Joined(std::string_view texts) {
  std::string text;
  while (texts.ends_with('\0')) texts.remove_suffix(1);
  for (const char c : texts) text += c == '\0' ? ';' : c;
  return text;
}

}  // namespace

std::string ShownKey(os::Hive hive, std::string_view path) {
  std::string key = hive == os::Hive::CurrentUser ? "HKCU" : "HKLM";
  if (!path.empty()) key += "\\" + Cp874ToUtf8Lossy(path);
  return key;
}

std::string KindName(os::ValueKind kind) {
  for (const KindRow& row : kKinds) {
    if (row.kind == kind) return std::string(row.name);
  }
  return "kind " + std::to_string(static_cast<int>(kind));
}

std::string ShownData(const RegistryValue& value) {
  if (value.kind == ValueKind::Text || value.kind == ValueKind::ExpandText) {
    return Cp874ToUtf8Lossy(value.data);
  }
  if (value.kind == ValueKind::MultiText) return Cp874ToUtf8Lossy(Joined(value.data));
  return IsNumber(value) ? Decimal(value) : Hex(value.data);
}

std::string OnOneLine(std::string_view utf8) {
  std::string line;
  line.reserve(utf8.size());
  for (const char c : utf8) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '\n') {
      line += "\\n";
    } else if (c == '\r') {
      line += "\\r";
    } else if (c == '\t') {
      line += "\\t";
    } else if (byte < 32 || byte == 127) {
      line += "\\x";
      AppendHex(line, byte);
    } else {
      line += c;
    }
  }
  return line;
}

void AppendValueObject(std::string& out, std::string_view shownKey, const RegistryValue& value) {
  out += "{\"key\":";
  AppendJsonString(out, shownKey);
  out += ",\"name\":";
  AppendJsonString(out, Cp874ToUtf8Lossy(value.name));
  out += ",\"kind\":";
  AppendJsonString(out, KindName(value.kind));
  out += ",\"value\":";
  if (IsNumber(value)) {
    out += Decimal(value);
  } else {
    AppendJsonString(out, ShownData(value));
  }
  out += '}';
}

}  // namespace kvshare::app
