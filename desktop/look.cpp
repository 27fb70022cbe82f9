#include "desktop/look.h"

#include <QFontDatabase>
#include <QPainter>
#include <QPainterPath>

namespace kvshare::desktop {

namespace {

// A drawing of one unit's width and height.
void DrawDisc(QPainter& painter, QColor color) {
  painter.setPen(Qt::NoPen);
  painter.setBrush(color);
  painter.drawEllipse(QRectF(0.04, 0.04, 0.92, 0.92));
}

void DrawCross(QPainter& painter) {
  painter.setPen(QPen(Qt::white, 0.12, Qt::SolidLine, Qt::RoundCap));
  painter.drawLine(QPointF(0.32, 0.32), QPointF(0.68, 0.68));
  painter.drawLine(QPointF(0.68, 0.32), QPointF(0.32, 0.68));
}

void DrawTriangle(QPainter& painter) {
  painter.setPen(QPen(QColor(200, 140, 0), 0.05, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.setBrush(QColor(255, 200, 40));
  painter.drawPolygon(QPolygonF({{0.5, 0.08}, {0.95, 0.9}, {0.05, 0.9}}));
}

void DrawSign(QPainter& painter, QChar sign, QColor color, QRectF where) {
  QFont font = WindowFont();
  font.setBold(true);
  QPainterPath path;
  path.addText(0, 0, font, sign);
  const QRectF from = path.boundingRect();
  const double scale = where.height() / from.height();
  painter.translate(where.center());
  painter.scale(scale, scale);
  painter.translate(-from.center());
  painter.fillPath(path, color);
}

void Draw(QPainter& painter, TMsgDlgType type) {
  switch (type) {
    case TMsgDlgType::mtError:
      DrawDisc(painter, QColor(200, 32, 32));
      return DrawCross(painter);
    case TMsgDlgType::mtWarning:
      DrawTriangle(painter);
      return DrawSign(painter, '!', Qt::black, {0.3, 0.36, 0.4, 0.42});
    case TMsgDlgType::mtInformation:
      DrawDisc(painter, QColor(32, 96, 192));
      return DrawSign(painter, 'i', Qt::white, {0.3, 0.24, 0.4, 0.52});
    case TMsgDlgType::mtConfirmation:
      DrawDisc(painter, QColor(32, 96, 192));
      return DrawSign(painter, '?', Qt::white, {0.3, 0.24, 0.4, 0.52});
    case TMsgDlgType::mtCustom:
      return;
  }
}

QString FamilyWithThai() {
  const QStringList all = QFontDatabase::families(QFontDatabase::Thai);
  for (const char* liked : {"Loma", "Noto Sans Thai", "Garuda", "Waree"}) {
    if (all.contains(liked)) return liked;
  }
  return all.isEmpty() ? QString() : all.first();
}

QFont MakeWindowFont() {
  constexpr int kHeight = 11;  // what the forms' controls are designed for
  QFont font;
  if (const QString family = FamilyWithThai(); !family.isEmpty()) font.setFamily(family);
  font.setPixelSize(kHeight);
  return font;
}

}  // namespace

const QFont& WindowFont() {
  static const QFont font = MakeWindowFont();
  return font;
}

QPixmap IconFor(TMsgDlgType type, int size, double scale) {
  QPixmap pixmap(qRound(size * scale), qRound(size * scale));
  pixmap.fill(Qt::transparent);
  QPainter painter(&pixmap);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.scale(pixmap.width(), pixmap.height());
  Draw(painter, type);
  painter.end();
  pixmap.setDevicePixelRatio(scale);
  return pixmap;
}

}  // namespace kvshare::desktop
