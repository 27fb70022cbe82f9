#include "apps/receipts/textencoding.h"

#include <algorithm>
#include <cstring>

#include "apps/receipts/usertexts.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/strutils.h"
#include "kvshare/rtl/utf8mark.h"

namespace kvshare::receipts {

namespace {

constexpr std::size_t kSample = std::size_t{64} << 10;
constexpr std::string_view kUtf16LeMark = "\xFF\xFE";
constexpr std::string_view kUtf16BeMark = "\xFE\xFF";

struct NameRow {
  TextEncoding encoding;
  std::string_view option;
  std::string_view shown;
};
constexpr NameRow kNames[] = {
    {TextEncoding::Utf8, "utf-8", "UTF-8"},
    {TextEncoding::Utf16Le, "utf-16le", "UTF-16"},
    {TextEncoding::Utf16Be, "utf-16be", "UTF-16"},
    {TextEncoding::Cp874, "cp874", "code page 874"},
};

unsigned char Byte(std::string_view text, std::size_t at) {
  return static_cast<unsigned char>(text[at]);
}

// Bytes of ASCII at the beginning, without a zero byte.
std::size_t AsciiLength(std::string_view text) {
  constexpr std::uint64_t kOnes = 0x0101010101010101;
  constexpr std::uint64_t kHighs = 0x8080808080808080;
  std::size_t at = 0;
  for (; at + sizeof(std::uint64_t) <= text.size(); at += sizeof(std::uint64_t)) {
    std::uint64_t eight = 0;
    std::memcpy(&eight, text.data() + at, sizeof eight);
    if (((eight | (eight - kOnes)) & kHighs) != 0) break;
  }
  while (at < text.size() && Byte(text, at) - 1U < 0x7F) ++at;
  return at;
}

std::size_t LetterBytes(unsigned char lead) {
  if (lead >= 0xC2 && lead <= 0xDF) return 2;
  if (lead >= 0xE0 && lead <= 0xEF) return 3;
  if (lead >= 0xF0 && lead <= 0xF4) return 4;
  return 0;
}

// Overlong forms, surrogates and values past U+10FFFF are no letters (Unicode, table 3-7).
bool MayFollow(unsigned char lead, unsigned char second) {
  const unsigned char least = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
  const unsigned char most = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
  return second >= least && second <= most;
}

// The beginning of a text that is of an encoding.
struct Run {
  std::size_t bytes = 0;  // of whole letters
  bool cut = false;       // the text ends within the letter behind them
};

Run Utf8RunOf(std::string_view text) {
  std::size_t at = 0;
  for (;;) {
    at += AsciiLength(text.substr(at));
    if (at == text.size()) return {at, false};
    const unsigned char lead = Byte(text, at);
    const std::size_t size = LetterBytes(lead);
    if (size == 0) return {at, false};
    for (std::size_t i = 1; i < size; ++i) {
      if (at + i == text.size()) return {at, true};
      const unsigned char next = Byte(text, at + i);
      if (i == 1 ? !MayFollow(lead, next) : (next & 0xC0) != 0x80) return {at, false};
    }
    at += size;
  }
}

Run Cp874RunOf(std::string_view text) {
  const auto end = std::ranges::find_if(
      text, [](char c) { return Cp874ToUnicode(static_cast<unsigned char>(c)) == 0; });
  return {static_cast<std::size_t>(end - text.begin()), false};
}

void AppendLetter(std::string& out, char32_t letter) {
  const auto put = [&out](char32_t byte) { out.push_back(static_cast<char>(byte)); };
  if (letter < 0x80) return put(letter);
  if (letter < 0x800) {
    put(0xC0 | letter >> 6);
  } else {
    if (letter < 0x10000) {
      put(0xE0 | letter >> 12);
    } else {
      put(0xF0 | letter >> 18);
      put(0x80 | (letter >> 12 & 0x3F));
    }
    put(0x80 | (letter >> 6 & 0x3F));
  }
  put(0x80 | (letter & 0x3F));
}

// Appends the letters as UTF-8.
Run AppendUtf16Run(std::string& out, std::string_view text, bool bigEndian) {
  const auto unit = [text, bigEndian](std::size_t at) {
    const unsigned first = Byte(text, at);
    const unsigned second = Byte(text, at + 1);
    return static_cast<char32_t>(bigEndian ? first << 8 | second : second << 8 | first);
  };
  std::size_t at = 0;
  for (; at + 1 < text.size(); at += 2) {
    char32_t letter = unit(at);
    if (letter == 0 || (letter >= 0xDC00 && letter <= 0xDFFF)) return {at, false};
    if (letter >= 0xD800 && letter <= 0xDBFF) {
      if (at + 3 >= text.size()) return {at, true};
      const char32_t low = unit(at + 2);
      if (low < 0xDC00 || low > 0xDFFF) return {at, false};
      letter = 0x10000 + ((letter - 0xD800) << 10) + (low - 0xDC00);
      at += 2;
    }
    AppendLetter(out, letter);
  }
  return {at, at < text.size()};
}

TextEncoding EncodingOf(std::string_view sample, bool final) {
  const Run utf8 = Utf8RunOf(sample);
  if (utf8.bytes == sample.size() || (utf8.cut && !final)) return TextEncoding::Utf8;
  return Cp874RunOf(sample).bytes > utf8.bytes ? TextEncoding::Cp874 : TextEncoding::Utf8;
}

}  // namespace

std::optional<TextEncoding> FindEncoding(std::string_view name) {
  for (const NameRow& row : kNames) {
    if (SameText(name, row.option)) return row.encoding;
  }
  return std::nullopt;
}

bool TextDecoder::Feed(std::string_view bytes, std::string& out) {
  if (broken_) return false;
  pending_ += bytes;
  return Decode(out, false);
}

bool TextDecoder::Finish(std::string& out) {
  return !broken_ && Decode(out, true);
}

std::string TextDecoder::Trouble() const {
  if (pending_.starts_with('\0')) {
    return SayUtf8(
        "a zero byte stands here; a file in UTF-16 needs its byte-order mark or --encoding "
        "utf-16le");
  }
  const auto row = std::ranges::find(kNames, encoding_, &NameRow::encoding);
  return SayUtf8(
      "from here on the file is not in %s; save it in one encoding, or name another one with "
      "--encoding",
      {row->shown});
}

bool TextDecoder::Decode(std::string& out, bool final) {
  if (!started_) {
    if (pending_.size() < kUtf8Mark.size() && !final) return true;
    started_ = true;
    TakeMark();
  }
  const std::size_t before = out.size();
  const bool known = encoding_ != TextEncoding::ByContent || FindByContent(out, final);
  const bool cut = known && DecodeKnown(out);
  CountLines(std::string_view{out}.substr(before));
  broken_ = known && !pending_.empty() && (final || !cut);
  return !broken_;
}

void TextDecoder::TakeMark() {
  const auto take = [this](std::string_view mark, TextEncoding encoding) {
    const bool possible = encoding_ == TextEncoding::ByContent || encoding_ == encoding;
    if (!possible || !pending_.starts_with(mark)) return;
    pending_.erase(0, mark.size());
    encoding_ = encoding;
  };
  take(kUtf8Mark, TextEncoding::Utf8);
  take(kUtf16LeMark, TextEncoding::Utf16Le);
  take(kUtf16BeMark, TextEncoding::Utf16Be);
}

// Lets ASCII through; false while more bytes are needed to decide about the rest.
bool TextDecoder::FindByContent(std::string& out, bool final) {
  const std::size_t ascii = AsciiLength(pending_);
  out.append(pending_, 0, ascii);
  pending_.erase(0, ascii);
  if (pending_.empty() || (pending_.size() < kSample && !final)) return false;
  encoding_ = EncodingOf(pending_, final);
  return true;
}

// Whether what is left may be the beginning of a letter.
bool TextDecoder::DecodeKnown(std::string& out) {
  Run run;
  switch (encoding_) {
    case TextEncoding::ByContent:
      break;
    case TextEncoding::Utf8:
      run = Utf8RunOf(pending_);
      out.append(pending_, 0, run.bytes);
      break;
    case TextEncoding::Cp874:
      run = Cp874RunOf(pending_);
      AppendUtf8(out, std::string_view{pending_}.substr(0, run.bytes));
      break;
    case TextEncoding::Utf16Le:
    case TextEncoding::Utf16Be:
      run = AppendUtf16Run(out, pending_, encoding_ == TextEncoding::Utf16Be);
      break;
  }
  pending_.erase(0, run.bytes);
  return run.cut;
}

void TextDecoder::CountLines(std::string_view text) {
  lineFeeds_ += static_cast<std::uint64_t>(std::ranges::count(text, '\n'));
  returns_ += static_cast<std::uint64_t>(std::ranges::count(text, '\r'));
}

}  // namespace kvshare::receipts
