// The store of the suite's settings in the registry.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "kvshare/export.h"
#include "kvshare/rtl/stringlist.h"
#include "kvshare/rtl/variant.h"
#include "kvshare/ui/controls.h"

namespace kvshare {

// Settings of the user and of the machine, positions of windows, the suite's folders, and a few
// helpers around them. Other programs of the suite read and write the same keys.
//
// A key is `root\section`: where `root` is empty it is RootKey(), else it is the whole path under
// the hive; an empty section adds nothing. "Share" operations are about the machine's hive, all
// others about the user's.
//
// No operation on the registry throws: a read that fails for any reason gives its default (or
// leaves the list or form as it was) and a write that fails does not happen. Reads never create
// keys, writes do; what one call writes is written whole or not at all.
class KVSHARE_API TKovraRegistry {
 public:
  // `Software\Acme\Ledger v5.2` from the running program's company, product and version; where one
  // is missing it is "Undefined CompanyName", "Undefined ProductName", "0.0".
  TKovraRegistry();

  const std::string& RootKey() const { return rootKey_; }  // without a hive; it never changes

  // A named string of the running program's version resource, or the default when it is blank.
  static std::string ReadVersionInfo(std::string_view name, std::string_view defaultValue);

  // --- Texts. A missing or blank one reads as the default.

  std::string ReadShareRegistryString(std::string_view root, std::string_view section,
                                      std::string_view name, std::string_view defaultValue) const;
  void WriteShareRegistryString(std::string_view root, std::string_view section,
                                std::string_view name, std::string_view value) const;
  std::string ReadRegistryString(std::string_view root, std::string_view section,
                                 std::string_view name, std::string_view defaultValue) const;
  void WriteRegistryString(std::string_view root, std::string_view section, std::string_view name,
                           std::string_view value) const;

  // --- Lists, such as the texts that were searched for last.

  // Under `root\section\name`, an empty section being "Findkey". Reading adds the items that are
  // not blank and that the list does not hold already; it does not clear the list. Writing replaces
  // all by the first ten items.
  void ReadRegistryStringList(std::string_view root, std::string_view section,
                              std::string_view name, TStrings& list) const;
  void WriteRegistryStringList(std::string_view root, std::string_view section,
                               std::string_view name, const TStrings& list) const;

  // Under `root[\section]\name`: one value for each line `name=value`; a line without `=` is left
  // out. Reading clears the list first.
  void ReadRegistryStringListWKey(std::string_view root, std::string_view section,
                                  std::string_view name, TStrings& list) const;
  void WriteRegistryStringListWKey(std::string_view root, std::string_view section,
                                   std::string_view name, const TStrings& list) const;

  // --- Positions of forms, under RootKey\FormPosition\form.

  // Writes nothing when the stored form is maximised and has the form's size and place.
  void SaveFormPosition(const TForm& form) const;
  // Puts a form that was stored in its normal state where it was, with its size unless it is of the
  // fixed dialog style; maximises one that was maximised; else does nothing.
  void SetFormPosition(TForm& form) const;
  // False when the stored size equals the one given.
  bool IsChangeWindowsState(const TForm& form, int width, int height) const;

  // --- Places of visible controls such as tool bars, under RootKey\FormPosition\owner\control.

  void SaveLocation(const TWinControl& control) const;
  // Moves the control to its stored place, else to the defaults, and returns the left edge of the
  // next one in the row (two pixels behind it). A hidden control stays and gives `defaultLeft`.
  int SetLocation(TWinControl& control, int defaultTop, int defaultLeft) const;
  // Forgets the places of a form's controls whose names begin with "TBar", in any letter case.
  void ClearLocation(std::string_view formName) const;

  // --- The suite's folders, with a final backslash. The three of the machine are created when they
  // are missing. Throw EInOutError when that fails.

  std::string GetAliasPath() const;
  std::string GetReportPath() const;
  std::string GetDocumentPath() const;
  // Make the folder beside the running program the stored one, and return it without a final
  // backslash.
  std::string SetReportPath() const;
  std::string SetDocumentPath() const;
  // The suite's folder in the application data of all users; it is not created.
  std::string GetKovraAppDataPath() const;

  // Whether a system table's source file has another time than the one recorded for it; records the
  // new one. A missing file never has. The first call for a file says yes.
  bool NeedAutoUpdate(std::string_view tableName, std::string_view fileName) const;

  // --- Helpers that need no registry.

  // Every item trimmed and in upper or lower case.
  static void UpperCaseAll(TStrings& list);
  static void LowerCaseAll(TStrings& list);

  // Runs "program parameters" and waits for its end; its exit code, 259 when it did not start.
  static int RunAndWait(std::string_view program, std::string_view parameters);
  // Starts "program parameters". What the system keeps of it stays until the caller ends.
  static void RunNoWait(std::string_view program, std::string_view parameters);

  // Selects the Thai language driver of the platform's database engine.
  void BdeSetup() const;

  // Whether the programmatic identifier "Excel.Application" has a class identifier.
  bool IsExcelInstall() const;

  // Null, or a text of blanks only.
  static bool Empty(const Variant& value);

 private:
  std::string KeyOf(std::string_view root, std::string_view section) const;
  std::string ListKey(std::string_view root, std::string_view section, std::string_view name,
                      std::string_view defaultSection) const;
  std::string FormKey(std::string_view form) const;
  std::string LocationKey(const TWinControl& control) const;  // of one with an owner
  std::string SetAliasPath() const;
  std::string StoredFolder(std::string_view valueName,
                           std::string (TKovraRegistry::*set)() const) const;
  std::string StoreFolderBesideProgram(std::string_view valueName, std::string_view name) const;

  std::string rootKey_;
};

// Created by Initialize, freed by Finalize.
extern KVSHARE_API TKovraRegistry* MyKovraRegistry;

}  // namespace kvshare
