#include "kvshare/data/packet/packetvalues.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstring>

#include "kvshare/data/contract/decimals.h"
#include "kvshare/data/packet/base64.h"
#include "kvshare/rtl/ascii.h"
#include "kvshare/rtl/calendar.h"

namespace kvshare::data {

namespace {

// The number that `count` digits at `text` are, -1 where one is no digit.
constexpr int Number(const char* text, int count) {
  int value = 0;
  for (int i = 0; i < count; ++i) {
    if (!IsDigit(text[i])) return -1;
    value = value * 10 + (text[i] - '0');
  }
  return value;
}

constexpr std::size_t kDate = 8;          // yyyymmdd
constexpr std::size_t kTime = 8;          // hh:mm:ss
constexpr std::size_t kMilliSeconds = 3;  // behind it, without a point
constexpr std::size_t kDateRoom = 10;     // yyyy-mm-dd
constexpr std::size_t kTimeRoom = 12;     // hh:mm:ss.fff
constexpr std::size_t kMomentRoom = kDateRoom + 1 + kTimeRoom;

// Each writes at `out` and gives the bytes written, 0 for what is no such value.

std::size_t PutDate(char* out, std::string_view text) {
  if (text.size() != kDate) return 0;
  const int year = Number(text.data(), 4);
  const int day = Number(text.data() + 6, 2);
  const int length = calendar::MonthLength(year, Number(text.data() + 4, 2));
  if (year < 1 || day < 1 || day > length) return 0;
  std::memcpy(out, text.data(), 4);
  out[4] = '-';
  std::memcpy(out + 5, text.data() + 4, 2);
  out[7] = '-';
  std::memcpy(out + 8, text.data() + 6, 2);
  return kDateRoom;
}

std::size_t PutTime(char* out, std::string_view text) {
  const bool fraction = text.size() == kTime + kMilliSeconds;
  if (!fraction && text.size() != kTime) return 0;
  const auto below = [](int value, int limit) { return value >= 0 && value < limit; };
  const bool sound = text[2] == ':' && text[5] == ':' && below(Number(text.data(), 2), 24) &&
                     below(Number(text.data() + 3, 2), 60) && below(Number(text.data() + 6, 2), 60);
  if (!sound) return 0;
  const int milliSeconds = fraction ? Number(text.data() + kTime, 3) : 0;
  if (milliSeconds < 0) return 0;
  std::memcpy(out, text.data(), kTime);
  if (milliSeconds == 0) return kTime;
  out[kTime] = '.';
  std::memcpy(out + kTime + 1, text.data() + kTime, kMilliSeconds);
  return kTimeRoom;
}

// A date alone is its midnight.
std::size_t PutMoment(char* out, std::string_view text) {
  constexpr std::string_view kMidnight = "00:00:00";
  if (PutDate(out, text.substr(0, kDate)) == 0) return 0;
  if (text.size() > kDate && text[kDate] != 'T') return 0;
  const std::string_view time = text.size() == kDate ? kMidnight : text.substr(kDate + 1);
  const std::size_t size = PutTime(out + kDateRoom + 1, time);
  out[kDateRoom] = ' ';
  return size == 0 ? 0 : kDateRoom + 1 + size;
}

template <typename Value>
bool ReadNumber(std::string_view text, Value& value) {
  if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);
  const char* end = text.data() + text.size();
  const auto [last, error] = std::from_chars(text.data(), end, value);
  return error == std::errc() && last == end;
}

bool ReadBoolean(std::string_view text, std::int64_t& value) {
  value = text == "TRUE" || text == "true" || text == "True" ? 1 : 0;
  return value == 1 || text == "FALSE" || text == "false" || text == "False";
}

template <typename Number>
void AppendNumber(std::string& out, Number value) {
  char text[32];
  const auto end = std::to_chars(text, text + sizeof text, value).ptr;
  out.append(text, static_cast<std::size_t>(end - text));
}

// What a record has from a server may be no value of the type: then each of these is false, and
// what it has appended is not whole.

// yyyy-mm-dd as yyyymmdd. Moments past 9999 have more digits, those before the year 1 none.
bool AppendDate(std::string& out, std::string_view text) {
  if (text.size() != kDateRoom || text[4] != '-' || text[7] != '-') return false;
  const std::size_t begin = out.size();
  out.append(text.substr(0, 4)).append(text.substr(5, 2)).append(text.substr(8, 2));
  char room[kDateRoom];
  return PutDate(room, std::string_view{out}.substr(begin)) != 0;
}

// hh:mm:ss[.fff] as hh:mm:ssfff.
bool AppendTime(std::string& out, std::string_view text) {
  if (text.size() != kTime && (text.size() != kTimeRoom || text[kTime] != '.')) return false;
  const std::size_t begin = out.size();
  out.append(text.substr(0, kTime));
  out.append(text.size() == kTime ? "000" : text.substr(kTime + 1));
  char room[kTimeRoom];
  return PutTime(room, std::string_view{out}.substr(begin)) != 0;
}

bool AppendMoment(std::string& out, std::string_view text) {
  if (text.size() <= kDateRoom || !AppendDate(out, text.substr(0, kDateRoom))) return false;
  out.push_back('T');
  return AppendTime(out, text.substr(kDateRoom + 1));
}

// What a letter becomes; nothing of one that stands for itself.
struct Escape {
  unsigned char size = 0;
  char text[7] = {};
};
constexpr auto kEscapes = [] {
  std::array<Escape, 256> escapes{};
  const auto name = [&escapes](char letter, std::string_view text) {
    Escape& escape = escapes[static_cast<unsigned char>(letter)];
    escape.size = static_cast<unsigned char>(text.size());
    std::ranges::copy(text, escape.text);
  };
  for (unsigned i = 0; i < escapes.size(); ++i) {
    if (i >= 0x20 && i < 0x80) continue;
    const char number[] = {'&',
                           '#',
                           static_cast<char>('0' + i / 100),
                           static_cast<char>('0' + i / 10 % 10),
                           static_cast<char>('0' + i % 10),
                           ';'};
    name(static_cast<char>(i), {number, sizeof number});
  }
  name('&', "&amp;");
  name('<', "&lt;");
  name('>', "&gt;");
  name('"', "&quot;");
  name('\'', "&apos;");
  return escapes;
}();

}  // namespace

