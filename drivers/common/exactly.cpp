#include "drivers/common/exactly.h"

namespace kvshare::drivers {

data::Connection::Condition ExactlyBy(const ExactForms& forms, std::string_view column,
                                      data::ColumnKind kind) {
  const auto equals = [column](const ExactForm& form) -> data::Connection::Condition {
    std::string before(column);
    if (form.bothSides) before.insert(0, form.before).append(form.behind);
    return {before.append(" = ").append(form.before), form.behind};
  };
  switch (kind) {
    case data::ColumnKind::Text:
    case data::ColumnKind::Memo:
      return equals(forms.text);
    case data::ColumnKind::Decimal:
      return equals(forms.decimal);
    case data::ColumnKind::Integer:
    case data::ColumnKind::Largeint:
    case data::ColumnKind::Boolean:
    case data::ColumnKind::Float:
    case data::ColumnKind::Date:
    case data::ColumnKind::Time:
    case data::ColumnKind::TimeStamp:
    case data::ColumnKind::Blob:
      break;
  }
  return equals({"", ""});
}

std::string QuotedBy(char mark, std::string_view name) {
  std::string quoted(1, mark);
  for (const char c : name) quoted.append(c == mark ? 2 : 1, c);
  quoted.push_back(mark);
  return quoted;
}

}  // namespace kvshare::drivers
