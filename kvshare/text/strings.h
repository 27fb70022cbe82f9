// Small text helpers: fixed-width columns, flag texts, SQL-safe strings. Bytes in code page 874,
// positions from 1. Every operation returns a new text unless it says "in place".
#pragma once

#include <cstddef>
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

  // Overwritten from the left, the length stays: "//" by CR LF, CR LF by two blanks, ' by ".
  static std::string ChangeSlashToCRLF(std::string_view Text);
  static std::string ChangeCRLFToSpace(std::string_view Text);
  static std::string Change1To2Quote(std::string_view Text);

  // Without the first occurrence of Part; an empty Part removes nothing.
  static std::string RemoveString(std::string_view Part, std::string_view Text);

  // Replaces every Old, ignoring case, and searches each time again from the start, so that what a
  // replacement brings together is replaced too: "aabb" without "ab" is "". An empty Old changes
  // nothing. Takes time in proportion to Text, what is replaced and what is inserted.
  //
  // Replacements that would never end throw EConvertError when Old occurs:
  //   `'%s' cannot replace '%s', which it contains` where New holds Old, ignoring case;
  //   `Replacing '%s' by '%s' does not come to an end` where New and what stands beside it make Old
  //   again and again ("aab", by "bbaa" for "ab"). So do those that end too late for any use: the
  //   limit is kMostRepeated bytes and the length of Text, inserted by replacements that take in
  //   what others inserted.
  static constexpr std::size_t kMostRepeated = std::size_t{1} << 24;
  static std::string ChangeString(std::string_view Text, std::string_view Old,
                                  std::string_view New);

  // To `Width` bytes: padded with blanks or "0" behind or (Left) in front, or cut to the first
  // Width bytes. Width <= 0 gives "".
  static std::string Pad(std::string_view Text, SmallInt Width);
  static std::string PadLeft(std::string_view Text, SmallInt Width);
  static std::string PadZero(std::string_view Text, SmallInt Width);
  static std::string PadLeftZero(std::string_view Text, SmallInt Width);

  // Without a leading item number, which is what StrToInt accepts before the first `.`: `12.Sales`
  // gives `Sales`; other texts stay.
  static std::string StripNumber(std::string_view Text);

  // The position of the N-th occurrence, overlaps counted: "aa" stands twice in "aaa". 0 when
  // N <= 0, when there are fewer, and for an empty Part.
  static int BStrPos(std::string_view Part, std::string_view Text, int N);

  // In place: Source's first bytes over Destination from Position, left-aligned: Count bytes (0:
  // all of Source), at most what Source has and never past the end. A Position below 1 or past the
  // end, and a negative Count, change nothing. Source may lie in Destination: the bytes written are
  // the ones from before the call.
  static void MoveLStr(std::string_view Source, std::string& Destination, int Count, int Position);

  // In place: Source's last bytes right-aligned in the field of Count bytes from Position, which
  // ends at the latest with Destination; the bytes that the field has before them stay. With Count
  // 0 all of Source ends just before Position, less what would stand before Destination. A Position
  // below 1 or past the end, and a negative Count, change nothing. Source may lie in Destination.
  static void MoveRStr(std::string_view Source, std::string& Destination, int Count, int Position);
};

extern KVSHARE_API TKovraString* KovraString;  // null until a program sets it

}  // namespace kvshare
