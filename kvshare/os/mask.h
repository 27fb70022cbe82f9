// A mask of names, made ready for many of them; see filesearch.h.
// Internal header.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kvshare::os {

class Mask {
 public:
  explicit Mask(std::string_view mask);

  bool MatchesAll() const { return all_; }
  bool Matches(std::string_view name) const;  // code page 874, without folder

 private:
  enum class Kind : std::uint8_t {
    Letter,
    Any,         // `*`
    AnyButLast,  // `*` before a point: never the last point of the name
    OneOrEnd,    // `?`: a letter that is no point, or nothing before a point or at the end
    PointOrEnd,  // a point before `*` or `?`: nothing at the end
  };
  struct Token {
    Kind kind;
    char letter;
  };

  using Places = std::string;  // a flag a place: short masks need no memory
  static constexpr char kNo = 0;
  static constexpr char kYes = 1;

  static std::vector<Token> Translate(std::string_view mask);
  void Take(std::size_t place, char letter, bool lastPoint, Places& reached, Places& next) const;

  std::vector<Token> tokens_;
  bool all_;
};

}  // namespace kvshare::os
