// The dialog about a change that the server refused.
#pragma once

#include "kvshare/data/client/clientdataset.h"
#include "kvshare/database/errorform.h"
#include "kvshare/export.h"

namespace kvshare {

class KVSHARE_API TReconcileErrorForm : public TUpdateErrorForm {
 public:
  // Of the actions, in the order of TReconcileAction.
  static constexpr std::string_view ActionStr[] = {"Skip",    "Abort",  "Merge",
                                                   "Correct", "Cancel", "Refresh"};

  TReconcileErrorForm();  // as it is designed, without a record
  TReconcileErrorForm(TDataSet& DataSet, TUpdateKind UpdateKind, const EReconcileError& Error);
};

// What the user has decided about the refused change of the current record: Skip, Cancel or
// Correct, and where the server has other values Refresh or Merge; raAbort unless he pressed OK.
// With raCorrect the texts that he typed are in the fields; one that a field refuses throws the
// field's error and leaves all fields as they were.
KVSHARE_API TReconcileAction HandleReconcileError(TDataSet& DataSet, TUpdateKind UpdateKind,
                                                  const EReconcileError& ReconcileError);

}  // namespace kvshare
