// The encoding of a text file, named or found by its content, and its text as UTF-8.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kvshare::receipts {

enum class TextEncoding : std::uint8_t { ByContent, Utf8, Utf16Le, Utf16Be, Cp874 };

// `utf-8`, `utf-16le`, `utf-16be` or `cp874`, in any letter case; nothing for another name.
std::optional<TextEncoding> FindEncoding(std::string_view name);

// Turns the bytes of a file, in blocks of any size, into UTF-8.
//
// By content: a byte-order mark decides at once. Without one the bytes are ASCII until one above 7F
// comes, and from there up to 64 KB decide: whole UTF-8 is UTF-8, other bytes that are all letters
// of code page 874 are that, and of anything else the encoding that goes on for longer is taken, so
// that its first wrong byte can be named.
class TextDecoder {
 public:
  explicit TextDecoder(TextEncoding encoding) : encoding_(encoding) {}

  // Appends what can be decoded so far. False once a byte does not belong to the encoding, or is
  // zero: what stands before it is in `out`, and nothing more is decoded.
  bool Feed(std::string_view bytes, std::string& out);

  // Appends the rest. False also where the file ends within a letter.
  bool Finish(std::string& out);

  // Which encoding broke and what to do, in UTF-8, once Feed or Finish gave false.
  std::string Trouble() const;

  // The line, from 1, of the next byte that is decoded.
  std::uint64_t Line() const { return 1 + (lineFeeds_ != 0 ? lineFeeds_ : returns_); }

 private:
  bool Decode(std::string& out, bool final);
  void TakeMark();
  bool FindByContent(std::string& out, bool final);
  bool DecodeKnown(std::string& out);
  void CountLines(std::string_view text);

  TextEncoding encoding_;
  bool started_ = false;
  bool broken_ = false;
  std::string pending_;  // bytes that are not decoded yet
  std::uint64_t lineFeeds_ = 0;
  std::uint64_t returns_ = 0;
};

}  // namespace kvshare::receipts
