#include "apps/kvshare/log/logbook.h"

#include <algorithm>
#include <filesystem>
#include <set>
#include <system_error>
#include <utility>

#include "apps/kvshare/terminal/inputfile.h"
#include "kvshare/rtl/ascii.h"
#include "kvshare/rtl/convert.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/format.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare::app {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kMonthDigits = 6;

bool AllDigits(std::string_view text) {
  return AreDigits(text);
}

// YYYYMM and the number of an archive's name, "" for another name.
std::string ArchiveDigits(const fs::path& path) {
  constexpr std::size_t kLeast = kMonthDigits + 2;
  const std::string name = path.stem().string();
  const bool isArchive =
      name.size() >= kLeast && AllDigits(name) && SameText(path.extension().string(), ".log");
  return isArchive ? name : std::string();
}

// Number 100 comes behind 99.
bool ArchiveBefore(const fs::path& a, const fs::path& b) {
  const std::string x = ArchiveDigits(a);
  const std::string y = ArchiveDigits(b);
  const int months = x.compare(0, kMonthDigits, y, 0, kMonthDigits);
  if (months != 0) return months < 0;
  return x.size() != y.size() ? x.size() < y.size() : x < y;
}

int NumberAt(std::string_view text, std::size_t at, std::size_t digits) {
  const std::string_view part = text.substr(at, digits);
  return AllDigits(part) ? StrToIntDef(part, -1) : -1;
}

bool HasWords(std::string_view line, std::string_view words) {
  const std::string wanted = " " + UpperCase(words) + " ";
  return UpperCase(line).find(wanted) != std::string::npos;
}

// Months counted from year 0.
int MonthNumber(TDateTime moment) {
  const TDateParts parts = DecodeDate(moment);
  return parts.Year * 12 + parts.Month - 1;
}

bool IsLetter(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return c == '\t' || (byte >= ' ' && byte != 0x7F && Cp874ToUnicode(byte) != 0);
}

// "" for a whole line.
std::string TroubleOf(const LogLine& line) {
  constexpr std::ptrdiff_t kBlanks = 7;  // of a line whose texts are empty
  if (!line.ended) return "the line has no end";
  if (!StampOf(line.text)) return "no date and time at the beginning";
  if (std::ranges::count(line.text, ' ') < kBlanks) return "fewer than seven fields";
  const auto bad = std::ranges::find_if_not(line.text, IsLetter);
  if (bad == line.text.end()) return {};
  return Format("byte %.2x is no letter", {static_cast<int>(static_cast<unsigned char>(*bad))});
}

void VerifyFile(const std::string& path, std::set<int>& months, std::vector<LogProblem>& problems) {
  const std::string bytes = ReadLogFile(path);
  int number = 0;
  for (std::string_view rest = bytes; !rest.empty();) {
    const LogLine line = TakeLogLine(rest);
    ++number;
    if (const auto stamp = StampOf(line.text)) months.insert(MonthNumber(*stamp));
    const std::string trouble = TroubleOf(line);
    if (!trouble.empty()) problems.push_back({path, number, trouble});
  }
}

void FindMissing(const std::set<int>& months, std::vector<LogProblem>& problems) {
  if (months.empty()) return;
  for (int month = *months.begin(); month < *months.rbegin(); ++month) {
    if (months.contains(month)) continue;
    problems.push_back({"", 0, Format("%.4d-%.2d: no line", {month / 12, month % 12 + 1})});
  }
}

}  // namespace

std::vector<std::string> LogFiles(const std::string& log) {
  const fs::path folder = fs::path(log).has_parent_path() ? fs::path(log).parent_path() : ".";
  std::vector<fs::path> archives;
  std::error_code error;
  for (const auto& entry : fs::directory_iterator(folder, error)) {
    if (!ArchiveDigits(entry.path()).empty() &&
        entry.path().filename() != fs::path(log).filename()) {
      archives.push_back(entry.path());
    }
  }
  std::ranges::sort(archives, ArchiveBefore);
  std::vector<std::string> files(archives.begin(), archives.end());
  if (fs::exists(log, error)) files.push_back(log);
  return files;
}

LogLine TakeLogLine(std::string_view& rest) {
  const std::size_t end = rest.find('\n');
  if (end == std::string_view::npos) return {std::exchange(rest, {}), false};
  const bool ended = end > 0 && rest[end - 1] == '\r';
  const LogLine line{rest.substr(0, ended ? end - 1 : end), ended};
  rest.remove_prefix(end + 1);
  return line;
}

std::optional<TDateTime> StampOf(std::string_view line) {
  constexpr std::size_t kStamp = 17;  // with the blank behind it
  if (line.size() < kStamp || line[10] != ' ' || line[kStamp - 1] != ' ') return std::nullopt;
  if (line[2] != line[5]) return std::nullopt;
  TDateTime date;
  TDateTime time;
  const bool valid =
      TryEncodeDate(NumberAt(line, 6, 4), NumberAt(line, 3, 2), NumberAt(line, 0, 2), date) &&
      TryEncodeTime(NumberAt(line, 11, 2), NumberAt(line, 14, 2), 0, 0, time);
  if (!valid) return std::nullopt;
  return JoinDateTime(date, time);
}

bool LogFilter::Shows(std::string_view line) {
  if (const auto moment = StampOf(line)) shown_ = Matches(line, *moment);
  return shown_;
}

bool LogFilter::Matches(std::string_view line, TDateTime moment) const {
  if (day && DateOf(moment) != DateOf(*day)) return false;
  if (computer.empty() && user.empty()) return true;
  const std::string words = computer + (computer.empty() || user.empty() ? "" : " ") + user;
  return HasWords(line, words);
}

std::vector<LogProblem> VerifyLog(const std::string& log) {
  std::vector<LogProblem> problems;
  std::set<int> months;
  for (const std::string& file : LogFiles(log)) VerifyFile(file, months, problems);
  FindMissing(months, problems);
  return problems;
}

std::string ReadLogFile(const std::string& path) {
  std::string bytes;
  AppendRest(bytes, InputFile(path).Fd());
  return bytes;
}

}  // namespace kvshare::app
