// A day's documents as command lines name and compute them.
#pragma once

#include <string>

#include "apps/kvshare/terminal/commandline.h"
#include "apps/kvshare/terminal/inputfile.h"
#include "apps/kvshare/terminal/stream.h"
#include "apps/receipts/calc.h"
#include "apps/receipts/dayreader.h"
#include "apps/receipts/plainreceipt.h"

namespace kvshare::app {

// How documents are computed, as typed.
struct RuleOptions {
  std::string round = "mrTwoDigits";
  std::string vatRound = "mrTwoDigits";
  std::string vat = "document";
  std::string cashStep;
  bool priceIncludesVat = false;
};

// Adds `--round`, `--vat-round`, `--vat`, `--cash-step` and `--price-includes-vat`.
void AddRules(Command command, RuleOptions& options);

// Refuses the usage of a mode that there is not.
receipts::Rules UsageRules(const RuleOptions& options);

// How the file is written, as typed.
struct FormatOptions {
  std::string encoding;
  std::string separator;
  bool decimalComma = false;
};

// Adds `--encoding`, `--separator` and `--decimal-comma`.
void AddFormat(Command command, FormatOptions& options);

// Years of two digits are of `era`. Refuses the usage of an encoding or separator that there is
// not.
receipts::DayFormat UsageFormat(const FormatOptions& options, Word era);

// How receipts are set, as typed.
struct LayoutOptions {
  std::string discount = "line";
  std::string era;
  std::size_t width = 80;
};

// Adds `--discount`, `--era` and `--width`.
void AddLayout(Command command, LayoutOptions& options);

// With the shop and in the digits that the user has stored for this command. Refuses the usage of
// an era that there is not; throws EConvertError for digits that cannot be used.
receipts::Layout UsageLayout(const LayoutOptions& options, const RuleOptions& rules);

// The file, or standard input for `-`. Throws StreamError.
class DayInput {
 public:
  DayInput(const std::string& name, const Stdio& stdio)
      : file_(name == "-" ? InputFile() : InputFile(name)), in_(stdio.in) {}

  // Feeds the reader to the end.
  void FeedTo(receipts::DayReader& reader) const;

 private:
  InputFile file_;
  int in_;
};

}  // namespace kvshare::app
