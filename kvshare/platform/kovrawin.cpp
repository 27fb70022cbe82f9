#include "kvshare/platform/kovrawin.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <exception>
#include <memory>
#include <vector>

#include "kvshare/os/sharedlibrary.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/format.h"
#include "kvshare/ui/application.h"
#include "kvshare/ui/messages.h"

namespace kvshare {

std::uintptr_t hKovraWin = 0;
TExecuteProcedure* pExecuteProcedure = nullptr;

namespace {

using Library = std::shared_ptr<const os::SharedLibrary>;

// The loads that are not freed yet, the latest last. Whoever calls an entry keeps its library, so
// that one that frees it does not lose the ground under its feet.
std::vector<Library>& Loads() {
  static std::vector<Library> loads;
  return loads;
}

Library LoadedNow() {
  return hKovraWin == 0 || Loads().empty() ? nullptr : Loads().back();
}

void ShowError(std::string_view text) {
  MessageDlg(text, TMsgDlgType::mtError, {TMsgDlgBtn::mbOK}, 0);
}

void ShowFailure(std::string_view program, const char* why) {
  std::string text = Format("Program %s Failed in KovraWin.DLL", {program});
  if (const std::string reason = TryUtf8ToCp874(why).value_or(""); !reason.empty())
    text += "\r\n" + reason;
  ShowError(text);
}

// Runs what calls an entry, and ends here what it throws. The box is shown while the library is
// loaded: what was thrown may be of its types.
template <typename Action>
void Guarded(std::string_view program, Action action) {
  try {
    action();
  } catch (const EAbort&) {
    return;  // it has said all
  } catch (const Exception& e) {
    ShowError(e.Message());
  } catch (const std::exception& e) {
    ShowFailure(program, e.what());
  } catch (...) {
    ShowFailure(program, "");
  }
}

// The library as one wrapper has it.
class Session {
 public:
  Session() {
    LoadKovraWin();
    library_ = LoadedNow();
  }
  ~Session() {
    std::vector<Library>& loads = Loads();
    const auto mine = std::ranges::find(loads.rbegin(), loads.rend(), library_);
    if (mine != loads.rend()) loads.erase(std::next(mine).base());
  }
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  template <typename Entry>
  Entry* Find(const char* name) const {
    return library_ ? reinterpret_cast<Entry*>(library_->Entry(name)) : nullptr;
  }

  // Gives the entry to `call`, with the main window. `program` is what messages call it.
  template <typename Entry, typename Call>
  void Run(const char* name, std::string_view program, Call call) const {
    auto* const entry = Find<Entry>(name);
    if (entry == nullptr) {
      ShowError(Format("Program %s Not Found in KovraWin.DLL", {program}));
      return;
    }
    Guarded(program, [&] { call(*entry, Application.MainFormHandle()); });
  }

 private:
  Library library_;
};

std::string_view UpToZero(std::string_view text) {
  return text.substr(0, text.find('\0'));
}

std::string TextAt(const char* text) {
  return text == nullptr ? std::string() : std::string(text);
}

// A text on its way through an entry.
class Buffer {
 public:
  explicit Buffer(std::string_view text) { UpToZero(text).copy(bytes_.data(), kSize); }
  Buffer(const Buffer&) = delete;
  Buffer& operator=(const Buffer&) = delete;

  const char* Data() const { return bytes_.data(); }
  char** Address() { return &at_; }

  // What the entry has left.
  std::string Text() const {
    if (at_ == nullptr) return {};
    // Of a text of the entry's own no byte behind its end is looked at.
    std::size_t size = 0;
    while (size < kSize && at_[size] != '\0') ++size;
    return {at_, size};
  }

 private:
  static constexpr std::size_t kSize = 64;
  std::array<char, kSize + 1> bytes_{};
  char* at_ = bytes_.data();
};

// A moment on its way through an entry.
class Moment {
 public:
  explicit Moment(TDateTime& date) : date_(date), days_(date.Days()) {}
  ~Moment() { date_ = TDateTime(days_); }
  Moment(const Moment&) = delete;
  Moment& operator=(const Moment&) = delete;

  double* Address() { return &days_; }

