#include "desktop/toolkit.h"

#include <xcb/xcb.h>

#include <QApplication>
#include <QLibraryInfo>
#include <QLoggingCategory>
#include <QPluginLoader>
#include <algorithm>
#include <chrono>
#include <future>
#include <memory>
#include <string>
#include <thread>
#include <utility>

#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/environment.h"
#include "kvshare/rtl/exceptions.h"

namespace kvshare::desktop {

namespace {

[[noreturn]] void ThrowNoDisplay(std::string_view why) {
  throw EOSError(std::string("There is no display: ").append(why));
}

using Display = std::unique_ptr<xcb_connection_t, void (*)(xcb_connection_t*)>;

// Connects in a thread of its own, which stays behind when the display accepts and never answers:
// the connection cannot be broken off.
Display ConnectInTime() {
  constexpr std::chrono::seconds kPatience{5};
  std::packaged_task<Display()> connect(
      [] { return Display(xcb_connect(nullptr, nullptr), xcb_disconnect); });
  std::future<Display> display = connect.get_future();
  std::thread(std::move(connect)).detach();
  if (display.wait_for(kPatience) == std::future_status::ready) return display.get();
  ThrowNoDisplay("the one that DISPLAY names accepts and does not answer");
}

// The connection is for the caller to keep until the toolkit has its own: a display may start anew
// when the last of its programs leaves.
Display RequireDisplay() {
  Display display = ConnectInTime();
  if (xcb_connection_has_error(display.get()) == 0) return display;
  const bool named = !Environment("DISPLAY").empty();
  ThrowNoDisplay(named ? "the one that DISPLAY names does not answer" : "DISPLAY is not set");
}

void RequirePlugin(const std::string& platform) {
  const QString folder = QLibraryInfo::path(QLibraryInfo::PluginsPath) + "/platforms/";
  if (!QPluginLoader(folder + "libq" + platform.c_str() + ".so").load()) {
    ThrowNoDisplay("the toolkit's library for " + platform + " cannot be loaded");
  }
}

bool IsOnDisplay() {
  return Environment("QT_QPA_PLATFORM") != "offscreen";
}

// The toolkit would end the process where the display does not answer or a part of its own is
// missing, so that both are found out before.
std::unique_ptr<QApplication> MakeApplication() {
  const bool onDisplay = IsOnDisplay();
  const Display display = onDisplay ? RequireDisplay() : Display(nullptr, xcb_disconnect);
  // By arguments: what a variable says would be inherited by the programs that this one starts.
  static char name[] = "kvshare";
  static char option[] = "-platform";
  static std::string platform;
  platform = onDisplay ? "xcb" : "offscreen";
  RequirePlugin(platform);
  static char* arguments[] = {name, option, platform.data(), nullptr};
  static int count = 3;
  QCoreApplication::setAttribute(Qt::AA_DisableSessionManager);
  // What the toolkit misses (a runtime folder, a session) is not for the program's user to read.
  if (Environment("QT_LOGGING_RULES").empty()) {
    QLoggingCategory::setFilterRules("default.warning=false");
  }
  auto windows = std::make_unique<QApplication>(count, arguments);
  QApplication::setQuitOnLastWindowClosed(false);
  return windows;
}

}  // namespace

void StartToolkit() {
  if (QCoreApplication::instance() != nullptr) return;
  // Never destroyed: at the process's end the toolkit's own statics are gone before.
  [[maybe_unused]] static const QApplication* const application = MakeApplication().release();
}

QString Shown(std::string_view cp874) {
  return QString::fromStdString(Cp874ToUtf8Lossy(cp874));
}

std::string TypedText(const QString& text) {
  return Utf8ToCp874(text.toStdString());
}

QRect Reachable(const TBounds& bounds) {
  static constexpr int kFarthest = 32767;  // coordinates of windows have 16 bits
  const auto near = [](int value) { return std::clamp(value, -kFarthest, kFarthest); };
  return {near(bounds.Left), near(bounds.Top), std::clamp(bounds.Width, 0, kFarthest),
          std::clamp(bounds.Height, 0, kFarthest)};
}

}  // namespace kvshare::desktop
