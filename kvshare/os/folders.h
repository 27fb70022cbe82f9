// Well-known folders. All lie on C: and are named whether they exist or not.
#pragma once

#include <string>

#include "kvshare/export.h"

namespace kvshare::os {

// Folder ids of SpecialFolder: the platform's numbers.
inline constexpr int kUserAppData = 26;
inline constexpr int kCommonAppData = 35;
inline constexpr int kProgramFiles = 38;

// Without a final `\`; "" for another id.
//   26  C:\Users\NAME\AppData\Roaming      NAME is the login name, "Default" where there is none
//   35  C:\ProgramData
//   38  C:\Program Files
KVSHARE_API std::string SpecialFolder(int id);

KVSHARE_API std::string WindowsFolder();  // C:\Windows
KVSHARE_API std::string SystemFolder();   // C:\Windows\System32
// C:\Temp\, with the final `\`; TempFolder makes it when it is missing and can be made.
KVSHARE_API std::string TempFolderName();
KVSHARE_API std::string TempFolder();

// The running program's file, as an interface's name (`Z:\usr\bin\kvshare`), and its folder with
// the final `\`. "" where the system does not tell.
KVSHARE_API std::string ProgramFile();
KVSHARE_API std::string ProgramFolder();

}  // namespace kvshare::os
