#include "drivers/postgres/parameters.h"

#include <algorithm>
#include <charconv>
#include <string_view>

#include "drivers/common/valuetexts.h"

namespace kvshare::postgres {
namespace {

// The server's numbers of types.
constexpr Oid kBytea = 17;
constexpr Oid kInt8 = 20;
constexpr Oid kInt2 = 21;
constexpr Oid kText = 25;
constexpr Oid kFloat8 = 701;
constexpr Oid kDate = 1082;
constexpr Oid kTime = 1083;
constexpr Oid kTimeStamp = 1114;
constexpr Oid kNumeric = 1700;

constexpr Oid TypeOf(data::ColumnKind kind) {
  if (kind == data::ColumnKind::Date) return kDate;
  return kind == data::ColumnKind::Time ? kTime : kTimeStamp;
}

struct Form {
  std::string text;
  Oid type = kFromPlace;
  Oid ownType = type;
  bool null = false;
  int format = 0;  // 1: bytes
};

struct ToForm {
  Form operator()(std::monostate) const { return {.text = {}, .ownType = kText, .null = true}; }
  Form operator()(std::int64_t value) const {
    return {.text = std::to_string(value), .ownType = kInt8};
  }
  Form operator()(double value) const {
    return {.text = drivers::FromFloat(value), .ownType = kFloat8};
  }
  Form operator()(const std::string& text) const {
    drivers::RefuseZeroByte(text);
    return {.text = text, .ownType = kText};
  }
  Form operator()(const data::Bytes& value) const {
    return {.text = value.bytes, .type = kBytea, .format = 1};
  }
  Form operator()(const data::Decimal& value) const {
    return {.text = value.digits, .type = kNumeric};
  }
  Form operator()(const data::Moment& value) const {
    return {.text = value.text, .type = TypeOf(value.kind)};
  }
};

std::string_view Field(const PGresult* result, int code) {
  const char* text = PQresultErrorField(result, code);
  return text == nullptr ? std::string_view{} : text;
}

// The index of the value that the server names as $1, $2 and so on; no value's where it names none.
std::size_t NamedIn(std::string_view message) {
  std::size_t number = 0;
  message.remove_prefix(std::min(message.find('$') + 1, message.size()));
  std::from_chars(message.data(), message.data() + message.size(), number);
  return number - 1;
}

}  // namespace

Values::Values(const drivers::TypedStatement& statement,
               std::span<const data::ParameterValue> parameters)
    : statement_(statement) {
  drivers::CheckParameters(statement.parameters, parameters.size());
  const std::size_t marks = statement.marks.size();
  texts_.reserve(marks);  // the pointers point into them
  for (const drivers::Mark& mark : statement.marks) {
    Form form = std::visit(ToForm{}, drivers::ValueOf(mark, parameters));
    texts_.push_back(std::move(form.text));
    pointers_.push_back(form.null ? nullptr : texts_.back().data());
    lengths_.push_back(static_cast<int>(texts_.back().size()));
    formats_.push_back(form.format);
    types_.push_back(mark.nullTest ? kInt2 : form.type);
    ownTypes_.push_back(mark.nullTest ? kInt2 : form.ownType);
  }
}

bool Values::AnyFromPlace() const {
  return std::ranges::find(types_, kFromPlace) != types_.end();
}

bool Values::Fit(const std::vector<Oid>& types) const {
  if (types.size() != types_.size()) return false;
  for (std::size_t i = 0; i < types.size(); ++i) {
    const bool null = pointers_[i] == nullptr;
    if (!null && types[i] != types_[i] && types[i] != ownTypes_[i]) return false;
  }
  return true;
}

bool Values::TakeOwnTypes(const PGresult* failure) {
  const std::size_t named = NamedIn(Field(failure, PG_DIAG_MESSAGE_PRIMARY));
  if (named < types_.size() && types_[named] != ownTypes_[named]) {
    types_[named] = ownTypes_[named];
    return true;
  }
  if (types_ == ownTypes_) return false;
  types_ = ownTypes_;
  return true;
}

Result Values::Prepare(PGconn* connection, const std::string& name) const {
  return Result(PQprepare(connection, name.c_str(), statement_.sql.c_str(),
                          static_cast<int>(types_.size()), types_.data()));
}

Result Values::RunPrepared(PGconn* connection, const std::string& name) const {
  return Result(PQexecPrepared(connection, name.c_str(), static_cast<int>(texts_.size()),
                               pointers_.data(), lengths_.data(), formats_.data(), 0));
}

bool Values::Send(PGconn* connection) const {
  return PQsendQueryParams(connection, statement_.sql.c_str(), static_cast<int>(texts_.size()),
                           types_.data(), pointers_.data(), lengths_.data(), formats_.data(),
                           0) == 1;
}

bool IsAboutTypes(const PGresult* failure) {
  constexpr std::string_view kStates[] = {
      "42P18",  // no type
      "42P08",  // several
      "42725",  // several functions or operators take it
      "42883",  // no function or operator takes what it took for the type
      "42804",  // nor does the place
  };
  return std::ranges::find(kStates, Field(failure, PG_DIAG_SQLSTATE)) != std::end(kStates);
}

}  // namespace kvshare::postgres
