// `kvshare encode`, `decode`, `key` and `message`.
#include <cstdio>
#include <cstdlib>
#include <memory>

#include "apps/kvshare/commands/commands.h"
#include "kvshare/messages/catalogue.h"
#include "kvshare/messages/language.h"
#include "kvshare/rtl/convert.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/strutils.h"
#include "kvshare/text/crypt.h"

namespace kvshare::app {

namespace {

constexpr std::string_view kKeyNote =
    "The key hides values from a glance; it is no cryptography. `--key` shows it to everyone who\n"
    "lists processes: prefer --key-file or the environment variable KVSHARE_KEY.\n";

constexpr std::string_view kEncodeExamples =
    "  kvshare key > my.key\n"
    "  kvshare encode --key-file my.key secret   another text each time\n"
    "  KVSHARE_KEY=$(cat my.key) kvshare encode < passwords.txt > encoded.txt\n";

constexpr std::string_view kDecodeExamples = "  kvshare decode --key-file my.key < encoded.txt\n";

constexpr std::string_view kMessageExamples =
    "  kvshare message rstrConfirmDelete         65506, tab, the name, tab, the text\n"
    "  kvshare message --list --language en      the whole catalogue in English\n";

struct KeyOptions {
  std::string key;
  std::string file;
};

struct MessageOptions {
  std::string language;
  bool list = false;
};

void AddKey(Command command, KeyOptions& options) {
  const Option key =
      command.AddOption("--key", options.key, "16 to 64 different characters of 0-9 A-Z a-z + /");
  const Option file =
      command.AddOption("--key-file", options.file, "A file whose first line is the key")
          .TypeName("FILE");
  file.Excludes(key);
}

std::string ReadKeyFile(const std::string& name) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(name.c_str(), "rb"),
                                                             std::fclose);
  if (!file) RefuseUsage("--key-file", "cannot open " + name);
  char line[256];  // the longest key has 64 characters
  const std::size_t n = std::fread(line, 1, sizeof line, file.get());
  const std::string_view text(line, n);
  return std::string(Trim(text.substr(0, text.find('\n'))));
}

// A key that breaks the rules makes the library encode to nothing, which is how this finds it.
std::string FindKey(const KeyOptions& options) {
  std::string key = options.key;
  if (key.empty() && !options.file.empty()) key = ReadKeyFile(options.file);
  if (key.empty()) {
    const char* variable = std::getenv("KVSHARE_KEY");
    if (variable != nullptr) key = variable;
  }
  if (key.empty()) RefuseUsage("--key", "a key is needed: --key, --key-file or KVSHARE_KEY");
  if (TKovraCrypt().DecodeToString("", key) == TKovraCrypt::kFailureMarker) {
    RefuseUsage("--key", "a key has 16 to 64 different characters of 0-9 A-Z a-z + /");
  }
  return key;
}

Transform MakeEncode(const KeyOptions& options) {
  const auto crypt = std::make_shared<TKovraCrypt>();
  std::string key = FindKey(options);
  if (crypt->EncodeString("", key).empty()) {
    RefuseUsage("--key", "a key of all 64 characters can only decode");
  }
  return [crypt, key = std::move(key)](std::string_view item, Row& row) {
    if (row.Json()) row.Member("text") = Trim(item);
    row.Cell("encoded") = crypt->EncodeString(item, key);
  };
}

Transform MakeDecode(const KeyOptions& options) {
  const auto crypt = std::make_shared<TKovraCrypt>();
  return [crypt, key = FindKey(options)](std::string_view item, Row& row) {
    std::string text = crypt->DecodeToString(item, key);
    if (text == TKovraCrypt::kFailureMarker) throw EConvertError("the text cannot be decoded");
    if (row.Json()) row.Member("encoded") = Trim(item);
    row.Cell("text") = std::move(text);
  };
}

