// Letters that a user types, and those that code page 874 lacks.
#pragma once

#include <QValidator>

namespace kvshare::desktop {

// Takes what the code page holds. Another letter is not taken; a note beside the field says so, and
// what stands there stays.
class LetterValidator : public QValidator {
 public:
  explicit LetterValidator(QWidget& field);
  State validate(QString& text, int& position) const override;

 private:
  QWidget& field_;
};

// Tells beside the field that `text` has a letter that cannot be kept. The system's bell sounds.
void TellBadLetter(QWidget& field, const QString& text);

// Whether code page 874 holds all of it.
bool Fits(const QString& text);

}  // namespace kvshare::desktop
