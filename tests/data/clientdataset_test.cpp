#include "kvshare/data/client/clientdataset.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <map>
#include <random>

#include "kvshare/rtl/convert.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"
#include "tests/support.h"

namespace kvshare {
namespace {

using ::testing::ElementsAre;
using enum TDataSetState;
using enum TFieldType;
using enum TUpdateStatus;

// Items by their codes.
class ClientDataSet : public testing::Test {
 protected:
  ClientDataSet() {
    set.FieldDefs().Add("CODE", ftString, 10, true);
    set.FieldDefs().Add("NAME", ftString, 30);
    set.FieldDefs().Add("PRICE", ftBCD, 4);
    set.FieldDefs().Add("QTY", ftInteger);
    set.SetPrimaryKey("");
    set.CreateDataSet();
    set.SetPrimaryKey("CODE");
  }

  void Add(std::string_view code, std::string_view name = "x", int qty = 0) {
    set.Append();
    set.FieldByName("CODE").SetAsString(code);
    set.FieldByName("NAME").SetAsString(name);
    set.FieldByName("QTY").SetAsInteger(qty);
    set.Post();
  }
  void AddBase(std::initializer_list<std::string_view> codes) {
    for (const std::string_view code : codes) Add(code);
    set.MergeChangeLog();
  }
  void Change(std::string_view code, std::string_view field, std::string_view text) {
    ASSERT_TRUE(set.Locate("CODE", code));
    set.Edit();
    set.FieldByName(field).SetAsString(text);
    set.Post();
  }
  void Remove(std::string_view code) {
    ASSERT_TRUE(set.Locate("CODE", code));
    set.Delete();
  }
  std::string Here() const { return set.FieldByName("CODE").AsString(); }
  static std::string CodesOf(TClientDataSet& set, std::string_view field = "CODE") {
    std::string codes;
    for (set.First(); !set.Eof(); set.Next()) codes += set.FieldByName(field).AsString() + " ";
    return codes;
  }
  std::string Codes(std::string_view field = "CODE") { return CodesOf(set, field); }

