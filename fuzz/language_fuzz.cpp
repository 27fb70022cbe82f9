// Any bytes as a language resource. What is accepted must be safe to show, and must read back the
// same once it is written out.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "kvshare/messages/language.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/format.h"

namespace {

using namespace kvshare;

void Require(bool condition) {
  if (!condition) std::abort();
}

std::string Escaped(std::string_view text) {
  std::string out;
  for (const char c : Cp874ToUtf8(text)) {
    if (c == '"' || c == '\\') out += '\\';
    if (c == '\r') {
      out += "\\r";
    } else if (c == '\n') {
      out += "\\n";
    } else {
      out += c;
    }
  }
  return out;
}

std::string Written(const TLanguage& language) {
  std::string out;
  for (const TMessageRow& row : Messages()) {
    const std::string* text = language.Find(row.Id);
    if (text != nullptr) out += std::to_string(row.Id) + " = \"" + Escaped(*text) + "\"\n";
  }
  return out;
}

// A caller passes what the Thai text takes; more or other values would throw.
void RequireSafe(const TMessageRow& row, const std::string& text) {
  Require(!text.empty());
  if (row.Text.find("%d") != std::string_view::npos) {
    Format(text, {7});
  } else if (row.Text.find('%') == std::string_view::npos) {
    Require(Format(text, {}) == text);
  } else {
    Format(text, {"a", "b"});
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const TLanguage language = ParseLanguage({reinterpret_cast<const char*>(data), size});
  for (const TMessageRow& row : Messages()) {
    if (const std::string* text = language.Find(row.Id)) RequireSafe(row, *text);
  }
  const std::string written = Written(language);
  bool fits = true;  // escapes make a line longer, at times too long
  for (std::size_t at = 0; at < written.size(); at = written.find('\n', at) + 1) {
    fits = fits && written.find('\n', at) - at <= kLanguageLineBytes;
  }
  if (fits) Require(ParseLanguage(written).Texts == language.Texts);
  return 0;
}
