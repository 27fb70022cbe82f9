// `kvshare settings`.
#include <algorithm>
#include <memory>

#include "apps/kvshare/commands/commands.h"
#include "apps/kvshare/commands/settingsvalues.h"
#include "apps/kvshare/terminal/outputrow.h"
#include "kvshare/os/registry/regfile.h"
#include "kvshare/os/registry/registry.h"
#include "kvshare/rtl/convert.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/filebytes.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare::app {

namespace {

using os::Hive;
using os::RegistryKey;
using os::RegistryUse;
using os::RegistryValue;
using os::TRegistry;
using os::ValueKind;

constexpr std::string_view kKeyNote =
    "A key begins with HKCU (the user's settings) or HKLM (the machine's), or their long names;\n"
    "one that does not is the user's.\n";

constexpr std::string_view kListExamples =
    "  kvshare settings list                     the keys of both hives\n"
    "  kvshare settings list --recursive 'HKCU\\Software\\Acme\\Ledger v5.2'\n"
    "                                            a tab between key, name, kind and value\n";

constexpr std::string_view kGetExamples =
    "  kvshare settings get 'HKLM\\Software\\Acme\\Ledger v5.2' ReportPath\n"
    "  kvshare settings get 'Software\\Acme' ''   the key's default value\n";

constexpr std::string_view kSetExamples =
    "  kvshare settings set 'HKLM\\Software\\Acme\\Ledger v5.2' ReportPath 'D:\\Reports'\n"
    "  kvshare settings set --integer 'Software\\Acme\\Ledger v5.2\\FormPosition\\Main' Top 40\n";

constexpr std::string_view kDeleteExamples =
    "  kvshare settings delete 'Software\\Acme\\Ledger v5.2' TraceFile\n"
    "  kvshare settings delete --recursive 'Software\\Acme\\Ledger v5.2\\FormPosition'\n"
    "                                            the key with all below it\n";

constexpr std::string_view kExportExamples =
    "  kvshare settings export > all.reg         both hives, for a registry editor or import\n"
    "  kvshare settings export --output acme.reg 'HKLM\\Software\\Acme'\n"
    "  kvshare settings export --regedit4 'Software\\Acme'\n"
    "                                            in code page 874, for older editors\n";

constexpr std::string_view kImportExamples =
    "  kvshare settings import acme.reg          all of the file, or nothing\n"
    "  ssh shop kvshare settings export | kvshare settings import -\n";

class SettingsError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

struct SettingsOptions {
  std::string key, name, value, file;
  bool hasName = false;
  bool integer = false;
  bool recursive = false;
  bool regedit4 = false;
};

// HKCR, HKEY_USERS and their like: a key of that name is reached behind its hive.
bool LooksLikeHive(std::string_view name) {
  return SameText(name.substr(0, 5), "HKEY_") ||
         (name.size() == 4 && SameText(name.substr(0, 2), "HK"));
}

RegistryKey UsageKey(std::string_view utf8) {
  std::string key = UsageText("KEY", utf8);
  RegistryKey result;
  const std::string_view shown = key;
  const std::size_t end = std::min(shown.find('\\'), shown.size());
  if (os::FindHive(shown.substr(0, end), result.hive)) {
    result.path = shown.substr(end);
  } else if (LooksLikeHive(shown.substr(0, end))) {
    RefuseUsage("KEY", "begins with HKCU or HKLM: other hives are not kept");
  } else {
    result.path = shown;
  }
  while (result.path.starts_with('\\')) result.path.erase(0, 1);
  while (result.path.ends_with('\\')) result.path.pop_back();
  return result;
}

// Without one, both hives.
std::vector<RegistryKey> UsageKeys(const std::string& key) {
  if (key.empty()) return {{Hive::CurrentUser, ""}, {Hive::LocalMachine, ""}};
  return {UsageKey(key)};
}

std::string Shown(const RegistryKey& key) {
  return ShownKey(key.hive, key.path);
}

void RequireStore(RegistryUse use) {
  if (const std::string trouble = os::RegistryTrouble(use); !trouble.empty()) {
    throw SettingsError(trouble);
  }
}

TRegistry OpenExisting(const RegistryKey& key) {
  TRegistry registry(key.hive);
  if (!registry.OpenKeyReadOnly("\\" + key.path)) {
    throw SettingsError("there is no key " + Shown(key));
  }
  return registry;
}

[[noreturn]] void ThrowNoValue(const RegistryKey& key, std::string_view name) {
  throw SettingsError(Shown(key) + " has no value '" + Cp874ToUtf8Lossy(name) + "'");
}

// What a write failed of, where the store as a whole can tell.
template <typename Write>
void WriteOrTell(Write write) {
  try {
    write();
  } catch (const ERegistryException& e) {
    RequireStore(RegistryUse::Writing);
    throw SettingsError(Cp874ToUtf8Lossy(e.Message()));
  }
}

class Listing {
 public:
  Listing(bool json, bool recursive, const Stdio& stdio)
      : json_(json), recursive_(recursive), out_(stdio.out, "standard output") {}

