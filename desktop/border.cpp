#include "desktop/border.h"

#include <QEvent>
#include <QPainter>
#include <algorithm>
#include <cmath>

namespace kvshare::desktop {

Border::Border(QWidget& area) : QWidget(&area) {
  setAttribute(Qt::WA_TransparentForMouseEvents);
  setFocusPolicy(Qt::NoFocus);
  setGeometry(area.rect());
  area.installEventFilter(this);
}

bool Border::eventFilter(QObject* area, QEvent* event) {
  if (event->type() == QEvent::Resize) setGeometry(parentWidget()->rect());
  // A scroll bar comes to the front when it is shown.
  if (event->type() == QEvent::Paint && parentWidget()->children().last() != this) raise();
  return QWidget::eventFilter(area, event);
}

void Border::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  const QTransform toScreen = painter.deviceTransform();
  const QRectF whole = toScreen.mapRect(QRectF(rect()));
  const QPointF first(std::ceil(whole.left()), std::ceil(whole.top()));
  const QPointF end(std::floor(whole.right()), std::floor(whole.bottom()));
  const double thick = std::max(1.0, std::floor(devicePixelRatioF()));
  // The toolkit's own colour of borders.
  const QColor color = palette().window().color().darker(140).lighter(108);
  const QTransform fromScreen = toScreen.inverted();
  const auto fill = [&](QPointF from, QPointF to) {
    painter.fillRect(fromScreen.mapRect(QRectF(from, to)), color);
  };
  fill(first, {end.x(), first.y() + thick});
  fill({first.x(), end.y() - thick}, end);
  fill(first, {first.x() + thick, end.y()});
  fill({end.x() - thick, first.y()}, end);
}

}  // namespace kvshare::desktop
