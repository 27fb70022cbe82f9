#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <vector>

#include "kvshare/rtl/exceptions.h"
#include "kvshare/ui/backend.h"
#include "tests/ui/sampleform.h"

namespace kvshare {
namespace {

using testing::ElementsAre;

TEST(Forms, ControlsComeAndGoWithTheirForm) {
  auto form = std::make_unique<TForm>(nullptr);
  TButton first(form.get());
  {
    TCheckBox second(form.get());
    const TForm owned(form.get());
    form->SetActiveControl(&second);
    EXPECT_THAT(form->Controls(), ElementsAre(&first, &second)) << "a form is shown by no other";
    EXPECT_EQ(form->ActiveControl(), &second);
  }
  EXPECT_THAT(form->Controls(), ElementsAre(&first));
  EXPECT_EQ(form->ActiveControl(), nullptr);
  form.reset();
  EXPECT_EQ(first.Parent(), nullptr);
  EXPECT_TRUE(first.Click()) << "a control lives on without its form";
}

TEST(Forms, TabWalksWhatCanHaveTheKeyboard) {
  TForm form(nullptr);
  TButton a(&form), b(&form);
  const TLabel label(&form);
  TCheckBox c(&form), d(&form), e(&form);
  e.TabOrder = -1;
  b.SetEnabled(false);
  c.SetVisible(false);
  EXPECT_THAT(form.TabList(), ElementsAre(&e, &a, &b, &c, &d));
  std::vector<TWinControl*> walked;
  for (int i = 0; i < 4; ++i) {
    EXPECT_TRUE(form.MoveTab());
    walked.push_back(form.ActiveControl());
  }
  EXPECT_THAT(walked, ElementsAre(&e, &a, &d, &e));
  EXPECT_TRUE(form.MoveTab(true));
  EXPECT_EQ(form.ActiveControl(), &d) << "back, around the start";

  TForm other(nullptr);
  TButton foreign(&other);
  for (TWinControl* refused : std::initializer_list<TWinControl*>{&b, &c, &foreign}) {
    form.SetActiveControl(refused);
    EXPECT_EQ(form.ActiveControl(), &d);
  }
  form.SetEnabled(false);
  EXPECT_FALSE(form.MoveTab());
}

TEST(Forms, EnterAndEsc) {
  using F = SampleForm;
  struct Case {
    void (*prepare)(F&);
    int enter, esc;
    const char* why;
  };
  const Case cases[] = {
      {[](F&) {}, mrOk, mrCancel, "their buttons"},
      {[](F& f) { f.SetActiveControl(&f.cancel); }, mrCancel, mrCancel, "it has the keyboard"},
      {[](F& f) { f.SetActiveControl(&f.message); }, mrOk, mrCancel, "a read-only memo"},
      {[](F& f) {
         f.message.ReadOnly = false;
         f.SetActiveControl(&f.message);
       },
       mrNone, mrCancel, "a line of the memo"},
      {[](F& f) { f.ok.SetVisible(false); }, mrNone, mrCancel, "a hidden button"},
      {[](F& f) { f.ok.Default = false; }, mrNone, mrCancel, "no default button"},
      {[](F& f) { f.cancel.Cancel = false; }, mrOk, mrCancel, "Esc closes by itself"},
      {[](F& f) { f.cancel.SetEnabled(false); }, mrOk, mrNone, "but not past a button"},
      {[](F& f) {
         f.ok.SetEnabled(false);
         f.cancel.Default = true;
       },
       mrCancel, mrCancel, "the first that can be clicked"},
      {[](F& f) { f.ok.OnClick = [&f] { f.ModalResult = mrNone; }; }, mrNone, mrCancel,
       "a handler takes the result back"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.why);
    F entered, escaped;
    c.prepare(entered);
    c.prepare(escaped);
    entered.PressEnter();
    escaped.PressEsc();
    EXPECT_EQ(entered.ModalResult, c.enter);
    EXPECT_EQ(escaped.ModalResult, c.esc);
    escaped.Dismiss();
    EXPECT_NE(escaped.ModalResult, mrNone);
  }
}

TEST(Forms, ShowModalCreatesCentresShowsAndRuns) {
  class WithFrames : public THeadlessInterface {
   public:
    void PrepareForm(TForm& form) override { form.SetFrame({6, 25}); }
  } backEnd;
  const TUseInterface use(backEnd);
  SampleForm form;
  form.Position = TPosition::poScreenCenter;
  std::vector<std::string> events;
  form.OnCreate = [&] { events.emplace_back("create"); };
  form.OnShow = [&] {
    events.emplace_back("show");
    EXPECT_EQ(form.ModalResult, mrNone) << "of this show";
    EXPECT_EQ(form.Bounds(), (TBounds{(1024 - 406) / 2, (768 - 325) / 2, 406, 325}));
    EXPECT_EQ(form.ClientWidth(), 400);
    EXPECT_EQ(form.ActiveControl(), &form.message);
  };
  backEnd.steps = {[&](TForm& shown) {
                     EXPECT_EQ(&shown, &form);
                     events.emplace_back("step");
                     shown.PressEnter();
                   },
                   [](TForm& shown) { shown.MoveTab(); }};
  EXPECT_EQ(form.ShowModal(), mrOk);
  form.SetActiveControl(nullptr);
  EXPECT_EQ(form.ShowModal(), mrCancel) << "the step leaves it open";
  EXPECT_EQ(form.ActiveControl(), &form.actions);
  form.SetActiveControl(nullptr);
  EXPECT_EQ(form.ShowModal(), mrCancel) << "no step";
  EXPECT_THAT(events, ElementsAre("create", "show", "step", "show", "show"));
  EXPECT_THAT(backEnd.shown, testing::Each(form.Caption()));

  form.OnShow = [&form] { form.ModalResult = mrAbort; };
  backEnd.steps = {[](TForm&) { FAIL() << "there is nothing left to answer"; }};
  EXPECT_EQ(form.ShowModal(), mrAbort);
}

TEST(Forms, BoundsAreWithTheFrameAndAnAskedInnerSizeIsWithoutIt) {
  constexpr TSize kFrame{8, 34};
  struct Case {
    const char* what;
    std::function<void(TForm&)> before, after;  // the frame is known
    TSize outer;
  };
  const auto nothing = [](TForm&) {};
  const auto bounds = [](TForm& form) { form.SetBounds({10, 20, 308, 234}); };
  const auto inner = [](TForm& form) {
    form.SetClientWidth(300);
    form.SetClientHeight(200);
  };
  const Case cases[] = {
      {"bounds before", bounds, nothing, {308, 234}},
      {"bounds after", nothing, bounds, {308, 234}},
      {"bounds both times", bounds, bounds, {308, 234}},
      {"an inner size before", inner, nothing, {308, 234}},
      {"an inner size after", nothing, inner, {308, 234}},
      {"bounds over an inner size",
       [&](TForm& form) { inner(form), bounds(form); },
       nothing,
       {308, 234}},
      {"moved meanwhile", [&](TForm& form) { inner(form), form.SetLeft(7); }, nothing, {308, 234}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    TForm form(nullptr);
    c.before(form);
    form.SetFrame(kFrame);
    c.after(form);
    EXPECT_EQ((TSize{form.Width(), form.Height()}), c.outer);
    EXPECT_EQ((TSize{form.ClientWidth(), form.ClientHeight()}), (TSize{300, 200}));
  }
}

TEST(Forms, TheMiddleOfTheScreenIsNeverOutsideIt) {
  THeadlessInterface backEnd;
  const TUseInterface use(backEnd);
  SampleForm form;
  const auto PlaceOn = [&](TSize screen) {
    backEnd.screen = screen;
    form.ShowModal();
    return std::pair(form.Left(), form.Top());
  };
  form.SetLeft(-7);
  EXPECT_EQ(PlaceOn({1024, 768}), std::pair(-7, 0)) << "as designed";
  form.Position = TPosition::poScreenCenter;
  EXPECT_EQ(PlaceOn({1024, 768}), std::pair(312, 234));
  EXPECT_EQ(PlaceOn({403, 299}), std::pair(1, 0));
  EXPECT_EQ(PlaceOn({0, 0}), std::pair(0, 0));
}

TEST(Controls, MemosKeepTheirTextAndTakeLines) {
  struct Case {
    const char *text, *want;
    std::vector<std::string> lines;
  };
  const Case cases[] = {
      {"", "x", {"x"}},
      {"a", "a\r\nx", {"a", "x"}},
      {"a\n\nb\r", "a\n\nb\rx", {"a", "", "b", "x"}},
  };
  for (const Case& c : cases) {
    TMemo memo(nullptr);
    memo.SetText(c.text);
    memo.ReadOnly = true;
    EXPECT_FALSE(memo.TypeText("no"));
    memo.Lines.Add("x");
    EXPECT_EQ(memo.Text(), c.want) << "code may write";
    std::vector<std::string> lines;
    for (int i = 0; i < memo.Lines.Count(); ++i) lines.push_back(memo.Lines[i]);
    EXPECT_EQ(lines, c.lines);
    EXPECT_THROW(memo.Lines[memo.Lines.Count()], EStringListError);
    memo.Lines.Add(memo.Text());
    EXPECT_EQ(memo.Text(), std::string(c.want) + "\r\n" + c.want) << "of itself";
  }
}

TEST(Controls, ChoicesAndChecksTellOfEachChange) {
  SampleForm form;
  int clicks = 0;
  form.actions.OnClick = form.changed.OnClick = [&clicks] { ++clicks; };
  std::vector<int> chosen;
  for (const int index : {0, 0, 9, -5, 1}) {
    form.actions.SetItemIndex(index);
    chosen.push_back(form.actions.ItemIndex());
  }
  EXPECT_THAT(chosen, ElementsAre(0, 0, 1, -1, 1));
  EXPECT_EQ(clicks, 3) << "neither the same again nor none is a click";
  EXPECT_TRUE(form.actions.Choose(0) && form.changed.Click());
  EXPECT_EQ(form.ActiveControl(), &form.changed) << "a click takes the keyboard";
  EXPECT_FALSE(form.actions.Choose(2) || form.actions.Choose(-1)) << "no such item";
  form.changed.SetChecked(true);
  EXPECT_EQ(clicks, 5);
  form.actions.SetEnabled(false);
  form.changed.SetEnabled(false);
  EXPECT_FALSE(form.actions.Choose(1) || form.changed.Click());
  form.changed.SetChecked(false);
  EXPECT_EQ(clicks, 6) << "code may, whatever is disabled";
  EXPECT_EQ(form.actions.ItemValue(1), SampleForm::Correct);
  form.actions.ClearItems();
  EXPECT_EQ(form.actions.ItemIndex(), -1);
  EXPECT_THROW(form.actions.ItemValue(0), EStringListError);
}

}  // namespace
}  // namespace kvshare
