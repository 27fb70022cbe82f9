// The about box.
#pragma once

#include "companion/dialogform.h"

namespace kvshare::companion {

// What the version resource of the running program tells; a program without one has its title, or
// the name of its file.
class AboutForm : public DialogForm {
 public:
  AboutForm();

  TLabel Product{this, "Product"};
  TLabel Version{this, "Version"};
  TLabel Company{this, "Company"};
  TLabel Copyright{this, "Copyright"};
};

}  // namespace kvshare::companion
