// Two people at one table, on every server: what one of them applies, the other one finds.
#include "tests/data/updates_suite.h"

#include <algorithm>
#include <functional>
#include <map>
#include <optional>
#include <random>
#include <set>

#include "kvshare/data/client/clientdataset.h"
#include "kvshare/data/client/provider.h"
#include "kvshare/data/contract/errors.h"
#include "kvshare/rtl/convert.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/format.h"
#include "tests/support.h"

namespace kvshare {
namespace {

using enum TReconcileAction;
using enum TUpdateKind;
using enum TUpdateMode;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

constexpr const char* kChanged = "Record not found or changed by another user";

}  // namespace

// A data-entry screen with a connection of its own.
class Screen {
 public:
  explicit Screen(std::unique_ptr<TSQLConnection> connection, TUpdateMode mode = upWhereAll)
      : connection_(std::move(connection)), provider(*connection_), set(nullptr, "Items") {
    provider.Query().SQL().Add("SELECT * FROM KV_TEST ORDER BY ID");
    provider.KeyFields = "ID";
    provider.UpdateMode = mode;
    set.SetProvider(&provider);
    set.OnReconcileError = [this](TClientDataSet& sender, EReconcileError& e, TUpdateKind kind,
                                  TReconcileAction& action) {
      told.push_back(Tell(sender, kind) + (action == raAbort ? " last: " : ": ") + e.Message());
      if (decide) decide(sender);
      if (answer) action = *answer;
    };
    set.Open();
  }

  void Change(int id, std::string_view field, std::string_view text) {
    Find(id);
    set.Edit();
    set.FieldByName(field).SetAsString(text);
    set.Post();
  }
  void Add(int id, std::string_view name) {
    set.Append();
    set.FieldByName("ID").SetAsInteger(id);
    set.FieldByName("NAME").SetAsString(name);
    set.Post();
  }
  void Remove(int id) {
    Find(id);
    set.Delete();
  }
  void Find(int id) { ASSERT_TRUE(set.Locate("ID", id)) << id; }
  // What a person sees: `1 pen 12.5;`.
  std::string Rows() {
    std::string rows;
    for (set.First(); !set.Eof(); set.Next()) {
      rows += set.FieldByName("ID").AsString() + " " + set.FieldByName("NAME").AsString() + " " +
              set.FieldByName("PRICE").AsString() + ";";
    }
    return rows;
  }

  // `M 1 old/new/current`, of the names.
  static std::string Tell(const TClientDataSet& set, TUpdateKind kind) {
    const TField& name = set.FieldByName("NAME");
    const auto text = [](const Variant& value) -> std::string {
      if (value.IsEmpty()) return "-";
      return value.IsNull() ? "null" : value.AsString();
    };
    return std::string(1, "MID"[static_cast<int>(kind)]) + " " + set.FieldByName("ID").AsString() +
           " " + text(name.OldValue()) + "/" + text(name.NewValue()) + "/" + text(name.CurValue());
  }

 private:
  std::unique_ptr<TSQLConnection> connection_;

