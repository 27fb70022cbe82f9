// The error about one document.
#pragma once

#include "kvshare/rtl/exceptions.h"

namespace kvshare::posting {

// A document that cannot be posted or read; the others can. The message is code page 874.
class EPosting : public Exception {
 public:
  using Exception::Exception;
};

}  // namespace kvshare::posting
