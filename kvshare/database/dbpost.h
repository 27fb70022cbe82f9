// What a data-entry screen does when a record cannot be posted, or when a server refuses a change.
#pragma once

#include <string_view>

#include "kvshare/data/client/clientdataset.h"
#include "kvshare/export.h"
#include "kvshare/settings/globals.h"

namespace kvshare {

// Stateless; every operation is static. The library never creates an instance. Texts come from
// the message catalogue, and nothing is logged.
class KVSHARE_API TKovraDbPost {
 public:
  // Message boxes: OnPostError becomes qyPostError, OnReconcileError ClientDataSetReconcileError.
  static void SetSimpleDataSetProperties(TClientDataSet& DataSet);
  // The dialog for changes: OnReconcileError becomes ClientDataSetUserReconcileError.
  static void SetUserDataSetProperties(TClientDataSet& DataSet);

  // Throws Exception in place of the post's error: rstrEPostError, the error's message and the
  // names of all required fields that are null or blank, `CODE,NAME`, else the first field and its
  // text,
  // `(CODE=A001)`, each on its line. `Action` stays.
  [[noreturn]] static void qyPostError(TDataSet& DataSet, EDatabaseError& E, TDataAction& Action);

  // Shows one error box about the kind of change, with the name of the first field, the record's
  // key. `Action` stays.
  static void ClientDataSetReconcileError(TClientDataSet& DataSet, EReconcileError& E,
                                          TUpdateKind UpdateKind, TReconcileAction& Action);

  // Ask the user in TReconcileErrorForm (recerror.h) and in TPostErrorForm (posterror.h).
  static void ClientDataSetUserReconcileError(TClientDataSet& DataSet, EReconcileError& E,
                                              TUpdateKind UpdateKind, TReconcileAction& Action);
  static void HandlePostError(TDataSet& DataSet, EDatabaseError& E, TDataAction& Action);
};

}  // namespace kvshare
