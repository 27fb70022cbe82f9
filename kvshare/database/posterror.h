// The dialog about a record that could not be posted.
#pragma once

#include "kvshare/data/fields/dataset.h"
#include "kvshare/database/errorform.h"
#include "kvshare/export.h"

namespace kvshare {

class KVSHARE_API TPostErrorForm : public TUpdateErrorForm {
 public:
  // Of the actions, in the order of TDataAction.
  static constexpr std::string_view ActionStr[] = {"Fail", "Abort", "Retry"};

  TPostErrorForm();  // as it is designed, without a record
  // The memo shows the error's message twice.
  TPostErrorForm(TDataSet& DataSet, const EDatabaseError& Error);
};

// What the user has decided about the record: daFail, daAbort or daRetry; daAbort unless he pressed
// OK. With daRetry the texts that he typed are in the fields; one that a field refuses throws the
// field's error and leaves all fields as they were. `Action` is not looked at and stays.
KVSHARE_API TDataAction DoHandlePostError(TDataSet& DataSet, const EDatabaseError& E,
                                          TDataAction& Action);

}  // namespace kvshare
