#include "kvshare/money/money.h"

namespace kvshare {

TKovraMoney* KovraMoney = nullptr;

}  // namespace kvshare
