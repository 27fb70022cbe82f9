// Documents on sheets: as text, as JSON or on pages, with what they lack reported once.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "apps/kvshare/day/dayinput.h"
#include "apps/kvshare/day/dayoutput.h"
#include "apps/kvshare/day/daypaper.h"
#include "apps/kvshare/day/lackings.h"
#include "apps/kvshare/terminal/commandline.h"

namespace kvshare::app {

// How documents are set, on a terminal and on pages, and on how many sheets.
struct Looks {
  receipts::Layout text;
  receipts::Layout pages;
  std::vector<std::string_view> copies;  // what each sheet is called, in both languages
};

// Adds `--copies`.
void AddCopies(Command command, std::string& copies);

// Pages are dated in the Buddhist era unless the options say otherwise; text stays in the
// machine's, for scripts. Refuses the usage of a copy that there is not.
Looks UsageLooks(const LayoutOptions& layout, const RuleOptions& rules, const std::string& copies);

class SheetPrinter {
 public:
  // With paper in the plan the documents stand there instead of on standard output.
  SheetPrinter(DayOutput& output, Looks looks, const PaperPlan& plan);

  // By which the documents that follow were computed.
  void UseRules(const receipts::Rules& rules);

  // `originalNet` is the value of the invoice that a credit note reduces.
  void Print(const receipts::Document& document, const receipts::Receipt& receipt,
             std::optional<Currency> originalNet);

  // Writes the file of pages, and reports what the documents lack.
  void Finish();

  std::uint64_t Printed() const { return printed_; }
  const receipts::Layout& TextLayout() const { return looks_.text; }

 private:
  void WarnOfWords(const receipts::Document& document, Currency total);

  DayOutput& output_;
  Looks looks_;
  std::unique_ptr<DayPaper> paper_;
  bool file_;  // the paper is one
  Lackings lackings_;
  std::uint64_t printed_ = 0;
};

}  // namespace kvshare::app
