#include "kvshare/database/sqldialect.h"

#include <iterator>

#include "kvshare/database/dbxconf.h"
#include "kvshare/messages/catalogue.h"
#include "kvshare/rtl/filebytes.h"
#include "kvshare/rtl/format.h"
#include "kvshare/rtl/formatdatetime.h"
#include "kvshare/rtl/inifile.h"
#include "kvshare/rtl/strutils.h"
#include "kvshare/settings/globals.h"
#include "kvshare/text/strings.h"
#include "kvshare/ui/messages.h"

namespace kvshare {

namespace {

struct KeyRow {
  std::string_view key;
  std::string* text;
  std::string_view fallback;
};

// In the order in which they are read, behind DATE.
constexpr KeyRow kKeys[] = {
    {"DATETIME", &SQLDateTimeFormat, "MM/DD/YYYY HH:MM:SS"},
    {"DELIMETER", &SQLDateDelimiter, "'"},
    {"MATCHCASE", &SQLMatchCaseFormat, "'%S'"},
    {"NOTMATCHCASE", &SQLNotMatchCaseFormat, "'%S'"},
    {"CMPBEGIN", &SQLCompareBegining, ""},
    {"CMPBETWEEN", &SQLCompareBetween, ""},
    {"CMPEND", &SQLCompareEnding, ""},
    {"CONCAT2", &SQLConcat2Format, ""},
    {"CONCAT3", &SQLConcat3Format, ""},
    {"NOTBEGIN", &SQLNotBegining, ""},
    {"NOTBETWEEN", &SQLNotBetween, ""},
    {"NOTEND", &SQLNotEnding, ""},
    {"TABLEPREFIX", &TablePrefix, ""},
    {"TABLECASE", &TableCase, ""},
    {"SERVERDATETIME", &SQLServerDateTime, ""},
    {"SQLBAHT", &SQLBaht, "MONEY"},
    {"SQLDATE", &SQLDate, "DATETIME"},
    {"SQLTIME", &SQLTime, "DATETIME"},
    {"SQLDATETIME", &SQLDateTime, "DATETIME"},
    {"SQLGRAPHIC", &SQLGraphic, "IMAGE"},
    {"SQLTEXT", &SQLText, "VARCHAR(8000)"},
    {"CMPNUMEQUAL", &SQLCompareNumEqual, "(CAST(%s AS NUMERIC(16,4)) = CAST(%s AS NUMERIC(16,4)))"},
    {"CMPNUMNOTEQUAL", &SQLCompareNumNotEqual,
     "(CAST(%s AS NUMERIC(16,4)) <> CAST(%s AS NUMERIC(16,4)))"},
    {"CMPNOT2DECIMALPT", &SQLCompareNum2DecPt, "(CAST(%s AS NUMERIC(16,2)) <> %s)"},
};
static_assert(std::size(kKeys) == 24);

// What stands for the month's name in DATE, and its SQLMonthNameFormat.
struct MarkerRow {
  std::string_view marker;
  std::int32_t format;
  const TMonthNames* names;
};
constexpr MarkerRow kMarkers[] = {
    {"ESMONTH", 1, &kEnglishShortMonths},
    {"ELMONTH", 2, &kEnglishLongMonths},
    {"TSMONTH", 3, &kThaiShortMonths},
    {"TLMONTH", 4, &kThaiLongMonths},
};
constexpr std::string_view kMonthPlace = "?";

void ShowMissing(std::string_view fileName) {
  MessageDlg(Format(LoadStr(rstrFileNotFoundInfo), {fileName}), TMsgDlgType::mtError,
             {TMsgDlgBtn::mbOK}, 0);
}

void StoreDateFormat(std::string pattern) {
  for (const MarkerRow& row : kMarkers) {
    if (Pos(row.marker, pattern) == 0) continue;
    pattern = TKovraString::ChangeString(pattern, row.marker, kMonthPlace);
    SQLMonthNameFormat = row.format;
    break;
  }
  SQLDateFormat = std::move(pattern);
}

std::string_view MonthName(TDateTime moment) {
  const Word month = DecodeDate(moment).Month;  // 0 before year 1
  if (month == 0) return {};
  for (const MarkerRow& row : kMarkers) {
    if (row.format == SQLMonthNameFormat) return (*row.names)[month - 1U];
  }
  return {};
}

std::string InDelimiters(std::string_view text) {
  std::string literal;
  literal.reserve(text.size() + 2 * SQLDateDelimiter.size());
  return literal.append(SQLDateDelimiter).append(text).append(SQLDateDelimiter);
}

std::string Fill(std::string_view pattern, std::string_view first, std::string_view second) {
  std::string text;
  text.reserve(pattern.size() + first.size() + second.size());
  AppendFormatAll(text, pattern, {first, second});
  return text;
}

void ReplaceWildcards(std::string& text) {
  constexpr std::string_view kMarker = "<WILDCARD>";
  for (std::size_t at = text.find('<'); at != std::string::npos; at = text.find('<', at + 1)) {
    if (SameText(std::string_view{text}.substr(at, kMarker.size()), kMarker)) {
      text.replace(at, kMarker.size(), "%");
    }
  }
}

struct Patterns {
  const std::string &begins, &contains, &ends;

