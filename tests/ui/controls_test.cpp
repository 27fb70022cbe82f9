#include "kvshare/ui/controls.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <memory>
#include <string>
#include <vector>

#include "kvshare/ui/application.h"
#include "kvshare/ui/backend.h"
#include "kvshare/ui/stdcontrols.h"
#include "kvshare/ui/stringgrid.h"

namespace kvshare {
namespace {

using testing::ElementsAre;

// Stands for a back end's window, and writes down its calls.
class Window : public TFormWindow {
 public:
  Window(const TForm& form, std::vector<std::string>& told) : form_(form), told_(told) {}
  ~Window() override { told_.emplace_back("gone"); }

  void ControlChanged(const TControl& control) override {
    const TBounds& at = control.Bounds();
    told_.push_back(control.Name() + " " + std::to_string(at.Left) + "," + std::to_string(at.Top) +
                    " " + std::to_string(at.Width) + "x" + std::to_string(at.Height));
  }
  void ControlsChanged() override {
    told_.push_back(std::to_string(form_.Controls().size()) + " controls");
  }
  void Show() override { told_.emplace_back("shown"); }
  void Hide() override { told_.emplace_back("hidden"); }
  std::uintptr_t Handle() const override { return 42; }

 private:
  const TForm& form_;
  std::vector<std::string>& told_;
};

TEST(Controls, AWindowFollowsEveryChangeAndGoesBeforeItsForm) {
  std::vector<std::string> told;
  {
    TForm form(nullptr, "Main");
    form.SetWindow(std::make_unique<Window>(form, told));
    form.SetLeft(-5);
    form.SetTop(INT_MAX);
    form.SetTop(INT_MAX);  // nothing changes
    form.SetWindowState(TWindowState::wsMaximized);
    {
      TButton button(&form, "Bar");
      button.SetBounds({1, 2, 3, 4});
      button.SetEnabled(false);
    }
    form.SetCaption("Ledger");
  }
  const std::string main = "Main -5,2147483647 0x0";
  EXPECT_THAT(told, ElementsAre("Main -5,0 0x0", main, main, "1 controls", "Bar 1,2 3x4",
                                "Bar 1,2 3x4", "0 controls", main, "gone"));
}

TEST(Controls, AMaximisedFormWithoutAWindowHasTheWorkAreaAndComesBack) {
  THeadlessInterface backEnd;
  const TUseInterface use(backEnd);
  const TBounds place{10, 20, 300, 200};
  const TBounds screen{0, 0, backEnd.screen.Width, backEnd.screen.Height};
  TForm form(nullptr, "Main");
  form.SetBounds(place);
  for (const TWindowState over : {wsMaximized, wsMinimized}) {
    form.SetWindowState(wsMaximized);
    EXPECT_EQ(form.Bounds(), screen);
    EXPECT_EQ(form.NormalBounds(), place);
    form.SetWindowState(over);
    form.SetWindowState(wsMaximized);
    form.SetWindowState(wsNormal);
    EXPECT_EQ(form.Bounds(), place);
  }
  backEnd.screen = {};
  form.SetWindowState(wsMaximized);
  EXPECT_EQ(form.Bounds(), place) << "there is no screen";
}

TEST(Controls, AMainFormIsShownUntilItIsClosedAndOwnsTheProgramsWindows) {
  THeadlessInterface backEnd;
  const TUseInterface use(backEnd);
  std::vector<std::string> told;
  EXPECT_EQ(Application.MainFormHandle(), 0u);
  {
    TForm form(nullptr, "Main");
    form.OnShow = [&] { told.emplace_back("OnShow"); };
    form.OnHide = [&] { told.emplace_back("OnHide"); };
    form.SetWindow(std::make_unique<Window>(form, told));
    Application.MainForm = &form;
    EXPECT_EQ(Application.MainFormHandle(), 42u);
    Application.Run();
    EXPECT_TRUE(form.Showing());
    form.Show();  // is shown already
    form.Close();
    form.Hide();
    EXPECT_FALSE(form.Showing());
  }
  EXPECT_EQ(Application.MainForm, nullptr);
  EXPECT_THAT(told, ElementsAre("OnShow", "shown", "hidden", "OnHide", "gone"));
}

TEST(Controls, TextsThatAUserTypes) {
  TForm form(nullptr, "Form");
  TEdit edit(&form);
  TMemo memo(&form);
  TStringGrid grid(&form);
  int changes = 0;
  edit.OnChange = memo.OnChange = grid.OnDblClick = [&] { ++changes; };
  edit.MaxLength = 3;
  EXPECT_TRUE(edit.TypeText("12\n\x7F.5"));
  EXPECT_EQ(edit.Text(), "12.");
  EXPECT_TRUE(edit.TypeText("12."));
  EXPECT_EQ(changes, 1) << "the same text is no change";
  EXPECT_TRUE(memo.EditText("SELECT 1"));
  EXPECT_TRUE(memo.TypeText("\r\n"));
  EXPECT_TRUE(grid.DoubleClick());
  EXPECT_EQ(form.ActiveControl(), &grid);
  EXPECT_EQ(changes, 4);

  edit.ReadOnly = memo.ReadOnly = true;
  grid.SetEnabled(false);
  EXPECT_FALSE(edit.TypeText("1") || memo.EditText("1") || grid.DoubleClick());
  EXPECT_EQ(memo.Text(), "SELECT 1\r\n");
}

}  // namespace
}  // namespace kvshare