  // NOLINTNEXTLINE(misc-no-recursion): keys lie in each other 512 deep at most
  void Add(const RegistryKey& key) {
    const TRegistry registry = OpenExisting(key);
    const std::string shown = Shown(key);
    AddKey(shown);
    for (const RegistryValue& value : registry.ReadValues()) AddValue(shown, value);
    TStringList names;
    registry.GetKeyNames(names);
    for (const std::string& name : names) {
      const RegistryKey below{key.hive, key.path.empty() ? name : key.path + "\\" + name};
      recursive_ ? Add(below) : AddKey(Shown(below));
    }
  }

  void Finish() { out_.Flush(); }

 private:
  void AddKey(std::string_view shown) {
    if (json_) {
      out_.Buffer() += "{\"key\":";
      AppendJsonString(out_.Buffer(), shown);
      out_.Buffer() += '}';
    } else {
      out_.Buffer() += OnOneLine(shown);
    }
    out_.EndLine();
  }

  void AddValue(std::string_view shown, const RegistryValue& value) {
    if (json_) {
      AppendValueObject(out_.Buffer(), shown, value);
    } else {
      out_.Buffer() += OnOneLine(shown) + "\t" + OnOneLine(Cp874ToUtf8Lossy(value.name)) + "\t" +
                       KindName(value.kind) + "\t" + OnOneLine(ShownData(value));
    }
    out_.EndLine();
  }

