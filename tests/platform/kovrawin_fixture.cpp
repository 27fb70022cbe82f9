// Companion libraries for the test of the bridge: one with every entry, one without any. An entry
// tells what it got by a message, and does what its mode says.
#include "tests/platform/kovrawin_fixture.h"

#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/format.h"
#include "kvshare/ui/messages.h"

namespace kvshare::fixture {

extern "C" {

KVSHARE_API extern const int kovrawin_fixture;
const int kovrawin_fixture = 1;

#ifdef EVERY_ENTRY

// NOLINTBEGIN(misc-use-internal-linkage): looked up by name

namespace {

struct OwnException : std::exception {
  const char* what() const noexcept override { return "รหัสผิด"; }
};

void Tell(std::string_view format, std::initializer_list<TVarRec> args) {
  MessageDlg(Format(format, args), TMsgDlgType::mtInformation, {TMsgDlgBtn::mbOK}, 0);
}

void Misbehave(std::int32_t mode) {
  switch (mode) {
    case kThrow:
      throw EConvertError("'x' is not a valid date");
    case kAbort:
      throw EAbort("unseen");
    case kThrowStandard:
      throw OwnException();
    case kThrowOther:
      throw 7;
    default:
      break;
  }
}

// Puts `text` into the buffer whole, so that none is left for a zero byte.
void Fill(char** at, char letter) {
  std::string(64, letter).copy(*at, 64);
}

}  // namespace

KVSHARE_API void DoProcedure(std::uintptr_t window) {
  Tell("DoProcedure %d", {window});
}

KVSHARE_API void Thrower(std::uintptr_t /*window*/) {
  Misbehave(kThrowOther);
}

// Frees what it runs in.
KVSHARE_API void Freer(std::uintptr_t /*window*/) {
  FreeKovraWin();
  Tell("still here", {});
}

KVSHARE_API double ExecCalculator(std::uintptr_t window, std::int32_t mode, double value) {
  Tell("ExecCalculator %d %d %g", {window, mode, value});
  Misbehave(mode);
  if (mode == kNest) return kvshare::ExecCalculator(0, value) + kvshare::ExecCalculator(0, value);
  return value * 2;
}

KVSHARE_API double ExecCalendar(std::uintptr_t window, std::int32_t mode, double date) {
  Tell("ExecCalendar %d %d %g", {window, mode, date});
  Misbehave(mode);
  return date + 1;
}

KVSHARE_API const char* ExecReadSQLCmd(std::uintptr_t window, std::int32_t mode, const char* sql) {
  static std::string text;
  Tell("ExecReadSQLCmd %d %d %s", {window, mode, sql});
  Misbehave(mode);
  if (mode == kNull) return nullptr;
  text = std::string(sql) + "!";
  return text.c_str();
}

KVSHARE_API void ExecAboutBox(std::uintptr_t window, std::int32_t mode) {
  Tell("ExecAboutBox %d %d", {window, mode});
  Misbehave(mode);
}

KVSHARE_API std::int32_t ExecGetUserName(std::uintptr_t window, std::int32_t mode, char** name,
                                         char** second) {
  static char own[] = "a text of the library's own, and longer than any buffer of the interface";
  Tell("ExecGetUserName %d %d %s,%s", {window, mode, *name, *second});
  if (mode == kNull) *name = *second = nullptr;
  if (mode == kReplace) *name = *second = own;
  if (mode == kEcho) Fill(name, 'n'), Fill(second, 's');
  Misbehave(mode);
  return 5;
}

KVSHARE_API std::uint8_t ExecGetGroupName(std::uintptr_t window, std::int32_t mode,
                                          const char* caption, char** first, char** second) {
  Tell("ExecGetGroupName %d %d %s %s,%s", {window, mode, caption, *first, *second});
  if (mode == kEcho) Fill(first, 'f'), Fill(second, 's');
  Misbehave(mode);
  return 0x80;
}

KVSHARE_API std::int32_t ExecGetDate(std::uintptr_t window, std::int32_t mode, const char* caption,
                                     double* date) {
  Tell("ExecGetDate %d %d %s %g", {window, mode, caption, *date});
  *date += 1;
  Misbehave(mode);
  return 6;
}

KVSHARE_API std::int32_t ExecPickDate(std::uintptr_t window, std::int32_t mode, const char* caption,
                                      double* date) {
  Tell("ExecPickDate %d %d %s %g", {window, mode, caption, *date});
  *date += 2;
  Misbehave(mode);
  return 7;
}

KVSHARE_API std::uint8_t ExecGetDateRange(std::uintptr_t window, std::int32_t mode,
                                          const char* first, const char* second, double* from,
                                          double* to) {
  Tell("ExecGetDateRange %d %d %s %s %g %g", {window, mode, first, second, *from, *to});
  *from += 1;
  *to += 2;
  Misbehave(mode);
  return 1;
}

KVSHARE_API std::int32_t ExecGetYear(std::uintptr_t window, std::int32_t mode, const char* caption,
                                     std::int32_t* year) {
  Tell("ExecGetYear %d %d %s %d", {window, mode, caption, *year});
  *year += 1;
  Misbehave(mode);
  return 8;
}

KVSHARE_API const char* ExecReadKovraSysInfo() {
  return "memory";
}

// NOLINTEND(misc-use-internal-linkage)

#endif

}  // extern "C"

}  // namespace kvshare::fixture
