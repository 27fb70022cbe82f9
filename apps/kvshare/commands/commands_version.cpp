// `kvshare version`.
#include <algorithm>
#include <nlohmann/json.hpp>

#include "apps/kvshare/commands/commands.h"
#include "apps/kvshare/terminal/legible.h"
#include "kvshare/os/version/versionresource.h"
#include "kvshare/platform/fileinfo.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/filebytes.h"
#include "kvshare/rtl/format.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare::app {

namespace {

using Json = nlohmann::ordered_json;

constexpr std::string_view kExamples =
    "  kvshare version /opt/ledger/bin/ledger    versions, company, product, all texts\n"
    "  kvshare version 'C:\\Apps\\Ledger.exe'      a Windows program on a drive\n"
    "  find /srv/apps -name '*.exe' | kvshare version --json 2>/dev/null\n";

os::VersionResource ResourceOf(std::string_view file) {
  auto resource = os::ParseVersionResource(os::VersionBlockOfFile(file));
  if (resource) return std::move(*resource);
  const std::string_view why = FileExists(file) ? "has no version resource" : "is no file";
  throw EConvertError("'" + std::string(file) + "' " + std::string(why));
}

std::string OneLine(std::string_view text) {
  return Legible(std::string(text), ' ');
}

void AddLine(std::string& lines, std::string_view name, std::string_view value) {
  lines += "\n" + std::string(TrimRight(Format("  %-16s %s", {name, OneLine(value)})));
}

void AddText(std::string& lines, const os::VersionString& text) {
  lines += "\n    " + std::string(TrimRight(OneLine(text.name) + ": " + OneLine(text.value)));
}

void AddTable(std::string& lines, const os::VersionResource& resource, os::VersionLanguage table) {
  AddLine(lines, "language", Format("%d, code page %d", {table.language, table.codePage}));
  for (const os::VersionString& text : resource.strings) {
    if (text.table == table) AddText(lines, text);
  }
}

// Languages in the order in which they are named: the order of the tables behind the translations.
std::vector<os::VersionLanguage> Languages(const os::VersionResource& resource) {
  std::vector<os::VersionLanguage> languages;
  const auto add = [&languages](os::VersionLanguage language) {
    if (std::ranges::find(languages, language) == languages.end()) languages.push_back(language);
  };
  for (const os::VersionLanguage language : resource.translations) add(language);
  for (const os::VersionString& text : resource.strings) add(text.table);
  return languages;
}

Json LanguageJson(os::VersionLanguage language) {
  return {{"language", language.language}, {"code_page", language.codePage}};
}

void FillMembers(Row& row, const os::VersionResource& resource) {
  Json translations = Json::array();
  for (const os::VersionLanguage language : resource.translations) {
    translations.push_back(LanguageJson(language));
  }
  Json strings = Json::array();
  for (const os::VersionString& text : resource.strings) {
    Json entry = LanguageJson(text.table);
    entry["name"] = Cp874ToUtf8(text.name);
    entry["value"] = Cp874ToUtf8(text.value);
    strings.push_back(std::move(entry));
  }
  row.JsonMember("translations") = translations.dump();
  row.JsonMember("strings") = strings.dump();
}

void ShowVersion(std::string_view file, Row& row) {
  const os::VersionResource resource = ResourceOf(file);
  const os::VersionLanguage main = resource.MainLanguage();
  struct Fact {
    std::string_view member, caption;
    std::string value;
  };
  const Fact facts[] = {
      {"file_version", "file version", GetThisResourceFileVersion(file)},
      {"product_version", "product version", GetThisResourceProductVersion(file)},
      {"company", "company", std::string(resource.Value(main, "CompanyName"))},
      {"product", "product", std::string(resource.Value(main, "ProductName"))},
  };
  if (row.Json()) {
    row.Member("file") = file;
    for (const Fact& fact : facts) row.Member(fact.member) = fact.value;
    FillMembers(row, resource);
    return;
  }
  std::string& lines = row.Lines();
  lines = OneLine(file);
  for (const Fact& fact : facts) AddLine(lines, fact.caption, fact.value);
  for (const os::VersionLanguage language : Languages(resource)) {
    AddTable(lines, resource, language);
  }
  lines += '\n';
}

}  // namespace

void DeclareVersion(Command parent, Plan& plan) {
  const Command command =
      AddCommand(parent, plan, "version",
                 "What programs tell about themselves: versions, company, product", kExamples);
  AddItems(command, plan, "FILE", "Windows programs, or programs of this system");
  command.OnParsed([&plan] { plan.transform = ShowVersion; });
}

}  // namespace kvshare::app
