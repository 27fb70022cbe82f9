#include "kvshare/os/console.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "kvshare/os/win32/streams.h"

namespace kvshare::os {

namespace {

using win32::IsConsoleHandle;
using win32::StreamHandle;

// A host may have made a pipe one that does not wait; the system has no call that waits instead.
void WaitForPipe() {
  constexpr DWORD kMilliseconds = 10;
  Sleep(kMilliseconds);
}

// How many bytes in front make whole letters of UTF-8, at most `most`.
std::size_t WholeLetters(std::string_view bytes, std::size_t most) {
  if (bytes.size() <= most) return bytes.size();
  constexpr std::size_t kLongestTail = 3;
  const auto continues = [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U; };
  std::size_t size = most;
  while (size > most - kLongestTail && continues(bytes[size])) --size;
  return size;
}

bool WriteWide(HANDLE console, std::wstring_view text) {
  while (!text.empty()) {
    DWORD n = 0;
    const BOOL done =
        WriteConsoleW(console, text.data(), static_cast<DWORD>(text.size()), &n, nullptr);
    if (done == 0 || n == 0) return false;
    text.remove_prefix(n);
  }
  return true;
}

// The bytes are UTF-8; what is none is shown as marks.
void WriteToConsole(HANDLE console, std::string_view bytes) {
  constexpr std::size_t kBlock = 8192;  // older systems refuse a long text
  std::array<wchar_t, kBlock> text{};
  while (!bytes.empty()) {
    const std::size_t size = WholeLetters(bytes, kBlock);
    const int length = MultiByteToWideChar(CP_UTF8, 0, bytes.data(), static_cast<int>(size),
                                           text.data(), static_cast<int>(kBlock));
    if (length <= 0 || !WriteWide(console, {text.data(), static_cast<std::size_t>(length)})) return;
    bytes.remove_prefix(size);
  }
}

void WriteToFile(HANDLE file, std::string_view bytes) {
  constexpr std::size_t kMost = std::size_t{1} << 30;
  while (!bytes.empty()) {
    DWORD n = 0;
    const auto size = static_cast<DWORD>(std::min(bytes.size(), kMost));
    if (WriteFile(file, bytes.data(), size, &n, nullptr) == 0) return;
    bytes.remove_prefix(n);
    if (n > 0) continue;
    if (GetFileType(file) != FILE_TYPE_PIPE) return;
    WaitForPipe();
  }
}

std::optional<char> NextByte(HANDLE file) {
  for (;;) {
    char byte = 0;
    DWORD n = 0;
    const bool whole = ReadFile(file, &byte, 1, &n, nullptr) != 0;
    const DWORD error = whole ? ERROR_SUCCESS : GetLastError();
    if (n == 1) return byte;  // also where more of the pipe's message follows
    if (error != ERROR_NO_DATA) return std::nullopt;
    WaitForPipe();
  }
}

// What the console holds back of the line stays there for whoever reads next.
std::optional<wchar_t> NextUnit(HANDLE console) {
  for (;;) {
    wchar_t unit = 0;
    DWORD n = 0;
    SetLastError(ERROR_SUCCESS);
    if (ReadConsoleW(console, &unit, 1, &n, nullptr) == 0) return std::nullopt;
    if (n == 1) return unit;
    const bool interrupted = GetLastError() == ERROR_OPERATION_ABORTED;  // Ctrl-C, that is handled
    if (!interrupted) return std::nullopt;
  }
}

// The units that `next` gives, up to LF, or to CR and LF, which are taken as well.
template <typename Text, typename Next>
std::optional<Text> TakeLine(Next next) {
  Text line;
  for (;;) {
    const auto unit = next();
    if (!unit && line.empty()) return std::nullopt;
    if (!unit) return line;
    if (*unit == '\n') break;
    line += *unit;
  }
  if (line.ends_with('\r')) line.pop_back();
  return line;
}

// Half a surrogate pair becomes a mark.
std::string Utf8Lossy(const std::wstring& text) {
  constexpr std::size_t kBytesPerUnit = 3;
  std::string utf8(kBytesPerUnit * text.size(), '\0');
  const int length =
      WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), utf8.data(),
                          static_cast<int>(utf8.size()), nullptr, nullptr);
  utf8.resize(static_cast<std::size_t>(std::max(length, 0)));
  return utf8;
}

std::optional<std::string> TypedLine(HANDLE console) {
  constexpr wchar_t kEndOfInput = 0x1A;  // Ctrl-Z
  const auto line = TakeLine<std::wstring>([console] { return NextUnit(console); });
  if (!line || line->starts_with(kEndOfInput)) return std::nullopt;
  return Utf8Lossy(*line);
}

}  // namespace

bool Console::IsTerminal() const {
  return IsConsoleHandle(StreamHandle(input_)) && IsConsoleHandle(StreamHandle(output_));
}

void Console::Write(std::string_view bytes) const {
  const HANDLE output = StreamHandle(output_);
  if (IsConsoleHandle(output)) {
    WriteToConsole(output, bytes);
  } else {
    WriteToFile(output, bytes);
  }
}

std::optional<std::string> Console::ReadLine() const {
  std::optional<std::string> line = ReadBytesOfLine();
  if (line && echoes_ && !IsConsoleHandle(StreamHandle(input_))) Write(*line + '\n');
  return line;
}

std::optional<std::string> Console::ReadBytesOfLine() const {
  const HANDLE input = StreamHandle(input_);
  if (IsConsoleHandle(input)) return TypedLine(input);
  return TakeLine<std::string>([input] { return NextByte(input); });
}

}  // namespace kvshare::os
