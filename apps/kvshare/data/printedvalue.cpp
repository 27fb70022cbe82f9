#include "apps/kvshare/data/printedvalue.h"

#include <array>
#include <charconv>

#include "apps/kvshare/log/moments.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/format.h"
#include "kvshare/rtl/formatdatetime.h"
#include "kvshare/rtl/formatsettings.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare::app {

namespace {

void AppendHex(std::string& out, std::string_view bytes) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    out.push_back(kDigits[byte >> 4]);
    out.push_back(kDigits[byte & 15]);
  }
}

// All that a double surely holds: one digit more would show sums of amounts as 3755752.120000001.
void AppendReal(std::string& out, double value) {
  constexpr int kDigits = 15;
  std::array<char, 32> digits;
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value,
                                 std::chars_format::general, kDigits)
                       .ptr;
  out.append(digits.data(), end);
}

void AppendDecimal(std::string& out, const TField& field) {
  const std::size_t begin = out.size();
  field.AppendString(out);
  const std::size_t point = out.find(FormatSettings.DecimalSeparator, begin);
  const auto decimals = static_cast<std::size_t>(field.Size());
  if (point != std::string::npos) out[point] = '.';
  const std::size_t there = point == std::string::npos ? 0 : out.size() - point - 1;
  if (there >= decimals) return;
  if (there == 0) out.push_back('.');
  out.append(decimals - there, '0');
}

void AppendTime(std::string& out, TDateTime time) {
  AppendFormatDateTime(out, R"(hh":"nn":"ss)", time);
  if (DecodeTime(time).MilliSecond != 0) AppendFormatDateTime(out, R"("."zzz)", time);
}

void AppendMoment(std::string& out, TDateTime moment) {
  const bool midnight = DecodeTime(moment) == TTimeParts{};
  AppendIso(out, moment);
  if (midnight) out += "T00:00:00";
}

}  // namespace

void AppendField(std::string& out, const TField& field) {
  if (field.IsNull()) return;
  switch (FormOf(field.DataType())) {
    case TFieldForm::Bytes:
      AppendHex(out, field.AsString());
      break;
    case TFieldForm::Boolean:
      out += field.AsBoolean() ? "true" : "false";
      break;
    case TFieldForm::Real:
      AppendReal(out, field.AsFloat());
      break;
    case TFieldForm::Decimal:
      AppendDecimal(out, field);
      break;
    case TFieldForm::Date:
      AppendIso(out, field.AsDateTime());
      break;
    case TFieldForm::Time:
      AppendTime(out, field.AsDateTime());
      break;
    case TFieldForm::Moment:
      AppendMoment(out, field.AsDateTime());
      break;
    case TFieldForm::None:
    case TFieldForm::Text:
    case TFieldForm::Integer:
      field.AppendString(out);
  }
}

namespace {

[[noreturn]] void Refuse(std::string_view text, std::string_view kind) {
  throw EConvertError(Format("'%s' is not a valid %s value", {text, kind}));
}

template <typename Number>
Number ReadNumber(std::string_view text, std::string_view kind) {
  Number value{};
  const char* end = text.data() + text.size();
  const auto [last, error] = std::from_chars(text.data(), end, value);
  if (error != std::errc() || last != end) Refuse(text, kind);
  return value;
}

std::string BytesOfHex(std::string_view text) {
  std::string bytes;
  if (text.size() % 2 != 0) Refuse(text, "hexadecimal");
  for (; !text.empty(); text.remove_prefix(2)) {
    unsigned byte = 0;
    const char* end = text.data() + 2;
    const auto [last, error] = std::from_chars(text.data(), end, byte, 16);
    if (error != std::errc() || last != end) Refuse(text.substr(0, 2), "hexadecimal");
    bytes.push_back(static_cast<char>(byte));
  }
  return bytes;
}

void StoreWhole(TField& field, const std::string& text) {
  const bool sized = IsSized(field.DataType()) && field.Size() > 0;
  if (sized && text.size() > static_cast<std::size_t>(field.Size())) {
    throw EConvertError(Format("%d bytes, the field has %d",
                               {static_cast<std::int64_t>(text.size()), field.Size()}));
  }
  field.SetAsString(text);
}

// Whether the field has room for all decimals of the text without a look at their values.
bool HasRoomFor(const TField& field, std::string_view text) {
  if (text.find_first_of("eE") != std::string_view::npos) return false;
  const std::size_t point = text.find('.');
  return point == std::string_view::npos ||
         text.size() - point - 1 <= static_cast<std::size_t>(field.Size());
}

// With a point, whatever the process's separator is. A field rounds to the decimals that it has:
// what it has made of the text must be the same number.
void StoreDecimal(TField& field, const std::string& text) {
  if (text.find_first_not_of("+-0123456789.eE") != std::string::npos) Refuse(text, "decimal");
  std::string typed = text;
  if (const std::size_t point = typed.find('.'); point != std::string::npos) {
    typed[point] = FormatSettings.DecimalSeparator;
  }
  field.SetAsString(typed);
  if (!HasRoomFor(field, text) && field.DisplayTextOf(typed) != field.DisplayText()) {
    throw EConvertError(Format("'%s': the field has %d decimals", {text, field.Size()}));
  }
}

}  // namespace

void StoreField(TField& field, std::string_view text) {
  const TFieldForm form = FormOf(field.DataType());
  const bool letters = form == TFieldForm::Text || form == TFieldForm::Bytes;
  if (text.empty() && !letters) return field.Clear();
  switch (form) {
    case TFieldForm::Bytes:
      return StoreWhole(field, BytesOfHex(text));
    case TFieldForm::Boolean:
      if (!SameText(text, "true") && !SameText(text, "false")) Refuse(text, "boolean");
      return field.SetAsBoolean(SameText(text, "true"));
    case TFieldForm::Integer:
      return field.SetAsInteger(ReadNumber<std::int64_t>(text, "integer"));
    case TFieldForm::Real:
      return field.SetAsFloat(ReadNumber<double>(text, "floating point"));
    case TFieldForm::Decimal:
      return StoreDecimal(field, std::string(text));
    case TFieldForm::Date: {
      const TDateTime moment = ParseIso(text);
      if (DecodeTime(moment) != TTimeParts{}) Refuse(text, "date");
      return field.SetAsDateTime(moment);
    }
    case TFieldForm::Time:
      return field.SetAsDateTime(TimeOf(ParseIso("1899-12-30T" + std::string(text))));
    case TFieldForm::Moment:
      return field.SetAsDateTime(ParseIso(text));
    case TFieldForm::None:
    case TFieldForm::Text:
      StoreWhole(field, std::string(text));
  }
}

}  // namespace kvshare::app
