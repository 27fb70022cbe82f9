#include "kvshare/data/updatesql.h"

#include <algorithm>
#include <optional>

#include "kvshare/data/wireforms.h"
#include "kvshare/rtl/exceptions.h"

namespace kvshare::data {

namespace {

// A millisecond later, in the same form; nothing for another form and for what has no later one.
std::optional<std::string> NextMillisecond(std::string_view text, TFieldForm form) {
  const bool time = form == TFieldForm::Time;
  const auto moment = time ? TimeOfText(text) : MomentOfText(text);
  if (!moment) return std::nullopt;
  const auto written = [time](TDateTime at) { return time ? TextOfTime(at) : TextOfMoment(at); };
  if (written(*moment) != text) return std::nullopt;
  constexpr double kMillisecond = 1.0 / (24.0 * 60 * 60 * 1000);
  const double days = moment->Days();
  std::string next = written(TDateTime(days < 0 ? days - kMillisecond : days + kMillisecond));
  return next > text ? std::optional(std::move(next)) : std::nullopt;
}

}  // namespace

void UpdateSql::Begin(std::string_view words) {
  text_ = words;
  values_.clear();
}

void UpdateSql::AddValue(const Cell& cell, TFieldForm form) {
  values_.push_back(WireValueOf(cell, form));
}

bool UpdateSql::IsKey(int column) const {
  return std::ranges::find(target_.key, column) != target_.key.end();
}

bool UpdateSql::Changed(int column, const Record& before, const Record& now) const {
  return before.At(layout_, column) != now.At(layout_, column);
}

void UpdateSql::Insert(const Record& record) {
  Begin("insert into ");
  text_ += target_.table;
  std::string places;
  const auto add = [&](bool nulls) {
    for (int i = 0; i < layout_.Columns(); ++i) {
      const UpdateColumn& column = target_.columns[static_cast<std::size_t>(i)];
      if (!column.flags.pfInUpdate || record.IsNull(i) != nulls) continue;
      text_ += places.empty() ? " (" : ", ";
      text_ += column.name;
      places += places.empty() ? "?" : ", ?";
      AddValue(record.At(layout_, i), layout_.Form(i));
    }
  };
  add(false);
  if (places.empty()) add(true);  // a record without any value is one all the same
  text_ += ") values (";
  text_ += places;
  text_ += ')';
}

bool UpdateSql::Update(const Record& before, const Record& now) {
  Begin("update ");
  text_ += target_.table;
  for (int i = 0; i < layout_.Columns(); ++i) {
    const UpdateColumn& column = target_.columns[static_cast<std::size_t>(i)];
    if (!column.flags.pfInUpdate || !Changed(i, before, now)) continue;
    text_ += values_.empty() ? " set " : ", ";
    text_ += column.name;
    text_ += " = ?";
    AddValue(now.At(layout_, i), layout_.Form(i));
  }
  if (values_.empty()) return false;
  Where(before, &now);
  return true;
}

void UpdateSql::Delete(const Record& before) {
  Begin("delete from ");
  text_ += target_.table;
  Where(before, nullptr);
}

bool UpdateSql::Select(const Record& record) {
  Begin("select ");
  std::string_view joint;
  for (const UpdateColumn& column : target_.columns) {
    if (!column.inTable) continue;
    text_ += joint;
    text_ += column.name;
    joint = ", ";
  }
  text_ += " from ";
  text_ += target_.table;
  text_ += " where ";
  for (const int column : target_.key) {
    if (column != target_.key.front()) text_ += " and ";
    Condition(column, record.At(layout_, column), false);
  }
  return !target_.key.empty();
}

bool UpdateSql::Finds(int column, const Record* before, const Record* now) const {
  const UpdateColumn& known = target_.columns[static_cast<std::size_t>(column)];
  if (IsKey(column)) return true;
  if (!known.comparable || !known.flags.pfInWhere) return false;
  switch (target_.mode) {
    case TUpdateMode::upWhereAll:
      return true;
    case TUpdateMode::upWhereChanged:
      return now != nullptr && Changed(column, *before, *now);
    case TUpdateMode::upWhereKeyOnly:
      break;
  }
  return false;
}

void UpdateSql::Where(const Record& before, const Record* now) {
  std::string_view joint = " where ";
  for (int i = 0; i < layout_.Columns(); ++i) {
    if (!Finds(i, &before, now)) continue;
    text_ += joint;
    joint = " and ";
    Condition(i, before.At(layout_, i), true);
  }
  if (joint == " where ") throw EDatabaseError("Unable to find record.  No key specified");
}

void UpdateSql::Condition(int column, const Cell& value, bool exactly) {
  const UpdateColumn& known = target_.columns[static_cast<std::size_t>(column)];
  const TFieldForm form = layout_.Form(column);
  if (value.kind == CellKind::Null) {
    text_ += known.name;
    text_ += " is null";
    return;
  }
  if (form == TFieldForm::Time || form == TFieldForm::Moment) {
    return MomentCondition(known, value, form);
  }
  // A key is compared in the server's own way too: that is the one that its index knows.
  const bool plainly = !exactly || (IsKey(column) && form == TFieldForm::Text);
  if (plainly) {
    text_ += known.name;
    text_ += " = ?";
    AddValue(value, form);
  }
  if (!exactly) return;
  if (plainly) text_ += " and ";
  text_ += known.equal;
  AddValue(value, form);
}

// Servers may keep digits past the milliseconds, which are not read.
void UpdateSql::MomentCondition(const UpdateColumn& column, const Cell& value, TFieldForm form) {
  const std::optional<std::string> next = NextMillisecond(value.text, form);
  text_ += column.name;
  text_ += next ? " >= ?" : " = ?";
  AddValue(value, form);
  if (!next) return;
  text_ += " and ";
  text_ += column.name;
  text_ += " < ?";
  values_.emplace_back(*next);
}

}  // namespace kvshare::data
