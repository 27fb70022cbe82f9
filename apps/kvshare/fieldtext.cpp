#include "apps/kvshare/fieldtext.h"

#include <array>
#include <charconv>

#include "apps/kvshare/moments.h"
#include "kvshare/rtl/formatdatetime.h"
#include "kvshare/rtl/formatsettings.h"

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
    default:
      field.AppendString(out);
  }
}

}  // namespace kvshare::app
