#include "kvshare/data/client/updatesql.h"

#include <algorithm>
#include <optional>

#include "kvshare/data/contract/wireforms.h"
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
  parts_.texts.assign(1, std::string(words));
  parts_.places.clear();
  values_.clear();
  returns_ = false;
}

void UpdateSql::AddPlace(ParameterValue value) {
  parts_.places.push_back(values_.size());
  parts_.texts.emplace_back();
  values_.push_back(std::move(value));
}

std::string UpdateSql::Text() const {
  std::string text = parts_.texts.front();
  for (std::size_t i = 1; i < parts_.texts.size(); ++i) text.append("?").append(parts_.texts[i]);
  return text;
}

bool UpdateSql::IsKey(int column) const {
  return std::ranges::find(target_.key, column) != target_.key.end();
}

bool UpdateSql::Changed(int column, const Record& before, const Record& now) const {
  return before.At(layout_, column) != now.At(layout_, column);
}

void UpdateSql::Insert(const Record& record) {
  Begin("insert into ");
  Add(target_.table);
  std::vector<int> written;
  const auto take = [&](bool given) {
    for (int i = 0; i < layout_.Columns(); ++i) {
      const UpdateColumn& column = target_.columns[static_cast<std::size_t>(i)];
      if (column.flags.pfInUpdate && record.IsGiven(layout_, i) == given) written.push_back(i);
    }
  };
  take(true);
  if (written.empty()) take(false);  // a record without any value is one all the same
  std::string_view joint = " (";
  for (const int i : written) {
    Add(joint);
    Add(target_.columns[static_cast<std::size_t>(i)].name);
    joint = ", ";
  }
  joint = ") values (";
  for (const int i : written) {
    Add(joint);
    AddPlace(record.At(layout_, i), layout_.Form(i));
    joint = ", ";
  }
  Add(")");
  if (target_.insertReturns) AddReturned(record);
}

void UpdateSql::AddReturned(const Record& record) {
  for (int i = 0; i < layout_.Columns(); ++i) {
    const UpdateColumn& column = target_.columns[static_cast<std::size_t>(i)];
    if (!column.filled || record.IsGiven(layout_, i)) continue;
    Add(returns_ ? ", " : " returning ");
    Add(column.name);
    returns_ = true;
  }
}

bool UpdateSql::Update(const Record& before, const Record& now) {
  Begin("update ");
  Add(target_.table);
  for (int i = 0; i < layout_.Columns(); ++i) {
    const UpdateColumn& column = target_.columns[static_cast<std::size_t>(i)];
    if (!column.flags.pfInUpdate || !Changed(i, before, now)) continue;
    Add(values_.empty() ? " set " : ", ");
    Add(column.name);
    Add(" = ");
    AddPlace(now.At(layout_, i), layout_.Form(i));
  }
  if (values_.empty()) return false;
  Where(before, &now);
  return true;
}

void UpdateSql::Delete(const Record& before) {
  Begin("delete from ");
  Add(target_.table);
  Where(before, nullptr);
}

bool UpdateSql::Select(const Record& record) {
  Begin("select ");
  std::string_view joint;
  for (const UpdateColumn& column : target_.columns) {
    if (!column.inTable) continue;
    Add(joint);
    Add(column.name);
    joint = ", ";
  }
  Add(" from ");
  Add(target_.table);
  Add(" where ");
  for (const int column : target_.key) {
    if (column != target_.key.front()) Add(" and ");
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
    Add(joint);
    joint = " and ";
    Condition(i, before.At(layout_, i), true);
  }
  if (joint == " where ") throw EDatabaseError("Unable to find record.  No key specified");
}

void UpdateSql::Condition(int column, const Cell& value, bool exactly) {
  const UpdateColumn& known = target_.columns[static_cast<std::size_t>(column)];
  const TFieldForm form = layout_.Form(column);
  if (value.kind == CellKind::Null) {
    Add(known.name);
    Add(" is null");
    return;
  }
  if (form == TFieldForm::Time || form == TFieldForm::Moment) {
    return MomentCondition(known, value, form);
  }
  // A key is compared in the server's own way too: that is the one that its index knows.
  const bool plainly = !exactly || (IsKey(column) && form == TFieldForm::Text);
  if (plainly) {
    Add(known.name);
    Add(" = ");
    AddPlace(value, form);
  }
  if (!exactly) return;
  if (plainly) Add(" and ");
  Add(known.equal.before);
  AddPlace(value, form);
  Add(known.equal.behind);
}

// Servers may keep digits past the milliseconds, which are not read.
void UpdateSql::MomentCondition(const UpdateColumn& column, const Cell& value, TFieldForm form) {
  const std::optional<std::string> next = NextMillisecond(value.text, form);
  Add(column.name);
  Add(next ? " >= " : " = ");
  AddPlace(value, form);
  if (!next) return;
  Add(" and ");
  Add(column.name);
  Add(" < ");
  AddPlace(WireValueOf(Cell::Of(std::string_view{*next}), form));
}

}  // namespace kvshare::data
