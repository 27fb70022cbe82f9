#include "kvshare/text/strings.h"

#include <algorithm>
#include <cstring>

#include "kvshare/rtl/bytepattern.h"
#include "kvshare/rtl/convert.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/format.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare {

TKovraString* KovraString = nullptr;

namespace {

enum class Side : bool { Front, Behind };

std::string FitTo(std::string_view text, SmallInt width, char filler, Side side) {
  if (width <= 0) return {};
  const auto size = static_cast<std::size_t>(width);
  if (text.size() >= size) return std::string(text.substr(0, size));
  std::string out(size, filler);
  text.copy(&out[side == Side::Front ? size - text.size() : 0], text.size());
  return out;
}

// Every `pair` overwritten by `with`, from the left. Neither `with` can complete another pair.
std::string OverwritePairs(std::string_view text, std::string_view pair, std::string_view with) {
  std::string out(text);
  for (std::size_t at = out.find(pair); at != std::string::npos; at = out.find(pair, at + 2)) {
    with.copy(&out[at], 2);
  }
  return out;
}

// Replaces as if each search began at the start of the text again, in one walk over it.
//
// The text as it stands is done_, the source from copied_ to read_, ahead_ (turned round), the
// source from read_. What has been read holds no whole Old, so the first occurrence is the first
// that reading on completes; after its replacement only an end of done_ shorter than Old can still
// take part in one.
class Replacer {
 public:
  Replacer(std::string_view source, std::string_view oldText, std::string_view newText)
      : old_(oldText, BytePattern::Letters::IgnoringCase),
        oldText_(oldText),
        newText_(newText),
        newRead_(newText.size()),
        source_(source),
        repeatable_(source.size() + TKovraString::kMostRepeated) {}

  std::string Run() {
    if (!old_.ReadToMatch(source_, read_, matched_)) return std::string(source_);
    StudyNewText();
    done_.reserve(source_.size() + source_.size() / 8 + newText_.size());
    DropMatchInSource();
    do {
      InsertNewText();
    } while (MatchInInserted() || MatchInSource());
    done_.append(source_.substr(copied_));
    return std::move(done_);
  }

 private:
  void StudyNewText() {
    for (const char c : newText_) {
      matchedByNew_ = old_.Step(matchedByNew_, c);
      if (matchedByNew_ == old_.Size()) ThrowContained();
    }
    mayEndOld_ = newText_.empty() || old_.HasInside(newText_.front());
  }

  void InsertNewText() {
    if (!mayEndOld_) {  // so nothing before it matters any more
      done_.append(newText_);
      matched_ = matchedByNew_;
      return;
    }
    const std::size_t reach = std::min(done_.size(), old_.Size() - 1);
    matched_ = 0;
    for (std::size_t i = done_.size() - reach; i < done_.size(); ++i) {
      matched_ = old_.Step(matched_, done_[i]);
    }
    const std::string_view unread = newText_.substr(newRead_);
    ahead_.append(unread.rbegin(), unread.rend());
    newRead_ = 0;
  }

  bool TakeInserted(char& c) {
    if (newRead_ < newText_.size()) {
      c = newText_[newRead_++];
      return true;
    }
    if (ahead_.empty()) return false;
    c = ahead_.back();
    ahead_.pop_back();
    return true;
  }

  bool MatchInInserted() {
    char c = '\0';
    while (TakeInserted(c)) {
      done_.push_back(c);
      matched_ = old_.Step(matched_, c);
      if (matched_ == old_.Size()) {
        DropEnd(old_.Size());
        return true;
      }
    }
    return false;
  }

  bool MatchInSource() {
    if (!old_.ReadToMatch(source_, read_, matched_)) return false;
    DropMatchInSource();
    return true;
  }

  // The match ends at read_; it may begin in what was inserted before copied_.
  void DropMatchInSource() {
    const std::size_t fresh = read_ - copied_;
    if (fresh >= old_.Size()) {
      done_.append(source_.substr(copied_, fresh - old_.Size()));
    } else {
      DropEnd(old_.Size() - fresh);
    }
    copied_ = read_;
  }

  // Drops what was inserted before, all or in part. Only replacements that do so can go on for
  // ever: others use up the source.
  void DropEnd(std::size_t size) {
    done_.resize(done_.size() - size);
    if (newText_.size() > repeatable_) ThrowEndless();
    repeatable_ -= newText_.size();
  }

  [[noreturn]] void ThrowContained() const {
    throw EConvertError(
        Format("'%s' cannot replace '%s', which it contains", {newText_, oldText_}));
  }

  [[noreturn]] void ThrowEndless() const {
    throw EConvertError(
        Format("Replacing '%s' by '%s' does not come to an end", {oldText_, newText_}));
  }

