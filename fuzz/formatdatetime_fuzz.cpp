// Any pattern over any moment, with a short date and a long time of any kind. The input is eight
// bytes of moment, then the three texts, a line each.
#include "kvshare/rtl/formatdatetime.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

#include "kvshare/rtl/exceptions.h"

namespace {

using namespace kvshare;

void Expect(bool holds) {
  if (!holds) std::abort();
}

std::string_view TakeLine(std::string_view& rest) {
  const std::string_view line = rest.substr(0, rest.find('\n'));
  rest.remove_prefix(std::min(line.size() + 1, rest.size()));
  return line;
}

bool Decodes(TDateTime moment) {
  try {
    DecodeDateTime(moment);
  } catch (const EMathError&) {
    return false;
  } catch (const EIntOverflow&) {
    return false;
  }
  return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  double days = 0;
  if (size < sizeof days) return 0;
  std::memcpy(&days, data, sizeof days);
  const std::string input(data + sizeof days, data + size);
  std::string_view rest = input;
  TFormatSettings settings = TFormatSettings::UsEnglish();
  settings.ShortDateFormat = TakeLine(rest);
  settings.LongTimeFormat = TakeLine(rest);
  const std::string_view pattern = rest;

  if (!Decodes(TDateTime(days))) return 0;
  const std::string text = FormatDateTime(pattern, TDateTime(days), settings);
  Expect(text.size() <= 256);
  std::string appended = "before ";
  AppendFormatDateTime(appended, pattern, TDateTime(days), settings);
  Expect(appended == "before " + text);

  // Quoted, a pattern is text; before another, it leaves the other's beginning where it ends.
  if (pattern.find('\'') == std::string_view::npos) {
    const std::string quoted = "'" + std::string(pattern) + "'";
    Expect(FormatDateTime(quoted, TDateTime(days), settings) == pattern.substr(0, 256));
    const std::string both = FormatDateTime(quoted + "zzz", TDateTime(days), settings);
    Expect(both.size() == std::min<std::size_t>(pattern.size() + 3, 256));
  }
  return 0;
}
