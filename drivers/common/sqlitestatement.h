// Statements with their values, as SQLite has to get them so that it finds what other servers find.
// It has no decimals and no dates of its own: it compares an amount by the class of value that it
// gets, and a day or moment as the text that it holds.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "drivers/common/sqliteplaces.h"
#include "kvshare/data/contract/driver.h"

namespace kvshare::drivers::sqlite {

// How the columns that a statement meets keep amounts.
enum class Amounts : std::uint8_t {
  Numbers,  // an amount goes as a real, which keeps 15 digits
  Texts,    // and as a text
  Both,     // as a real, which becomes the server's own text in some of them
};

struct Manner {
  bool collations = false;  // the connection has MOMENT and DECIMAL
  Amounts amounts = Amounts::Numbers;
};

// What decides how a value is put.
enum class ValueClass : std::uint8_t { Plain, Amount, Moment };
ValueClass ClassOf(const data::ParameterValue& value);

// A statement for values of certain classes. Null goes in place of each of them.
class MarkedStatement {
 public:
  MarkedStatement() = default;
  // A class for each parameter of the statement.
  MarkedStatement(const data::StatementParts& parts, std::span<const ValueClass> classes,
                  Manner manner);

  const std::string& Text() const { return text_; }  // a `?` for each slot
  std::size_t Slots() const { return slots_.size(); }

  // What goes into a slot: null, a whole number, a real, a text or bytes; one of `values`, or
  // `made`. Throws DriverError for an amount that would lose digits.
  const data::ParameterValue& Value(std::size_t slot, std::span<const data::ParameterValue> values,
                                    data::ParameterValue& made) const;

 private:
  // The text of a moment. One moment has several, and a column may hold any of them.
  enum class Form : std::uint8_t { AsGiven, First, Last, Any };
  struct Slot {
    std::size_t parameter = 0;
    Form form = Form::AsGiven;
    std::size_t which = 0;  // of any
  };

  void AddSlot(std::size_t parameter, Form form = Form::AsGiven, std::size_t which = 0);
  void AddMoment(std::size_t parameter, const Place& place, std::size_t before);
  void AddEach(std::size_t parameter);
  void AddCollated(std::size_t parameter, const char* collation);
  static std::string TextOf(const data::Moment& moment, const Slot& slot);

  std::string text_;
  std::vector<Slot> slots_;
  Manner manner_;
};

}  // namespace kvshare::drivers::sqlite
