// Translations of the message catalogue. A language resource is a UTF-8 text, one message a line:
//
//   65479 rstrERefresh = "Please refresh the data before editing again    "
//
// docs/translating.md describes the format for translators. What a resource lacks, or has in a form
// that a program could not show safely, stays Thai, message by message.
//
// The language in force belongs to the process. Until a program calls SetLanguage or
// LoadLanguageFile, the first message loaded takes it from the environment variable
// KVSHARE_LANGUAGE ("en"; "th" means the Thai that is built in) or, where that is not set, from the
// language that the user chose for the program: the text under the program's full name in the
// registry key "Software\Borland\Locales". It writes at most one line of warning to standard error.
// Change it while no other thread loads messages.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "kvshare/export.h"
#include "kvshare/messages/catalogue.h"

namespace kvshare {

// What is wrong with a language resource, in ASCII.
struct TLanguageWarning {
  int Line = 0;  // from 1; 0 speaks of the resource as a whole
  std::string Text;
};

// A language resource that was read.
struct KVSHARE_API TLanguage {
  std::string Name;  // "en"
  // By identifier less kFirstMessageId, in code page 874.
  std::array<std::optional<std::string>, kMessageIds> Texts;
  std::vector<TLanguageWarning> Warnings;

  // nullptr for what stays Thai.
  const std::string* Find(TMessage message) const&;
  const std::string* Find(TMessage message) const&& = delete;
  int Count() const;  // messages that it translates
};

// Reads a resource from any bytes; never throws for their sake. A line is refused whose identifier
// has no message, whose name is another message's, whose text is empty, is not UTF-8, has a letter
// outside code page 874 or a control character, or has other placeholders than the Thai text, in
// kind, number or order (a `%` that is no placeholder included). The abbreviated day names stay two
// letters each. Of two lines for one message the first usable one counts. There is one warning for
// each refused line, then one for each message without a line; after kLanguageLineWarnings refused
// lines reading ends.
KVSHARE_API TLanguage ParseLanguage(std::string_view utf8);
inline constexpr std::size_t kLanguageLineWarnings = 1000;
inline constexpr std::size_t kLanguageLineBytes = 4096;  // a longer line is refused

// Puts the resource NAME.lang in force, found in the folder KVSHARE_LANGUAGE_PATH of the
// environment, else in share/kvshare/languages of the installation that this library lies in. ""
// and "th" bring back the built-in Thai. A name has letters, digits, `-` and `_`. Gives all
// warnings; a resource that cannot be read is one warning, and Thai comes into force.
KVSHARE_API std::vector<TLanguageWarning> SetLanguage(std::string_view name);

// The same with a file of the caller's, named `C:\...` or `/...`.
KVSHARE_API std::vector<TLanguageWarning> LoadLanguageFile(std::string_view fileName);

// The name of the language in force: "th", or the resource's file name without its extension.
KVSHARE_API std::string CurrentLanguage();

// The text that the language in force has for a message; nullptr for what stays Thai.
const std::string* FindTranslation(TMessage message);

}  // namespace kvshare
