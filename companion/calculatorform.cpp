#include "companion/calculatorform.h"

#include <cmath>

#include "companion/arithmetic.h"
#include "kvshare/rtl/ascii.h"
#include "kvshare/rtl/convert.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/format.h"
#include "kvshare/rtl/formatsettings.h"

namespace kvshare::companion {

namespace {

constexpr TSize kClient{300, 282};
constexpr int kWidth = 276;
constexpr char kClear = 'C';
constexpr char kBack = '<';

struct Key {
  std::string_view name, caption;
  char key;
};
constexpr int kColumns = 5;
constexpr Key kKeys[] = {
    {"Key7", "7", '7'},          {"Key8", "8", '8'},        {"Key9", "9", '9'},
    {"KeyDivide", "/", '/'},     {"KeyClear", "C", kClear}, {"Key4", "4", '4'},
    {"Key5", "5", '5'},          {"Key6", "6", '6'},        {"KeyTimes", "*", '*'},
    {"KeyBack", "ลบ"_th, kBack}, {"Key1", "1", '1'},        {"Key2", "2", '2'},
    {"Key3", "3", '3'},          {"KeyMinus", "-", '-'},    {"KeyOpen", "(", '('},
    {"Key0", "0", '0'},          {"KeyPoint", ".", '.'},    {"KeyPercent", "%", '%'},
    {"KeyPlus", "+", '+'},       {"KeyClose", ")", ')'},
};

// Where a number is that 15 digits write without an exponent; "" for any other.
std::string NumberText(double value) {
  constexpr double kEnd = 1e15;
  if (!std::isfinite(value) || std::abs(value) >= kEnd) return {};
  const TFormatSettings plain = TFormatSettings::UsEnglish();
  std::string text = FloatToStr(value, plain);
  if (text.find('E') == std::string::npos) return text;
  if (std::abs(value) >= 1) return {};  // rounded up to 1E15
  text = Format("%.18f", {value}, plain);
  return text.substr(0, text.find_last_not_of('0') + 1);
}

constexpr bool BeginsNumber(char key) {
  return IsDigit(key) || key == '.' || key == '(';
}

}  // namespace

CalculatorForm::CalculatorForm(double value)
    : DialogForm("CalculatorForm", "เครื่องคิดเลข"_th, kClient),
      value_(value),
      givenText_(NumberText(value)) {
  Place(Formula, "", {kMargin, kMargin, kWidth, 13});
  Place(Expression, "", {kMargin, 30, kWidth, 21});
  Place(Note, "", {kMargin, 57, kWidth, 13});
  Expression.RightAligned = true;
  Expression.MaxLength = static_cast<int>(kLongestLine);
  Expression.SetText(givenText_);
  Expression.OnChange = [this] { ForgetResult(); };
  PlaceKeys();
  PlaceButtons("ใช้ค่านี้"_th);
  Place(EqualsBtn, "=", {kMargin, OKBtn.Top(), 75, 25});
  EqualsBtn.TabOrder = CancelBtn.TabOrder + 1;
  SetHoldsResult(true);
  EqualsBtn.OnClick = [this] { Compute(); };
  OKBtn.OnClick = [this] { Take(); };
}

void CalculatorForm::PlaceKeys() {
  constexpr TSize kKey{50, 30};
  constexpr TSize kStep{56, 36};
  constexpr int kTop = 84;
  int at = 0;
  for (const Key& key : kKeys) {
    TButton& button = keys_.emplace_back(this, key.name);
    Place(button, key.caption,
          {kMargin + at % kColumns * kStep.Width, kTop + at / kColumns * kStep.Height, kKey.Width,
           kKey.Height});
    button.OnClick = [this, typed = key.key] { Press(typed); };
    ++at;
  }
}

void CalculatorForm::Press(char key) {
  std::string line = Expression.Text();
  if (key == kClear || (holdsResult_ && BeginsNumber(key))) line.clear();
  if (key == kBack && !line.empty()) line.pop_back();
  if (key != kClear && key != kBack && line.size() < kLongestLine) line += key;
  Expression.SetText(line);
}

// What the line has become was not computed.
void CalculatorForm::ForgetResult() {
  SetHoldsResult(false);
  Formula.SetCaption("");
  Note.SetCaption("");
}

void CalculatorForm::SetHoldsResult(bool holds) {
  holdsResult_ = holds;
  OKBtn.Default = holds;
  EqualsBtn.Default = !holds;
}

void CalculatorForm::Compute() {
  const std::string line = Expression.Text();
  try {
    const Answer answer = Calculate(line);
    constexpr std::string_view kRounded = "ปัดเศษที่ทศนิยม %d ตำแหน่ง"_th;
    Expression.SetText(answer.text);
    Formula.SetCaption(line + " =");
    Note.SetCaption(answer.rounded ? Format(kRounded, {answer.decimals}) : std::string());
    SetHoldsResult(true);
  } catch (const ECalculation& e) {
    Note.SetCaption(e.Message());
  }
}

void CalculatorForm::Take() {
  if (Expression.Text() == givenText_) return;
  try {
    const Answer answer = Calculate(Expression.Text());
    if (!answer.rounded) {
      value_ = StrToFloat(answer.text, TFormatSettings::UsEnglish());
      return;
    }
    Compute();
  } catch (const ECalculation& e) {
    Note.SetCaption(e.Message());
  }
  Stay();
  SetActiveControl(&Expression);
}

}  // namespace kvshare::companion
