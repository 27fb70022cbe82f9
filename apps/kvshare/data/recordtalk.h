// A record talked about at a terminal, or through a pipe: its fields asked for one by one, its
// changes shown, questions.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "apps/kvshare/data/tablerecord.h"
#include "kvshare/os/console.h"
#include "kvshare/ui/backend.h"

namespace kvshare::app {

class RecordTalk {
 public:
  // Both outlive the talk.
  RecordTalk(TableRecord& record, const os::Console& console)
      : record_(record), console_(console) {}

  // Asks for each field that can be typed and is no key, in the order of the table, until the user
  // ends. A text that a field refuses is reported, and the field is asked for again.
  void AskFields();
  // Whether the input, or its user, has come to the end of the questions: no answer can be
  // expected.
  bool InputEnded() const { return inputEnded_; }

  // The changes of the record, old -> new, one a line; for a new one what it has.
  std::string Changes() const;
  // The values of the record, one field a line.
  std::string Values() const;

  // Whether the answer is y, yes or ใช่; the end of the input is no such answer.
  bool Confirm(std::string_view question);

  void Say(std::string_view cp874) const;

 private:
  enum class Next { Field, SameField, End };

  Next AskField(TField& field);
  Next Obey(TField& field, std::string_view line) const;
  std::optional<std::string> ReadLine();

  TableRecord& record_;
  const os::Console& console_;
  bool inputEnded_ = false;
};

}  // namespace kvshare::app
