#include "kvshare/os/machine.h"

#include <array>
#include <string_view>

#include "kvshare/os/win32/environment.h"
#include "kvshare/os/win32/handle.h"
#include "kvshare/os/win32/names.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/strutils.h"

// Behind the types that it needs.
#include <ntsecapi.h>

namespace kvshare::os {

namespace {

// The short name, at most 15 letters: it fits the buffers that programs give for it.
std::wstring NameOfComputer() {
  std::array<wchar_t, 256> name{};
  auto size = static_cast<DWORD>(name.size());
  const bool known = GetComputerNameExW(ComputerNameNetBIOS, name.data(), &size) != 0;
  return known ? name.data() : L"";
}

// The name of the user that this thread acts for.
std::wstring NameOfUser() {
  constexpr std::size_t kLongest = 256;
  std::array<wchar_t, kLongest + 1> name{};
  auto size = static_cast<DWORD>(name.size());
  return GetUserNameW(name.data(), &size) != 0 ? name.data() : L"";
}

// "" for a name that is no text.
std::string TextOrNone(const std::wstring& name) {
  try {
    return win32::Utf8(name);
  } catch (const EConvertError&) {
    return {};
  }
}

// A name in code page 874 for a buffer that also takes a zero byte.
std::optional<std::string> FittingName(std::string_view utf8, std::size_t bufferSize) {
  std::optional<std::string> name = TryUtf8ToCp874(utf8);
  if (name && (name->empty() || name->size() >= bufferSize)) name.reset();
  return name;
}

}  // namespace

std::optional<std::string> ComputerName(std::size_t bufferSize) {
  std::string name = win32::Variable("KVSHARE_COMPUTER");
  if (name.empty()) name = TextOrNone(NameOfComputer());
  return FittingName(UpperCase(name), bufferSize);
}

std::optional<std::string> LoginName(std::size_t bufferSize) {
  std::string name = win32::Variable("KVSHARE_USER");
  if (name.empty()) name = TextOrNone(NameOfUser());
  return FittingName(name, bufferSize);
}

std::uint32_t TickCount() {
  return GetTickCount();
}

std::string NewGuid() {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::array<unsigned char, 16> bytes{};
  if (RtlGenRandom(bytes.data(), static_cast<ULONG>(bytes.size())) == 0) {
    throw EOSError("The system has no random bytes");
  }
  bytes[6] = static_cast<unsigned char>((bytes[6] & 0x0F) | 0x40);  // version 4: random
  bytes[8] = static_cast<unsigned char>((bytes[8] & 0x3F) | 0x80);  // variant of RFC 9562
  std::string guid = "{";
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (i == 4 || i == 6 || i == 8 || i == 10) guid += '-';
    guid += kDigits[bytes[i] >> 4];
    guid += kDigits[bytes[i] & 0x0F];
  }
  return guid += '}';
}

}  // namespace kvshare::os
