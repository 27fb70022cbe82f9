#include "tests/data/amounts_suite.h"

#include <functional>
#include <optional>
#include <random>

#include "kvshare/data/contract/errors.h"
#include "kvshare/rtl/convert.h"
#include "kvshare/rtl/types.h"
#include "tests/support.h"

namespace kvshare {

GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(AmountsSuite);

namespace {

// `d2026-11-25`, `m2026-11-25 10:30:00`
TDateTime MomentOf(std::string_view text) {
  const auto number = [text](std::size_t at, std::size_t size) {
    return StrToInt(text.substr(at, size));
  };
  const TDateTime day = EncodeDate(number(1, 4), number(6, 2), number(9, 2));
  if (text[0] == 'd') return day;
  return JoinDateTime(day, EncodeTime(number(12, 2), number(15, 2), number(18, 2), 0));
}

void Set(TParams& params, std::string_view name, std::string_view value) {
  TParam* param = params.FindParam(name);
  if (param == nullptr || value.empty()) return;
  if (value[0] == 'd') return param->SetAsDate(MomentOf(value));
  if (value[0] == 'm') return param->SetAsDateTime(MomentOf(value));
  param->SetAsCurrency(StrToCurr(value));
}

void ReplaceAll(std::string& text, std::string_view what, std::string_view by) {
  for (std::size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += by.size()) {
    text.replace(at, what.size(), by);
  }
}

}  // namespace

void AmountsSuite::SetUp() {
  DriverSuite::SetUp();
  const DriverCase& types = GetParam();
  CreateTable("G INTEGER, A " + types.money + ", B " + types.money + ", I INTEGER, D " +
              types.date + ", S " + types.moment);
  Run("CREATE INDEX KV_TEST_I ON KV_TEST (I)");
  Run("CREATE INDEX KV_TEST_A ON KV_TEST (A)");
  Run("CREATE INDEX KV_TEST_D ON KV_TEST (D)");
  for (const char* row : {"1, 1, 100, 0.5, 1, '2026-11-24', '2026-11-24 00:00:00'",
                          "2, 2, 99.75, 2, 2, '2026-11-25', '2026-11-25 00:00:00'",
                          "3, 2, 0.5, NULL, 3, '2026-11-26', '2026-11-25 10:30:00'",
                          "4, 3, 1234.56, -1, 1, '2026-11-25', '2026-11-26 00:00:00'",
                          "5, 4, 0.1, 0.25, 2, NULL, NULL", "6, 4, 0.2, 7, 3, NULL, NULL",
                          "7, 5, 6.0003, 1, 4, NULL, NULL", "8, 6, -2.5, 3, 5, NULL, NULL",
                          "9, 7, NULL, NULL, NULL, NULL, NULL"}) {
    Run(std::string("INSERT INTO KV_TEST (ID, G, A, B, I, D, S) VALUES (").append(row) + ")");
  }
}

std::string AmountsSuite::Found(std::string_view sql, std::string_view value,
                                std::string_view other) {
  TSQLQuery query;
  query.SetSQLConnection(connection_.get());
  query.SQL().Add(sql);
  Set(query.Params(), "P", value);
  Set(query.Params(), "Q", other);
  std::string rows;
  try {
    for (query.Open(); !query.Eof(); query.Next()) {
      if (!rows.empty()) rows += ';';
      for (int i = 0; i < query.FieldCount(); ++i) {
        if (i != 0) rows += ' ';
        rows += query.Fields(i).IsNull() ? "null" : CurrToStr(query.Fields(i).AsCurrency());
      }
    }
  } catch (const EDatabaseError& e) {
    return e.Message();
  }
  return rows;
}

std::string AmountsSuite::FoundIds(const std::string& condition, std::string_view value,
                                   std::string_view other) {
  return Found("SELECT ID FROM KV_TEST WHERE " + condition + " ORDER BY ID", value, other);
}

void AmountsSuite::Write(std::string_view sql, std::string_view value) {
  TSQLQuery query;
  query.SetSQLConnection(connection_.get());
  query.SQL().Add(sql);
  Set(query.Params(), "P", value);
  query.ExecSQL();
}

namespace {

TEST_P(AmountsSuite, WhatIsComputedKeepsItsDigits) {
  const std::pair<const char*, const char*> cases[] = {
      {"SELECT G, SUM(A) FROM KV_TEST GROUP BY G ORDER BY G",
       "1 100;2 100.25;3 1234.56;4 0.3;5 6.0003;6 -2.5;7 null"},
      {"SELECT SUM(A), G FROM KV_TEST GROUP BY G ORDER BY G DESC",  // Null comes first
       "null 7;-2.5 6;6.0003 5;0.3 4;1234.56 3;100.25 2;100 1"},
      {"SELECT MAX(A), MIN(A) FROM KV_TEST WHERE G < 5 GROUP BY G ORDER BY G",
       "100 100;99.75 0.5;1234.56 1234.56;0.2 0.1"},
      {"SELECT COALESCE(B, 0), COALESCE(B, A) FROM KV_TEST WHERE ID < 5 ORDER BY ID",
       "0.5 0.5;2 2;0 0.5;-1 -1"},
      {"SELECT CASE WHEN I = 1 THEN 0 ELSE A END FROM KV_TEST WHERE ID < 5 ORDER BY ID",
       "0;99.75;0.5;0"},
      {"SELECT I, 0 FROM KV_TEST WHERE ID = 1 UNION ALL"
       " SELECT A, ID FROM KV_TEST WHERE ID < 4 ORDER BY 2",
       "1 0;100 1;99.75 2;0.5 3"},
      {"SELECT A * B, A - B FROM KV_TEST WHERE ID IN (1, 2, 4, 5) ORDER BY ID",
       "50 99.5;199.5 97.75;-1234.56 1235.56;0.025 -0.15"},
      {"SELECT ROUND(A * 7 / 107, 2) FROM KV_TEST WHERE ID < 9 ORDER BY ID",
       "6.54;6.53;0.03;80.77;0.01;0.01;0.39;-0.16"},
      {"SELECT COUNT(*), COUNT(A), SUM(I) FROM KV_TEST", "9 8 21"},
      {"SELECT ROUND(AVG(A), 2) FROM KV_TEST WHERE G IN (2, 4) GROUP BY G ORDER BY G",
       "50.13;0.15"},
  };
  for (const auto& [sql, want] : cases) EXPECT_EQ(Found(sql, ""), want) << sql;
}

TEST_P(AmountsSuite, ABoundAmountIsANumber) {
  struct Case {
    const char* condition;
    const char* value;
    const char* ids;
  };
  const Case conditions[] = {
      {"A = :P", "100", "1"},
      {"A <> :P", "100", "2;3;4;5;6;7;8"},
      {"A IN (:P, 0.5)", "99.75", "2;3"},
      {"A BETWEEN :P AND 100", "99.75", "1;2"},
      {":P < A", "99.75", "1;4"},
      {"ABS(A) = :P", "2.5", "8"},
      {"A * 2 > :P", "199.5", "1;4"},
      {"A * 2 >= :P", "199.5", "1;2;4"},
      {"COALESCE(A, 0) >= :P", "100", "1;4"},
      {"COALESCE(A, 0) <= :P", "0", "8;9"},
      {"ROUND(A - B, 4) = :P", "97.75", "2"},
      {"CASE WHEN G = 4 THEN A ELSE 0 END = :P", "0.1", "5"},
      {"NOT (A > :P)", "0.2", "5;6;8"},
      {"I > :P", "1.5", "2;3;5;6;7;8"},
      {"I >= :P", "2.5", "3;6;7;8"},
      {"I = :P", "1.5", ""},
      {"I = :P", "2", "2;5"},
      {"I + 0 < :P", "1.5", "1;4"},
      {"ROUND(A / :P, 2) = 33.33", "3", "1"},
  };
  for (const Case& c : conditions) {
    EXPECT_EQ(FoundIds(c.condition, c.value), c.ids) << c.condition << ' ' << c.value;
  }
  const Case groups[] = {
      {"SUM(A) < :P", "1", "4;6"},
      {"SUM(A) > :P", "100", "2;3"},
      {"SUM(A) = :P", "0.3", "4"},
      {"SUM(A) <= :P", "6.0003", "4;5;6"},
      {"SUM(A) < :P", "6.0003", "4;6"},
      {"SUM(A) <> :P", "100.25", "1;3;4;5;6"},
      {"MAX(A) = :P", "99.75", "2"},
      {"COUNT(A) > :P", "1.5", "2;4"},
      {"MIN(COALESCE(A, 0)) < :P", "0", "6"},
  };
  for (const Case& c : groups) {
    std::string sql = std::string("SELECT G FROM KV_TEST GROUP BY G HAVING ") + c.condition;
    if (!GetParam().exactSums) ReplaceAll(sql, "SUM(A)", Rounded("SUM(A)"));
    EXPECT_EQ(Found(sql + " ORDER BY G", c.value), c.ids) << c.condition << ' ' << c.value;
  }
}

TEST_P(AmountsSuite, ABoundAmountIsStored) {
  Write("INSERT INTO KV_TEST (ID, A, B) VALUES (20, :P, :P)", "99999999999.9999");
  Write("UPDATE KV_TEST SET A = A + :P WHERE ID = 1", "0.0001");
  Write("UPDATE KV_TEST SET A = :P, B = COALESCE(B, 0) WHERE ID = 2", "-0.05");
  EXPECT_EQ(Found("SELECT A, B FROM KV_TEST WHERE ID IN (1, 2, 20) ORDER BY ID", ""),
            "100.0001 0.5;-0.05 2;99999999999.9999 99999999999.9999");
  EXPECT_EQ(FoundIds("A = :P", "100.0001"), "1");
}

std::vector<TDateTime> ColumnOf(TSQLQuery& query, std::string_view column) {
  std::vector<TDateTime> moments;
  for (query.First(); !query.Eof(); query.Next()) {
    moments.push_back(query.FieldByName(column).AsDateTime());
  }
  return moments;
}

// A day is its midnight: in a column of days and in one of moments, by any operator.
TEST_P(AmountsSuite, DaysAndMomentsCompareAlike) {
  using Holds = bool (*)(double x, double p, double q);
  const std::pair<const char*, Holds> conditions[] = {
      {"X = :P", [](double x, double p, double) { return x == p; }},
      {"X=:P AND 1 = 1", [](double x, double p, double) { return x == p; }},
      {"X <> :P", [](double x, double p, double) { return x != p; }},
      {"X < :P", [](double x, double p, double) { return x < p; }},
      {"X <= :P", [](double x, double p, double) { return x <= p; }},
      {"X > :P", [](double x, double p, double) { return x > p; }},
      {"X >= :P", [](double x, double p, double) { return x >= p; }},
      {":P < X", [](double x, double p, double) { return p < x; }},
      {":P <= X", [](double x, double p, double) { return p <= x; }},
      {":P > X", [](double x, double p, double) { return p > x; }},
      {":P >= X", [](double x, double p, double) { return p >= x; }},
      {"X BETWEEN :P AND :Q", [](double x, double p, double q) { return x >= p && x <= q; }},
      {"X NOT BETWEEN :P AND :Q", [](double x, double p, double q) { return x < p || x > q; }},
      {"X IN (:P, :Q)", [](double x, double p, double q) { return x == p || x == q; }},
      {"X NOT IN (:Q, :P)", [](double x, double p, double q) { return x != p && x != q; }},
      {"NOT X = :P", [](double x, double p, double) { return x != p; }},
      {"CASE WHEN X >= :P THEN 1 ELSE 0 END = 1",
       [](double x, double p, double) { return x >= p; }},
      {"COALESCE(X, X) <= :P AND X >= :Q",
       [](double x, double p, double q) { return x <= p && x >= q; }},
  };
  const std::pair<const char*, Holds> collated[] = {
      {":P = X", [](double x, double p, double) { return x == p; }},
      {"X >= (:P)", [](double x, double p, double) { return x >= p; }},
      {"X > (:P)", [](double x, double p, double) { return x > p; }},
      {"CASE X WHEN :P THEN 1 ELSE 0 END = 1", [](double x, double p, double) { return x == p; }},
  };
  const auto all = Rows("SELECT * FROM KV_TEST WHERE ID < 5 ORDER BY ID");
  const auto check = [&](const char* column, std::string condition, Holds holds, const char* value,
                         const char* other) {
    ReplaceAll(condition, "X", column);
    std::string want;
    const std::vector<TDateTime> moments = ColumnOf(*all, column);
    for (std::size_t i = 0; i < moments.size(); ++i) {
      if (!holds(moments[i].Days(), MomentOf(value).Days(), MomentOf(other).Days())) continue;
      want.append(want.empty() ? "" : ";").append(std::to_string(i + 1));
    }
    EXPECT_EQ(FoundIds(condition + " AND ID < 5", value, other), want)
        << condition << ' ' << value << ' ' << other;
  };
  for (const char* column : {"D", "S"}) {
    for (const char* value : {"d2026-11-25", "m2026-11-25 00:00:00", "m2026-11-25 10:30:00"}) {
      for (const char* other : {"d2026-11-26", "m2026-11-25 00:00:00"}) {
        for (const auto& [text, holds] : conditions) check(column, text, holds, value, other);
        if (!GetParam().comparesDays) continue;
        for (const auto& [text, holds] : collated) check(column, text, holds, value, other);
      }
    }
  }
  EXPECT_EQ(Found("SELECT G FROM KV_TEST GROUP BY G HAVING MAX(S) >= :P ORDER BY G",
                  "m2026-11-26 00:00:00"),
            "3");
}

TEST_P(AmountsSuite, DaysAndMomentsAreStored) {
  Write("UPDATE KV_TEST SET D = :P, S = :P WHERE D = :P", "d2026-11-24");
  Write("UPDATE KV_TEST SET S = :P WHERE S < :P", "m2026-11-25 10:30:00");
  Write("INSERT INTO KV_TEST (ID, S) VALUES (30, :P)", "m2026-11-25 10:30:01");
  const auto rows = Rows("SELECT ID, D, S FROM KV_TEST WHERE ID IN (1, 2, 30) ORDER BY ID");
  EXPECT_EQ(rows->FieldByName("D").AsDateTime(), EncodeDate(2026, 11, 24));
  EXPECT_EQ(rows->FieldByName("S").AsDateTime(), MomentOf("m2026-11-25 10:30:00"));
  rows->Next();
  rows->Next();
  EXPECT_EQ(rows->FieldByName("S").AsDateTime(), MomentOf("m2026-11-25 10:30:01"));
}

// An exact decimal: `value` of its last of so many places.
struct Exact {
  Int128 value = 0;
  int places = 0;