bool PutPacketValue(RecordBuffer& buffer, int at, const PacketColumn& column, std::string_view text,
                    std::string& scratch) {
  const auto put = [&](const auto& value) {
    buffer.Put(at, Cell::Of(value));
    return true;
  };
  if (column.form == TFieldForm::Text) return put(text);
  if (text.empty() && column.form != TFieldForm::Bytes) {
    buffer.Put(at, Cell());
    return true;
  }
  char room[kMomentRoom];
  std::size_t size = 0;
  switch (column.form) {
    case TFieldForm::Integer: {
      std::int64_t value = 0;
      const bool sound = ReadNumber(text, value) && value >= column.least && value <= column.most;
      return sound && put(value);
    }
    case TFieldForm::Real: {
      double value = 0;
      return ReadNumber(text, value) && std::isfinite(value) && put(value);
    }
    case TFieldForm::Boolean: {
      std::int64_t value = 0;
      return ReadBoolean(text, value) && put(value);
    }
    case TFieldForm::Decimal:
      scratch.clear();
      return AppendDecimal(scratch, text) && put(std::string_view{scratch});
    case TFieldForm::Bytes:
      scratch.clear();
      return AppendFromBase64(scratch, text) && put(std::string_view{scratch});
    case TFieldForm::Date:
      size = PutDate(room, text);
      break;
    case TFieldForm::Time:
      size = PutTime(room, text);
      break;
    case TFieldForm::Moment:
      size = PutMoment(room, text);
      break;
    case TFieldForm::None:
    case TFieldForm::Text:
      return false;
  }
  return size != 0 && put(std::string_view(room, size));
}

std::string_view KindOfValue(const PacketColumn& column) {
  switch (column.form) {
    case TFieldForm::Integer:
      return "a whole number of its type";
    case TFieldForm::Real:
    case TFieldForm::Decimal:
      return "a number";
    case TFieldForm::Boolean:
      return "TRUE or FALSE";
    case TFieldForm::Date:
      return "a date yyyymmdd";
    case TFieldForm::Time:
      return "a time hh:mm:ssfff";
    case TFieldForm::Moment:
      return "a moment yyyymmddThh:mm:ssfff";
    case TFieldForm::Bytes:
      return "base64";
    case TFieldForm::None:
    case TFieldForm::Text:
      break;
  }
  return "a text";
}

void AppendEscaped(std::string& out, std::string_view text) {
  const char* run = text.data();
  const char* const end = run + text.size();
  for (const char* at = run; at != end; ++at) {
    const Escape& escape = kEscapes[static_cast<unsigned char>(*at)];
    if (escape.size == 0) continue;
    out.append(run, static_cast<std::size_t>(at - run));
    out.append(escape.text, escape.size);
    run = at + 1;
  }
  out.append(run, static_cast<std::size_t>(end - run));
}

bool AppendPacketValue(std::string& out, TFieldForm form, const Cell& value) {
  switch (form) {
    case TFieldForm::Text:
      AppendEscaped(out, value.text);
      return true;
    case TFieldForm::Integer:
      AppendNumber(out, value.integer);
      return true;
    case TFieldForm::Real:
      AppendNumber(out, value.real);
      return std::isfinite(value.real);
    case TFieldForm::Boolean:
      out += value.integer != 0 ? "TRUE" : "FALSE";
      return true;
    case TFieldForm::Decimal:
      out += value.text;
      return DigitsOf(value.text).has_value();
    case TFieldForm::Bytes:
      AppendBase64(out, value.text);
      return true;
    case TFieldForm::Date:
      return AppendDate(out, value.text);
    case TFieldForm::Time:
      return AppendTime(out, value.text);
    case TFieldForm::Moment:
      return AppendMoment(out, value.text);
    case TFieldForm::None:
      break;
  }
  return false;
}

}  // namespace kvshare::data