  const std::string& Of(int kind) const { return kind == 0 ? begins : kind == 1 ? contains : ends; }
};

std::string Compare(const std::string& pattern, std::string_view fieldName, std::string_view value,
                    bool matchCase) {
  if (value.empty()) return {};
  const std::string field = SQLFieldFormat(fieldName, matchCase);
  const std::string text = SQLCharFormat(value, matchCase);
  std::string condition = Fill(pattern, field, text);
  ReplaceWildcards(condition);
  return condition;
}

}  // namespace

void ReadSQLIntf(std::string_view tradeName) {
  const std::string fileName = GetDialectFileName();
  if (!FileExists(fileName)) ShowMissing(fileName);
  ReadDialectFile(fileName, tradeName);
}

void ReadDialectFile(std::string_view fileName, std::string_view tradeName) {
  const TIniContents file(fileName);
  const std::string section =
      std::string(kDialectSection).append(tradeName.empty() ? KovraAliasTradeName : tradeName);
  StoreDateFormat(UpperCase(file.ReadString(section, "DATE", "MM/DD/YYYY")));
  for (const KeyRow& row : kKeys) *row.text = file.ReadString(section, row.key, row.fallback);
}

std::string GetDialectFileName() {
  return GetKovraProgramPath() + "SqlIntf.ini";
}

std::string SQLFieldFormat(std::string_view fieldName, bool matchCase) {
  const std::string& pattern = matchCase ? SQLMatchCaseFormat : SQLNotMatchCaseFormat;
  std::string text;
  text.reserve(pattern.size() + fieldName.size());
  AppendFormatAll(text, pattern, {fieldName});
  return text;
}

std::string SQLCharFormat(std::string_view value, bool matchCase) {
  return matchCase ? std::string(TrimRight(value)) : UpperCase(Trim(value));
}

std::string SQLCompareCmd(std::string_view fieldName, std::string_view value, bool matchCase,
                          int kind) {
  const Patterns patterns{SQLCompareBegining, SQLCompareBetween, SQLCompareEnding};
  return Compare(patterns.Of(kind), fieldName, value, matchCase);
}

std::string SQLNotCmd(std::string_view fieldName, std::string_view value, bool matchCase,
                      int kind) {
  const Patterns patterns{SQLNotBegining, SQLNotBetween, SQLNotEnding};
  return Compare(patterns.Of(kind), fieldName, value, matchCase);
}

std::string SQLNumEqual(std::string_view a, std::string_view b) {
  return Fill(SQLCompareNumEqual, a, b);
}

std::string SQLNumNotEqual(std::string_view a, std::string_view b) {
  return Fill(SQLCompareNumNotEqual, a, b);
}

std::string SQLNumNot2DecPt(std::string_view a) {
  return Fill(SQLCompareNum2DecPt, a, a);
}

std::string DateTimeToSQLDate(TDateTime moment) {
  std::string text = FormatDateTime(SQLDateFormat, moment);
  if (SQLMonthNameFormat > 0) {
    text = StringReplace(text, kMonthPlace, MonthName(moment), {.ReplaceAll = true});
  }
  return InDelimiters(text);
}

std::string DateTimeToSQLDateTime(TDateTime moment) {
  return InDelimiters(FormatDateTime(SQLDateTimeFormat, moment));
}

}  // namespace kvshare
