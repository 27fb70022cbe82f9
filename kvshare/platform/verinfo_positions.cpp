// Positions of forms and controls in the settings store.
#include "kvshare/platform/storedvalues.h"
#include "kvshare/platform/verinfo.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare {

namespace {

using os::Hive;

constexpr std::int32_t kNormal = 0;
constexpr std::int32_t kMaximized = 2;

std::optional<std::int32_t> Stored(std::string_view key, std::string_view name) {
  return os::RegistryInteger(Hive::CurrentUser, key, name);
}

// Whether the entry says "maximised" with the form's size and place. Size and top are asked for
// first and left is read unasked, so that an entry without it throws ERegistryException.
bool IsStoredMaximized(const os::TRegistry& entry, const TForm& form) {
  for (const std::string_view name : {"WindowState", "Width", "Height", "Top", "Height"}) {
    if (!entry.ValueExists(name)) return false;
  }
  return entry.ReadInteger("Width") == form.Width() &&
         entry.ReadInteger("Height") == form.Height() && entry.ReadInteger("Top") == form.Top() &&
         entry.ReadInteger("Left") == form.Left() && entry.ReadInteger("WindowState") == kMaximized;
}

}  // namespace

std::string TKovraRegistry::FormKey(std::string_view form) const {
  return std::string(rootKey_).append("\\FormPosition\\").append(form);
}

std::string TKovraRegistry::LocationKey(const TWinControl& control) const {
  return FormKey(control.Owner()->Name()).append("\\").append(control.Name());
}

void TKovraRegistry::SaveFormPosition(const TForm& form) const {
  StoreUnder(Hive::CurrentUser, FormKey(form.Name()), [&form](os::TRegistry& entry) {
    if (IsStoredMaximized(entry, form)) return;
    entry.WriteInteger("Top", form.Top());
    entry.WriteInteger("Left", form.Left());
    entry.WriteInteger("Height", form.Height());
    entry.WriteInteger("Width", form.Width());
    entry.WriteInteger("WindowState", static_cast<std::int32_t>(form.WindowState()));
  });
}

void TKovraRegistry::SetFormPosition(TForm& form) const {
  const std::string key = FormKey(form.Name());
  const std::optional<std::int32_t> state = Stored(key, "WindowState");
  if (state == kMaximized) form.SetWindowState(TWindowState::wsMaximized);
  if (state != kNormal) return;

  TBounds bounds = form.Bounds();
  bounds.Top = Stored(key, "Top").value_or(bounds.Top);
  bounds.Left = Stored(key, "Left").value_or(bounds.Left);
  if (form.BorderStyle != TFormBorderStyle::bsDialog) {
    bounds.Height = Stored(key, "Height").value_or(bounds.Height);
    bounds.Width = Stored(key, "Width").value_or(bounds.Width);
  }
  form.SetBounds(bounds);
}

bool TKovraRegistry::IsChangeWindowsState(const TForm& form, int width, int height) const {
  const std::string key = FormKey(form.Name());
  return Stored(key, "Width") != width || Stored(key, "Height") != height;
}

void TKovraRegistry::SaveLocation(const TWinControl& control) const {
  if (!control.Visible() || control.Owner() == nullptr) return;
  StoreUnder(Hive::CurrentUser, LocationKey(control), [&control](os::TRegistry& entry) {
    entry.WriteInteger("Top", control.Top());
    entry.WriteInteger("Left", control.Left());
  });
}

int TKovraRegistry::SetLocation(TWinControl& control, int defaultTop, int defaultLeft) const {
  if (!control.Visible()) return defaultLeft;
  TBounds bounds = control.Bounds();
  bounds.Top = defaultTop;
  bounds.Left = defaultLeft;
  if (control.Owner() != nullptr) {
    const std::string key = LocationKey(control);
    bounds.Top = Stored(key, "Top").value_or(defaultTop);
    bounds.Left = Stored(key, "Left").value_or(defaultLeft);
  }
  control.SetBounds(bounds);
  constexpr int kGap = 2;
  return control.Left() + control.Width() + kGap;
}

void TKovraRegistry::ClearLocation(std::string_view formName) const {
  try {
    os::TRegistry form;
    if (!form.OpenKeyReadOnly(FormKey(formName))) return;
    TStringList controls;
    form.GetKeyNames(controls);
    UpperCaseAll(controls);
    os::InOneRegistryTransaction([&] {
      for (const std::string& control : controls) {
        if (control.starts_with("TBAR")) form.DeleteKey(control);
      }
    });
  } catch (const ERegistryException&) {
    return;  // nothing was deleted
  }
}

}  // namespace kvshare
