#include "kvshare/text/crypt.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <numeric>
#include <optional>
#include <span>
#include <vector>

#include "kvshare/rtl/convert.h"
#include "kvshare/rtl/format.h"
#include "kvshare/rtl/formatdatetime.h"
#include "kvshare/rtl/random.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare {

namespace {

constexpr std::string_view kAlphabet =
    "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz+/";
static_assert(kAlphabet.size() == 64);

constexpr std::size_t kLeastKeyLength = 16;  // one letter for each nibble
constexpr int kMostPadding = 100;

using LetterPlaces = std::array<std::uint8_t, 256>;
constexpr std::uint8_t kNoPlace = 255;

// Where each byte stands in `letters`, or nothing when one stands there twice.
constexpr std::optional<LetterPlaces> PlacesIn(std::string_view letters) {
  if (letters.size() > kAlphabet.size()) return std::nullopt;
  LetterPlaces places{};
  places.fill(kNoPlace);
  for (std::size_t i = 0; i < letters.size(); ++i) {
    std::uint8_t& place = places[static_cast<unsigned char>(letters[i])];
    if (place != kNoPlace) return std::nullopt;
    place = static_cast<std::uint8_t>(i);
  }
  return places;
}

constexpr LetterPlaces kAlphabetPlaces = *PlacesIn(kAlphabet);

constexpr bool IsHeldBy(const LetterPlaces& places, char letter) {
  return places[static_cast<unsigned char>(letter)] != kNoPlace;
}

// A key that turns right by one position after every letter written or read. Only a count turns;
// the key stays where it is.
class KeyWheel {
 public:
  // Nothing for a key that breaks the rules.
  static std::optional<KeyWheel> Of(std::string_view key) {
    if (key.size() < kLeastKeyLength) return std::nullopt;
    const bool known =
        std::ranges::all_of(key, [](char c) { return IsHeldBy(kAlphabetPlaces, c); });
    const std::optional<LetterPlaces> places = PlacesIn(key);
    if (!known || !places) return std::nullopt;
    return KeyWheel(key, *places);
  }

  bool Holds(char letter) const { return IsHeldBy(places_, letter); }

  char Write(unsigned nibble) {  // 0 .. 15
    const char letter = key_[Wrap(nibble + key_.size() - turns_)];
    Turn();
    return letter;
  }

  // The position of a letter that the key holds: 0 .. 63, past 15 only in a text that Write did not
  // make.
  unsigned Read(char letter) {
    const auto place = static_cast<std::size_t>(places_[static_cast<unsigned char>(letter)]);
    const std::size_t position = Wrap(place + turns_);
    Turn();
    return static_cast<unsigned>(position);
  }

 private:
  KeyWheel(std::string_view key, const LetterPlaces& places) : key_(key), places_(places) {}

  // `position` is less than twice the key's length.
  std::size_t Wrap(std::size_t position) const {
    return position < key_.size() ? position : position - key_.size();
  }
  void Turn() { turns_ = Wrap(turns_ + 1); }

  std::string_view key_;
  LetterPlaces places_;
  std::size_t turns_ = 0;  // 0 .. key_.size() - 1
};

// Draws `count` of the letters without repetition, every order alike, by drawing them to the front
// (Fisher and Yates). The letters stay the same set, so that the next draw can take it as it is.
void AppendDraw(std::string& out, std::span<char> letters, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    const auto left = static_cast<std::int32_t>(letters.size() - i);
    std::swap(letters[i], letters[i + static_cast<std::size_t>(Random(left))]);
  }
  out.append(letters.data(), count);
}

// How many fillers stand between the letters that carry the value.
class Padding {
 public:
  Padding(int minPad, int maxPad, std::size_t fillers)
      : least_(std::clamp(std::min(minPad, maxPad), 0, kMostPadding)),
        spread_(std::clamp(std::max(minPad, maxPad), 0, kMostPadding) - least_),
        most_(static_cast<int>(fillers)) {}

  // The shortest text of `letters` letters. The leading run is longer by one, so that even an empty
  // value has a text.
  std::size_t LeastLength(std::size_t letters) const { return Run(1) + letters * (1 + Run(0)); }

  // Lengths of the leading run and of the run after each letter, with `slack` fillers at most
  // beyond the least. Drawn anew while they are too long, as long as that promises to end; then
  // fillers are struck out, each alike.
  std::vector<std::uint8_t> DrawRuns(std::size_t letters, std::size_t slack) const {
    constexpr int kDraws = 16;
    std::vector<std::uint8_t> runs(letters + 1);
    std::size_t extra = 0;
    for (int draw = 0; draw < kDraws; ++draw) {
      extra = DrawOnce(runs);
      if (extra <= slack) return runs;
    }
    StrikeOut(runs, extra, slack);
    return runs;
  }

 private:
  std::uint8_t Run(int beyondLeast) const {
    return static_cast<std::uint8_t>(std::min(least_ + beyondLeast, most_));  // 0 .. 64
  }

  // Returns how many fillers there are beyond the least.
  std::size_t DrawOnce(std::vector<std::uint8_t>& runs) const {
    std::size_t extra = 0;
    int leading = 1;
    for (std::uint8_t& run : runs) {
      run = Run(Random(spread_) + leading);
      extra += static_cast<std::size_t>(run - Run(leading));
      leading = 0;
    }
    return extra;
  }

