#include "apps/kvshare/log/moments.h"

#include <algorithm>

#include "kvshare/dates/date.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/formatdatetime.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare::app {

namespace {

// Takes a text apart from its left end; the first piece that is not there spoils the rest.
class IsoReader {
 public:
  explicit IsoReader(std::string_view text) : rest_(text) {}

  bool Good() const { return good_ && rest_.empty(); }
  bool AtEnd() const { return rest_.empty(); }

  // `count` digits.
  int Number(std::size_t count) {
    good_ = good_ && rest_.size() >= count;
    int value = 0;
    for (std::size_t i = 0; good_ && i < count; ++i) {
      good_ = rest_[i] >= '0' && rest_[i] <= '9';
      value = value * 10 + (rest_[i] - '0');
    }
    if (good_) rest_.remove_prefix(count);
    return value;
  }

  void Expect(std::string_view oneOf) {
    good_ = good_ && !rest_.empty() && oneOf.find(rest_.front()) != std::string_view::npos;
    if (good_) rest_.remove_prefix(1);
  }

  // Up to three digits of a second's fraction, to the end.
  int MilliSeconds() {
    const std::size_t digits = std::min<std::size_t>(rest_.size(), 3);
    int value = Number(std::max<std::size_t>(digits, 1));
    for (std::size_t i = digits; i < 3; ++i) value *= 10;
    return value;
  }

 private:
  std::string_view rest_;
  bool good_ = true;
};

TTimeParts TakeTime(IsoReader& reader) {
  TTimeParts time;
  reader.Expect("T ");
  time.Hour = static_cast<Word>(reader.Number(2));
  reader.Expect(":");
  time.Minute = static_cast<Word>(reader.Number(2));
  if (reader.AtEnd()) return time;
  reader.Expect(":");
  time.Second = static_cast<Word>(reader.Number(2));
  if (reader.AtEnd()) return time;
  reader.Expect(".");
  time.MilliSecond = static_cast<Word>(reader.MilliSeconds());
  return time;
}

}  // namespace

TDateTime ParseIso(std::string_view text) {
  IsoReader reader(Trim(text));
  const int year = reader.Number(4);
  reader.Expect("-");
  const int month = reader.Number(2);
  reader.Expect("-");
  const int day = reader.Number(2);
  const TTimeParts time = reader.AtEnd() ? TTimeParts{} : TakeTime(reader);
  TDateTime date;
  TDateTime ofDay;
  if (!reader.Good() || !TryEncodeDate(year, month, day, date) ||
      !TryEncodeTime(time.Hour, time.Minute, time.Second, time.MilliSecond, ofDay)) {
    throw EConvertError("'" + std::string(text.substr(0, 80)) +
                        "' is no moment: yyyy-mm-dd or yyyy-mm-ddThh:mm:ss");
  }
  return JoinDateTime(date, ofDay);
}

TDateTime ReadStamp(std::string_view text) {
  if (text.size() == kSeparatedStamp) return TKovraDate::yyyymmddToDate(text);
  return text.size() >= kStampWithTime ? TKovraDate::KovraStrToDateTime(text)
                                       : TKovraDate::KovraStrToDate(text);
}

void AppendIso(std::string& out, TDateTime moment) {
  const TTimeParts time = DecodeTime(moment);
  AppendFormatDateTime(out, "yyyy-mm-dd", moment);
  if (time == TTimeParts{}) return;
  AppendFormatDateTime(out, R"("T"hh":"nn":"ss)", moment);  // whatever TimeSeparator is
  if (time.MilliSecond != 0) AppendFormatDateTime(out, R"("."zzz)", moment);
}

}  // namespace kvshare::app
