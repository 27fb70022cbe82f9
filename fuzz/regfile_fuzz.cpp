// Settings files of any bytes: what is read is written and reads back the same, in both formats.
#include "kvshare/os/registry/regfile.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "kvshare/rtl/exceptions.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace kvshare::os;
  const std::string file(data, data + size);
  std::vector<RegSection> sections;
  try {
    sections = ParseRegFile(file);
  } catch (const kvshare::EConvertError& e) {
    if (!e.Message().starts_with("line ")) std::abort();
    return 0;
  }
  for (const RegFormat format : {RegFormat::Version5, RegFormat::RegEdit4}) {
    const std::string written = WriteRegFile(sections, format);
    if (ParseRegFile(written) != sections) std::abort();
    if (WriteRegFile(ParseRegFile(written), format) != written) std::abort();
  }
  return 0;
}
