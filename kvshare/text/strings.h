// Small text helpers: fixed-width columns, flag texts, SQL-safe strings. Bytes in code page 874,
// positions from 1. Every operation returns a new text unless it says "in place".
#pragma once

#include <string>
#include <string_view>

#include "kvshare/export.h"
#include "kvshare/rtl/types.h"
#include "kvshare/rtl/variant.h"

namespace kvshare {

// Stateless; every operation is static. The library never creates an instance.
class KVSHARE_API TKovraString {
 public:
  // `Count` copies of the byte, "" for Count <= 0.
  static std::string Replicate(char C, int Count);
  static std::string Space(int Count);

  static std::string RemoveComma(std::string_view Text);

  // "Y" and "N".
  static std::string Bool2Str(bool Value);
  static std::string Logical(bool Value);

  // The part before the first blank (byte 32); the whole text without one.
  static std::string FirstOccur(std::string_view Text);

  // Case-sensitive; an empty prefix gives true.
  static bool IsStartWith(std::string_view Text, std::string_view Prefix);

  static int CountDelimeter(std::string_view Text, char C);

  // True for Null, Unassigned and text that is empty once trimmed of bytes <= 32.
  static bool Empty(const Variant& Value);

  // Pairs are overwritten in place from the left, the length stays: "//" by CR LF, CR LF by two
  // blanks, ' by ".
  static std::string ChangeSlashToCRLF(std::string_view Text);
  static std::string ChangeCRLFToSpace(std::string_view Text);
  static std::string Change1To2Quote(std::string_view Text);

  // Without the first occurrence of Part.
  static std::string RemoveString(std::string_view Part, std::string_view Text);

  // Replaces every Old, ignoring case, and searches each time again from the start, so that what a
  // replacement brings together is replaced too. An empty Old changes nothing. A New that holds Old
  // (ignoring case) would never finish: it throws EConvertError
  // `'%s' cannot replace '%s', which it contains`, when Old occurs. A replacement that would not
  // finish for other reasons cannot happen: each step without Old in New consumes an occurrence.
  static std::string ChangeString(std::string_view Text, std::string_view Old,
                                  std::string_view New);

  // To `Width` bytes: padded with blanks or "0" behind or (Left) in front, or cut to the first
  // Width bytes. Width <= 0 gives "".
  static std::string Pad(std::string_view Text, SmallInt Width);
  static std::string PadLeft(std::string_view Text, SmallInt Width);
  static std::string PadZero(std::string_view Text, SmallInt Width);
  static std::string PadLeftZero(std::string_view Text, SmallInt Width);

  // Without a leading item number: `12.Sales` gives `Sales`; other texts stay.
  static std::string StripNumber(std::string_view Text);

  // The position of the N-th occurrence, overlaps counted; 0 when N <= 0 or there are fewer.
  static int BStrPos(std::string_view Part, std::string_view Text, int N);

  // In place: Source's first bytes over Destination from Position, left-aligned; Count bytes (0:
  // all of Source), never past the end. A Position below 1 or past the end, and a negative Count,
  // change nothing.
  static void MoveLStr(std::string_view Source, std::string& Destination, int Count, int Position);

  // In place: Source's last bytes right-aligned in the field of Count bytes from Position. With
  // Count 0 the field ends just before Position. A field that would begin before Destination loses
  // the bytes that do not fit; a Position below 1 or past the end, and a negative Count, change
  // nothing.
  static void MoveRStr(std::string_view Source, std::string& Destination, int Count, int Position);
};

extern KVSHARE_API TKovraString* KovraString;  // null until a program sets it

}  // namespace kvshare