  const BytePattern old_;
  const std::string_view oldText_;
  const std::string_view newText_;
  bool mayEndOld_ = true;         // New, or what begins it, may be what completes an Old
  std::size_t matchedByNew_ = 0;  // bytes of Old that New ends with
  std::size_t newRead_;
  std::string done_;
  std::string ahead_;  // what is unread of earlier New texts
  const std::string_view source_;
  std::size_t copied_ = 0;
  std::size_t read_ = 0;
  std::size_t matched_ = 0;  // bytes of Old that what has been read ends with
  std::size_t repeatable_;   // bytes that repeated replacements may still insert
};

// Copies the bytes as they were, when they lie inside `to` too.
void Overwrite(std::string& to, std::int64_t position, std::string_view bytes) {
  if (!bytes.empty()) std::memmove(to.data() + position - 1, bytes.data(), bytes.size());
}

}  // namespace

std::string TKovraString::Replicate(char C, int Count) {
  return StringOfChar(C, Count);
}

std::string TKovraString::Space(int Count) {
  return Replicate(' ', Count);
}

std::string TKovraString::RemoveComma(std::string_view Text) {
  std::string out(Text);
  std::erase(out, ',');
  return out;
}

std::string TKovraString::Bool2Str(bool Value) {
  return Value ? "Y" : "N";
}

std::string TKovraString::Logical(bool Value) {
  return Bool2Str(Value);
}

std::string TKovraString::FirstOccur(std::string_view Text) {
  return std::string(Text.substr(0, Text.find(' ')));
}

bool TKovraString::IsStartWith(std::string_view Text, std::string_view Prefix) {
  return Text.starts_with(Prefix);
}

int TKovraString::CountDelimeter(std::string_view Text, char C) {
  return static_cast<int>(std::ranges::count(Text, C));
}

bool TKovraString::Empty(const Variant& Value) {
  return VarIsNull(Value) || Trim(VarToStr(Value)).empty();
}

std::string TKovraString::ChangeSlashToCRLF(std::string_view Text) {
  return OverwritePairs(Text, "//", "\r\n");
}

std::string TKovraString::ChangeCRLFToSpace(std::string_view Text) {
  return OverwritePairs(Text, "\r\n", "  ");
}

std::string TKovraString::Change1To2Quote(std::string_view Text) {
  std::string out(Text);
  std::ranges::replace(out, '\'', '"');
  return out;
}

std::string TKovraString::RemoveString(std::string_view Part, std::string_view Text) {
  std::string out(Text);
  Delete(out, Pos(Part, Text), static_cast<int>(Part.size()));  // at position 0 nothing is deleted
  return out;
}

std::string TKovraString::ChangeString(std::string_view Text, std::string_view Old,
                                       std::string_view New) {
  if (Old.empty() || Old.size() > Text.size()) return std::string(Text);
  return Replacer(Text, Old, New).Run();
}

std::string TKovraString::Pad(std::string_view Text, SmallInt Width) {
  return FitTo(Text, Width, ' ', Side::Behind);
}

std::string TKovraString::PadLeft(std::string_view Text, SmallInt Width) {
  return FitTo(Text, Width, ' ', Side::Front);
}

std::string TKovraString::PadZero(std::string_view Text, SmallInt Width) {
  return FitTo(Text, Width, '0', Side::Behind);
}

std::string TKovraString::PadLeftZero(std::string_view Text, SmallInt Width) {
  return FitTo(Text, Width, '0', Side::Front);
}

std::string TKovraString::StripNumber(std::string_view Text) {
  const std::size_t point = Text.find('.');
  std::int32_t number = 0;
  const bool numbered =
      point != std::string_view::npos && TryStrToInt(Text.substr(0, point), number);
  return std::string(numbered ? Text.substr(point + 1) : Text);
}

int TKovraString::BStrPos(std::string_view Part, std::string_view Text, int N) {
  if (N <= 0 || Part.empty()) return 0;
  const std::size_t at = BytePattern(Part).FindIn(Text, N);
  return at == BytePattern::kNowhere ? 0 : static_cast<int>(at + 1);
}

void TKovraString::MoveLStr(std::string_view Source, std::string& Destination, int Count,
                            int Position) {
  const auto length = static_cast<std::int64_t>(Destination.size());
  if (Count < 0 || Position < 1 || Position > length) return;
  const auto wanted = Count == 0 ? Source.size() : static_cast<std::size_t>(Count);
  const auto room = static_cast<std::size_t>(length - Position + 1);
  Overwrite(Destination, Position, Source.substr(0, std::min(wanted, room)));
}

void TKovraString::MoveRStr(std::string_view Source, std::string& Destination, int Count,
                            int Position) {
  const auto length = static_cast<std::int64_t>(Destination.size());
  if (Count < 0 || Position < 1 || Position > length) return;
  const std::int64_t end = std::min(std::int64_t{Position} + Count - 1, length);
  const std::int64_t room = Count == 0 ? end : end - Position + 1;
  const auto n = std::min<std::int64_t>(static_cast<std::int64_t>(Source.size()), room);
  Overwrite(Destination, end - n + 1, Source.substr(Source.size() - static_cast<std::size_t>(n)));
}

}  // namespace kvshare
