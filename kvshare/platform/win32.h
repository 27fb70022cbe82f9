// The computer, its folders and its user: what programs ask the system for.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "kvshare/export.h"

namespace kvshare {

// No operation needs an instance.
class KVSHARE_API TKovraWin32 {
 public:
  // TKovraString::ChangeString.
  static std::string ChangeString(std::string_view text, std::string_view oldText,
                                  std::string_view newText);

  // The offline copy of a client dataset: 'Customer' gives 'BriefCase\Customer.Cds'.
  static std::string cdsFullFileName(std::string_view name);

  // A name that no file had when it was made: prefix + `T` + HHNNSSZZZ + `.` + extension without
  // its points. The prefix is a folder with its final `\`. Nothing is created, so that two calls of
  // one millisecond give one name.
  //   GetKovraTempFileName(R"(C:\Temp\)", ".txt")   C:\Temp\T143005123.txt
  static std::string GetKovraTempFileName(std::string_view prefix, std::string_view extension);
  static std::string GetWindowsTempName(std::string_view extension);  // in GetWindowsTempPath()

  // "" for a folder of more than 127 bytes.
  static std::string GetSystemPath();       // without a final `\`
  static std::string GetWindowsPath();      // without a final `\`
  static std::string GetWindowsTempPath();  // with one

  static bool IsPrinterInstalled();

  // Trimmed. "<<Undefined>>" for a computer name of more than 15 bytes or none; "<<Not Login>>" for
  // a login name of more than 20 or none.
  static std::string MyComputerName();
  static std::string MyLoginName();

  // 543 when the user's locale has the Thai Buddhist calendar, else 0.
  static int SysYearOffset();

  // The first IPv4 address of the machine's host name; "" when it has none.
  static std::string MyIpAddress();

  // The whole screen as a Windows bitmap. Throws EOSError without a screen, EInOutError when the
  // file cannot be written; an earlier file is whole all the same.
  static void SaveScreenImageToFile(std::string_view fileName);

  // Returns after at least that many milliseconds. Keeps the processor busy: for short waits.
  static void WaitUntilTickCOUNT(std::uint32_t milliseconds);

  // The folder of an id (26 user's application data, 35 common, 38 program files) without a final
  // `\`; "" for others.
  static std::string GetSpecialFolderPath(int folderId);
  static std::string GetAllUserAppDataPath();  // 35
  static std::string GetUserAppDataPath();     // 26
  static std::string GetProgramPath();         // 38
};

}  // namespace kvshare