void FillMessage(const TMessageRow& message, Row& row) {
  row.Number("identifier", message.Id);
  row.Cell("name") = message.Name;
  row.Cell("text") = LoadStr(message.Id);
}

void ShowMessage(std::string_view item, Row& row) {
  const std::string_view name = Trim(item);
  std::int32_t number = 0;
  const TMessageRow* message = FindMessage(name);
  if (message == nullptr && TryStrToInt(name, number) && number >= 0 && number <= 0xFFFF) {
    message = FindMessageById(static_cast<Word>(number));
  }
  if (message == nullptr) {
    throw EConvertError("no message is named '" + std::string(name.substr(0, 80)) + "'");
  }
  FillMessage(*message, row);
}

void UseLanguage(const std::string& name, const Stdio& stdio) {
  const auto warnings = SetLanguage(name);
  if (CurrentLanguage() != name && !name.empty()) {
    RefuseUsage("--language", warnings.empty() ? "cannot be read" : warnings.front().Text);
  }
  BlockWriter err(stdio.err, "standard error");
  for (const TLanguageWarning& warning : warnings) {
    err.Buffer() += "language " + name + ", line " + std::to_string(warning.Line) +
                    ": warning: " + warning.Text;
    err.EndLine();
  }
  err.Flush();
}

void PlanMessage(const MessageOptions& options, Plan& plan) {
  if (!options.list) {
    plan.transform = ShowMessage;
    return;
  }
  if (!plan.operands.empty()) RefuseUsage("--list", "takes no NAME");
  plan.action = PrintRows(plan, [](const auto& print, Row& row) {
    for (const TMessageRow& message : Messages()) {
      row.Clear();
      FillMessage(message, row);
      print(row);
    }
  });
}

}  // namespace

void DeclareEncode(Command parent, Plan& plan) {
  const auto options = std::make_shared<KeyOptions>();
  const Command command = AddCommand(parent, plan, "encode", "Short texts hidden under a key",
                                     std::string(kEncodeExamples) + std::string(kKeyNote));
  AddKey(command, *options);
  AddItems(command, plan, "TEXT", "Texts, trimmed at both ends");
  command.OnParsed([options, &plan] { plan.transform = MakeEncode(*options); });
}

void DeclareDecode(Command parent, Plan& plan) {
  const auto options = std::make_shared<KeyOptions>();
  const Command command = AddCommand(parent, plan, "decode", "The texts that encode has hidden",
                                     std::string(kDecodeExamples) + std::string(kKeyNote));
  AddKey(command, *options);
  AddItems(command, plan, "TEXT", "Encoded texts");
  command.OnParsed([options, &plan] { plan.transform = MakeDecode(*options); });
}

void DeclareKey(Command parent, Plan& plan) {
  const Command command = AddCommand(parent, plan, "key", "A fresh key for encode and decode",
                                     "  kvshare key > my.key && chmod 600 my.key\n");
  command.OnParsed([&plan] {
    plan.action = PrintRows(plan, [](const auto& print, Row& row) {
      row.Cell("key") = TKovraCrypt().GeneratePWDSecutityString();
      print(row);
    });
  });
}

void DeclareMessage(Command parent, Plan& plan) {
  const auto options = std::make_shared<MessageOptions>();
  const Command command =
      AddCommand(parent, plan, "message", "Texts of the message catalogue", kMessageExamples);
  command.AddOption("--language", options->language,
                    "th, or the name of a language resource such as en (default: the "
                    "environment variable KVSHARE_LANGUAGE)");
  command.AddFlag("--list", options->list, "Print the whole catalogue");
  AddItems(command, plan, "NAME", "Names in any letter case, or identifiers");
  command.OnParsed([options, &plan] {
    if (!options->language.empty()) {
      plan.prepare = [language = options->language](const Stdio& stdio) {
        UseLanguage(language, stdio);
      };
    }
    PlanMessage(*options, plan);
  });
}

}  // namespace kvshare::app
