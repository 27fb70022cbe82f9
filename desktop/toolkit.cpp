#include "desktop/toolkit.h"

#include <xcb/xcb.h>

#include <QApplication>
#include <QFontDatabase>
#include <QLoggingCategory>
#include <QPluginLoader>
#include <QtCore/QLibraryInfo>
#include <memory>

#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/environment.h"
#include "kvshare/rtl/exceptions.h"

namespace kvshare::desktop {

namespace {

constexpr std::string_view kNoDisplay = "There is no display: ";
constexpr std::string_view kWithoutDisplay = "offscreen";

// What the toolkit would end the process for is found out before it is asked: a display that does
// not answer, a part of its own that is not installed.
void RequireDisplay() {
  const int noScreen = 0;
  int screen = noScreen;
  xcb_connection_t* display = xcb_connect(nullptr, &screen);
  const bool answers = xcb_connection_has_error(display) == 0;
  xcb_disconnect(display);
  if (!answers) {
    const std::string_view name = Environment("DISPLAY");
    throw EOSError(std::string(kNoDisplay) +
                   (name.empty() ? "DISPLAY is not set" : "DISPLAY does not answer"));
  }
}

void RequirePlugin(const QString& platform) {
  const QString file =
      QLibraryInfo::path(QLibraryInfo::PluginsPath) + "/platforms/libq" + platform + ".so";
  QPluginLoader plugin(file);
  if (!plugin.load()) {
    throw EOSError(std::string(kNoDisplay) + "the toolkit's part for it cannot be loaded");
  }
}

// The toolkit's name of the display's kind.
QString PlatformFor(TDesktopUse use) {
  const std::string_view chosen = Environment("QT_QPA_PLATFORM");
  if (use == TDesktopUse::PaperOnly || chosen.starts_with(kWithoutDisplay)) {
    return QString::fromLatin1(kWithoutDisplay.data());
  }
  RequireDisplay();
  return "xcb";
}

}  // namespace

void StartToolkit(TDesktopUse use) {
  static bool withDisplay = false;
  if (QCoreApplication::instance() != nullptr) {
    const bool paperOnly = qobject_cast<QApplication*>(QCoreApplication::instance()) == nullptr;
    if (use == TDesktopUse::Windows && paperOnly) {
      throw EOSError(std::string(kNoDisplay) + "this program has begun to print without one");
    }
    return;
  }
  (void)withDisplay;
  const QString platform = PlatformFor(use);
  RequirePlugin(platform);
  qputenv("QT_QPA_PLATFORM", platform.toUtf8());
  static int count = 1;
  static char name[] = "kvshare";
  static char* arguments[] = {name, nullptr};
  // What it misses (a runtime folder, a session) is not for the program's user to read.
  if (Environment("QT_LOGGING_RULES").empty()) {
    QLoggingCategory::setFilterRules("default.warning=false");
  }
  // Lives to the end of the process: by then parts of the toolkit that it needs are gone.
  [[maybe_unused]] static QGuiApplication* application = nullptr;
  if (use == TDesktopUse::Windows) {
    application = std::make_unique<QApplication>(count, arguments).release();
  } else {
    application = std::make_unique<QGuiApplication>(count, arguments).release();
  }
}

QString Shown(std::string_view cp874) {
  return QString::fromStdString(Cp874ToUtf8Lossy(cp874));
}

std::string TypedText(const QString& text) {
  return Utf8ToCp874(text.toStdString());
}

bool HasThaiFont() {
  return !QFontDatabase::families(QFontDatabase::Thai).isEmpty();
}

}  // namespace kvshare::desktop
