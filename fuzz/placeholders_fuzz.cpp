// Placeholders: nothing but `?` changes, and the numbers count from 1.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "drivers/common/placeholders.h"

// Undoes the numbering; false where `out` is not `sql` with numbers for some of its `?`.
static bool IsNumbered(std::string_view sql, std::string_view out) {
  int count = 0;
  for (const char c : sql) {
    const std::string number = "$" + std::to_string(count + 1);
    if (c == '?' && !out.starts_with('?')) {
      if (!out.starts_with(number)) return false;
      out.remove_prefix(number.size());
      ++count;
    } else {
      if (!out.starts_with(c)) return false;
      out.remove_prefix(1);
    }
  }
  return out.empty();
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string sql(reinterpret_cast<const char*>(data), size);
  if (!IsNumbered(sql, kvshare::drivers::NumberedPlaceholders(sql))) std::abort();
  return 0;
}
