// Helpers over string lists: stacks, names and values, raw lines of a section, filter conditions.
#pragma once

#include <string>
#include <string_view>

#include "kvshare/export.h"
#include "kvshare/rtl/stringlist.h"

namespace kvshare {

// Stateless; every operation is static. Lists belong to the caller.
class KVSHARE_API TKovraStrList {
 public:
  // The top is the last item; an empty list pops "".
  static void PushStack(TStrings& List, std::string_view Text);
  static std::string PopStack(TStrings& List);

  // Deletes the first item equal to Text by the list's own lookup; true when one was deleted.
  static bool RemoveFromList(TStrings& List, std::string_view Text);

  // Deletes the item that holds this very text, as TStrings::Identity tells it; an equal text in
  // another item is not meant. True when one was deleted.
  static bool RemoveFromListByPointer(TStrings& List, TStringId Item);

  // Every item becomes what follows its first `=`, trimmed; an item without `=` is only trimmed.
  // Objects stay. Operations that rewrite items throw EStringListError for a sorted list, as
  // TStrings::Put does.
  static void RemoveNameKey(TStrings& List);

  // Names becomes the parts before `=` ("" without one), untrimmed, Values the items after
  // RemoveNameKey, with their objects. Source may be Names or Values; those are two lists.
  static void SplitList(const TStrings& Source, TStrings& Names, TStrings& Values);

  // Appends the raw lines of a section of an initialisation file, comments and blank lines
  // included, up to the header of the section that follows it; nothing when the section is missing.
  // Headers count that stand alone on their lines, letter case aside, without blanks: under
  // `[ A ]` nothing is found, and a section before it runs to the end of the file.
  // TIniFile::ReadSections knows the sections, so its limits hold. Throws EFOpenError when the file
  // vanishes while it is read.
  static void ReadContentInSection(std::string_view FileName, std::string_view Section,
                                   TStrings& List);

  // A=1, B=2, C=3 become AND(A=1, OR B=2, OR C=3), without a blank after the bracket; a single item
  // becomes AND A=1.
  static void AddAndOr(TStrings& List);
};

extern KVSHARE_API TKovraStrList* KovraStrList;  // null until a program sets it

}  // namespace kvshare
