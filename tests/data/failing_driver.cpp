// A driver with one row of one column, which fails in the call that a test names: by the parameter
// `Fail` of the connection, or before there is one by the entry that it is loaded through.
#include <string>

#include "kvshare/data/contract/driver.h"

namespace kvshare::data {
namespace {

class Failing {
 public:
  explicit Failing(std::string fail = "") : fail_(std::move(fail)) {}
  const std::string& Call() const { return fail_; }
  void Reach(std::string_view call) const {
    if (call == fail_) throw DriverError("no " + fail_);
  }

 private:
  std::string fail_;
};

class FailingCursor : public Cursor, private Failing {
 public:
  explicit FailingCursor(const Failing& failing) : Failing(failing) {}
  const std::vector<Column>& Columns() const override {
    Reach("Columns");
    return columns_;
  }
  bool Next() override {
    Reach("Next");
    return ++row_ == 1;
  }
  bool IsNull(int) const override {
    Reach("IsNull");
    return false;
  }
  std::int64_t Integer(int) const override {
    Reach("Integer");
    return 1;
  }
  double Float(int) const override { return Reach("Float"), 1; }
  std::string_view Text(int) const override { return Reach("Text"), "1"; }

 private:
  std::vector<Column> columns_ = {{.name = "A B", .kind = ColumnKind::Integer}};
  int row_ = 0;
};

class FailingStatement : public PreparedStatement, private Failing {
 public:
  explicit FailingStatement(const Failing& failing) : Failing(failing) {}
  std::int64_t Run(std::span<const ParameterValue>) override {
    Reach("Run");
    return 1;
  }
};

class FailingConnection : public Connection {
 public:
  explicit FailingConnection(std::string fail) : failing_(std::move(fail)) {}
  void Connect(const std::vector<std::pair<std::string, std::string>>& parameters) override {
    for (const auto& [name, value] : parameters) {
      if (name == "Fail") failing_ = Failing(value);
    }
    failing_.Reach("Connect");
  }
  void Disconnect() noexcept override {}
  std::int64_t Execute(std::string_view) override {
    failing_.Reach("Execute");
    return 1;
  }
  std::unique_ptr<Cursor> Query(std::string_view) override {
    failing_.Reach("Query");
    return std::make_unique<FailingCursor>(failing_);
  }
  std::unique_ptr<Cursor> Query(const StatementParts&, std::span<const ParameterValue>) override {
    return Query("");
  }
  std::unique_ptr<PreparedStatement> Prepare(const StatementParts&) override {
    failing_.Reach("Prepare");
    return std::make_unique<FailingStatement>(failing_);
  }
  Lexis StatementLexis() const override {
    failing_.Reach("StatementLexis");
    return {};
  }
  void Begin(Isolation) override { failing_.Reach("Begin"); }
  void Commit() override { failing_.Reach("Commit"); }
  void Rollback() override { failing_.Reach("Rollback"); }
  std::int64_t EarlyCommits() const override {
    failing_.Reach("EarlyCommits");
    return 0;
  }
  bool FailureEndsTransaction() const override {
    failing_.Reach("FailureEndsTransaction");
    return false;
  }
  Condition Exactly(std::string_view column, ColumnKind kind) const override {
    failing_.Reach("Exactly");
    return Connection::Exactly(column, kind);
  }
  std::string Quoted(std::string_view name) const override {
    failing_.Reach("Quoted");
    return Connection::Quoted(name);
  }
  std::vector<std::string> TableNames(bool) override {
    failing_.Reach("TableNames");
    return {};
  }
  void SetLockTimeout(std::int32_t) override { failing_.Reach("SetLockTimeout"); }
  std::string ServerVersion() override {
    failing_.Reach("ServerVersion");
    return "";
  }

 private:
  Failing failing_;
};

class FailingDriver : public Driver {
 public:
  explicit FailingDriver(std::string fail) : failing_(std::move(fail)) {}
  std::unique_ptr<Connection> MakeConnection() override {
    failing_.Reach("MakeConnection");
    return std::make_unique<FailingConnection>(failing_.Call());
  }
  bool DatabaseIsFile() const override {
    failing_.Reach("DatabaseIsFile");
    return false;
  }

 private:
  Failing failing_;
};

}  // namespace
}  // namespace kvshare::data

using kvshare::data::Driver;
using kvshare::data::FailingDriver;

extern "C" KVSHARE_API Driver* getFailing(std::int32_t) {
  static FailingDriver driver("");
  return &driver;
}
extern "C" KVSHARE_API Driver* getFailingMakeConnection(std::int32_t) {
  static FailingDriver driver("MakeConnection");
  return &driver;
}
extern "C" KVSHARE_API Driver* getFailingDatabaseIsFile(std::int32_t) {
  static FailingDriver driver("DatabaseIsFile");
  return &driver;
}
extern "C" KVSHARE_API Driver* getFailingStatementLexis(std::int32_t) {
  static FailingDriver driver("StatementLexis");
  return &driver;
}
extern "C" KVSHARE_API Driver* getFailingEntry(std::int32_t) {
  throw kvshare::data::DriverError("no Entry");
}
