#include "kvshare/database/dbpost.h"

#include <initializer_list>
#include <string>

#include "kvshare/database/posterror.h"
#include "kvshare/database/recerror.h"
#include "kvshare/messages/catalogue.h"
#include "kvshare/rtl/format.h"
#include "kvshare/rtl/strutils.h"
#include "kvshare/ui/messages.h"

namespace kvshare {

namespace {

std::string Lines(std::initializer_list<std::string_view> lines) {
  std::string text;
  std::string_view between;
  for (const std::string_view line : lines) {
    text.append(between).append(line);
    between = "\r\n";
  }
  return text;
}

std::string MissingFields(const TDataSet& dataSet) {
  std::string names;
  for (int i = 0; i < dataSet.FieldCount(); ++i) {
    const TField& field = dataSet.Fields(i);
    if (!field.Required() || !Trim(field.AsString()).empty()) continue;
    if (!names.empty()) names += ',';
    names += field.FieldName();
  }
  return names;
}

std::string KeyField(const TDataSet& dataSet) {
  return Format("(%s)", {dataSet.Fields(0).FieldName()});
}

std::string ReconcileMessage(const TClientDataSet& dataSet, const EReconcileError& error,
                             TUpdateKind kind) {
  const std::string key = KeyField(dataSet);
  switch (kind) {
    case TUpdateKind::ukModify:
      return Lines({LoadStr(rstrECantEdit) + key, error.Message(), LoadStr(rstrERefresh)});
    case TUpdateKind::ukInsert:
      return Lines({LoadStr(rstrECantInsert) + key, dataSet.Name(), error.Message(),
                    LoadStr(rstrEReApply01), LoadStr(rstrEReApply02)});
    case TUpdateKind::ukDelete:
      return Lines({LoadStr(rstrECantDelete) + key, error.Message()});
  }
  return error.Message();
}

}  // namespace

void TKovraDbPost::SetSimpleDataSetProperties(TClientDataSet& DataSet) {
  DataSet.OnPostError = qyPostError;
  DataSet.OnReconcileError = ClientDataSetReconcileError;
}

void TKovraDbPost::SetUserDataSetProperties(TClientDataSet& DataSet) {
  DataSet.OnPostError = qyPostError;
  DataSet.OnReconcileError = ClientDataSetUserReconcileError;
}

void TKovraDbPost::qyPostError(TDataSet& DataSet, EDatabaseError& E, TDataAction& /*Action*/) {
  std::string fields = MissingFields(DataSet);
  if (fields.empty() && DataSet.FieldCount() > 0) {
    const TField& key = DataSet.Fields(0);
    fields = Format("(%s=%s)", {key.FieldName(), key.AsString()});
  }
  throw Exception(Lines({LoadStr(rstrEPostError), E.Message(), fields}));
}

void TKovraDbPost::ClientDataSetReconcileError(TClientDataSet& DataSet, EReconcileError& E,
                                               TUpdateKind UpdateKind,
                                               TReconcileAction& /*Action*/) {
  MessageDlg(ReconcileMessage(DataSet, E, UpdateKind), TMsgDlgType::mtError, {TMsgDlgBtn::mbOK}, 0);
}

void TKovraDbPost::ClientDataSetUserReconcileError(TClientDataSet& DataSet, EReconcileError& E,
                                                   TUpdateKind UpdateKind,
                                                   TReconcileAction& Action) {
  Action = HandleReconcileError(DataSet, UpdateKind, E);
}

void TKovraDbPost::HandlePostError(TDataSet& DataSet, EDatabaseError& E, TDataAction& Action) {
  Action = DoHandlePostError(DataSet, E, Action);
}

}  // namespace kvshare