 public:
  TDataSetProvider provider;
  TClientDataSet set;
  std::optional<TReconcileAction> answer;
  std::function<void(TClientDataSet&)> decide;
  std::vector<std::string> told;
  TSQLConnection& Connection() { return *connection_; }
};

GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(UpdatesSuite);

UpdatesSuite::UpdatesSuite() = default;
UpdatesSuite::~UpdatesSuite() = default;

void UpdatesSuite::SetUp() {
  DriverSuite::SetUp();
  const DriverCase& types = GetParam();
  CreateTable("NAME " + types.text + ", PRICE " + types.money + ", DONE " + types.moment +
              ", REMARK " + types.memo);
  for (const char* row : {"1, 'pen', 12.5", "2, 'book', 99.9975", "3, 'ink', 7"}) {
    Run(std::string("INSERT INTO KV_TEST (ID, NAME, PRICE) VALUES (") + row + ")");
  }
}

void UpdatesSuite::TearDown() {
  screens_.clear();
  DriverSuite::TearDown();
}

Screen& UpdatesSuite::MakeScreen(TUpdateMode mode) {
  return *screens_.emplace_back(std::make_unique<Screen>(Another(), mode));
}

std::string UpdatesSuite::OnServer() const {
  return Screen(Another()).Rows();
}

namespace {

TEST_P(UpdatesSuite, ChangesReachTheServer) {
  Screen& me = MakeScreen();
  constexpr std::string_view kName = "ปากกาด้ามใหญ่"_th;
  me.Change(1, "NAME", kName);
  me.Change(1, "DONE", "");
  me.Change(2, "PRICE", "");
  me.Add(4, "chalk");
  me.set.Edit();
  me.set.FieldByName("DONE").SetAsDateTime(EncodeDate(2026, 11, 25));
  me.set.FieldByName("REMARK").SetAsString(std::string(70'000, 'x'));
  me.set.Post();
  me.Remove(3);
  EXPECT_EQ(me.set.ApplyUpdates(0), 0);
  EXPECT_EQ(me.set.ChangeCount(), 0);
  EXPECT_THAT(me.told, IsEmpty());
  const std::string rows = "1 " + std::string(kName) + " 12.5;2 book ;4 chalk ;";
  EXPECT_EQ(me.Rows(), rows);
  EXPECT_EQ(OnServer(), rows);

  Screen& other = MakeScreen();
  other.Find(4);
  EXPECT_EQ(other.set.FieldByName("DONE").AsDateTime(), EncodeDate(2026, 11, 25));
  EXPECT_EQ(other.set.FieldByName("REMARK").AsString().size(), 70'000U);
  // Whatever was written is found again by all its values, Null ones too.
  for (const int id : {1, 2, 4}) other.Change(id, "NAME", "n" + std::to_string(id));
  EXPECT_EQ(other.set.ApplyUpdates(0), 0) << testing::PrintToString(other.told);
  EXPECT_EQ(OnServer(), "1 n1 12.5;2 n2 ;4 n4 ;");
}

// What a field keeps of an amount is what the server keeps: the next edit finds the record again.
TEST_P(UpdatesSuite, AmountsAreStoredAsTheServerHasThem) {
  Screen& me = MakeScreen();
  const auto apply = [&](const std::string& kept) {
    EXPECT_EQ(me.set.ApplyUpdates(0), 0) << testing::PrintToString(me.told);
    const std::string rows = "1 pen " + kept + ";2 book 99.9975;3 ink 7;";
    EXPECT_EQ(me.Rows(), rows);
    EXPECT_EQ(OnServer(), rows);
  };
  for (const std::string sign : {"", "-"}) {
    me.Change(1, "PRICE", sign + "2.34565");
    apply(sign + (GetParam().tellsDecimals ? "2.3457" : "2.34565"));
  }
  me.Find(1);
  me.set.Edit();
  me.set.FieldByName("PRICE").SetAsFloat(0.1 + 0.2);
  me.set.Post();
  apply("0.3");
  me.Change(1, "NAME", "pen");
  me.Change(1, "PRICE", "1e2");
  apply("100");
}

TEST_P(UpdatesSuite, WhatSomebodyElseHasChangedIsNoticed) {
  const struct {
    const char* before;  // of the record
    const char* theirs;  // what the other one does meanwhile
  } cases[] = {
      {"NAME = 'pen'", "UPDATE KV_TEST SET NAME = 'Pen' WHERE ID = 1"},
      {"NAME = 'pen'", "UPDATE KV_TEST SET NAME = NULL WHERE ID = 1"},
      {"NAME = NULL", "UPDATE KV_TEST SET NAME = '' WHERE ID = 1"},
      {"PRICE = '12345678901.2345'", "UPDATE KV_TEST SET PRICE = '12345678901.2346' WHERE ID = 1"},
      {GetParam().wholeCurrency ? "PRICE = '12345678901234.5678'" : "PRICE = 1",
       "UPDATE KV_TEST SET PRICE = '12345678901234.5679' WHERE ID = 1"},
      {"DONE = '2026-11-25 10:00:00'",
       "UPDATE KV_TEST SET DONE = '2026-11-25 10:00:01' WHERE ID = 1"},
      {"NAME = 'pen'", "DELETE FROM KV_TEST WHERE ID = 1"},
      {"NAME = 'pen'", "UPDATE KV_TEST SET ID = 99 WHERE ID = 1"},
  };
  for (const auto& c : cases) {
    Run("DELETE FROM KV_TEST");
    Run("INSERT INTO KV_TEST (ID) VALUES (1)");
    Run(std::string("UPDATE KV_TEST SET ") + c.before);
    Screen& me = MakeScreen();
    Run(c.theirs);
    const std::string theirs = OnServer();
    me.Find(1);
    me.set.Edit();
    me.set.FieldByName("REMARK").SetAsString("mine");
    me.set.Post();
    EXPECT_EQ(me.set.ApplyUpdates(0), 1) << c.theirs;
    ASSERT_THAT(me.told, SizeIs(1));
    EXPECT_THAT(me.told[0], HasSubstr(std::string(" last: ") + kChanged)) << c.theirs;
    EXPECT_EQ(OnServer(), theirs);
    EXPECT_EQ(me.set.ChangeCount(), 1);
  }
}

TEST_P(UpdatesSuite, WhichFieldsCountIsTheProgramsChoice) {
  const struct {
    TUpdateMode mode;
    const char* mine;
    int refused;
    std::string rows;
  } cases[] = {
      {upWhereAll, "NAME", 1, "1 pen 50;"},
      {upWhereChanged, "NAME", 0, "1 mine 50;"},
      {upWhereChanged, "PRICE", 1, "1 pen 50;"},
      {upWhereKeyOnly, "PRICE", 0, "1 pen 7;"},
  };
  for (const auto& c : cases) {
    Run("DELETE FROM KV_TEST");
    Run("INSERT INTO KV_TEST (ID, NAME, PRICE) VALUES (1, 'pen', 12.5)");
    Screen& me = MakeScreen(c.mode);
    Run("UPDATE KV_TEST SET PRICE = 50");
    me.Change(1, c.mine, std::string_view(c.mine) == "NAME" ? "mine" : "7");
    EXPECT_EQ(me.set.ApplyUpdates(0), c.refused);
    EXPECT_EQ(OnServer(), c.rows);
  }
  Screen& me = MakeScreen();
  me.set.FieldByName("PRICE").ProviderFlags.pfInWhere = false;
  Run("UPDATE KV_TEST SET PRICE = 51");
  me.Change(1, "NAME", "pencil");
  EXPECT_EQ(me.set.ApplyUpdates(0), 0);
  EXPECT_EQ(OnServer(), "1 pencil 51;");
}

// The same conflict, ended in each of the six ways, and then applied once more.
TEST_P(UpdatesSuite, SixEndingsOfAChangedRecord) {
  const struct {
    TReconcileAction action;
    std::string seen;  // by the user afterwards
    int changes;
    int again;  // refused the second time
    std::string rows;
  } cases[] = {
      {raSkip, "1 mine 12.5;", 1, 1, "1 theirs 50;"},
      {raAbort, "1 mine 12.5;", 1, 1, "1 theirs 50;"},
      {raMerge, "1 mine 50;", 1, 0, "1 mine 50;"},
      {raCorrect, "1 agreed 12.5;", 1, 1, "1 theirs 50;"},
      {raCancel, "1 pen 12.5;", 0, 0, "1 theirs 50;"},
      {raRefresh, "1 theirs 50;", 0, 0, "1 theirs 50;"},
  };
  for (const auto& c : cases) {
    Run("DELETE FROM KV_TEST");
    Run("INSERT INTO KV_TEST (ID, NAME, PRICE) VALUES (1, 'pen', 12.5)");
    Screen& me = MakeScreen();
    Screen& other = MakeScreen();
    other.Change(1, "NAME", "theirs");
    other.Change(1, "PRICE", "50");
    ASSERT_EQ(other.set.ApplyUpdates(0), 0);
    me.Change(1, "NAME", "mine");
    me.answer = c.action;
    me.decide = [](TClientDataSet& set) {
      EXPECT_TRUE(set.FieldByName("PRICE").NewValue().IsEmpty());
      EXPECT_EQ(set.FieldByName("PRICE").CurValue(), Variant(50_baht));
      EXPECT_TRUE(set.FieldByName("ID").CurValue().IsEmpty());
      set.FieldByName("NAME").SetNewValue("agreed");
    };
    EXPECT_EQ(me.set.ApplyUpdates(-1), 1);
    EXPECT_THAT(me.told, ElementsAre("M 1 pen/mine/theirs: " + std::string(kChanged)));
    EXPECT_EQ(me.Rows(), c.seen) << static_cast<int>(c.action);
    EXPECT_EQ(me.set.ChangeCount(), c.changes) << static_cast<int>(c.action);
    me.decide = nullptr;
    me.answer = raSkip;
    EXPECT_EQ(me.set.ApplyUpdates(-1), c.again) << static_cast<int>(c.action);
    EXPECT_EQ(OnServer(), c.rows) << static_cast<int>(c.action);
  }
}

TEST_P(UpdatesSuite, SixEndingsOfADeletion) {
  const struct {
    TReconcileAction action;
    std::string seen;
    int changes;
    int again;
    std::string rows;
  } cases[] = {
      {raSkip, "", 1, 1, "1 theirs 12.5;"},
      {raAbort, "", 1, 1, "1 theirs 12.5;"},
      {raMerge, "", 1, 0, ""},
      {raCorrect, "", 1, 1, "1 theirs 12.5;"},
      {raCancel, "1 pen 12.5;", 0, 0, "1 theirs 12.5;"},
      {raRefresh, "1 theirs 12.5;", 0, 0, "1 theirs 12.5;"},
  };
  for (const auto& c : cases) {
    Run("DELETE FROM KV_TEST");
    Run("INSERT INTO KV_TEST (ID, NAME, PRICE) VALUES (1, 'pen', 12.5)");
    Screen& me = MakeScreen();
    Run("UPDATE KV_TEST SET NAME = 'theirs'");
    me.Remove(1);
    me.answer = c.action;
    me.decide = [](TClientDataSet& set) {
      EXPECT_EQ(MessageOf<EDatabaseError>([&] { set.FieldByName("NAME").SetNewValue("x"); }),
                "Items: Dataset not in edit or insert mode");
    };
    EXPECT_EQ(me.set.ApplyUpdates(-1), 1);
    EXPECT_THAT(me.told, ElementsAre("D 1 pen/-/theirs: " + std::string(kChanged)));
    EXPECT_EQ(me.Rows(), c.seen) << static_cast<int>(c.action);
    EXPECT_EQ(me.set.ChangeCount(), c.changes);
    me.decide = nullptr;
    me.answer = raSkip;
    EXPECT_EQ(me.set.ApplyUpdates(-1), c.again) << static_cast<int>(c.action);
    EXPECT_EQ(OnServer(), c.rows) << static_cast<int>(c.action);
  }
}

// Both delete it, both give it another key: nobody's work is taken for the other's.
TEST_P(UpdatesSuite, BothDoTheSame) {
  Screen& me = MakeScreen();
  Run("DELETE FROM KV_TEST WHERE ID = 1");
  Run("UPDATE KV_TEST SET ID = 20 WHERE ID = 2");
  me.Remove(1);
  me.Change(2, "ID", "21");
  me.answer = raMerge;
  EXPECT_EQ(me.set.ApplyUpdates(-1), 2);
  EXPECT_THAT(me.told, ElementsAre(std::string("D 1 pen/-/-: ") + kChanged,
                                   std::string("M 21 book/-/-: ") + kChanged));
  EXPECT_EQ(me.set.ChangeCount(), 2) << "there is nothing to merge with";
  EXPECT_EQ(OnServer(), "3 ink 7;20 book 99.9975;");
  me.answer = raCancel;
  EXPECT_EQ(me.set.ApplyUpdates(-1), 2);
  EXPECT_EQ(me.Rows(), "1 pen 12.5;2 book 99.9975;3 ink 7;");
  EXPECT_EQ(me.set.ChangeCount(), 0);
}

TEST_P(UpdatesSuite, AColumnThatTheTableLacksIsNotAskedFor) {
  Screen& me = MakeScreen();
  me.set.Close();
  me.provider.Query().SQL().SetText(
      "SELECT ID, NAME, PRICE, 'from KV_NONE' AS NOTE FROM KV_TEST WHERE ID IN (1, 2)");
  me.set.Open();
  me.set.FieldByName("NOTE").ProviderFlags = {.pfInUpdate = false, .pfInWhere = false};
  Run("UPDATE KV_TEST SET PRICE = 50 WHERE ID = 1");
  me.Change(1, "NAME", "mine");
  me.answer = raMerge;
  me.decide = [](TClientDataSet& set) {
    EXPECT_TRUE(set.FieldByName("NOTE").CurValue().IsEmpty());
  };
  EXPECT_EQ(me.set.ApplyUpdates(-1), 1);
  EXPECT_EQ(me.Rows(), "1 mine 50;2 book 99.9975;");
  EXPECT_EQ(me.set.ApplyUpdates(-1), 0);
  EXPECT_EQ(OnServer(), "1 mine 50;2 book 99.9975;3 ink 7;");
}

TEST_P(UpdatesSuite, NamesThatHaveToBeQuoted) {
  const DriverCase& types = GetParam();
  const std::string odd = types.quote + "Odd name" + types.quote;
  Run("DROP TABLE KV_TEST");
  CreateTable("NAME " + types.text + ", " + odd + " " + types.integer);
  Run("INSERT INTO KV_TEST VALUES (1, 'pen', 5)");
  Screen& me = MakeScreen();
  me.Change(1, "Odd name", "6");
  EXPECT_EQ(me.set.ApplyUpdates(0), 0) << testing::PrintToString(me.told);
  EXPECT_EQ(Single("SELECT " + odd + " FROM KV_TEST"), "6");
}

// A column is left to the server's default only where nobody has given it anything.
TEST_P(UpdatesSuite, ANullThatWasGivenIsWritten) {
  Run("DROP TABLE KV_TEST");
  CreateTable("NAME " + GetParam().text + " DEFAULT 'nobody', PRICE " + GetParam().money +
              ", DONE " + GetParam().moment);
  Screen& me = MakeScreen();
  me.Add(1, "");
  me.set.Edit();
  me.set.FieldByName("NAME").Clear();
  me.set.Post();
  for (const int id : {2, 3}) {
    me.set.Append();
    me.set.FieldByName("ID").SetAsInteger(id);
    me.set.Post();
  }
  me.set.Edit();
  me.set.FieldByName("NAME").Clear();  // no other value, and yet given
  me.set.Post();
  EXPECT_EQ(me.set.ApplyUpdates(0), 0) << testing::PrintToString(me.told);
  EXPECT_EQ(OnServer(), "1  ;2 nobody ;3  ;");
  me.Change(1, "PRICE", "1");
  me.Change(3, "PRICE", "3");
  EXPECT_EQ(me.set.ApplyUpdates(0), 0) << testing::PrintToString(me.told);
}

// New records without what the server puts there itself, shown with it, and changed at once.
TEST_P(UpdatesSuite, WhatTheServerFillsIn) {
  Run("DROP TABLE KV_TEST");
  Run("CREATE TABLE KV_TEST (ID " + GetParam().counter + ", NAME " + GetParam().text +
      " DEFAULT 'nobody' NOT NULL, PRICE " + GetParam().money + " DEFAULT 1.5)");
  Screen& me = MakeScreen();
  me.set.SetPrimaryKey("ID");
  for (const char* name : {"", "pen"}) {
    me.set.Append();
    if (*name != 0) me.set.FieldByName("NAME").SetAsString(name);
    me.set.FieldByName("PRICE").SetAsCurrency(Currency::FromRaw(2'0000));
    me.set.Post();
  }
  EXPECT_EQ(me.set.ApplyUpdates(0), 0) << testing::PrintToString(me.told);
  EXPECT_EQ(OnServer(), "1 nobody 2;2 pen 2;");
  if (!GetParam().insertsReturn) {
    me.set.Close();
    me.set.Open();
  }
  EXPECT_EQ(me.Rows(), "1 nobody 2;2 pen 2;");
  me.Change(1, "NAME", "ink");
  EXPECT_EQ(me.set.ApplyUpdates(0), 0) << testing::PrintToString(me.told);
  EXPECT_EQ(OnServer(), "1 ink 2;2 pen 2;");
}

TEST_P(UpdatesSuite, ARecordThatIsThereAlready) {
  Screen& me = MakeScreen();
  Run("INSERT INTO KV_TEST (ID, NAME, PRICE) VALUES (4, 'theirs', 8)");
  me.Add(4, "mine");
  EXPECT_EQ(me.set.ApplyUpdates(-1), 1);
  ASSERT_THAT(me.told, SizeIs(1));
  EXPECT_THAT(me.told[0], testing::StartsWith("I 4 null/mine/-: SQL Server Error: "));
  me.answer = raMerge;
  EXPECT_EQ(me.set.ApplyUpdates(-1), 1);
  EXPECT_EQ(me.set.UpdateStatus(), TUpdateStatus::usModified);
  EXPECT_EQ(me.set.ApplyUpdates(-1), 0) << "now as a change of that record";
  EXPECT_EQ(OnServer(), "1 pen 12.5;2 book 99.9975;3 ink 7;4 mine 8;");
}

TEST_P(UpdatesSuite, AsManyErrorsAsAreAllowed) {
  const struct {
    int allowed;
    int refused;
    std::string rows;
    int left;
    std::vector<std::string> told;
  } cases[] = {
      {0, 1, "1 theirs 1;2 theirs 2;3 c 3;", 4, {"M 1 a/A/theirs last: "}},
      {1, 2, "1 theirs 1;2 theirs 2;3 c 3;", 4, {"M 1 a/A/theirs: ", "M 2 b/B/theirs last: "}},
      {2, 2, "1 theirs 1;2 theirs 2;3 C 3;4 D ;", 2, {"M 1 a/A/theirs: ", "M 2 b/B/theirs: "}},
      {-1, 2, "1 theirs 1;2 theirs 2;3 C 3;4 D ;", 2, {"M 1 a/A/theirs: ", "M 2 b/B/theirs: "}},
  };
  for (const auto& c : cases) {
    Run("DELETE FROM KV_TEST");
    for (const char* row : {"1, 'a', 1", "2, 'b', 2", "3, 'c', 3"}) {
      Run(std::string("INSERT INTO KV_TEST (ID, NAME, PRICE) VALUES (") + row + ")");
    }
    Screen& me = MakeScreen();
    Run("UPDATE KV_TEST SET NAME = 'theirs' WHERE ID < 3");
    me.Change(1, "NAME", "A");
    me.Change(2, "NAME", "B");
    me.Change(3, "NAME", "C");
    me.Add(4, "D");
    EXPECT_EQ(me.set.ApplyUpdates(c.allowed), c.refused);
    std::vector<std::string> told = c.told;
    for (std::string& line : told) line += kChanged;
    EXPECT_EQ(me.told, told);
    EXPECT_EQ(OnServer(), c.rows) << c.allowed;
    EXPECT_EQ(me.set.ChangeCount(), c.left);
    EXPECT_EQ(me.Rows(), "1 A 1;2 B 2;3 C 3;4 D ;");
  }
}

// A record of mine has the key of the server's record by now: what cannot be done is asked about
// again, nothing changes, and later refusals are asked about too.
TEST_P(UpdatesSuite, AnEndingThatTheKeysForbid) {
  for (const TReconcileAction action : {raRefresh, raCancel, raCorrect}) {
    Run("DELETE FROM KV_TEST");
    Run("INSERT INTO KV_TEST (ID, NAME, PRICE) VALUES (1, 'pen', 12.5)");
    Screen& me = MakeScreen();
    me.set.SetPrimaryKey("ID");
    me.Change(1, "ID", "10");
    me.Add(1, "mine");
    Run("UPDATE KV_TEST SET NAME = 'theirs'");
    me.decide = [&](TClientDataSet& set) {
      const bool first = set.FieldByName("ID").OldValue() == Variant(1);
      me.answer = first ? action : raSkip;
      if (first && action == raCorrect) set.FieldByName("ID").SetNewValue(1);
    };
    EXPECT_EQ(me.set.ApplyUpdates(-1), 2);
    ASSERT_THAT(me.told, SizeIs(3));
    EXPECT_EQ(me.told[0], "M 10 pen/-/theirs: " + std::string(kChanged));
    EXPECT_THAT(me.told[1], testing::EndsWith("/theirs: Key violation."));
    EXPECT_THAT(me.told[2], HasSubstr("I 1 null/mine/-: SQL Server Error: "));
    EXPECT_EQ(me.Rows(), "10 pen 12.5;1 mine ;") << static_cast<int>(action);
    me.decide = nullptr;
    me.answer = raSkip;
    EXPECT_EQ(me.set.ApplyUpdates(-1), 2) << "my change is still one of the earlier record";
    EXPECT_EQ(OnServer(), "1 theirs 12.5;");
  }
}

TEST_P(UpdatesSuite, ARecordThatCannotBeReadIsNoReasonToForgetTheOthers) {
  Screen& me = MakeScreen();
  Run("UPDATE KV_TEST SET NAME = " + GetParam().foreignLetter + " WHERE ID = 1");
  Run("UPDATE KV_TEST SET NAME = 'theirs' WHERE ID = 2");
  me.Change(1, "NAME", "A");
  me.Change(2, "NAME", "B");
  me.Change(3, "NAME", "C");
  std::vector<std::string> contexts;
  const auto ask = me.set.OnReconcileError;
  me.set.OnReconcileError = [&](TClientDataSet& set, EReconcileError& e, TUpdateKind kind,
                                TReconcileAction& action) {
    contexts.push_back(e.Context());
    ask(set, e, kind, action);
  };
  me.answer = raRefresh;
  EXPECT_EQ(me.set.ApplyUpdates(-1), 2);
  EXPECT_THAT(me.told, ElementsAre(std::string("M 1 pen/A/-: ") + kChanged,
                                   std::string("M 2 book/B/theirs: ") + kChanged));
  EXPECT_THAT(contexts, ElementsAre(HasSubstr("U+4E2D"), ""));
  EXPECT_EQ(me.Rows(), "1 A 12.5;2 theirs 99.9975;3 C 7;");
}

// An error of the server itself, in the middle: what was written before and after it counts.
TEST_P(UpdatesSuite, ARefusedStatementLeavesTheOthers) {
  Screen& me = MakeScreen();
  me.Change(1, "NAME", "A");
  me.Change(2, "NAME", std::string(60, 'x'));  // more than the column takes
  me.Add(1, "double");
  me.Change(3, "NAME", "C");
  const int refused = me.set.ApplyUpdates(-1);
  EXPECT_EQ(refused, me.set.ChangeCount());
  const std::string rows = OnServer();
  EXPECT_THAT(rows, HasSubstr("1 A 12.5;"));
  EXPECT_THAT(rows, HasSubstr("3 C 7;"));
  EXPECT_GE(refused, 1);
}

TEST_P(UpdatesSuite, InsideATransactionOfTheProgram) {
  Screen& me = MakeScreen();
  Run("UPDATE KV_TEST SET NAME = 'theirs' WHERE ID = 2");
  for (const int allowed : {0, -1}) {
    me.Connection().StartTransaction({});
    me.Connection().ExecuteDirect("INSERT INTO KV_TEST (ID, NAME) VALUES (9, 'outer')");
    me.set.CancelUpdates();
    me.Change(1, "NAME", "A");
    me.Change(2, "NAME", "B");
    EXPECT_EQ(me.set.ApplyUpdates(allowed), 1);
    EXPECT_TRUE(me.Connection().InTransaction());
    EXPECT_EQ(me.set.ChangeCount(), allowed == 0 ? 2 : 1);
    me.Connection().Commit({});
    EXPECT_EQ(OnServer(), allowed == 0 ? "1 pen 12.5;2 theirs 99.9975;3 ink 7;9 outer ;"
                                       : "1 A 12.5;2 theirs 99.9975;3 ink 7;9 outer ;");
    Run("DELETE FROM KV_TEST WHERE ID = 9");
  }
}

TEST_P(UpdatesSuite, AKeyThatIsNone) {
  Run("UPDATE KV_TEST SET NAME = 'same' WHERE ID < 3");
  Screen& me = MakeScreen(upWhereKeyOnly);
  me.provider.KeyFields = "NAME";
  me.Change(1, "PRICE", "1");
  me.Change(3, "PRICE", "3");
  EXPECT_EQ(me.set.ApplyUpdates(-1), 1);
  ASSERT_THAT(me.told, SizeIs(1));
  EXPECT_THAT(me.told[0], HasSubstr("Update affected more than 1 record."));
  EXPECT_EQ(OnServer(), "1 same 12.5;2 same 99.9975;3 ink 3;");
  EXPECT_EQ(me.set.ChangeCount(), 1);

  me.provider.KeyFields = "";
  EXPECT_EQ(me.set.ApplyUpdates(-1), 1);
  EXPECT_THAT(me.told[1], HasSubstr("Unable to find record.  No key specified"));
}

TEST_P(UpdatesSuite, TheSetStandsOnARecordThatIsThere) {
  Screen& me = MakeScreen();
  Run("UPDATE KV_TEST SET NAME = 'theirs' WHERE ID = 2");
  me.Remove(1);
  me.Remove(2);
  me.set.SetStatusFilter({.usDeleted = true});
  me.set.First();
  me.decide = [](TClientDataSet&) { throw EConvertError("out of the handler"); };
  EXPECT_EQ(MessageOf<EConvertError>([&] { me.set.ApplyUpdates(-1); }), "out of the handler");
  EXPECT_EQ(me.set.FieldByName("ID").AsInteger(), 2) << "the first one is gone for good";
  EXPECT_EQ(me.set.RecordCount(), 1);
}

TEST_P(UpdatesSuite, ErrorsOfTheHandlerLoseNothing) {
  Screen& me = MakeScreen();
  Run("DELETE FROM KV_TEST WHERE ID < 3");
  me.Change(1, "NAME", "A");
  me.Change(2, "NAME", "B");
  me.Change(3, "NAME", "C");
  me.decide = [](TClientDataSet& set) {
    EXPECT_EQ(MessageOf<EDatabaseError>([&] { set.Next(); }),
              "Items: Changes are being reconciled");
    EXPECT_EQ(MessageOf<EDatabaseError>([&] { set.Close(); }),
              "Items: Changes are being reconciled");
    EXPECT_EQ(MessageOf<EDatabaseError>([&] { set.CancelUpdates(); }),
              "Items: Changes are being reconciled");
    throw EConvertError("out of the handler");
  };
  EXPECT_EQ(MessageOf<EConvertError>([&] { me.set.ApplyUpdates(-1); }), "out of the handler");
  EXPECT_EQ(me.set.ChangeCount(), 2) << "the third one is written";
  EXPECT_EQ(me.Rows(), "1 A 12.5;2 B 99.9975;3 C 7;");
  EXPECT_EQ(OnServer(), "3 C 7;");
}

// --- Two people at random

// A change as the log has it: kind, the record before, the record now.
using LogLine = std::string;

LogLine LineOf(const TClientDataSet& set, TUpdateKind kind) {
  std::string line(1, "MID"[static_cast<int>(kind)]);
  for (const char* name : {"ID", "NAME", "PRICE"}) {
    line += " " + VarToStr(set.FieldByName(name).OldValue());
  }
  line += " ->";
  for (const char* name : {"ID", "NAME", "PRICE"}) line += " " + set.FieldByName(name).AsString();
  return line;
}

// What a change was made of, `1 pen 12.5`.
std::string Before(const LogLine& line) {
  return line.substr(2, line.find(" ->") - 2);
}
std::string After(const LogLine& line) {
  return line.substr(line.find("-> ") + 3);
}

class RandomUser {
 public:
  RandomUser(Screen& screen, std::mt19937& random, int& tokens)
      : screen_(screen), random_(random), tokens_(tokens) {
    Set().SetPrimaryKey("ID");
    Set().OnReconcileError = [this](TClientDataSet& set, EReconcileError& e, TUpdateKind kind,
                                    TReconcileAction& action) { Decide(set, e, kind, action); };
  }

  void ChangeSomething() {
    try {
      if (Any(4) == 0 || Set().IsEmpty()) {
        Set().Append();
        Put("ID", Any(6));
        Put("PRICE", ++tokens_);
      } else {
        Set().First();
        for (int i = Any(Set().RecordCount()); i > 0; --i) Set().Next();
        if (Any(4) == 0) return Set().Delete();
        Set().Edit();
        if (Any(3) == 0) Put("ID", Any(6));
      }
      Put("NAME", ++tokens_);
      Set().Post();
    } catch (const EDBClient&) {  // the key is there already
      Set().Cancel();
    }
  }

  // Applies, and follows in `server` what was acknowledged. Nothing may have been overwritten that
  // this user has not seen.
  void Apply(std::multiset<std::string>& server) {
    decided_.clear();
    const std::multiset<LogLine> before = Log();
    Set().ApplyUpdates(Any(3) - 1);
    std::multiset<LogLine> after = Log();
    std::vector<LogLine> written;
    for (const LogLine& line : before) {
      if (decided_.contains(line)) continue;
      if (const auto left = after.find(line); left != after.end()) {
        after.erase(left);
      } else {
        written.push_back(line);
      }
    }
    for (const LogLine& line : written) {
      if (line[0] == 'I') continue;
      EXPECT_EQ(server.erase(Before(line)), 1U) << line << ": written over something else";
    }
    for (const LogLine& line : written) {
      if (line[0] != 'D') server.insert(After(line));
    }
    for (const auto& [line, action] : decided_) Follow(line, action, after, server);
    EXPECT_THAT(after, IsEmpty()) << "changes that nobody has made";
  }

  void FetchAgain() {
    Set().Close();
    Set().Open();
  }

 private:
  TClientDataSet& Set() { return screen_.set; }
  int Any(int count) { return static_cast<int>(random_() % static_cast<unsigned>(count)); }
  void Put(const char* name, int value) { Set().FieldByName(name).SetAsInteger(value); }

  std::multiset<LogLine> Log() {
    std::multiset<LogLine> log;
    Set().SetStatusFilter({.usModified = true, .usInserted = true, .usDeleted = true});
    for (Set().First(); !Set().Eof(); Set().Next()) {
      using enum TUpdateStatus;
      const TUpdateStatus status = Set().UpdateStatus();
      log.insert(LineOf(Set(), status == usInserted  ? ukInsert
                               : status == usDeleted ? ukDelete
                                                     : ukModify));
    }
    Set().SetStatusFilter({});
    return log;
  }

  void Decide(TClientDataSet& set, const EReconcileError& e, TUpdateKind kind,
              TReconcileAction& action) {
    if (e.Message() != "Key violation.") asked_ = LineOf(set, kind);
    if (action != raAbort) action = static_cast<TReconcileAction>(Any(6));
    decided_[asked_] = action;
    if (action == raCorrect && kind != ukDelete) {
      set.FieldByName("ID").SetNewValue(Any(6));
      set.FieldByName("NAME").SetNewValue(++tokens_);
    }
  }

  // A change that was decided about is left in one of the ways that the decision allows.
  static void Follow(const LogLine& line, TReconcileAction action, std::multiset<LogLine>& after,
                     const std::multiset<std::string>& server) {
    if (const auto left = after.find(line); left != after.end()) {
      after.erase(left);
      return;
    }
    if (action == raCancel || action == raRefresh) return;
    const auto changed = std::ranges::find_if(after, [&](const LogLine& now) {
      if (action == raCorrect) return Before(now) == Before(line) && now[0] == line[0];
      return action == raMerge && server.contains(Before(now));
    });
    EXPECT_NE(changed, after.end()) << line << " is lost by " << static_cast<int>(action);
    if (changed != after.end()) after.erase(changed);
  }

  Screen& screen_;
  std::mt19937& random_;
  int& tokens_;  // each value is written only once
  LogLine asked_;
  std::map<LogLine, TReconcileAction> decided_;
};

TEST_P(UpdatesSuite, NobodysAcknowledgedChangeIsLost) {
  for (unsigned seed = 1; seed <= 4; ++seed) {
    std::mt19937 random(seed);
    Run("DELETE FROM KV_TEST");
    int tokens = 100;
    std::multiset<std::string> server;
    RandomUser users[] = {{MakeScreen(), random, tokens}, {MakeScreen(), random, tokens}};
    for (int step = 0; step < 120; ++step) {
      RandomUser& user = users[random() % 2];
      if (random() % 12 == 0) user.FetchAgain();
      user.ChangeSomething();
      if (random() % 3 == 0) user.Apply(server);
      std::multiset<std::string> there;
      const auto rows = Rows("SELECT ID, NAME, PRICE FROM KV_TEST");
      for (; !rows->Eof(); rows->Next()) {
        there.insert(rows->Fields(0).AsString() + " " + rows->Fields(1).AsString() + " " +
                     rows->Fields(2).AsString());
      }
      ASSERT_EQ(there, server) << "seed " << seed << ", step " << step;
      ASSERT_FALSE(HasFailure());
    }
  }
}

}  // namespace
}  // namespace kvshare
