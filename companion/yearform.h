// A prompt for a year.
#pragma once

#include <cstdint>

#include "companion/dialogform.h"

namespace kvshare::companion {

// The year stays in the era in which the program gives it; the form shows it in the other one too.
class YearForm : public DialogForm {
 public:
  YearForm(std::string_view caption, std::int32_t given);

  // 1 .. 9999 after an OK.
  std::int32_t Value() const { return value_; }

  TLabel YearCaption{this, "YearCaption"};
  TEdit YearEdit{this, "YearEdit"};
  TButton PrevBtn{this, "PrevBtn"};
  TButton NextBtn{this, "NextBtn"};
  TLabel OtherEra{this, "OtherEra"};

 private:
  bool Read(std::int32_t& year) const;
  void GoBy(std::int32_t years);
  void ShowOtherEra();

  std::int32_t value_;
};

}  // namespace kvshare::companion
