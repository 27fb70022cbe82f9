// The bytes of a .reg file in both formats.
#include <algorithm>

#include "kvshare/os/registry/regfile.h"
#include "kvshare/os/registry/regtext.h"
#include "kvshare/rtl/exceptions.h"

namespace kvshare::os {

namespace {

constexpr std::string_view kLineEnd = "\r\n";
constexpr std::string_view kDigits = "0123456789abcdef";

void AppendHex(std::string& out, unsigned char byte) {
  out += kDigits[byte >> 4];
  out += kDigits[byte & 15];
}

bool HasControl(std::string_view text) {
  return std::ranges::any_of(text,
                             [](char c) { return static_cast<unsigned char>(c) < 32 || c == 127; });
}

void AppendQuoted(std::string& out, std::string_view text) {
  out += '"';
  for (const char c : text) {
    if (c == '"' || c == '\\') out += '\\';
    out += c;
  }
  out += '"';
}

[[noreturn]] void ThrowLineBreak(const RegSection& section) {
  std::string name(HiveName(section.hive));
  name += '\\';
  for (const char c : section.key) {
    const bool breaks = c == '\r' || c == '\n';
    breaks ? name += (c == '\r' ? "\\r" : "\\n") : name += c;
  }
  throw EConvertError("The key " + name +
                      " has a line break in its name, which a settings file cannot hold");
}

// In code page 874; the whole becomes UTF-16 at the end.
class Writer {
 public:
  explicit Writer(RegFormat format) : version5_(format == RegFormat::Version5) {
    Line(version5_ ? "Windows Registry Editor Version 5.00" : "REGEDIT4");
    Line("");
  }

  void Add(const RegSection& section) {
    if (section.key.find_first_of("\r\n") != std::string::npos) ThrowLineBreak(section);
    out_ += section.deleted ? "[-" : "[";
    out_ += HiveName(section.hive);
    if (!section.key.empty()) out_.append("\\").append(section.key);
    Line("]");
    for (const RegChange& change : section.changes) Add(change);
    Line("");
  }

  std::string Finish() {
    if (!version5_) return std::move(out_);
    std::string bytes = "\xFF\xFE";
    reg::AppendUtf16(bytes, out_);
    return bytes;
  }

 private:
  void Line(std::string_view text) { out_.append(text).append(kLineEnd); }

  void Add(const RegChange& change) {
    const std::size_t start = out_.size();
    change.value.name.empty() ? out_.push_back('@') : AppendQuoted(out_, change.value.name);
    out_ += '=';
    change.deleted ? out_.push_back('-') : AddData(change.value, start);
    Line("");
  }

  void AddData(const RegistryValue& value, std::size_t start) {
    if (value.kind == ValueKind::Text && !HasControl(value.data)) {
      AppendQuoted(out_, value.data);
    } else if (value.kind == ValueKind::Integer && value.data.size() == 4) {
      out_ += "dword:";
      for (std::size_t i = 4; i-- > 0;) AppendHex(out_, static_cast<unsigned char>(value.data[i]));
    } else {
      AddBytes(value, start);
    }
  }

  void AddBytes(const RegistryValue& value, std::size_t start) {
    out_ += "hex";
    if (value.kind != ValueKind::Binary) {
      const auto kind = static_cast<unsigned char>(value.kind);
      out_ += '(';
      if (kind >= 16) out_ += kDigits[kind >> 4];
      out_.append({kDigits[kind & 15], ')'});
    }
    out_ += ':';
    const std::string bytes = FileBytes(value);
    std::size_t column = out_.size() - start;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
      AppendHex(out_, static_cast<unsigned char>(bytes[i]));
      if (i + 1 == bytes.size()) break;
      out_ += ',';
      column += 3;
      constexpr std::size_t kLongestLine = 76;  // where registry editors break it
      if (column <= kLongestLine) continue;
      Line("\\");
      out_ += "  ";
      column = 2;
    }
  }

  std::string FileBytes(const RegistryValue& value) const {
    std::string bytes = value.data;
    const bool oneText = value.kind == ValueKind::Text || value.kind == ValueKind::ExpandText;
    if (oneText) bytes += '\0';
    if (!version5_ || !(oneText || value.kind == ValueKind::MultiText)) return bytes;
    std::string wide;
    reg::AppendUtf16(wide, bytes);
    return wide;
  }

  bool version5_;
  std::string out_;
};

}  // namespace

std::string WriteRegFile(const std::vector<RegSection>& sections, RegFormat format) {
  Writer writer(format);
  for (const RegSection& section : sections) writer.Add(section);
  return writer.Finish();
}

}  // namespace kvshare::os
