// Pictures of windows for people, in the folder that the build gives.
#pragma once

#include <gtest/gtest.h>

#include <QPixmap>
#include <QWidget>
#include <cstdlib>
#include <string>

namespace kvshare {

inline void Shoot(QWidget& window, const std::string& name) {
  const char* folder = std::getenv("KVSHARE_SHOTS");
  if (folder == nullptr) return;
  const QString file = QString::fromStdString(std::string(folder) + "/" + name + ".png");
  EXPECT_TRUE(window.grab().save(file)) << file.toStdString();
}

}  // namespace kvshare
