#include "kvshare/rtl/format.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <iterator>

#include "kvshare/rtl/decimal.h"
#include "kvshare/rtl/digits.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/variant.h"
#include "kvshare/rtl/within.h"

namespace kvshare::inline rtl {

namespace {

constexpr int kMaxWidth = 32767;
constexpr int kMaxNumber = 999'999'999;  // a greater number in a directive counts as this
constexpr int kAbsent = -1;
constexpr int kStar = -2;  // the next argument gives the number
constexpr int kDefaultDecimals = 2;
constexpr std::size_t kMessageBytes = 31;  // of the format text in an error

// One directive as written: numbers are kAbsent, kStar or 0 .. kMaxNumber.
struct Directive {
  int index = kAbsent;
  bool left = false;
  int width = kAbsent;
  int precision = kAbsent;
  char type = '\0';  // lower case
};

// Reads one directive after its percent sign.
class DirectiveReader {
 public:
  explicit DirectiveReader(std::string_view text) : at_(text.data()), end_(at_ + text.size()) {}

  // False where the text ends inside the directive.
  bool Read(Directive& result) {
    int number = TakeNumber();
    if (number != kAbsent && Take(':')) {
      result.index = number;
      number = kAbsent;
    }
    if (number == kAbsent) {
      result.left = Take('-');
      number = TakeNumber();
    }
    result.width = number;
    if (Take('.')) {
      result.precision = TakeNumber();
      if (result.precision == kAbsent) result.precision = 0;
    }
    if (at_ == end_) return false;
    const char type = *at_++;
    result.type = type >= 'A' && type <= 'Z' ? static_cast<char>(type - 'A' + 'a') : type;
    return true;
  }

  const char* Position() const { return at_; }

 private:
  bool Take(char c) {
    if (at_ == end_ || *at_ != c) return false;
    ++at_;
    return true;
  }

  int TakeNumber() {
    if (Take('*')) return kStar;
    if (at_ == end_ || *at_ < '0' || *at_ > '9') return kAbsent;
    int number = 0;
    for (; at_ != end_ && *at_ >= '0' && *at_ <= '9'; ++at_) {
      number = number > kMaxNumber / 10 ? kMaxNumber : number * 10 + (*at_ - '0');
    }
    return number;
  }

  const char* at_;
  const char* end_;
};

// How an amount stands with the currency text: '$' for that text, '1' for the magnitude.
constexpr std::string_view kPositiveForms[] = {"$1", "1$", "$ 1", "1 $"};
constexpr std::string_view kNegativeForms[] = {"($1)", "-$1",  "$-1",   "$1-",  "(1$)", "-1$",
                                               "1-$",  "1$-",  "-1 $",  "-$ 1", "1 $-", "$ 1-",
                                               "$ -1", "1- $", "($ 1)", "(1 $)"};
static_assert(std::size(kPositiveForms) == 4 && std::size(kNegativeForms) == 16);

// The form of a number out of range is the first.
template <std::size_t N>
std::string_view FormOf(const std::string_view (&forms)[N], int number) {
  return forms[number >= 0 && number < static_cast<int>(N) ? number : 0];
}

char* PutHexBackward(char* end, std::uint64_t value) {
  do {
    *--end = "0123456789ABCDEF"[value & 0xF];
    value >>= 4;
  } while (value != 0);
  return end;
}

// Writes a format text and its arguments behind what `out` holds.
class Formatter {
 public:
  Formatter(std::string& out, std::string_view format, std::span<const TVarRec> args,
            const TFormatSettings& settings)
      : out_(out), format_(format), args_(args), settings_(settings) {}

  void Run() {
    std::string_view rest = format_;
    for (;;) {
      const std::size_t percent = rest.find('%');
      out_.append(rest.substr(0, percent));
      if (percent == std::string_view::npos) return;
      rest.remove_prefix(percent + 1);
      if (rest.starts_with('%')) {
        out_ += '%';
        rest.remove_prefix(1);
        continue;
      }
      DirectiveReader reader(rest);
      Directive directive;
      if (!reader.Read(directive)) return;
      Apply(directive);
      rest.remove_prefix(static_cast<std::size_t>(reader.Position() - rest.data()));
    }
  }

  void RequireAllTaken() const {
    if (taken_ < args_.size()) FailIncompatible();
  }

 private:
  [[noreturn]] void FailIncompatible() const {
    std::string message = "Format '";
    message.append(format_.substr(0, kMessageBytes));
    throw EConvertError(message + "' invalid or incompatible with argument");
  }

