#include "kvshare/ui/controls.h"

namespace kvshare {

void TControl::SetLeft(int left) {
  TBounds bounds = bounds_;
  bounds.Left = left;
  SetBounds(bounds);
}

void TControl::SetTop(int top) {
  TBounds bounds = bounds_;
  bounds.Top = top;
  SetBounds(bounds);
}

void TControl::SetWidth(int width) {
  TBounds bounds = bounds_;
  bounds.Width = width;
  SetBounds(bounds);
}

void TControl::SetHeight(int height) {
  TBounds bounds = bounds_;
  bounds.Height = height;
  SetBounds(bounds);
}

}  // namespace kvshare
