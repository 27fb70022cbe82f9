// The rules of a document as its books keep them.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "apps/receipts/calc.h"

namespace kvshare::posting {

// `mrTwoDigits mrTwoDigits document net -`: the modes of lines and of VAT, whether VAT is computed
// per `line` or `document`, whether prices are `net` or `with VAT` in one word (`gross`), and the
// mode of the total, `-` for none.
std::string TextOfRules(const receipts::Rules& rules);

// Nothing for another text.
std::optional<receipts::Rules> RulesOfText(std::string_view text);

}  // namespace kvshare::posting