 private:
  TDateTime& date_;
  double days_;
};

std::int32_t AskForDate(const char* name, std::string_view program, std::int32_t mode,
                        std::string_view caption, TDateTime& date) {
  const Session library;
  const Buffer title(caption);
  Moment moment(date);
  std::int32_t result = 0;
  library.Run<TExecGetDateEntry>(name, program, [&](auto& entry, std::uintptr_t window) {
    result = entry(window, mode, title.Data(), moment.Address());
  });
  return result;
}

}  // namespace

void LoadKovraWin() {
  constexpr int kNotFound = 1157;
  auto library = std::make_shared<const os::SharedLibrary>("KovraWin");
  hKovraWin = library->Handle();
  if (library->Loaded()) {
    Loads().push_back(std::move(library));
  } else if (const int code = library->ErrorCode(); code == kNotFound) {
    ShowError(Format("Error: %d.Cannot find KovraWin.DLL", {code}));
  } else {
    ShowError(Format("Error: %d.On Load Library KovraWin.DLL", {code}));
  }
}

void FreeKovraWin() {
  if (LoadedNow() != nullptr) Loads().pop_back();
}

void ExecuteProcedure(std::string_view name) {
  const std::string entry(UpToZero(name));
  const Library library = LoadedNow();
  pExecuteProcedure =
      library ? reinterpret_cast<TExecuteProcedure*>(library->Entry(entry)) : nullptr;
  if (pExecuteProcedure == nullptr) {
    ShowError(Format("Program %s Not Found in KovraWin.DLL", {entry}));
    return;
  }
  Guarded(entry, [] { pExecuteProcedure(Application.MainFormHandle()); });
}

void DoProcedure() {
  ExecuteProcedure("DoProcedure");
}

double ExecCalculator(std::int32_t mode, double value) {
  const Session library;
  double result = 0;
  library.Run<TExecCalculatorEntry>(
      "ExecCalculator", "ExecCalculator",
      [&](auto& entry, std::uintptr_t window) { result = entry(window, mode, value); });
  return result;
}

TDateTime ExecCalendar(std::int32_t mode, TDateTime date) {
  const Session library;
  TDateTime result = date;
  library.Run<TExecCalendarEntry>("ExecCalendar", "Calendar",
                                  [&](auto& entry, std::uintptr_t window) {
                                    result = TDateTime(entry(window, mode, date.Days()));
                                  });
  return result;
}

std::string ExecReadSQLCmd(std::int32_t mode, std::string_view sql) {
  const Session library;
  const std::string given(UpToZero(sql));
  std::string result = given;
  library.Run<TExecReadSQLCmdEntry>("ExecReadSQLCmd", "ReadSQLCmd",
                                    [&](auto& entry, std::uintptr_t window) {
                                      result = TextAt(entry(window, mode, given.c_str()));
                                    });
  return result;
}

void ExecAboutBox(std::int32_t mode) {
  const Session library;
  library.Run<TExecAboutBoxEntry>("ExecAboutBox", "AboutBox",
                                  [&](auto& entry, std::uintptr_t window) { entry(window, mode); });
}

std::int32_t ExecGetUserName(std::int32_t mode, std::string& name, std::string& second) {
  const Session library;
  Buffer nameText(name);
  Buffer secondText("");
  std::int32_t result = 0;
  library.Run<TExecGetUserNameEntry>(
      "ExecGetUserName", "GetUserName", [&](auto& entry, std::uintptr_t window) {
        result = entry(window, mode, nameText.Address(), secondText.Address());
      });
  name = nameText.Text();
  second = secondText.Text();
  return result;
}

bool ExecGetGroupName(std::int32_t mode, std::string_view caption, std::string& first,
                      std::string& second) {
  const Session library;
  const std::string title(UpToZero(caption));
  Buffer firstText(first);
  Buffer secondText(second);
  bool result = false;
  library.Run<TExecGetGroupNameEntry>(
      "ExecGetGroupName", "GetGroupName", [&](auto& entry, std::uintptr_t window) {
        result = entry(window, mode, title.c_str(), firstText.Address(), secondText.Address()) != 0;
      });
  first = firstText.Text();
  second = secondText.Text();
  return result;
}

std::int32_t ExecGetDate(std::int32_t mode, std::string_view caption, TDateTime& date) {
  return AskForDate("ExecGetDate", "GetDate", mode, caption, date);
}

std::int32_t ExecPickDate(std::int32_t mode, std::string_view caption, TDateTime& date) {
  return AskForDate("ExecPickDate", "PickDate", mode, caption, date);
}

bool ExecGetDateRange(std::int32_t mode, std::string_view firstCaption,
                      std::string_view secondCaption, TDateTime& from, TDateTime& to) {
  const Session library;
  const Buffer firstTitle(firstCaption);
  const Buffer secondTitle(secondCaption);
  Moment first(from);
  Moment second(to);
  bool result = false;
  library.Run<TExecGetDateRangeEntry>(
      "ExecGetDateRange", "GetDateRange", [&](auto& entry, std::uintptr_t window) {
        result = entry(window, mode, firstTitle.Data(), secondTitle.Data(), first.Address(),
                       second.Address()) != 0;
      });
  return result;
}

std::int32_t ExecGetYear(std::int32_t mode, std::string_view caption, std::int32_t& year) {
  const Session library;
  const Buffer title(caption);
  std::int32_t result = 0;
  library.Run<TExecGetYearEntry>("ExecGetYear", "GetYear", [&](auto& entry, std::uintptr_t window) {
    result = entry(window, mode, title.Data(), &year);
  });
  return result;
}

void ExecReadKovraSysInfo(TStrings& list) {
  const Session library;
  auto* const entry = library.Find<TExecReadKovraSysInfoEntry>("ExecReadKovraSysInfo");
  if (entry == nullptr) return;
  Guarded("ReadKovraSysInfo", [&] { list.Add(TextAt(entry())); });
}

}  // namespace kvshare
