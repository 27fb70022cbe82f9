// The SQL reader: a text to write and change.
#pragma once

#include "companion/dialogform.h"

namespace kvshare::companion {

class SqlForm : public DialogForm {
 public:
  explicit SqlForm(std::string_view sql);

  // The text as it stands.
  const std::string& Text() const { return Sql.Text(); }

  TMemo Sql{this, "Sql"};
};

}  // namespace kvshare::companion