  Exact At(int more) const {
    Exact wider = *this;
    for (; wider.places < more; ++wider.places) wider.value *= 10;
    return wider;
  }
  // At four decimals, a tie away from zero.
  Int128 Rounded() const {
    Exact result = At(4);
    Int128 unit = 1;
    for (int i = result.places; i > 4; --i) unit *= 10;
    return (result.value + (result.value < 0 ? -unit : unit) / 2) / unit;
  }
};
using Null = std::optional<Exact>;

struct Record {
  int group;
  Null a, b, i;
};

// An expression as SQL, and as what it means.
struct Term {
  std::string sql;
  int places;
  std::function<Null(const Record&)> of;
};

Term Combined(char sign, const Term& left, const Term& right) {
  const auto apply = [sign](const Exact& x, const Exact& y) -> Exact {
    if (sign == '*') return {x.value * y.value, x.places + y.places};
    const int places = std::max(x.places, y.places);
    const Int128 other = y.At(places).value;
    return {x.At(places).value + (sign == '+' ? other : -other), places};
  };
  return {"(" + left.sql + " " + sign + " " + right.sql + ")",
          sign == '*' ? left.places + right.places : std::max(left.places, right.places),
          [=](const Record& row) -> Null {
            const Null x = left.of(row);
            const Null y = right.of(row);
            return x && y ? Null(apply(*x, *y)) : std::nullopt;
          }};
}

class Generator {
 public:
  explicit Generator(std::string (*rounded)(const std::string&)) : rounded_(rounded) {}

