// The suite's common dialogs, which live in a library of their own, KovraWin.DLL, that a shop may
// replace (docs/system.md). It is looked for as os::SharedLibrary("KovraWin") is.
//
// Every wrapper stands for itself: it loads the library, looks up the entry of its own name, calls
// it with the main window first, and unloads the library. A library that cannot be loaded and an
// entry that is not there show an error box each, and the wrapper returns its default. An entry
// that throws shows its message in an error box (an EAbort shows none), with the same result.
// Wrappers may be called from within an entry. Main thread only.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "kvshare/export.h"
#include "kvshare/rtl/datetime.h"
#include "kvshare/rtl/stringlist.h"

namespace kvshare {

// --- What a companion library exports

// Entries have C linkage and the name of their wrapper (ExecCalculator, ...), and may be missing.
//
// The first argument is the number of the program's main window, 0 for none
// (TApplication::MainFormHandle). `mode` is the caller's, as it is. Texts are code page 874 and end
// with a zero byte. A caption or an in/out text lies in a buffer of 64 bytes; one of 64 letters
// fills it whole, and behind it stands a zero byte that the entry does not write. A buffer's
// address is given by a pointer that the entry may point to a text of its own; of that 64 letters
// are read, and a null pointer is the empty text. Returned texts stay the library's: they live
// until the entry is called again or the library is unloaded. Moments are days since 30 December
// 1899, in the Christian calendar. A Boolean is one byte, 0 for false.
extern "C" {

// What ExecuteProcedure calls.
using TExecuteProcedure = void(std::uintptr_t window);

// The value that was computed, or the given one.
using TExecCalculatorEntry = double(std::uintptr_t window, std::int32_t mode, double value);
// The date that was chosen, or the given one.
using TExecCalendarEntry = double(std::uintptr_t window, std::int32_t mode, double date);
// The text that was written, of any length, or the given one. A null pointer is the empty text.
using TExecReadSQLCmdEntry = const char*(std::uintptr_t window, std::int32_t mode, const char* sql);
using TExecAboutBoxEntry = void(std::uintptr_t window, std::int32_t mode);
// What the result means is between the program and the library, as below; the companion that comes
// with this library gives 1 where the user has chosen, else 0.
using TExecGetUserNameEntry = std::int32_t(std::uintptr_t window, std::int32_t mode, char** name,
                                           char** second);
// The caption has any length.
using TExecGetGroupNameEntry = std::uint8_t(std::uintptr_t window, std::int32_t mode,
                                            const char* caption, char** first, char** second);
// Also ExecPickDate.
using TExecGetDateEntry = std::int32_t(std::uintptr_t window, std::int32_t mode,
                                       const char* caption, double* date);
using TExecGetDateRangeEntry = std::uint8_t(std::uintptr_t window, std::int32_t mode,
                                            const char* firstCaption, const char* secondCaption,
                                            double* from, double* to);
using TExecGetYearEntry = std::int32_t(std::uintptr_t window, std::int32_t mode,
                                       const char* caption, std::int32_t* year);
// A null pointer is the empty text.
using TExecReadKovraSysInfoEntry = const char*();

}  // extern "C"

// --- The library by hand

// Where the library is loaded; 0 when it never was, or when it could not be the last time. Not
// reset when it is unloaded.
extern KVSHARE_API std::uintptr_t hKovraWin;

// What ExecuteProcedure found last, nullptr for nothing. To be called as long as the library is
// loaded.
extern KVSHARE_API TExecuteProcedure* pExecuteProcedure;

// Loads the library. A failure shows `Error: 1157.Cannot find KovraWin.DLL` where there is no such
// file, else `Error: 193.On Load Library KovraWin.DLL`. Loads are counted: the library stays until
// each has its FreeKovraWin.
KVSHARE_API void LoadKovraWin();

// Unloads the library, or one load of it; nothing while hKovraWin is 0 or no load is left.
KVSHARE_API void FreeKovraWin();

// Calls an entry of the loaded library by its name. Shows `Program NAME Not Found in KovraWin.DLL`
// where the library lacks it or no library is loaded.
KVSHARE_API void ExecuteProcedure(std::string_view name);
KVSHARE_API void DoProcedure();  // ExecuteProcedure("DoProcedure"); does not load either

// --- The dialogs

// Texts end at a zero byte. Captions (but not ExecGetGroupName's) and in/out texts are cut after 64
// letters, and an in/out text comes back cut in any case. Where the entry is missing or throws, a
// function returns 0, false, or the value that it was given.

KVSHARE_API double ExecCalculator(std::int32_t mode, double value);  // 0
KVSHARE_API TDateTime ExecCalendar(std::int32_t mode, TDateTime date);
KVSHARE_API std::string ExecReadSQLCmd(std::int32_t mode, std::string_view sql);
KVSHARE_API void ExecAboutBox(std::int32_t mode);

// `second` is only given back.
KVSHARE_API std::int32_t ExecGetUserName(std::int32_t mode, std::string& name, std::string& second);
KVSHARE_API bool ExecGetGroupName(std::int32_t mode, std::string_view caption, std::string& first,
                                  std::string& second);

KVSHARE_API std::int32_t ExecGetDate(std::int32_t mode, std::string_view caption, TDateTime& date);
KVSHARE_API std::int32_t ExecPickDate(std::int32_t mode, std::string_view caption, TDateTime& date);
KVSHARE_API bool ExecGetDateRange(std::int32_t mode, std::string_view firstCaption,
                                  std::string_view secondCaption, TDateTime& from, TDateTime& to);
KVSHARE_API std::int32_t ExecGetYear(std::int32_t mode, std::string_view caption,
                                     std::int32_t& year);

// Adds what the library tells as one item. A library without this entry adds nothing and shows
// nothing.
KVSHARE_API void ExecReadKovraSysInfo(TStrings& list);

}  // namespace kvshare
