#include "apps/kvshare/data/recordtalk.h"

#include <algorithm>

#include "kvshare/data/contract/errors.h"
#include "kvshare/data/fields/editmask.h"
#include "kvshare/data/fields/field.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/strutils.h"
#include "kvshare/ui/consoleform.h"
#include "kvshare/ui/consoletext.h"

namespace kvshare::app {

namespace {

constexpr std::string_view kEnd = ".";
constexpr std::string_view kEscape = "\x1b";
constexpr std::string_view kClear = "-";
constexpr std::string_view kAsk = "?";
constexpr char kAsItStands = '=';
constexpr std::string_view kHelp =
    "Enter alone keeps what is there, - takes it away, . ends.\n"
    "=TEXT types TEXT as it stands, also -, . and ?; = alone is a text without letters.";

bool IsControl(char c) {
  constexpr unsigned char kDelete = 0x7F;
  return static_cast<unsigned char>(c) < ' ' || static_cast<unsigned char>(c) == kDelete;
}

// What the question shows: as the field shows it, also where that is today for Null.
std::string Present(TField& field) {
  return field.IsNull() ? OneLine(field.Text()) : ShownValue(field, field.Value());
}

bool IsChanged(const TField& field) {
  return field.OldValue() != field.Value();
}

}  // namespace

void RecordTalk::Say(std::string_view cp874) const {
  std::string lines;
  AppendLines(lines, cp874);
  while (lines.ends_with('\n')) lines.pop_back();
  console_.Write(Cp874ToUtf8Lossy(lines) + "\n");
}

std::optional<std::string> RecordTalk::ReadLine() {
  std::optional<std::string> line = console_.ReadLine();
  if (!line) {
    inputEnded_ = true;
    console_.Write("\n");
  } else if (line->ends_with('\r')) {
    line->pop_back();
  }
  return line;
}

bool RecordTalk::Confirm(std::string_view question) {
  console_.Write(std::string(question) + " [y/N] ");
  const std::string answer(Trim(ReadLine().value_or("")));
  return SameText(answer, "y") || SameText(answer, "yes") || answer == "ใช่";
}

void RecordTalk::AskFields() {
  TClientDataSet& set = record_.Set();
  for (int i = 0; i < set.FieldCount(); ++i) {
    TField& field = set.Fields(i);
    if (!IsTypable(field) || record_.IsKey(field)) continue;
    Next next = Next::SameField;
    while (next == Next::SameField) next = AskField(field);
    if (next == Next::End) return;
  }
}

RecordTalk::Next RecordTalk::AskField(TField& field) {
  console_.Write(Cp874ToUtf8Lossy(OneLine(field.DisplayLabel()) + " [" + Present(field) + "]: "));
  const std::optional<std::string> utf8 = ReadLine();
  if (!utf8) return Next::End;
  try {
    return Obey(field, Utf8ToCp874(*utf8));
  } catch (const EDBEditError& e) {
    Say(e.Message() + "   " + TEditMask(field.EditMask).EmptyText());
  } catch (const Exception& e) {
    Say(e.Message());
  }
  return Next::SameField;
}

RecordTalk::Next RecordTalk::Obey(TField& field, std::string_view line) const {
  if (line == kEnd || line == kEscape) return Next::End;
  if (line == kAsk) {
    Say(kHelp);
    return Next::SameField;
  }
  if (std::ranges::any_of(line, IsControl)) {
    throw Exception("Control characters cannot be typed here.");
  }
  if (line.empty()) {
    // Today, or 00:00, that a required date shows is what the user has seen and left.
    const std::string shown = field.Text();
    if (field.IsNull() && field.Required() && !shown.empty()) field.SetText(shown);
  } else if (line == kClear) {
    field.Clear();
  } else if (line == std::string_view(&kAsItStands, 1)) {
    field.SetAsString("");
  } else {
    StoreLine(field, line.front() == kAsItStands ? line.substr(1) : line);
  }
  return Next::Field;
}

std::string RecordTalk::Changes() const {
  TClientDataSet& set = record_.Set();
  std::string lines;
  for (int i = 0; i < set.FieldCount(); ++i) {
    TField& field = set.Fields(i);
    if (!IsChanged(field)) continue;
    lines.append("  " + OneLine(field.DisplayLabel()) + ": " + ShownValue(field, field.OldValue()));
    lines.append(" -> " + ShownValue(field, field.Value()) + "\n");
  }
  return lines;
}

std::string RecordTalk::Values() const {
  TClientDataSet& set = record_.Set();
  std::string lines;
  for (int i = 0; i < set.FieldCount(); ++i) {
    TField& field = set.Fields(i);
    lines.append("  " + OneLine(field.DisplayLabel()) + ": " + ShownValue(field, field.Value()) +
                 "\n");
  }
  return lines;
}

}  // namespace kvshare::app