  int Number(int least, int most) {
    return std::uniform_int_distribution<int>(least, most)(random_);
  }
  Int128 Amount() {  // below a hundred, with few or all decimals
    constexpr int kUnits[] = {1, 10, 100, 2500, 10'000};
    const int unit = kUnits[Number(0, 4)];
    return Int128{Number(-999'999 / unit, 999'999 / unit)} * unit;
  }
  Record Row() {
    const auto amount = [this]() -> Null {
      return Number(0, 5) == 0 ? std::nullopt : Null(Exact{Amount(), 4});
    };
    return {Number(1, 3), Exact{Amount(), 4}, amount(), Exact{Number(-5, 5), 0}};
  }
  // One that a program may compare: where it multiplies, what it has computed before is rounded.
  Term Any() {
    const Term sum = Sum(Number(0, 2));
    if (Number(0, 1) == 0) return sum;
    return Combined('*', Factor(sum), Factor(Sum(Number(0, 1))));
  }

 private:
  Term Factor(const Term& term) const {
    if (term.sql.find('(') == std::string::npos) return term;
    return {rounded_(term.sql), 4, term.of};
  }
  Term Leaf() {
    switch (Number(0, 4)) {
      case 0:
        return {"B", 4, [](const Record& row) { return row.b; }};
      case 1:
        return {"I", 0, [](const Record& row) { return row.i; }};
      case 2:
        return {"1.07", 2, [](const Record&) { return Null(Exact{107, 2}); }};
      default:
        return {"A", 4, [](const Record& row) { return row.a; }};
    }
  }
  Term Sum(int depth) {
    if (depth == 0) return Leaf();
    const Term left = Sum(depth - 1);
    const Term right = Sum(Number(0, depth - 1));
    const int places = std::max(left.places, right.places);
    switch (Number(0, 4)) {
      case 0:
        return {"ABS(" + left.sql + ")", left.places, [=](const Record& row) {
                  Null x = left.of(row);
                  if (x && x->value < 0) x->value = -x->value;
                  return x;
                }};
      case 1:
        return {"COALESCE(" + left.sql + ", " + right.sql + ")", places, [=](const Record& row) {
                  const Null x = left.of(row);
                  return x ? x : right.of(row);
                }};
      case 2:
        return {"CASE WHEN I > 1 THEN " + left.sql + " ELSE " + right.sql + " END", places,
                [=](const Record& row) { return row.i->value > 1 ? left.of(row) : right.of(row); }};
      default:
        return Combined(Number(0, 1) == 0 ? '+' : '-', left, right);
    }
  }

  std::string (*rounded_)(const std::string&);
  std::mt19937 random_{14};
};

std::string TextOf(Int128 rounded) {
  return CurrToStr(Currency::FromRaw(static_cast<std::int64_t>(rounded)));
}

bool Compares(std::string_view sign, Int128 x, Int128 y) {
  if (sign == "=") return x == y;
  if (sign == "<>") return x != y;
  if (sign == "<") return x < y;
  if (sign == "<=") return x <= y;
  return sign == ">" ? x > y : x >= y;
}

constexpr const char* kSigns[] = {"=", "<>", "<", "<=", ">", ">="};

// The sum of an expression over the rows of a group, as servers have it.
Null SumOf(const Term& term, const std::vector<Record>& rows, int group) {
  Null sum;
  for (const Record& row : rows) {
    const Null value = row.group == group ? term.of(row) : std::nullopt;
    if (!value) continue;
    const int places = std::max(value->places, sum ? sum->places : 0);
    sum = Exact{value->At(places).value + (sum ? sum->At(places).value : 0), places};
  }
  return sum;
}

constexpr int kRecords = 8;
constexpr int kGroups = 3;

// Those of 1 to `most` for which it holds.
std::string Numbers(int most, const std::function<bool(int)>& holds) {
  std::string numbers;
  for (int i = 1; i <= most; ++i) {
    if (holds(i)) numbers.append(numbers.empty() ? "" : ";").append(std::to_string(i));
  }
  return numbers;
}

std::string InsertOf(int id, const Record& row) {
  const auto text = [](const Null& value) {
    return value ? "'" + TextOf(value->At(4).value) + "'" : "NULL";
  };
  return "INSERT INTO KV_TEST (ID, G, A, B, I) VALUES (" + std::to_string(id) + ", " +
         std::to_string(row.group) + ", " + text(row.a) + ", " + text(row.b) + ", " +
         TextOf(row.i->At(4).value) + ")";
}

// A comparison that SQL makes, and what it means.
struct Comparison {
  Term term;
  std::string sign;

