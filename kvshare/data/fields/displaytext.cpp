// A field's text as controls show and edit it.
#include "kvshare/data/fields/dataset.h"
#include "kvshare/data/fields/editmask.h"
#include "kvshare/data/fields/field.h"
#include "kvshare/data/records/record.h"
#include "kvshare/rtl/convert.h"
#include "kvshare/rtl/formatdatetime.h"
#include "kvshare/rtl/formatfloat.h"

namespace kvshare {

std::string TField::TextOf(bool display) const {
  std::string text;
  if (OnGetText) {
    // Handlers take the field as one that may be changed, as the platform hands it over.
    auto& field = const_cast<TField&>(*this);  // NOLINT(cppcoreguidelines-pro-type-const-cast)
    OnGetText(field, text, display);
  } else {
    AppendOwnText(text, display);
  }
  return text;
}

void TField::AppendOwnText(std::string& out, bool display) const {
  const bool memo = def_.DataType == TFieldType::ftMemo || def_.DataType == TFieldType::ftFmtMemo;
  if (memo && display) {
    out += IsNull() ? "(Memo)" : "(MEMO)";
    return;
  }
  if (form_ == TFieldForm::Text && display && !EditMask.empty()) {
    out += TEditMask(EditMask).Format(AsString());
    return;
  }
  const std::string& format = !display && !EditFormat.empty() ? EditFormat : DisplayFormat;
  if (IsNull() || format.empty()) return AppendString(out);
  switch (form_) {
    case TFieldForm::Integer:
      return AppendFormatDigits(out, format, IntToStr(Record().Integer(column_)));
    case TFieldForm::Real:
      return AppendFormatFloat(out, format, AsFloat());
    case TFieldForm::Decimal:
      return AppendFormatDigits(out, format, Digits());
    case TFieldForm::Date:
    case TFieldForm::Time:
    case TFieldForm::Moment:
      if (display) return AppendFormatDateTime(out, format, AsDateTime());
      return AppendString(out);
    case TFieldForm::None:
    case TFieldForm::Text:
    case TFieldForm::Boolean:
    case TFieldForm::Bytes:
      AppendString(out);
  }
}

std::string TField::DisplayTextOf(const Variant& value) {
  const data::OwnedCell cell = Converted(value);
  const data::CellReader reader(cell.View());
  return Showing(reader, [this] { return DisplayText(); });
}

void TField::SetTextOfLine(std::string_view line) {
  line.empty() ? Clear() : SetText(TEditMask(EditMask).ValueOfLine(line));
}

void TField::SetText(std::string_view text) {
  if (OnSetText) {
    OnSetText(*this, text);
  } else {
    SetAsString(text);
  }
}

}  // namespace kvshare
