#include "kvshare/data/contract/wiretexts.h"

#include "kvshare/data/contract/errors.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"

namespace kvshare::data {

namespace {

// Where the letter that begins at `at` ends.
std::size_t EndOfLetter(std::string_view utf8, std::size_t at) {
  ++at;
  while (at < utf8.size() && (static_cast<unsigned char>(utf8[at]) & 0xC0) == 0x80) ++at;
  return at;
}

}  // namespace

std::string StatementText(std::string_view cp874, const TComponent* component) {
  if (const std::size_t zero = cp874.find('\0'); zero != std::string_view::npos) {
    DatabaseError("Invalid byte 00 at position " + std::to_string(zero + 1) + " for code page 874",
                  component);
  }
  try {
    return Cp874ToUtf8(cp874);
  } catch (const EConvertError& e) {
    DatabaseError(e.Message(), component);
  }
}

std::string ServerText(std::string_view utf8) {
  std::string text;
  for (std::size_t at = 0; at < utf8.size();) {
    const std::size_t end = EndOfLetter(utf8, at);
    try {
      AppendCp874(text, utf8.substr(at, end - at));
    } catch (const EConvertError&) {
      text.push_back('?');
    }
    at = end;
  }
  return text;
}

}  // namespace kvshare::data