  bool json_;
  bool recursive_;
  BlockWriter out_;
};

int List(const std::vector<RegistryKey>& keys, bool json, bool recursive, const Stdio& stdio) {
  RequireStore(RegistryUse::Reading);
  Listing listing(json, recursive, stdio);
  for (const RegistryKey& key : keys) listing.Add(key);
  listing.Finish();
  return kDone;
}

int Get(const RegistryKey& key, const std::string& name, bool json, const Stdio& stdio) {
  RequireStore(RegistryUse::Reading);
  const auto value = OpenExisting(key).ReadValue(name);
  if (!value) ThrowNoValue(key, name);
  BlockWriter out(stdio.out, "standard output");
  if (json) {
    AppendValueObject(out.Buffer(), Shown(key), *value);
  } else {
    out.Buffer() = ShownData(*value);
  }
  out.EndLine();
  out.Flush();
  return kDone;
}

int Set(const RegistryKey& key, const RegistryValue& value) {
  WriteOrTell([&] {
    os::InOneRegistryTransaction([&] {
      TRegistry registry(key.hive);
      registry.CreateKey("\\" + key.path);
      registry.OpenKey("\\" + key.path, false);
      registry.WriteValue(value);
    });
  });
  return kDone;
}

int DeleteValue(const RegistryKey& key, const std::string& name) {
  RequireStore(RegistryUse::Writing);
  TRegistry registry = OpenExisting(key);
  if (!registry.ValueExists(name)) ThrowNoValue(key, name);
  if (!registry.DeleteValue(name)) throw SettingsError("the value could not be deleted");
  return kDone;
}

int DeleteKey(const RegistryKey& key, bool recursive) {
  RequireStore(RegistryUse::Writing);
  TRegistry registry = OpenExisting(key);
  if (!recursive && (registry.HasSubKeys() || !registry.ReadValues().empty())) {
    throw SettingsError(Shown(key) + " is not empty; --recursive deletes it with all below it");
  }
  if (!registry.DeleteKey("\\" + key.path)) throw SettingsError("the key could not be deleted");
  return kDone;
}

int Export(const std::vector<RegistryKey>& keys, os::RegFormat format, const std::string& file,
           const Stdio& stdio) {
  RequireStore(RegistryUse::Reading);
  for (const RegistryKey& key : keys) OpenExisting(key);
  const std::string bytes = WriteRegFile(os::CollectRegistry(keys), format);
  if (file.empty()) {
    BlockWriter out(stdio.out, "standard output");
    out.Buffer() = bytes;
    out.Flush();
    return kDone;
  }
  try {
    WriteFileBytes(file, bytes);
  } catch (const EInOutError& e) {
    throw SettingsError(Cp874ToUtf8Lossy(file + ": " + e.Message()));
  }
  return kDone;
}

std::string ReadAll(const Stdio& stdio) {
  constexpr std::size_t kBlock = std::size_t{64} << 10;
  std::string bytes;
  for (;;) {
    const std::size_t before = bytes.size();
    bytes.resize(before + kBlock);
    const std::size_t n = ReadSome(stdio.in, bytes.data() + before, kBlock);
    bytes.resize(before + n);
    if (n == 0) return bytes;
  }
}

int Import(const std::string& file, const Stdio& stdio) {
  const bool standardInput = file == "-";
  const std::string name = standardInput ? "standard input" : file;
  try {
    const std::string bytes = standardInput ? ReadAll(stdio) : ReadFileBytes(file);
    WriteOrTell([&bytes] { os::ImportRegFile(bytes); });
  } catch (const EConvertError& e) {
    throw SettingsError(Cp874ToUtf8Lossy(name + ", " + e.Message()));
  } catch (const EInOutError& e) {
    throw SettingsError(Cp874ToUtf8Lossy(name + ": " + e.Message()));
  }
  return kDone;
}

// A 32-bit integer is written with or without a sign.
RegistryValue UsageValue(const SettingsOptions& options) {
  RegistryValue value{UsageText("NAME", options.name), ValueKind::Text,
                      UsageText("VALUE", options.value)};
  if (!options.integer) return value;
  std::int64_t number = 0;
  if (!TryStrToInt64(Trim(value.data), number) || number < INT32_MIN || number > UINT32_MAX) {
    RefuseUsage("VALUE", "is a number from -2147483648 to 4294967295");
  }
  value.kind = ValueKind::Integer;
  value.data.clear();
  for (unsigned shift = 0; shift < 32; shift += 8) {
    value.data += static_cast<char>(static_cast<std::uint64_t>(number) >> shift & 0xFF);
  }
  return value;
}

using OptionsPointer = std::shared_ptr<SettingsOptions>;

void AddKey(Command command, const OptionsPointer& options, bool required) {
  command
      .AddOption("KEY", options->key,
                 required ? "The key, such as 'HKCU\\Software\\Acme'"
                          : "The key, such as 'HKCU\\Software\\Acme'; without one, both hives")
      .Required(required);
}

Command AddSettings(Command settings, Plan& plan, std::string_view name, std::string_view purpose,
                    std::string_view examples) {
  return AddCommand(settings, plan, name, purpose, std::string(examples) + std::string(kKeyNote));
}

Command AddQuiet(Command settings, std::string_view name, std::string_view purpose,
                 std::string_view examples) {
  return AddQuietCommand(settings, name, purpose, std::string(examples) + std::string(kKeyNote));
}

void DeclareList(Command settings, Plan& plan) {
  const auto options = std::make_shared<SettingsOptions>();
  const Command command =
      AddSettings(settings, plan, "list", "Keys and values of the settings", kListExamples);
  AddKey(command, options, false);
  command.AddFlag("--recursive", options->recursive, "With all below");
  command.OnParsed([options, &plan] {
    plan.action = [&plan, keys = UsageKeys(options->key), recursive = options->recursive](
                      const Stdio& stdio) { return List(keys, plan.json, recursive, stdio); };
  });
}

void DeclareGet(Command settings, Plan& plan) {
  const auto options = std::make_shared<SettingsOptions>();
  const Command command = AddSettings(settings, plan, "get", "One value", kGetExamples);
  AddKey(command, options, true);
  command.AddOption("NAME", options->name, "The value's name").Required();
  command.OnParsed([options, &plan] {
    plan.action = [&plan, key = UsageKey(options->key), name = UsageText("NAME", options->name)](
                      const Stdio& stdio) { return Get(key, name, plan.json, stdio); };
  });
}

void DeclareSet(Command settings, Plan& plan) {
  const auto options = std::make_shared<SettingsOptions>();
  const Command command =
      AddQuiet(settings, "set", "Write one value, and its key if it is missing", kSetExamples);
  AddKey(command, options, true);
  command.AddOption("NAME", options->name, "The value's name").Required();
  command.AddOption("VALUE", options->value, "The text, or with --integer a number").Required();
  command.AddFlag("--integer", options->integer, "A 32-bit integer instead of a text");
  command.OnParsed([options, &plan] {
    plan.action = [key = UsageKey(options->key), value = UsageValue(*options)](const Stdio&) {
      return Set(key, value);
    };
  });
}

void DeclareDelete(Command settings, Plan& plan) {
  const auto options = std::make_shared<SettingsOptions>();
  const Command command =
      AddQuiet(settings, "delete", "Delete one value, or a key", kDeleteExamples);
  AddKey(command, options, true);
  const Option name =
      command.AddOption("NAME", options->name, "The value's name; without one, the key");
  command.AddFlag("--recursive", options->recursive, "The key with its values and all below")
      .Excludes(name);
  command.OnParsed([options, name, &plan] {
    const RegistryKey key = UsageKey(options->key);
    if (name.IsGiven()) {
      plan.action = [key, value = UsageText("NAME", options->name)](const Stdio&) {
        return DeleteValue(key, value);
      };
      return;
    }
    if (key.path.empty()) RefuseUsage("KEY", "is a whole hive, which stays");
    plan.action = [key, recursive = options->recursive](const Stdio&) {
      return DeleteKey(key, recursive);
    };
  });
}

void DeclareExport(Command settings, Plan& plan) {
  const auto options = std::make_shared<SettingsOptions>();
  const Command command =
      AddQuiet(settings, "export", "Settings as a file for registry editors", kExportExamples);
  AddKey(command, options, false);
  command.AddOption("--output", options->file, "The file (default: standard output)")
      .TypeName("FILE");
  command.AddFlag("--regedit4", options->regedit4, "In the older format, code page 874");
  command.OnParsed([options, &plan] {
    const auto format = options->regedit4 ? os::RegFormat::RegEdit4 : os::RegFormat::Version5;
    plan.action = [keys = UsageKeys(options->key), format,
                   file = UsageText("--output", options->file)](const Stdio& stdio) {
      return Export(keys, format, file, stdio);
    };
  });
}

void DeclareImport(Command settings, Plan& plan) {
  const auto options = std::make_shared<SettingsOptions>();
  const Command command =
      AddQuiet(settings, "import", "Do what a file of a registry editor says", kImportExamples);
  command.AddOption("FILE", options->file, "The file; - is standard input").Required();
  command.OnParsed([options, &plan] {
    plan.action = [file = UsageText("FILE", options->file)](const Stdio& stdio) {
      return Import(file, stdio);
    };
  });
}

}  // namespace

void DeclareSettings(Command parent, Plan& plan) {
  const Command settings =
      parent.AddCommand("settings", "The settings that the suite's programs keep");
  settings.RequireCommand();
  DeclareList(settings, plan);
  DeclareGet(settings, plan);
  DeclareSet(settings, plan);
  DeclareDelete(settings, plan);
  DeclareExport(settings, plan);
  DeclareImport(settings, plan);
}

}  // namespace kvshare::app
