#include "kvshare/messages/language.h"

#include <algorithm>
#include <cstdio>
#include <memory>
#include <utility>

#include "kvshare/messages/loadentry.h"
#include "kvshare/messages/programlocale.h"
#include "kvshare/os/files.h"
#include "kvshare/os/paths.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/environment.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare {

namespace {

constexpr std::string_view kBuiltIn = "th";

bool IsBuiltIn(std::string_view name) {
  return name.empty() || SameText(name, kBuiltIn);
}

bool IsLanguageName(std::string_view name) {
  return name.size() <= 64 && name.find_first_not_of(
                                  "abcdefghijklmnopqrstuvwxyz"
                                  "ABCDEFGHIJKLMNOPQRSTUVWXYZ"
                                  "0123456789-_") == std::string_view::npos;
}

std::string LanguageFileName(std::string_view name) {
  std::string file(Environment("KVSHARE_LANGUAGE_PATH"));
  if (file.empty()) {
    const std::string& library = LibraryPath();
    // KVSHARE_LANGUAGE_FOLDER: from the library's folder to the resources of its installation.
    file = library.substr(0, library.rfind('/') + 1) + KVSHARE_LANGUAGE_FOLDER;
  }
  if (!file.ends_with('/') && !file.ends_with('\\')) file += '/';
  return file.append(name).append(".lang");
}

// From behind the last separator of either kind to the extension.
std::string BaseName(std::string_view fileName) {
  fileName.remove_prefix(fileName.find_last_of("/\\:") + 1);  // npos + 1 is 0
  return std::string(fileName.substr(0, fileName.rfind('.')));
}

// Reads the resource and puts it in force; the built-in Thai where it cannot be read. A name that
// begins with `/` is the system's own, whatever letters it has.
std::vector<TLanguageWarning> PutInForce(std::string name, std::string_view utf8FileName) {
  constexpr std::size_t kLongest = std::size_t{1} << 20;
  ReplaceLanguageResource(nullptr);
  std::string bytes;
  try {
    const bool native = utf8FileName.starts_with('/');
    bytes = os::ReadNativeFile(
        native ? std::string(utf8FileName) : os::NativePath(Utf8ToCp874(utf8FileName)), kLongest);
  } catch (const Exception& error) {
    return {{0, "cannot be read: " + error.Message()}};
  }
  auto language = std::make_unique<TLanguage>(ParseLanguage(bytes));
  language->Name = std::move(name);
  std::vector<TLanguageWarning> warnings = language->Warnings;
  ReplaceLanguageResource(std::move(language));
  return warnings;
}

// One line, as compilers word theirs.
void Report(std::string_view source, const std::vector<TLanguageWarning>& warnings) {
  if (warnings.empty()) return;
  const TLanguage* language = LanguageResource();
  const std::size_t total = Messages().size();
  const std::size_t thai = total - static_cast<std::size_t>(language ? language->Count() : 0);
  const TLanguageWarning& first = warnings.front();
  std::string text = "kvshare: warning: " + std::string(source) + ":";
  if (first.Line != 0) text += std::to_string(first.Line) + ":";
  text += " " + first.Text;
  if (warnings.size() > 1) text += ", and " + std::to_string(warnings.size() - 1) + " more";
  text += "; " + std::to_string(thai) + " of " + std::to_string(total) + " messages stay Thai\n";
  std::fputs(text.c_str(), stderr);
}

void UseFound(std::string_view name, std::string_view source) {
  if (IsBuiltIn(name)) return;
  if (IsLanguageName(name)) {
    const std::string fileName = LanguageFileName(name);
    Report(fileName, PutInForce(std::string(name), fileName));
  } else {
    Report(source, {{0, "not the name of a language"}});
  }
}

void UseEnvironment() {
  const std::string_view name = Environment("KVSHARE_LANGUAGE");
  if (!name.empty()) return UseFound(name, "KVSHARE_LANGUAGE");
  UseFound(LowerCase(ProgramLocale()), "the program's locale override");
}

// The environment chooses at the first use, unless the program has chosen before.
void ChooseOnce(bool byEnvironment) {
  static const bool chosen = [&] {
    if (byEnvironment) UseEnvironment();
    return true;
  }();
  static_cast<void>(chosen);
}

}  // namespace

std::vector<TLanguageWarning> SetLanguage(std::string_view name) {
  ChooseOnce(false);
  if (!IsBuiltIn(name) && IsLanguageName(name))
    return PutInForce(std::string(name), LanguageFileName(name));
  ReplaceLanguageResource(nullptr);
  if (IsBuiltIn(name)) return {};
  return {{0, "not the name of a language"}};
}

std::vector<TLanguageWarning> LoadLanguageFile(std::string_view fileName) {
  ChooseOnce(false);
  // A byte that stands for no letter becomes one that no file name can have.
  return PutInForce(BaseName(fileName), Cp874ToUtf8Lossy(fileName));
}

std::string CurrentLanguage() {
  ChooseOnce(true);
  const TLanguage* language = LanguageResource();
  return language == nullptr ? std::string(kBuiltIn) : language->Name;
}

const std::string* FindTranslation(TMessage message) {
  ChooseOnce(true);
  const TLanguage* language = LanguageResource();
  return language == nullptr ? nullptr : language->Find(message);
}

}  // namespace kvshare
