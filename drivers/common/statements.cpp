#include "drivers/common/statements.h"

#include <algorithm>

#include "drivers/common/nulltests.h"

namespace kvshare::drivers {
namespace {

template <typename AddMark>
std::string Marked(const data::StatementParts& statement, AddMark addMark) {
  std::string text = statement.texts.front();
  for (std::size_t i = 0; i < statement.places.size(); ++i) {
    addMark(text, i);
    text += statement.texts[i + 1];
  }
  return text;
}

// A `?` that has this type; "" leaves the type to the server.
std::string CastTo(const std::string& type) {
  return type.empty() ? "?" : "CAST(? AS " + type + ")";
}

// `mark` gives the text of the mark with an index, which it may add to the marks.
template <typename TextOfMark>
TypedStatement Typed(const data::StatementParts& statement, NullTests nullTests,
                     TextOfMark textOfMark) {
  const bool tests = nullTests == NullTests::Typed;
  TypedStatement typed;
  typed.parameters = statement.Parameters();
  typed.sql = Marked(statement, [&](std::string& text, std::size_t place) {
    const Mark mark{statement.places[place], tests && IsNullTest(statement, place)};
    const std::string marked = textOfMark(typed.marks, mark);
    text += mark.nullTest ? "CAST(" + marked + " AS SMALLINT)" : marked;
  });
  return typed;
}

}  // namespace

std::string MarkedByQuestions(const data::StatementParts& statement) {
  return Marked(statement, [](std::string& text, std::size_t) { text += '?'; });
}

TypedStatement TypedByQuestions(const data::StatementParts& statement) {
  return Typed(statement, NullTests::Typed, [](std::vector<Mark>& marks, const Mark& mark) {
    marks.push_back(mark);
    return std::string("?");
  });
}

TypedStatement TypedByQuestions(const data::StatementParts& statement,
                                std::span<const data::ParameterValue> parameters,
                                TypeOfValue typeOf, NullTests nullTests) {
  CheckParameters(statement.Parameters(), parameters.size());
  return Typed(statement, nullTests, [&](std::vector<Mark>& marks, const Mark& mark) {
    marks.push_back(mark);
    return mark.nullTest ? std::string("?") : CastTo(typeOf(parameters[mark.parameter]));
  });
}

TypedStatement TypedByNumbers(const data::StatementParts& statement) {
  return Typed(statement, NullTests::Typed, [](std::vector<Mark>& marks, const Mark& mark) {
    const auto known = std::ranges::find(marks, mark);
    const auto number = known - marks.begin() + 1;
    if (known == marks.end()) marks.push_back(mark);
    return "$" + std::to_string(number);
  });
}

void CheckParameters(std::size_t wanted, std::size_t given) {
  if (wanted == given) return;
  throw data::DriverError("The statement has " + std::to_string(wanted) + " parameters, but got " +
                          std::to_string(given));
}

std::vector<data::ParameterValue> ValuesByPlace(const std::vector<std::size_t>& places,
                                                std::span<const data::ParameterValue> parameters) {
  CheckParameters(places.empty() ? 0 : std::ranges::max(places) + 1, parameters.size());
  std::vector<data::ParameterValue> values;
  values.reserve(places.size());
  for (const std::size_t parameter : places) values.push_back(parameters[parameter]);
  return values;
}

const data::ParameterValue& ValueOf(const Mark& mark,
                                    std::span<const data::ParameterValue> parameters) {
  static const data::ParameterValue given = std::int64_t{0};
  const data::ParameterValue& value = parameters[mark.parameter];
  return mark.nullTest && value.index() != 0 ? given : value;
}

std::vector<data::ParameterValue> ValuesByMark(const TypedStatement& statement,
                                               std::span<const data::ParameterValue> parameters) {
  CheckParameters(statement.parameters, parameters.size());
  std::vector<data::ParameterValue> values;
  values.reserve(statement.marks.size());
  for (const Mark& mark : statement.marks) values.push_back(ValueOf(mark, parameters));
  return values;
}

}  // namespace kvshare::drivers
