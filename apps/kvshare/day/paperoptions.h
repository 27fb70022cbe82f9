// The paper that a day's documents go to, as command lines name it.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "apps/kvshare/terminal/commandline.h"
#include "kvshare/ui/paper.h"

namespace kvshare::app {

// As typed.
struct PaperOptions {
  std::string pdf, png, raw, printer;
  std::string paper, roll;
  std::string cut = "full";
  bool drawer = false;
};

// Adds `--pdf`, `--png`, `--raw`, `--printer`, `--paper`, `--roll`, `--cut` and `--drawer`.
void AddPaper(Command command, PaperOptions& options);

// One printer or one file, and what goes through it.
struct PaperPlan {
  enum class To : std::uint8_t { Nothing, Pdf, Png, Raw, Printer };
  To to = To::Nothing;
  std::string name;  // of the file or printer, code page 874
  std::optional<TSheet> sheet;
  std::optional<TRoll> roll;
  TRollWork work;

  bool IsPaper() const { return to != To::Nothing; }
  bool IsFile() const { return IsPaper() && to != To::Printer; }
};

// Refuses the usage of what does not go together: two places, a sheet and a roll, a roll's work
// without a roll.
PaperPlan UsagePaper(const PaperOptions& options);

// Rolls are TRollPrinters. Throws EOSError where the library that draws pages is missing.
std::unique_ptr<TPrinter> MakePrinter(const PaperPlan& plan);

}  // namespace kvshare::app
