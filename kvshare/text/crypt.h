// Short values (names, passwords, numbers, dates) as printable text under a key. This hides a value
// from a glance into a settings file; it is no cryptography.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "kvshare/export.h"
#include "kvshare/rtl/currency.h"
#include "kvshare/rtl/datetime.h"

namespace kvshare {

// A key is 16 to 64 different characters of `0-9A-Za-z+/`. The same value encodes to a different
// text each time; all of them decode to it. Under a key that breaks the rules encoders give "" and
// decoders kFailureMarker, 0 or today.
class KVSHARE_API TKovraCrypt {
 public:
  // What decoding gives for an invalid key or a text that cannot be decoded.
  static constexpr std::string_view kFailureMarker{"\x01", 1};

  // Seeds the shared generator from the clock.
  TKovraCrypt();

  // A fresh key of 16 characters.
  std::string GeneratePWDSecutityString() const;

  // `Count` of the given characters, drawn without repetition; at most as many as there are, "" for
  // Count <= 0.
  std::string MakeRNDString(std::string_view Characters, int Count) const;

  // Two characters of the key for each byte of the value, a run of MinPad .. MaxPad - 1 fillers
  // after each and of MinPad + 1 .. MaxPad before the first; just MinPad and MinPad + 1 when the
  // bounds are equal. Fillers are the characters that the key leaves: a run holds each of them once
  // at most, so it is never longer than they are. Bounds are swapped when turned round, then
  // clamped to 0 .. 100. A key of all 64 characters leaves no fillers: "".
  std::string EncodePWDEx(std::string_view Value, std::string_view Key, int MinPad,
                          int MaxPad) const;

  // The same in at most MaxLen characters; MaxLen 0 sets no limit. Runs are drawn anew while the
  // text comes out too long; where that would go on for long, fillers beyond the least are struck
  // out at random until the text fits. A MaxLen below the shortest possible text, a negative one
  // too, gives "".
  std::string EncodePWDExL(std::string_view Value, std::string_view Key, int MaxLen, int MinPad,
                           int MaxPad) const;

  // Characters that are not in the key are passed over; an odd number of others is a failure.
  std::string DecodePWDEx(std::string_view Value, std::string_view Key) const;

  // The value trimmed of bytes <= 32 at both ends, padding 0 .. 5.
  std::string EncodeString(std::string_view Value, std::string_view Key) const;
  std::string DecodeToString(std::string_view Value, std::string_view Key) const;

  // Typed values; what does not decode gives 0, 0.00 and today's date. Amounts are written and read
  // with FormatSettings.DecimalSeparator.
  std::string EncodeInteger(std::int32_t Value, std::string_view Key) const;
  std::int32_t DecodeToInteger(std::string_view Value, std::string_view Key) const;
  std::string EncodeCurrency(Currency Value, std::string_view Key) const;
  Currency DecodeToCurrency(std::string_view Value, std::string_view Key) const;
  // As YYYYMMDD, the time of day dropped; years 1 .. 9999 come back. Throws as FormatDateTime.
  std::string EncodeDatetime(TDateTime Value, std::string_view Key) const;
  TDateTime DecodeToDatetime(std::string_view Value, std::string_view Key) const;
};

}  // namespace kvshare
