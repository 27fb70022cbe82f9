#include "drivers/common/statements.h"

#include <algorithm>

namespace kvshare::drivers {
namespace {

template <typename Mark>
std::string Marked(const data::StatementParts& statement, Mark mark) {
  std::string text = statement.texts.front();
  for (std::size_t i = 0; i < statement.places.size(); ++i) {
    mark(text, i);
    text += statement.texts[i + 1];
  }
  return text;
}

}  // namespace

std::string MarkedByQuestions(const data::StatementParts& statement) {
  return Marked(statement, [](std::string& text, std::size_t) { text += '?'; });
}

std::string MarkedByNumbers(const data::StatementParts& statement) {
  return Marked(statement, [&statement](std::string& text, std::size_t place) {
    text.append("$").append(std::to_string(statement.places[place] + 1));
  });
}

std::string MarkedByTypes(const data::StatementParts& statement,
                          std::span<const data::ParameterValue> valuesByPlace,
                          std::string (*typeOf)(const data::ParameterValue&)) {
  return Marked(statement, [&](std::string& text, std::size_t place) {
    const std::string type = typeOf(valuesByPlace[place]);
    text += type.empty() ? "?" : "CAST(? AS " + type + ")";
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

}  // namespace kvshare::drivers
