#include "desktop/toolkit.h"

#include <xcb/xcb.h>

#include <QApplication>
#include <QFontDatabase>
#include <QLibraryInfo>
#include <QLoggingCategory>
#include <QPluginLoader>
#include <algorithm>
#include <memory>
#include <string>

#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/environment.h"
#include "kvshare/rtl/exceptions.h"

namespace kvshare::desktop {

namespace {

[[noreturn]] void ThrowNoDisplay(std::string_view why) {
  throw EOSError(std::string("There is no display: ").append(why));
}

void RequireDisplay() {
  xcb_connection_t* const display = xcb_connect(nullptr, nullptr);
  const bool answers = xcb_connection_has_error(display) == 0;
  xcb_disconnect(display);
  if (answers) return;
  const bool named = !Environment("DISPLAY").empty();
  ThrowNoDisplay(named ? "the one that DISPLAY names does not answer" : "DISPLAY is not set");
}

void RequirePlugin(const char* platform) {
  const QString folder = QLibraryInfo::path(QLibraryInfo::PluginsPath) + "/platforms/";
  if (!QPluginLoader(folder + "libq" + platform + ".so").load()) {
    ThrowNoDisplay(std::string("the toolkit's library for ") + platform + " cannot be loaded");
  }
}

// The toolkit's name for the kind of display. It would end the process where one does not answer or
// a part of its own is missing, so that both are found out before.
const char* UsablePlatform(TDesktopUse use) {
  const bool chosen = Environment("QT_QPA_PLATFORM") == "offscreen";
  const bool onDisplay = use == TDesktopUse::Windows && !chosen;
  const char* platform = onDisplay ? "xcb" : "offscreen";
  if (onDisplay) RequireDisplay();
  RequirePlugin(platform);
  return platform;
}

std::unique_ptr<QGuiApplication> MakeApplication(TDesktopUse use) {
  // By arguments: what a variable says would be inherited by the programs that this one starts.
  static char name[] = "kvshare";
  static char option[] = "-platform";
  static std::string platform;
  platform = UsablePlatform(use);
  static char* arguments[] = {name, option, platform.data(), nullptr};
  static int count = 3;
  QCoreApplication::setAttribute(Qt::AA_DisableSessionManager);
  // What the toolkit misses (a runtime folder, a session) is not for the program's user to read.
  if (Environment("QT_LOGGING_RULES").empty()) {
    QLoggingCategory::setFilterRules("default.warning=false");
  }
  if (use == TDesktopUse::PaperOnly) return std::make_unique<QGuiApplication>(count, arguments);
  auto windows = std::make_unique<QApplication>(count, arguments);
  QApplication::setQuitOnLastWindowClosed(false);
  return windows;
}

}  // namespace

void StartToolkit(TDesktopUse use) {
  if (QCoreApplication::instance() == nullptr) {
    // Never destroyed: at the process's end the toolkit's own statics are gone before.
    [[maybe_unused]] static const QGuiApplication* const application =
        MakeApplication(use).release();
  }
  const bool hasWindows = qobject_cast<QApplication*>(QCoreApplication::instance()) != nullptr;
  if (use == TDesktopUse::Windows && !hasWindows) {
    ThrowNoDisplay("this program has begun to print without one");
  }
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

bool HasThaiFont() {
  return !QFontDatabase::families(QFontDatabase::Thai).isEmpty();
}

}  // namespace kvshare::desktop