  // Keeps `keep` of the `extra` fillers, every choice alike (Knuth's algorithm S).
  void StrikeOut(std::vector<std::uint8_t>& runs, std::size_t extra, std::size_t keep) const {
    int leading = 1;
    for (std::uint8_t& run : runs) {
      const std::uint8_t least = Run(leading);
      for (int unit = run - least; unit > 0; --unit, --extra) {
        const bool kept = static_cast<std::size_t>(Random(static_cast<std::int32_t>(extra))) < keep;
        if (kept) {
          --keep;
        } else {
          --run;
        }
      }
      leading = 0;
    }
  }

  int least_;   // 0 .. 100
  int spread_;  // 0 .. 100 - least_
  int most_;    // fillers that there are
};

std::string FillersOf(const KeyWheel& key) {
  std::string fillers;
  std::ranges::copy_if(kAlphabet, std::back_inserter(fillers),
                       [&](char c) { return !key.Holds(c); });
  return fillers;
}

}  // namespace

TKovraCrypt::TKovraCrypt() {
  Randomize();
}

std::string TKovraCrypt::GeneratePWDSecutityString() const {
  return MakeRNDString(kAlphabet, kLeastKeyLength);
}

std::string TKovraCrypt::MakeRNDString(std::string_view Characters, int Count) const {
  std::string out;
  std::string letters(Characters);
  const auto count = static_cast<std::size_t>(std::max(Count, 0));
  AppendDraw(out, letters, std::min(count, letters.size()));
  return out;
}

std::string TKovraCrypt::EncodePWDEx(std::string_view Value, std::string_view Key, int MinPad,
                                     int MaxPad) const {
  return EncodePWDExL(Value, Key, 0, MinPad, MaxPad);
}

std::string TKovraCrypt::EncodePWDExL(std::string_view Value, std::string_view Key, int MaxLen,
                                      int MinPad, int MaxPad) const {
  std::optional<KeyWheel> wheel = KeyWheel::Of(Key);
  if (!wheel || MaxLen < 0) return {};
  std::string fillers = FillersOf(*wheel);
  if (fillers.empty()) return {};

  const std::size_t letters = 2 * Value.size();
  const Padding padding(MinPad, MaxPad, fillers.size());
  const std::size_t least = padding.LeastLength(letters);
  const std::size_t most = MaxLen == 0 ? std::string::npos : static_cast<std::size_t>(MaxLen);
  if (least > most) return {};

  const std::vector<std::uint8_t> runs = padding.DrawRuns(letters, most - least);
  std::string out;
  out.reserve(std::accumulate(runs.begin(), runs.end(), letters));
  AppendDraw(out, fillers, runs[0]);
  for (std::size_t i = 0; i < letters; ++i) {
    const unsigned byte = static_cast<unsigned char>(Value[i / 2]);
    out.push_back(wheel->Write(i % 2 == 0 ? byte & 15u : byte >> 4));
    AppendDraw(out, fillers, runs[i + 1]);
  }
  return out;
}

std::string TKovraCrypt::DecodePWDEx(std::string_view Value, std::string_view Key) const {
  std::optional<KeyWheel> wheel = KeyWheel::Of(Key);
  if (!wheel) return std::string(kFailureMarker);
  std::string out;
  out.reserve(Value.size() / 2);
  unsigned low = 0;
  bool half = false;
  for (const char c : Value) {
    if (!wheel->Holds(c)) continue;
    const unsigned position = wheel->Read(c);
    if (half) {
      out.push_back(static_cast<char>((low + 16 * position) & 0xFF));
    } else {
      low = position;
    }
    half = !half;
  }
  return half ? std::string(kFailureMarker) : out;
}

std::string TKovraCrypt::EncodeString(std::string_view Value, std::string_view Key) const {
  return EncodePWDEx(Trim(Value), Key, 0, 5);
}

std::string TKovraCrypt::DecodeToString(std::string_view Value, std::string_view Key) const {
  return DecodePWDEx(Value, Key);
}

std::string TKovraCrypt::EncodeInteger(std::int32_t Value, std::string_view Key) const {
  return EncodeString(IntToStr(Value), Key);
}

std::int32_t TKovraCrypt::DecodeToInteger(std::string_view Value, std::string_view Key) const {
  return StrToIntDef(DecodePWDEx(Value, Key), 0);
}

std::string TKovraCrypt::EncodeCurrency(Currency Value, std::string_view Key) const {
  return EncodeString(Format("%12.4f", {Value}), Key);
}

Currency TKovraCrypt::DecodeToCurrency(std::string_view Value, std::string_view Key) const {
  Currency amount;
  TryStrToCurr(DecodePWDEx(Value, Key), amount);
  return amount;
}

std::string TKovraCrypt::EncodeDatetime(TDateTime Value, std::string_view Key) const {
  return EncodeString(FormatDateTime("YYYYMMDD", Value), Key);
}

TDateTime TKovraCrypt::DecodeToDatetime(std::string_view Value, std::string_view Key) const {
  const std::string text = DecodePWDEx(Value, Key);
  std::int32_t year = 0;
  std::int32_t month = 0;
  std::int32_t day = 0;
  TDateTime date;
  const bool decoded = TryStrToInt(Copy(text, 1, 4), year) &&
                       TryStrToInt(Copy(text, 5, 2), month) && TryStrToInt(Copy(text, 7, 2), day) &&
                       TryEncodeDate(year, month, day, date);
  return decoded ? date : Date();
}

}  // namespace kvshare