  const TVarRec& NextArgument() {
    if (next_ < 0 || next_ >= static_cast<std::int64_t>(args_.size())) {
      std::string message = "No argument for format '";
      message.append(format_.substr(0, kMessageBytes));
      throw EConvertError(message + "'");
    }
    ++taken_;
    return args_[static_cast<std::size_t>(next_++)];
  }

  int NumberOf(int written) {
    if (written != kStar) return written;
    const TVarRec& argument = NextArgument();
    if (argument.GetKind() != TVarRec::Kind::Int32) FailIncompatible();
    return std::max(static_cast<int>(argument.AsInt()), kAbsent);
  }

  void Apply(Directive& directive) {
    if (directive.index != kAbsent) next_ = NumberOf(directive.index);
    left_ = directive.left;
    width_ = static_cast<std::size_t>(std::clamp(NumberOf(directive.width), 0, kMaxWidth));
    directive.precision = NumberOf(directive.precision);
    const TVarRec& argument = NextArgument();
    switch (directive.type) {
      case 'd':
      case 'u':
      case 'x':
        return AppendInteger(argument, directive);
      case 'e':
      case 'f':
      case 'g':
      case 'm':
      case 'n':
        return AppendNumber(argument, directive);
      case 's':
        return AppendText(argument, directive.precision);
      case 'p':
        return AppendPointer(argument);
      default:
        FailIncompatible();
    }
  }

  void AppendInteger(const TVarRec& argument, const Directive& directive) {
    const bool wide = argument.GetKind() == TVarRec::Kind::Int64;
    if (!wide && argument.GetKind() != TVarRec::Kind::Int32) FailIncompatible();
    const bool negative = directive.type == 'd' && argument.AsInt() < 0;
    auto bits = static_cast<std::uint64_t>(argument.AsInt());
    if (negative) {
      bits = 0 - bits;
    } else if (!wide) {
      bits = static_cast<std::uint32_t>(bits);
    }
    const int limit = wide ? 32 : 16;
    const int digits = directive.precision <= limit ? directive.precision : kAbsent;

    char text[kNumberRoom];
    char* const end = std::end(text);
    char* first =
        directive.type == 'x' ? PutHexBackward(end, bits) : digits::PutBackward(end, bits);
    while (end - first < digits) *--first = '0';
    if (negative) *--first = '-';
    AppendPadded({first, end});
  }

  void AppendPointer(const TVarRec& argument) {
    if (argument.GetKind() != TVarRec::Kind::Pointer) FailIncompatible();
    char text[2 * sizeof(void*)];
    char* const end = std::end(text);
    const auto address = std::bit_cast<std::uintptr_t>(argument.AsPointer());
    std::fill(std::begin(text), PutHexBackward(end, address), '0');
    AppendPadded({text, end});
  }

  void AppendText(const TVarRec& argument, int maxBytes) {
    const std::size_t most =
        maxBytes == kAbsent ? std::string_view::npos : static_cast<std::size_t>(maxBytes);
    switch (argument.GetKind()) {
      case TVarRec::Kind::Text:
        return AppendPadded(argument.AsText().substr(0, most));
      case TVarRec::Kind::Letter: {
        const char letter = argument.AsLetter();
        return AppendPadded(std::string_view(&letter, 1).substr(0, most));
      }
      case TVarRec::Kind::Var: {
        const std::string text = VarToStr(argument.AsVariant());
        const std::string_view view = text;
        return AppendPadded(view.substr(0, most));
      }
      default:
        FailIncompatible();
    }
  }

  void AppendNumber(const TVarRec& argument, const Directive& directive) {
    if (argument.GetKind() == TVarRec::Kind::Money) {
      Decimal amount(argument.AsMoney());
      if (directive.type == 'g') return AppendShortest(amount);
      return AppendDecimal(amount, directive);
    }
    if (argument.GetKind() != TVarRec::Kind::Real) FailIncompatible();
    const double value = argument.AsReal();
    if (const std::string_view name = NameOfNonFinite(value); !name.empty()) {
      return AppendPadded(name);
    }
    Decimal number(value);
    AppendDecimal(number, directive);
  }

  void AppendShortest(const Decimal& amount) {
    char text[kNumberRoom];
    AppendPadded({text, PutShortest(text, amount, {settings_.DecimalSeparator})});
  }

  void AppendDecimal(Decimal& number, const Directive& directive) {
    if (directive.type != 'e' && directive.type != 'g') return AppendFixed(number, directive);
    const bool given = directive.precision != kAbsent && directive.precision <= kMaxDecimals;
    const int digits = given ? std::max(directive.precision, 1) : kGeneralDigits;
    const NumberMarks marks{settings_.DecimalSeparator};
    char text[kNumberRoom];
    char* const end = directive.type == 'e' ? PutScientific(text, number, digits, marks)
                                            : PutGeneral(text, number, digits, marks);
    AppendPadded({text, end});
  }

