#include "kvshare/settings/programsettings.h"

#include "kvshare/messages/programlocale.h"
#include "kvshare/os/files.h"
#include "kvshare/os/folders.h"
#include "kvshare/os/registry/registry.h"
#include "kvshare/platform/verinfo.h"
#include "kvshare/platform/win32.h"
#include "kvshare/rtl/convert.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/filebytes.h"
#include "kvshare/rtl/format.h"
#include "kvshare/rtl/inifile.h"
#include "kvshare/settings/globals.h"
#include "kvshare/settings/numberformats.h"
#include "kvshare/ui/application.h"

namespace kvshare {

namespace {

constexpr std::string_view kSection = "Default";
constexpr std::int32_t kEnglish = 30000;

struct DigitSetting {
  std::string_view name;
  std::string_view defaultValue;
  Word* digits;
};

constexpr DigitSetting kDigitSettings[] = {
    {"QtyDigit", "4", &QtyDigit},
    {"UPrcDigit", "2", &UPrcDigit},
    {"BahtDigit", "2", &BahtDigit},
    {"WeightDigit", "3", &WeightDigit},
};

Word ToDigits(std::string_view text) {
  const std::int32_t value = StrToInt(text);
  if (value < 0 || value > UINT16_MAX) {
    throw EConvertError(Format("'%s' is not a valid integer value", {text}));
  }
  return static_cast<Word>(value);
}

void ReadDigits(const TKovraRegistry& store) {
  for (const DigitSetting& setting : kDigitSettings) {
    *setting.digits =
        ToDigits(store.ReadRegistryString("", kSection, setting.name, setting.defaultValue));
  }
}

void FindProgram() {
  ExePath = os::ProgramFolder();
  Application.HelpFile = Format("%s%s", {ExePath, Application.HelpFile});
}

void PrepareTempFolder(std::string_view appDataPath) {
  const std::string folder = Format(R"(%sTemp\)", {appDataPath});
  if (!os::DirectoryExists(folder)) os::ForceDirectories(folder);
}

void ReadTraceSwitch() {
  const TIniFile settings(Format("%sBtrace.ini", {ExePath}));
  if (FileExists(settings.FileName())) BTrace = settings.ReadBool("Config", "Trace", false);
}

}  // namespace

std::string ProgramLocale() {
  return os::RegistryText(os::Hive::CurrentUser, R"(Software\Borland\Locales)", os::ProgramFile())
      .value_or("");
}

void SetEditMaskAndFormatStr() {
  ReadDigits(*MyKovraRegistry);
  FindProgram();
  BaseLanguage = ProgramLocale() == "EN" ? kEnglish : 0;
  YearBase = TKovraWin32::SysYearOffset();
  const std::string appDataPath = MyKovraRegistry->GetKovraAppDataPath();
  PrepareTempFolder(appDataPath);
  ScreencamPath = MyKovraRegistry->ReadRegistryString("", kSection, "ScreencamPath", "");
  KovraAppDataPath = appDataPath;
  BuildNumberFormats();
  ReadTraceSwitch();
}

void ReadNumberSettings(const TKovraRegistry& store) {
  ReadDigits(store);
  BuildNumberFormats();
}

}  // namespace kvshare
