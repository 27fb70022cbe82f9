// A change that a server has refused, for the tests of the dialogs about it.
#pragma once

#include <map>
#include <string>
#include <string_view>

#include "kvshare/data/client/clientdataset.h"
#include "kvshare/rtl/convert.h"

namespace kvshare {

// A record that a server has refused: NAME and QTY were changed, and the server has other values of
// some fields.
class Refused : public TClientDataSet {
 public:
  Refused() : TClientDataSet(nullptr, "CUSTOMERS") {
    FieldDefs().Add("CODE", TFieldType::ftString, 10);
    FieldDefs().Add("NAME", TFieldType::ftString, 30);
    FieldDefs().Add("QTY", TFieldType::ftInteger);
    FieldDefs().Add("NOTE", TFieldType::ftMemo);
    FieldDefs().Add("PICTURE", TFieldType::ftBlob);
    AddCalculated("TOTAL", TFieldType::ftInteger);
    CreateDataSet();
    Append();
    FieldByName("CODE").SetAsString("A001");
    FieldByName("NAME").SetAsString("old");
    FieldByName("NOTE").SetAsString("note");
    FieldByName("PICTURE").SetAsString("\x01\x02");
    Post();
    MergeChangeLog();
    Edit();
    FieldByName("NAME").SetAsString("new");
    FieldByName("QTY").SetAsInteger(5);
    FieldByName("NAME").SetDisplayLabel("Name");
  }
  ~Refused() override { Close(); }

  std::map<std::string, std::string> server;  // its values by field name

 protected:
  const TRecordReader* Image(TFieldImage image, const TField& field, int column) const override {
    const std::string& name = field.FieldName();
    if (image == TFieldImage::New && name != "NAME" && name != "QTY") return nullptr;
    if (image != TFieldImage::Cur) return TClientDataSet::Image(image, field, column);
    const auto found = server.find(name);
    if (found == server.end()) return nullptr;
    reader_.text = found->second;
    return &reader_;
  }

 private:
  struct Reader : TRecordReader {
    std::string text;
    bool IsNull(int) const override { return text.empty(); }
    std::int64_t Integer(int) const override { return StrToInt(text); }
    double Float(int) const override { return StrToFloat(text); }
    std::string_view Text(int) const override { return text; }
    void AppendCharacters(std::string& out, int) const override { out += text; }
  };
  mutable Reader reader_;
};

}  // namespace kvshare