  TClientDataSet set;
};

TEST_F(ClientDataSet, MovesAsADataSetDoes) {
  EXPECT_TRUE(set.Bof() && set.Eof() && set.IsEmpty());
  set.Next();
  set.Prior();
  set.Last();
  EXPECT_TRUE(set.FieldByName("CODE").IsNull());
  EXPECT_EQ(MessageOf<EDatabaseError>([&] { set.Delete(); }),
            "Cannot perform this operation on an empty dataset");

  AddBase({"A", "B", "C"});
  EXPECT_EQ(Here(), "C") << "stands on what was posted";
  EXPECT_FALSE(set.Eof());
  set.Next();
  EXPECT_TRUE(set.Eof());
  EXPECT_EQ(Here(), "C");
  set.Prior();
  EXPECT_EQ(Here(), "B");
  set.Prior();
  set.Prior();
  EXPECT_TRUE(set.Bof());
  EXPECT_EQ(Here(), "A");
  set.Insert();
  set.FieldByName("CODE").SetAsString("0");
  set.Post();
  EXPECT_EQ(Codes(), "0 A B C ") << "before the current record";
  set.Last();
  set.Delete();
  EXPECT_EQ(Here(), "B") << "the last one is gone";
  set.First();
  set.Delete();
  EXPECT_EQ(Here(), "A") << "the next one has come in its place";
  EXPECT_EQ(set.RecordCount(), 2);

  set.Close();
  EXPECT_EQ(MessageOf<EDatabaseError>([&] { set.Next(); }),
            "Cannot perform this operation on a closed dataset");
  EXPECT_EQ(set.FieldCount(), 0);
}

TEST_F(ClientDataSet, AMoveEndsTheEditing) {
  AddBase({"A", "B"});
  set.First();
  set.Edit();
  set.FieldByName("NAME").SetAsString("changed");
  set.Next();
  EXPECT_EQ(set.State(), dsBrowse);
  EXPECT_EQ(Codes("NAME"), "changed x ") << "posted";
  set.Append();
  set.First();
  EXPECT_EQ(set.RecordCount(), 2) << "what nobody has typed into is no record";
  set.Edit();
  set.FieldByName("NAME").SetAsString("lost");
  set.Cancel();
  EXPECT_EQ(set.FieldByName("NAME").AsString(), "changed");
  set.Edit();
  set.Edit();
  EXPECT_EQ(set.State(), dsEdit);
  set.Post();
  EXPECT_EQ(set.ChangeCount(), 1) << "an edit that changes nothing leaves no change";
}

TEST_F(ClientDataSet, EventsComeInThePlatformsOrder) {
  std::string told;
  const auto tell = [&](const char* what) { return [&, what](TDataSet&) { told += what; }; };
  set.BeforeInsert = tell("<insert ");
  set.OnNewRecord = [&](TDataSet& sender) {
    told += "new ";
    sender.FieldByName("QTY").SetAsInteger(1);
  };
  set.AfterInsert = tell("insert> ");
  set.BeforePost = tell("<post ");
  set.AfterPost = tell("post> ");
  set.BeforeCancel = tell("<cancel ");
  set.AfterCancel = tell("cancel> ");
  set.Append();
  EXPECT_FALSE(set.Modified()) << "defaults are no change of the user's";
  set.FieldByName("CODE").SetAsString("A");
  set.Post();
  set.Edit();
  set.Cancel();
  EXPECT_EQ(told, "<insert new insert> <post post> <cancel cancel> ");
  EXPECT_EQ(Codes("QTY"), "1 ");
}

TEST_F(ClientDataSet, PostErrorsGoToTheHandler) {
  AddBase({"A"});
  const auto post = [&] {
    set.Append();
    set.FieldByName("CODE").SetAsString("A");
    set.Post();
  };
  EXPECT_EQ(MessageOf<EDBClient>(post), "Key violation.");
  EXPECT_EQ(set.State(), dsInsert) << "the user may correct it";
  EXPECT_EQ(Here(), "A");
  set.Cancel();

  int asked = 0;
  set.OnPostError = [&](TDataSet& sender, EDatabaseError& e, TDataAction& action) {
    EXPECT_EQ(e.Message(), "Key violation.");
    action = TDataAction::daRetry;
    sender.FieldByName("CODE").SetAsString("A" + std::to_string(++asked));
  };
  Add("A1");
  set.Append();
  set.FieldByName("CODE").SetAsString("A");
  set.Post();
  EXPECT_EQ(Codes(), "A A1 A2 ");
  EXPECT_EQ(asked, 2);

  set.OnPostError = [](TDataSet&, EDatabaseError&, TDataAction& action) {
    action = TDataAction::daAbort;
  };
  EXPECT_EQ(MessageOf<EAbort>(post), "Operation aborted");
  set.Cancel();
  set.OnPostError = [](TDataSet&, EDatabaseError&, TDataAction&) { throw EConvertError("mine"); };
  EXPECT_EQ(MessageOf<EConvertError>(post), "mine");
  set.Cancel();
  EXPECT_EQ(set.RecordCount(), 3);
}

TEST_F(ClientDataSet, RequiredFields) {
  set.SetName("Items");
  set.Append();
  set.FieldByName("QTY").SetAsInteger(1);
  EXPECT_EQ(MessageOf<EDatabaseError>([&] { set.Post(); }),
            "Items: Field 'CODE' must have a value");
  set.FieldByName("CODE").SetDisplayLabel("Code of the item");
  EXPECT_EQ(MessageOf<EDatabaseError>([&] { set.Post(); }),
            "Items: Field 'Code of the item' must have a value");
  set.FieldByName("CODE").SetRequired(false);
  EXPECT_EQ(MessageOf<EDBClient>([&] { set.Post(); }), "Field value required.");
  set.FieldByName("CODE").SetAsString("");
  set.Post();
  EXPECT_EQ(set.RecordCount(), 1) << "an empty text is a value";
}

TEST_F(ClientDataSet, TheLogHasOneEntryARecord) {
  AddBase({"A", "B", "C"});
  EXPECT_EQ(set.ChangeCount(), 0);
  Change("A", "NAME", "one");
  Change("A", "NAME", "two");
  EXPECT_EQ(set.FieldByName("NAME").OldValue(), "x");
  EXPECT_EQ(set.FieldByName("NAME").NewValue(), "two");
  EXPECT_TRUE(set.FieldByName("NAME").CurValue().IsEmpty());
  EXPECT_EQ(set.UpdateStatus(), usModified);
  Add("D");
  Change("D", "NAME", "new");
  EXPECT_TRUE(set.FieldByName("NAME").OldValue().IsNull());
  EXPECT_EQ(set.UpdateStatus(), usInserted);
  Remove("B");
  Add("E");
  Remove("E");
  EXPECT_EQ(set.ChangeCount(), 3) << "what was inserted and deleted was never there";

  const struct {
    TUpdateStatusSet filter;
    std::string codes;
  } cases[] = {
      {{.usModified = true}, "A "},
      {{.usInserted = true}, "D "},
      {{.usDeleted = true}, "B "},
      {{.usModified = true, .usDeleted = true}, "A B "},
      {{}, "A C D "},
  };
  for (const auto& c : cases) {
    set.SetStatusFilter(c.filter);
    EXPECT_EQ(Codes(), c.codes);
    EXPECT_EQ(set.RecordCount(), std::ranges::count(c.codes, ' '));
  }
}

TEST_F(ClientDataSet, ChangesAreTakenBack) {
  AddBase({"A", "B", "C"});
  Change("A", "NAME", "one");
  Remove("B");
  Add("D");
  Change("A", "QTY", "7");
  EXPECT_TRUE(set.UndoLastChange(true));
  EXPECT_EQ(Here(), "A");
  EXPECT_EQ(set.FieldByName("NAME").AsString(), "x") << "as before its first change";
  set.SetStatusFilter({.usDeleted = true});
  set.RevertRecord();
  EXPECT_TRUE(set.IsEmpty());
  set.SetStatusFilter({});
  EXPECT_EQ(Codes(), "A B C D ");
  EXPECT_TRUE(set.UndoLastChange(false));
  EXPECT_FALSE(set.UndoLastChange(false));
  EXPECT_EQ(Codes(), "A B C ");

  // A key that is passed on.
  Change("A", "CODE", "Z");
  Change("B", "CODE", "A");
  ASSERT_TRUE(set.Locate("CODE", "Z"));
  EXPECT_EQ(MessageOf<EDBClient>([&] { set.RevertRecord(); }), "Key violation.");
  EXPECT_EQ(Here(), "Z") << "nothing has happened";
  set.CancelUpdates();
  EXPECT_EQ(Codes(), "A B C ");
  EXPECT_EQ(set.ChangeCount(), 0);

  // Records that had a key in common before their changes, when it was no key yet.
  set.SetPrimaryKey("");
  Change("A", "NAME", "y");
  Change("B", "NAME", "z");
  set.SetPrimaryKey("NAME");
  EXPECT_EQ(MessageOf<EDBClient>([&] { set.CancelUpdates(); }), "Key violation.");
  EXPECT_EQ(Codes("NAME"), "y z x ") << "nothing has happened";
  set.SetPrimaryKey("CODE");
  set.CancelUpdates();
  EXPECT_EQ(Codes("NAME"), "x x x ");

  set.LogChanges = false;
  Remove("C");
  Change("A", "NAME", "kept");
  set.CancelUpdates();
  EXPECT_EQ(Codes("NAME"), "kept x ");
}

TEST_F(ClientDataSet, OrderAndKeys) {
  Add("B", "pen", 20);
  Add("A", "book", 3);
  Add("C", "book", -1);
  const struct {
    const char *order, *codes;
  } cases[] = {{"CODE", "A B C "},
               {"name;qty", "C A B "},
               {"QTY", "C A B "},
               {"NAME", "A C B "},
               {"", "B A C "}};
  for (const auto& c : cases) {
    set.SetIndexFieldNames(c.order);
    EXPECT_EQ(Codes(), c.codes) << c.order;
  }
  EXPECT_EQ(MessageOf<EDatabaseError>([&] { set.SetIndexFieldNames("CODE;NONE"); }),
            "Field 'NONE' not found");
  EXPECT_EQ(Codes(), "B A C ");

  set.SetIndexFieldNames("QTY");
  Change("C", "QTY", "10");
  EXPECT_EQ(Here(), "C") << "stays on the record, wherever it goes";
  EXPECT_EQ(Codes(), "A C B ");
  Add("D", "ink", 10);
  EXPECT_EQ(Codes(), "A C D B ");
  EXPECT_TRUE(set.FindKey(20));
  EXPECT_EQ(Here(), "B");
  EXPECT_FALSE(set.FindKey(11));
  EXPECT_EQ(Here(), "B");
  EXPECT_EQ(MessageOf<EDBClient>([&] { set.SetPrimaryKey("QTY"); }), "Key violation.");
  EXPECT_EQ(MessageOf<EDBClient>([&] { Add("D"); }), "Key violation.") << "the earlier key holds";
}

TEST_F(ClientDataSet, Locate) {
  Add("A1", "Pencil", 1);
  Add("A2", "pen", 2);
  Add("B1", "ปากกา"_th, 2);
  set.First();
  const struct {
    const char* fields;
    std::vector<Variant> values;
    TLocateOptions options;
    const char* code;  // "" where there is none
  } cases[] = {
      {"CODE", {"B1"}, {}, "B1"},
      {"code", {"b1"}, {}, ""},
      {"CODE", {"b1"}, {.loCaseInsensitive = true}, "B1"},
      {"NAME", {"pen"}, {}, "A2"},
      {"NAME", {"pen"}, {.loPartialKey = true}, "A2"},
      {"NAME", {"PEN"}, {.loCaseInsensitive = true, .loPartialKey = true}, "A1"},
      {"NAME", {"ปาก"_th}, {.loPartialKey = true}, "B1"},
      {"QTY", {2}, {}, "A2"},
      {"QTY;CODE", {2, "B1"}, {}, "B1"},
      {"QTY", {"2"}, {}, "A2"},
      {"CODE", {"A1 and something more than there is room for"}, {}, ""},
      {"PRICE", {Null}, {}, "A1"},
  };
  for (const auto& c : cases) {
    set.First();
    const bool found = set.Locate(c.fields, c.values, c.options);
    EXPECT_EQ(found ? Here() : "", c.code) << c.fields;
    if (!found) {
      EXPECT_EQ(Here(), "A1");
    }
  }
  EXPECT_EQ(MessageOf<EDatabaseError>([&] { set.Locate("QTY", "many"); }),
            "Invalid value for field 'QTY'");
  EXPECT_EQ(set.Lookup("CODE", std::vector<Variant>{"A2"}, "NAME"), "pen");
  EXPECT_TRUE(set.Lookup("CODE", std::vector<Variant>{"A9"}, "NAME").IsNull());
}

TEST_F(ClientDataSet, CalculatedAndLookupFields) {
  Add("A", "Apple");
  TClientDataSet lines(nullptr, "Lines");
  lines.FieldDefs().Add("ITEM", ftString, 10);
  lines.FieldDefs().Add("PRICE", ftBCD, 4);
  lines.FieldDefs().Add("QTY", ftInteger);
  lines.AddCalculated("TOTAL", ftBCD, 4);
  lines.AddLookup("ITEMNAME", ftString, 30, {"ITEM", &set, "CODE", "NAME"});
  int runs = 0;
  lines.OnCalcFields = [&](TDataSet& sender) {
    ++runs;
    sender.FieldByName("TOTAL").SetAsCurrency(sender.FieldByName("PRICE").AsCurrency() *
                                              sender.FieldByName("QTY").AsCurrency());
    EXPECT_EQ(MessageOf<EDatabaseError>([&] { sender.FieldByName("QTY").SetAsInteger(1); }),
              "Lines: Dataset not in edit or insert mode");
  };
  lines.CreateDataSet();
  EXPECT_TRUE(lines.FieldByName("TOTAL").IsNull());
  lines.Append();
  lines.FieldByName("ITEM").SetAsString("A");
  lines.FieldByName("PRICE").SetAsString("0.3333");
  lines.FieldByName("QTY").SetAsInteger(3);
  EXPECT_EQ(lines.FieldByName("TOTAL").AsString(), "0.9999") << "while it is edited too";
  EXPECT_EQ(lines.FieldByName("ITEMNAME").AsString(), "Apple");
  lines.Post();
  runs = 0;
  EXPECT_EQ(lines.FieldByName("TOTAL").AsCurrency(), 0.9999_baht);
  EXPECT_EQ(lines.FieldByName("TOTAL").AsString(), "0.9999");
  EXPECT_EQ(runs, 1) << "once a record";
  lines.Edit();
  EXPECT_EQ(MessageOf<EDatabaseError>([&] { lines.FieldByName("TOTAL").SetAsInteger(1); }),
            "Lines: Dataset not in edit or insert mode");
  lines.FieldByName("ITEM").SetAsString("none");
  EXPECT_TRUE(lines.FieldByName("ITEMNAME").IsNull());
}

// Against a plain model: thousands of random changes, undone and kept.
TEST_F(ClientDataSet, KeepsEveryRecordUnderRandomWork) {
  std::mt19937 random(7);
  std::map<std::string, std::string> base;
  std::map<std::string, std::string> now;
  const auto any = [&](int limit) {
    return static_cast<int>(random() % static_cast<unsigned>(limit));
  };
  for (int step = 0; step < 4000; ++step) {
    const std::string code = std::to_string(any(60));
    const std::string name = std::to_string(step);
    switch (any(8)) {
      case 0:
      case 1:
      case 2:
        if (now.contains(code)) {
          Change(code, "NAME", name);
        } else {
          Add(code, name);
        }
        now[code] = name;
        break;
      case 3:
      case 4:
        ASSERT_EQ(set.Locate("CODE", code), now.contains(code));
        if (now.erase(code) != 0) set.Delete();
        break;
      case 5:
        if (const std::string other = std::to_string(any(60));
            now.contains(code) && !now.contains(other)) {
          Change(code, "CODE", other);
          now[other] = now[code];
          now.erase(code);
        }
        break;
      case 6:
        if (any(40) == 0) {
          set.CancelUpdates();
          now = base;
        }
        break;
      default:
        if (any(40) == 0) {
          set.MergeChangeLog();
          base = now;
        }
    }
    if (any(20) == 0) set.SetIndexFieldNames(any(2) == 0 ? "" : "NAME");
    if (any(25) == 0) set.SetXMLData(set.XMLData());
    ASSERT_EQ(set.RecordCount(), static_cast<int>(now.size()));
  }
  std::map<std::string, std::string> found;
  for (set.First(); !set.Eof(); set.Next()) found[Here()] = set.FieldByName("NAME").AsString();
  EXPECT_EQ(found, now);
  EXPECT_GT(set.ChangeCount(), 0);
}

// Rows and log of a packet, whatever the order of its attributes.
std::string LogOf(const std::string& packet) {
  std::string log = packet.substr(packet.find("<ROWDATA>"));
  for (const char* name : {" CHANGE_LOG=\"", " LAST_CHANGES=\""}) {
    const std::size_t at = packet.find(name);
    if (at != std::string::npos) log += packet.substr(at, packet.find('"', at + 16) - at);
  }
  return log;
}

// A log beside its copy that is saved and loaded again and again: whatever is taken back in one is
// taken back in the other.
TEST_F(ClientDataSet, ALogIsTheSameBeforeAndAfterItIsSaved) {
  std::mt19937 random(11);
  const auto any = [&](int limit) {
    return static_cast<int>(random() % static_cast<unsigned>(limit));
  };
  AddBase({"1", "2", "3", "4", "5"});
  TClientDataSet copy;
  copy.SetXMLData(set.XMLData());
  for (int step = 0; step < 3000; ++step) {
    const std::string code = std::to_string(any(12));
    const int what = any(5);
    const std::string order = any(2) == 0 ? "" : "NAME";
    const TUpdateStatusSet filter{
        .usModified = any(3) == 0, .usInserted = any(6) == 0, .usDeleted = any(6) == 0};
    for (TClientDataSet* one : {&set, &copy}) {
      if (what == 0) one->SetIndexFieldNames(order);
      if (what == 1) one->UndoLastChange(step % 2 == 0);
      one->SetStatusFilter(filter);
      const bool found = one->Locate("CODE", code);
      const bool there = found && one->UpdateStatus() != usDeleted;
      if (what == 2 && there) one->Delete();
      if (what == 3 && found) one->RevertRecord();
      if (what != 4) continue;
      try {
        there ? one->Edit() : one->Append();
        one->FieldByName("CODE").SetAsString(code);
        one->FieldByName("NAME").SetAsInteger(step);
        one->Post();
      } catch (const EDBClient&) {  // the key is there, out of view
        one->Cancel();
      }
    }
    const std::string packet = copy.XMLData();
    ASSERT_EQ(LogOf(set.XMLData()), LogOf(packet)) << step;
    // A deleted record comes back with its values before all changes.
    if (!filter.usDeleted) {
      ASSERT_EQ(Codes(), CodesOf(copy)) << step;
    }
    copy.SetXMLData(packet);
  }
}

TEST_F(ClientDataSet, RevertingANewRecordLeavesTheOthersAlone) {
  AddBase({"A"});
  Change("A", "NAME", "mine");
  set.Insert();
  set.FieldByName("CODE").SetAsString("B");
  set.RevertRecord();
  EXPECT_EQ(set.State(), dsBrowse);
  EXPECT_EQ(Codes("NAME"), "mine ");
  EXPECT_EQ(set.ChangeCount(), 1);
}

TEST_F(ClientDataSet, APostedRecordMayBeOutOfView) {
  set.SetStatusFilter({.usModified = true});
  Add("A");
  EXPECT_TRUE(set.IsEmpty());
  EXPECT_EQ(set.RecordCount(), 0);
  set.SetStatusFilter({});
  set.MergeChangeLog();
  set.SetIndexFieldNames("NAME");
  Add("B", "a");
  set.MergeChangeLog();
  set.SetStatusFilter({.usModified = true, .usInserted = true});
  Add("C", "b");
  set.Edit();
  set.FieldByName("NAME").SetAsString("z");
  set.Post();
  EXPECT_EQ(Here(), "C");
  EXPECT_EQ(Codes(), "C ");
}

TEST_F(ClientDataSet, FieldsOfTheNextOpeningLeaveTheOpenSetAlone) {
  AddBase({"A"});
  set.FieldDefs().Add("LATER", ftInteger, 0, true);
  Add("B");
  EXPECT_TRUE(set.Locate("CODE", "B"));
  EXPECT_EQ(MessageOf<EDatabaseError>([&] { set.SetIndexFieldNames("LATER"); }),
            "Field 'LATER' not found");
  EXPECT_EQ(set.FieldCount(), 4);
  set.CreateDataSet();
  EXPECT_EQ(set.FieldCount(), 5);
}

TEST_F(ClientDataSet, AFilterOfTheClosedSetCountsWhenItIsOpened) {
  set.Close();
  set.SetStatusFilter({.usDeleted = true});
  set.CreateDataSet();
  Add("A");
  set.MergeChangeLog();
  EXPECT_EQ(set.RecordCount(), 0);
  set.SetStatusFilter({});
  EXPECT_EQ(Codes(), "A ");
}

TEST_F(ClientDataSet, DeletedRecordsInViewAreFoundAndCanOnlyBeTakenBack) {
  AddBase({"A", "B"});
  Remove("B");
  set.SetStatusFilter({.usDeleted = true});
  bool asked = false;
  set.BeforeDelete = set.BeforeEdit = [&](TDataSet&) { asked = true; };
  ASSERT_TRUE(set.Locate("CODE", "B"));
  EXPECT_EQ(set.Lookup("CODE", std::array<Variant, 1>{"B"}, "NAME"), Variant("x"));
  EXPECT_EQ(MessageOf<EDatabaseError>([&] { set.Delete(); }), "Cannot modify a deleted record");
  EXPECT_EQ(MessageOf<EDatabaseError>([&] { set.Edit(); }), "Cannot modify a deleted record");
  EXPECT_FALSE(asked);
  EXPECT_EQ(set.ChangeCount(), 1);
  set.RevertRecord();
  set.SetStatusFilter({});
  EXPECT_EQ(Codes(), "A B ");
}

TEST_F(ClientDataSet, WhatWasInMemoryAloneIsNotOpenedAgainAsNothing) {
  AddBase({"A"});
  set.Close();
  EXPECT_EQ(MessageOf<EDatabaseError>([&] { set.Open(); }), "Missing data provider or data packet");
  EXPECT_FALSE(set.Active());
  set.CreateDataSet();
  EXPECT_TRUE(set.IsEmpty());
}

TEST_F(ClientDataSet, EmptyingKeepsTheFields) {
  AddBase({"A"});
  Add("B");
  TField& name = set.FieldByName("NAME");
  name.EditMask = "LLL;1;_";
  set.EmptyDataSet();
  EXPECT_TRUE(set.IsEmpty() && set.Bof() && set.Eof());
  EXPECT_EQ(set.ChangeCount(), 0);
  EXPECT_TRUE(name.IsNull());
  EXPECT_EQ(&set.FieldByName("NAME"), &name);
  EXPECT_EQ(name.EditMask, "LLL;1;_");
  Add("A", "new");
  EXPECT_EQ(Codes("NAME"), "new ");
}

TEST_F(ClientDataSet, FieldsHaveNamesOfTheirOwn) {
  const struct {
    const char* name;
    const char* error;
  } cases[] = {{"", "Field name missing"}, {"code", "Duplicate field name 'code'"}};
  for (const auto& c : cases) {
    TClientDataSet other;
    other.FieldDefs().Add("CODE", ftString, 10);
    other.FieldDefs().Add(c.name, ftInteger);
    EXPECT_EQ(MessageOf<EDatabaseError>([&] { other.CreateDataSet(); }), c.error);
    EXPECT_FALSE(other.Active());
  }
}

TEST_F(ClientDataSet, AmountsKeepAllDigits) {
  Add("A");
  for (const std::string_view text : {"0", "0.0001", "-0.0001", "-0.5", "1.05", "100", "-12.34",
                                      "922337203685477.5807", "-922337203685477.5808"}) {
    set.Edit();
    set.FieldByName("PRICE").SetAsCurrency(StrToCurr(text));
    set.Post();
    EXPECT_EQ(set.FieldByName("PRICE").AsString(), text);
  }
}

}  // namespace
}  // namespace kvshare
