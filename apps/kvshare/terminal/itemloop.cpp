#include "apps/kvshare/terminal/itemloop.h"

#include "apps/kvshare/terminal/progress.h"
#include "apps/receipts/usertexts.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"

namespace kvshare::app {

namespace {

bool IsAscii(std::string_view text) {
  unsigned bits = 0;
  for (const char c : text) bits |= static_cast<unsigned char>(c);
  return bits < 0x80;
}

// What stands before an item's number in JSON.
constexpr std::string_view kArgument = "argument";
constexpr std::string_view kLine = "line";

class ItemRun {
 public:
  ItemRun(const Transform& transform, bool json, std::string_view place, const Stdio& stdio)
      : transform_(transform),
        place_(place),
        row_(json),
        out_(stdio.out, "standard output"),
        err_(stdio.err, "standard error"),
        progress_(stdio, "lines", Progress::Lines::Shown) {}

  void Take(std::string_view utf8) {
    ++number_;
    try {
      row_.Clear();
      transform_(Decoded(utf8), row_);
      row_.AppendTo(out_.Buffer());
      if (!row_.Warning().empty()) Report(receipts::Say("warning: ") + row_.Warning());
    } catch (const Exception& e) {
      Refuse(e.Message());
    }
    out_.EndLine();
  }

  void TakeTooLong() {
    ++number_;
    Refuse(receipts::Say("the line has more than 16 MB"));
    out_.EndLine();
  }

  void BeforeRead(bool waits) {
    if (waits) out_.Flush();
    if (!err_.Buffer().empty()) {
      progress_.Erase();
      err_.Flush();
    }
    progress_.Show(number_);
  }

  int Finish() {
    progress_.Erase();
    out_.Flush();
    err_.Flush();
    return failed_ ? kBadInput : kDone;
  }

 private:
  // ASCII is the same in both; columns of amounts are nothing else.
  std::string_view Decoded(std::string_view utf8) {
    if (IsAscii(utf8)) return utf8;
    item_.clear();
    AppendCp874(item_, utf8);
    return item_;
  }

  void Refuse(std::string_view reason) {
    failed_ = true;
    Report(reason);
    if (!row_.Json()) return;
    std::string& out = out_.Buffer();
    out += "{\"" + std::string(place_) + "\":" + std::to_string(number_) + ",\"error\":";
    AppendJsonString(out, Cp874ToUtf8Lossy(reason));
    out.push_back('}');
  }

  // Bytes below 32 come from the input and must not steer the terminal.
  void Report(std::string_view reason) {
    std::string& err = err_.Buffer();
    const auto number = static_cast<std::int64_t>(number_);
    err += place_ == kLine ? receipts::SayUtf8("line %d", {number})
                           : receipts::SayUtf8("argument %d", {number});
    err += ": ";
    for (const char c : Cp874ToUtf8Lossy(reason.substr(0, 500))) {
      err.push_back(static_cast<unsigned char>(c) < 32 || c == 127 ? '?' : c);
    }
    err_.EndLine();
  }

  const Transform& transform_;
  std::string_view place_;
  Row row_;
  std::string item_;
  BlockWriter out_;
  BlockWriter err_;
  Progress progress_;
  std::uint64_t number_ = 0;
  bool failed_ = false;
};

}  // namespace

int RunItems(const Transform& transform, const std::vector<std::string>& operands, bool json,
             const Stdio& stdio) {
  if (!operands.empty()) {
    ItemRun run(transform, json, kArgument, stdio);
    for (const std::string& operand : operands) run.Take(operand);
    return run.Finish();
  }
  ItemRun run(transform, json, kLine, stdio);
  LineReader reader(stdio.in, [&run](bool waits) { run.BeforeRead(waits); });
  std::string_view line;
  for (auto result = reader.Next(line); result != LineReader::Result::End;
       result = reader.Next(line)) {
    result == LineReader::Result::Line ? run.Take(line) : run.TakeTooLong();
  }
  return run.Finish();
}

}  // namespace kvshare::app