  std::string On(std::string_view sql) const { return std::string(sql) + " " + sign + " :P"; }
  bool Holds(const Null& value, Int128 bound) const {
    return value && Compares(sign, value->Rounded(), bound);
  }
};

// Any amounts, any expressions over them, any bound amounts, often a tie: as exact decimals.
TEST_P(AmountsSuite, GeneratedExpressionsAgree) {
  constexpr const char* kGroupsHaving = "SELECT G FROM KV_TEST GROUP BY G HAVING ";
  Generator generator(&AmountsSuite::Rounded);
  std::vector<Record> rows(kRecords);
  const auto fill = [&] {
    connection_->StartTransaction({});
    Run("DELETE FROM KV_TEST");
    for (int id = 1; id <= kRecords; ++id) {
      rows[static_cast<std::size_t>(id - 1)] = generator.Row();
      Run(InsertOf(id, rows[static_cast<std::size_t>(id - 1)]));
    }
    connection_->Commit({});
  };
  // `one` and `sum` are the expression and its sum as the server compares them.
  const auto check = [&](const Comparison& is, const std::string& one, const std::string& sum) {
    SCOPED_TRACE(is.On(is.term.sql));
    const auto value = [&](int id) { return is.term.of(rows[static_cast<std::size_t>(id - 1)]); };
    const Null near = value(generator.Number(1, kRecords));
    const bool tie = near && generator.Number(0, 2) != 0;
    const Int128 bound = tie ? near->Rounded() + generator.Number(-1, 1) : generator.Amount();
    EXPECT_EQ(FoundIds(is.On(one), TextOf(bound)),
              Numbers(kRecords, [&](int id) { return is.Holds(value(id), bound); }))
        << TextOf(bound);
    const Null any = SumOf(is.term, rows, rows[0].group);
    const Int128 limit = any ? any->Rounded() : bound;
    EXPECT_EQ(Found(kGroupsHaving + is.On(sum) + " ORDER BY G", TextOf(limit)),
              Numbers(kGroups, [&](int g) { return is.Holds(SumOf(is.term, rows, g), limit); }))
        << TextOf(limit);
    std::string values;
    for (int id = 1; id <= kRecords; ++id) {
      values.append(id == 1 ? "" : ";").append(value(id) ? TextOf(value(id)->Rounded()) : "null");
    }
    EXPECT_EQ(Found("SELECT " + one + " FROM KV_TEST ORDER BY ID", ""), values);
  };
  const Term column{"A", 4, [](const Record& row) { return row.a; }};
  for (int round = 0; round < 20; ++round) {
    fill();
    check({column, kSigns[round % 6]}, "A", GetParam().exactSums ? "SUM(A)" : Rounded("SUM(A)"));
    for (int i = 0; i < 6; ++i) {
      const Term term = generator.Any();
      check({term, kSigns[generator.Number(0, 5)]}, Rounded(term.sql),
            Rounded("SUM(" + term.sql + ")"));
    }
  }
}

}  // namespace
}  // namespace kvshare
