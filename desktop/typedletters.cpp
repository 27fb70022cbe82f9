#include "desktop/typedletters.h"

#include <QApplication>
#include <QToolTip>
#include <QWidget>
#include <algorithm>

#include "desktop/toolkit.h"
#include "kvshare/rtl/exceptions.h"

namespace kvshare::desktop {

bool Fits(const QString& text) {
  try {
    TypedText(text);
    return true;
  } catch (const EConvertError&) {
    return false;
  }
}

void TellBadLetter(QWidget& field, const QString& text) {
  const std::u32string letters = text.toStdU32String();
  const auto bad = std::ranges::find_if(
      letters, [](char32_t letter) { return !Fits(QString::fromUcs4(&letter, 1)); });
  const QString letter = bad == letters.end() ? QString() : QString::fromUcs4(&*bad, 1);
  QApplication::beep();
  QToolTip::showText(field.mapToGlobal(QPoint(0, field.height())),
                     QString("The letter %1 cannot be kept here.").arg(letter), &field);
}

LetterValidator::LetterValidator(QWidget& field) : QValidator(&field), field_(field) {}

QValidator::State LetterValidator::validate(QString& text, int& /*position*/) const {
  if (Fits(text)) return Acceptable;
  TellBadLetter(field_, text);
  return Invalid;
}

}  // namespace kvshare::desktop
