#include "kvshare/os/windowmessage.h"

#include "kvshare/rtl/strutils.h"

namespace kvshare::os {

std::uint32_t RegisterWindowMessage(std::string_view name) {
  if (name.empty()) return 0;
  std::uint32_t hash = 2166136261;  // FNV-1a, 32 bits; products wrap by design
  for (const char c : name) {
    hash = (hash ^ static_cast<unsigned char>(UpCase(c))) * 16777619;
  }
  constexpr std::uint32_t kFirst = 0xC000;
  constexpr std::uint32_t kNumbers = 0x4000;
  return kFirst + (hash ^ hash >> 14) % kNumbers;
}

}  // namespace kvshare::os
