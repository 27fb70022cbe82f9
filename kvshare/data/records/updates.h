// What happens to changes on their way to a server.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "kvshare/export.h"
#include "kvshare/rtl/exceptions.h"

namespace kvshare {

enum class TUpdateStatus : std::uint8_t { usUnmodified, usModified, usInserted, usDeleted };
using enum TUpdateStatus;

// Which records are in view: all that are there, or all of the named statuses, deleted ones too.
// usUnmodified has no effect.
struct TUpdateStatusSet {
  bool usModified = false;
  bool usInserted = false;
  bool usDeleted = false;
  bool operator==(const TUpdateStatusSet&) const = default;
  bool IsEmpty() const { return *this == TUpdateStatusSet(); }
};

enum class TUpdateKind : std::uint8_t { ukModify, ukInsert, ukDelete };
using enum TUpdateKind;

// What becomes of a change that a server refused.
enum class TReconcileAction : std::uint8_t {
  raSkip,     // stays as it is
  raAbort,    // so does it, and all later ones without being asked about
  raMerge,    // the user's changed fields on top of the server's values, which become OldValue
  raCorrect,  // stays with the NewValues that the handler has set
  raCancel,   // is taken back
  raRefresh,  // gives way to the server's values
};
using enum TReconcileAction;

// Why a server refused a change. ErrorCode is the server's error number, or 1 where the server
// gives none. PreviousError is the ErrorCode of the previous error in the run, 0 for the first.
class KVSHARE_API EReconcileError : public EDatabaseError {
 public:
  EReconcileError(std::string_view message, std::string_view context, int errorCode,
                  int previousError)
      : EDatabaseError(message),
        context_(context),
        errorCode_(errorCode),
        previousError_(previousError) {}
  ~EReconcileError() override;

  const std::string& Context() const { return context_; }
  int ErrorCode() const { return errorCode_; }
  int PreviousError() const { return previousError_; }

 private:
  std::string context_;
  int errorCode_;
  int previousError_;
};

}  // namespace kvshare
