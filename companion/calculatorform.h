// The calculator.
#pragma once

#include <deque>

#include "companion/dialogform.h"

namespace kvshare::companion {

// A line to type a calculation into, and keys that type for who has a mouse alone. Enter computes
// what is typed, and takes what is computed; OK takes it at once, but shows a rounded value first.
class CalculatorForm : public DialogForm {
 public:
  explicit CalculatorForm(double value);

  // The result of an OK: the number that stands in the line, or the given one where the line is as
  // it was.
  double Value() const { return value_; }

  TLabel Formula{this, "Formula"};  // what was computed
  TEdit Expression{this, "Expression"};
  TLabel Note{this, "Note"};  // whether that was rounded, or why it has no answer
  TButton EqualsBtn{this, "EqualsBtn"};

 private:
  void PlaceKeys();
  void Press(char key);
  void Compute();
  void Take();
  void ForgetResult();
  void SetHoldsResult(bool holds);

  double value_;
  std::string givenText_;
  std::deque<TButton> keys_;
  bool holdsResult_ = true;  // a number begins a new line, an operator goes on with it
};

}  // namespace kvshare::companion
