#include "kvshare/ui/controls.h"

#include <gtest/gtest.h>

#include <climits>
#include <vector>

namespace kvshare {
namespace {

// Stands for a back end's window.
class Followed : public TForm {
 public:
  using TForm::TForm;
  void SetBounds(const TBounds& bounds) override {
    TForm::SetBounds(bounds);
    moves.push_back(bounds);
  }
  std::vector<TBounds> moves;
};

TEST(Controls, EveryMoveReachesTheBackEnd) {
  Followed form(nullptr, "MainForm");
  form.SetLeft(-5);
  form.SetTop(INT_MAX);
  form.SetWidth(640);
  form.SetHeight(0);
  EXPECT_EQ(form.moves,
            (std::vector<TBounds>{
                {-5, 0, 0, 0}, {-5, INT_MAX, 0, 0}, {-5, INT_MAX, 640, 0}, {-5, INT_MAX, 640, 0}}));
}

}  // namespace
}  // namespace kvshare
