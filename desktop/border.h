// The border of what scrolls, at any scale of the screen.
#pragma once

#include <QWidget>

namespace kvshare::desktop {

// Lies over a scroll area and draws its border once more. Where a pixel of the design is a broken
// number of the screen's, what is scrolled is rounded up to the next pixel and covers the border.
// The area's child, and destroyed before it.
class Border : public QWidget {
 public:
  explicit Border(QWidget& area);

 protected:
  bool eventFilter(QObject* area, QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
};

}  // namespace kvshare::desktop
