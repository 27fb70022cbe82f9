// The rows of a statement, read once from front to back.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "kvshare/data/fields/dataset.h"
#include "kvshare/data/sql/sqlconnection.h"
#include "kvshare/data/sql/sqlparams.h"
#include "kvshare/export.h"
#include "kvshare/rtl/stringlist.h"

namespace kvshare {

// Memory does not grow with the rows: the current one is all there is, and behind the last one
// every field is Null. A query may outlive its connection, whose end closes it.
class KVSHARE_API TSQLQuery : public TDataSet {
 public:
  explicit TSQLQuery(TComponent* owner = nullptr, std::string_view name = "");
  ~TSQLQuery() override;

  TSQLConnection* SQLConnection() const { return connection_; }
  void SetSQLConnection(TSQLConnection* connection);  // another one closes

  // The statement, one list item a line; it is sent as Text. Changing it closes the query. A
  // statement none of whose parameters has been given a value reaches the server untouched.
  TStrings& SQL() { return sql_; }
  const TStrings& SQL() const { return sql_; }

  // `:name` and `?` in the statement (statement.h), each name once, as the server of the connection
  // reads it. Values stay when the statement changes, by name; a `?` is reached by its number
  // alone. Where one has been given a value, the others are Null until they are. Before the
  // connection is open they are read as servers of its driver mostly do. Where this one reads the
  // statement otherwise, they are found again by name, and by number where there are as many `?`;
  // if that loses a value, EDatabaseError `Parameter '%s' not found: the server reads the statement
  // otherwise`, once.
  TParams& Params();
  TParam& ParamByName(std::string_view name) { return Params().ParamByName(name); }

  // Open throws EDatabaseError `Missing SQLConnection property`,
  // `Missing query, table name or procedure name`, `Cursor not returned from Query`, EServerError.

  // Runs a statement without rows; the rows that it changed, -1 where parameters have values.
  std::int64_t ExecSQL();

  // The rows read so far, with the current one: 0 only for an empty set, all at Eof.
  int RecordCount() const override { return rows_; }
  bool IsUniDirectional() const override { return true; }

 protected:
  void InternalOpen() override;
  void InternalClose() noexcept override;
  bool InternalFirst() override;
  bool InternalNext() override;

 private:
  friend class TSQLConnection;

  // Tells before each change.
  class Lines : public TStringList {
   public:
    explicit Lines(std::function<void()> changing) : changing_(std::move(changing)) {}
    void Put(int index, std::string_view text) override;
    int AddObject(std::string_view text, TObject* object) override;
    void InsertObject(int index, std::string_view text, TObject* object) override;
    void Delete(int index) override;
    void Clear() override;

   protected:
    int AddShared(std::string_view text, TObject* object, TStringId identity) override;

   private:
    std::function<void()> changing_;
  };

  // A value that the driver cannot give throws EServerError, which names the field.
  class Row : public TRecordReader {
   public:
    explicit Row(const TSQLQuery& query) : query_(query) {}
    bool IsNull(int column) const override;
    std::int64_t Integer(int column) const override;
    double Float(int column) const override;
    std::string_view Text(int column) const override;
    void AppendCharacters(std::string& out, int column) const override;

    std::unique_ptr<data::Cursor> cursor;
    bool there = false;

   private:
    template <typename Read>
    auto Guarded(int column, Read read) const;

    const TSQLQuery& query_;
  };

  void CheckReady() const;
  void Parse();
  void RefuseLost(const std::vector<std::unique_ptr<TParam>>& left, std::ptrdiff_t questions) const;
  bool AnyGiven() const;
  [[noreturn]] void RefuseField(int column, const data::DriverError& error) const;
  std::unique_ptr<data::Cursor> Run();
  void RunAgain();
  void ReleaseRows() noexcept;

  TSQLConnection* connection_ = nullptr;
  Lines sql_;
  TParams params_;
  data::StatementParts parts_;  // code page 874
  data::Lexis parsedBy_;
  bool parsed_ = false;
  Row row_;
  bool fresh_ = false;  // no row of the cursor has been read
  int rows_ = 0;
};

}  // namespace kvshare
