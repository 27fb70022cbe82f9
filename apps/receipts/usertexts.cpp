#include "apps/receipts/usertexts.h"

#include "kvshare/rtl/environment.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare::receipts {

std::string Say(UserText text, std::initializer_list<TVarRec> values) {
  const bool thai = SameText(Environment("KVSHARE_LANGUAGE"), "th");
  return Format(thai ? text.Row().thai : text.Row().english, values);
}

std::string SayUtf8(UserText text, std::initializer_list<TVarRec> values) {
  return Cp874ToUtf8Lossy(Say(text, values));
}

}  // namespace kvshare::receipts
