// Version resources of any bytes, alone and in images: what is read lies inside what is there, and
// its texts are letters. The first byte chooses.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "kvshare/os/version/versionresource.h"
#include "kvshare/rtl/cp874.h"
#include "tests/os/images.h"

namespace {

using namespace kvshare::os;

void Require(bool holds) {
  if (!holds) std::abort();
}

void CheckBlock(std::string_view block) {
  const auto resource = ParseVersionResource(block);
  if (!resource) return;
  std::size_t letters = 4 * resource->translations.size();
  for (const VersionString& text : resource->strings) {
    letters += 2 * (text.name.size() + text.value.size());
    Require(text.value.find('\0') == std::string::npos);
    Require(kvshare::Utf8ToCp874(kvshare::Cp874ToUtf8(text.value)) == text.value);
    Require(resource->Value(text.table, text.name).data() != nullptr);
  }
  Require(letters <= block.size());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::string_view bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
  if (data[0] == 'b') {
    CheckBlock(bytes);
    return 0;
  }
  const std::string block = VersionBlockOfImage(MemoryImage(bytes));
  Require(block.empty() || bytes.find(block) != std::string_view::npos);
  CheckBlock(block);
  return 0;
}
