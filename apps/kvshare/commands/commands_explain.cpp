// `kvshare date explain`.
#include <nlohmann/json.hpp>

#include "apps/kvshare/commands/commands.h"
#include "apps/kvshare/commands/explain.h"
#include "apps/kvshare/log/moments.h"
#include "apps/kvshare/terminal/legible.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/format.h"

namespace kvshare::app {

namespace {

using Json = nlohmann::ordered_json;

constexpr std::string_view kExamples =
    "  kvshare date explain 15/07/46             what each reader makes of it, and why\n"
    "  cut -d, -f2 old.csv | kvshare date explain --json | jq 'select(.readings[].warnings!=[])'\n";

std::string Iso(const Reading& reading) {
  std::string text;
  if (reading.moment) AppendIso(text, *reading.moment);
  return text;
}

void FillMembers(Row& row, std::string_view text, const std::vector<Reading>& readings) {
  Json list = Json::array();
  for (const Reading& reading : readings) {
    const std::string date = Iso(reading);
    list.push_back({{"reader", reading.reader},
                    {"date", date.empty() ? Json() : Json(date)},
                    {"why", Cp874ToUtf8Lossy(reading.why)},
                    {"warnings", reading.warnings}});
  }
  row.Member("text") = text;
  row.JsonMember("readings") = list.dump();
}

void FillLines(Row& row, std::string_view text, const std::vector<Reading>& readings) {
  std::string& lines = row.Lines();
  lines = Legible(std::string(text)) + "\n";
  for (const Reading& reading : readings) {
    const std::string result = reading.moment ? Iso(reading) : "refused";
    lines += Format("  %-9s%-10s  %s\n", {reading.reader, result, Legible(reading.why)});
    for (const std::string& warning : reading.warnings) lines += "    warning: " + warning + "\n";
  }
}

}  // namespace

void DeclareDateExplain(Command date, Plan& plan) {
  const Command command = AddCommand(
      date, plan, "explain", "What each reader of dates makes of a text, and why", kExamples);
  AddItems(command, plan, "TEXT", "Texts as a program gets them, blanks included");
  command.OnParsed([&plan] {
    plan.transform = [today = Date()](std::string_view text, Row& row) {
      const std::vector<Reading> readings = ExplainDate(text, today);
      row.Json() ? FillMembers(row, text, readings) : FillLines(row, text, readings);
    };
  });
}

}  // namespace kvshare::app
