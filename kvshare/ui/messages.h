// Message boxes.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

#include "kvshare/export.h"

namespace kvshare {

// What a box is about: its icon, and its caption unless it is mtCustom.
enum class TMsgDlgType : std::uint8_t {
  mtWarning,
  mtError,
  mtInformation,
  mtConfirmation,
  mtCustom,
};
using enum TMsgDlgType;

// In the order in which a box shows them.
enum class TMsgDlgBtn : std::uint8_t {
  mbYes,
  mbNo,
  mbOK,
  mbCancel,
  mbAbort,
  mbRetry,
  mbIgnore,
  mbAll,
  mbNoToAll,
  mbYesToAll,
  mbHelp,
};
using enum TMsgDlgBtn;

// A set of buttons. Without any, a box can only be closed.
class TMsgDlgButtons {
 public:
  constexpr TMsgDlgButtons(std::initializer_list<TMsgDlgBtn> buttons) {
    for (const TMsgDlgBtn button : buttons) bits_ |= Bit(button);
  }
  constexpr bool Has(TMsgDlgBtn button) const { return (bits_ & Bit(button)) != 0; }
  constexpr bool operator==(const TMsgDlgButtons&) const = default;

 private:
  static constexpr std::uint32_t Bit(TMsgDlgBtn button) {
    return std::uint32_t{1} << static_cast<unsigned>(button);
  }
  std::uint32_t bits_ = 0;
};

// What a modal form or box answers: the button that closed it. mrNone is no answer: a form with it
// stays open, a box that has no button to cancel gives it for Esc.
inline constexpr int mrNone = 0;
inline constexpr int mrOk = 1;
inline constexpr int mrCancel = 2;
inline constexpr int mrAbort = 3;
inline constexpr int mrRetry = 4;
inline constexpr int mrIgnore = 5;
inline constexpr int mrYes = 6;
inline constexpr int mrNo = 7;
inline constexpr int mrAll = 8;
inline constexpr int mrNoToAll = 9;
inline constexpr int mrYesToAll = 10;

// What a box is asked to show; texts are code page 874.
struct KVSHARE_API TMessageBox {
  std::string text;
  TMsgDlgType type = TMsgDlgType::mtCustom;
  TMsgDlgButtons buttons{};
  std::int32_t helpContext = 0;

  // "Warning", "Error", "Information", "Confirm"; for mtCustom the application's title.
  std::string Caption() const;
  // What Enter and Esc answer: the first present of OK, Yes, Retry, else of all in order; the first
  // of Cancel, No, OK, else mrNone.
  int EnterResult() const;
  int EscapeResult() const;

  bool operator==(const TMessageBox&) const = default;
};

// Shows a box through the back end in force (backend.h) and returns the answer, an mr value.
KVSHARE_API int MessageDlg(std::string_view text, TMsgDlgType type, TMsgDlgButtons buttons,
                           std::int32_t helpContext);

}  // namespace kvshare