  void AppendFixed(Decimal& number, const Directive& directive) {
    NumberMarks marks{settings_.DecimalSeparator};
    char text[kNumberRoom];
    if (number.Point() > kMaxIntegerDigits) {
      return AppendPadded({text, PutGeneral(text, number, kGeneralDigits, marks)});
    }
    const int decimals = DecimalsOf(directive);
    number.RoundToDecimals(decimals);
    if (directive.type != 'f') marks.thousand = settings_.ThousandSeparator;
    char* first = text + 1;
    char* const end = PutFixed(first, number, decimals, marks);
    if (directive.type == 'm') return AppendMoney({first, end}, number.Negative());
    if (number.Negative()) *--first = '-';
    AppendPadded({first, end});
  }

  int DecimalsOf(const Directive& directive) const {
    const int precision = directive.precision;
    if (precision != kAbsent && precision <= kMaxDecimals) return precision;
    if (directive.type != 'm') return kDefaultDecimals;
    return std::clamp(settings_.CurrencyDecimals, 0, kMaxDecimals);
  }

  void AppendMoney(std::string_view magnitude, bool negative) {
    const std::string_view form = negative ? FormOf(kNegativeForms, settings_.NegCurrFormat)
                                           : FormOf(kPositiveForms, settings_.CurrencyFormat);
    const std::size_t size = form.size() - 2 + magnitude.size() + settings_.CurrencyString.size();
    const std::size_t blanks = width_ > size ? width_ - size : 0;
    if (!left_) out_.append(blanks, ' ');
    for (const char c : form) {
      if (c == '$') {
        out_ += settings_.CurrencyString;
      } else if (c == '1') {
        out_ += magnitude;
      } else {
        out_ += c;
      }
    }
    if (left_) out_.append(blanks, ' ');
  }

  void AppendPadded(std::string_view text) {
    const std::size_t room = std::max(width_, text.size());
    const std::size_t start = out_.size() + (left_ ? 0 : room - text.size());
    out_.append(room, ' ');
    std::ranges::copy(text, out_.data() + start);
  }

  std::string& out_;
  const std::string_view format_;
  const std::span<const TVarRec> args_;
  const TFormatSettings& settings_;
  std::int64_t next_ = 0;  // the argument that the next directive takes
  std::size_t taken_ = 0;  // one that was taken twice counts twice

  // Of the directive at hand.
  std::size_t width_ = 0;
  bool left_ = false;
};

bool AnyLiesIn(std::string_view format, std::span<const TVarRec> args, const std::string& out) {
  return LiesIn(format, out) || std::ranges::any_of(args, [&out](const TVarRec& argument) {
           return argument.GetKind() == TVarRec::Kind::Text && LiesIn(argument.AsText(), out);
         });
}

enum class Arguments : bool { Some, All };

void AppendFormatted(std::string& out, std::string_view format, std::span<const TVarRec> args,
                     const TFormatSettings& settings, Arguments needed) {
  if (AnyLiesIn(format, args, out)) {
    std::string text;
    AppendFormatted(text, format, args, settings, needed);
    out += text;
    return;
  }
  const std::size_t size = out.size();
  try {
    Formatter formatter(out, format, args, settings);
    formatter.Run();
    if (needed == Arguments::All) formatter.RequireAllTaken();
  } catch (...) {
    out.resize(size);
    throw;
  }
}

}  // namespace

std::string Format(std::string_view format, std::span<const TVarRec> args,
                   const TFormatSettings& settings) {
  std::string out;
  Formatter(out, format, args, settings).Run();
  return out;
}

std::string Format(std::string_view format, std::initializer_list<TVarRec> args,
                   const TFormatSettings& settings) {
  return Format(format, std::span<const TVarRec>(args.begin(), args.size()), settings);
}

void AppendFormat(std::string& out, std::string_view format, std::span<const TVarRec> args,
                  const TFormatSettings& settings) {
  AppendFormatted(out, format, args, settings, Arguments::Some);
}

void AppendFormat(std::string& out, std::string_view format, std::initializer_list<TVarRec> args,
                  const TFormatSettings& settings) {
  AppendFormat(out, format, std::span<const TVarRec>(args.begin(), args.size()), settings);
}

void AppendFormatAll(std::string& out, std::string_view format, std::initializer_list<TVarRec> args,
                     const TFormatSettings& settings) {
  AppendFormatted(out, format, {args.begin(), args.size()}, settings, Arguments::All);
}

}  // namespace kvshare::inline rtl
