// A client dataset's data packet.
#include <memory>
#include <string>
#include <string_view>

#include "kvshare/data/client/clientdataset.h"
#include "kvshare/data/client/clientrecords.h"
#include "kvshare/data/packet/packet.h"
#include "kvshare/rtl/filebytes.h"

namespace kvshare {

void TClientDataSet::LoadFromFile(std::string_view fileName) {
  SetXMLData(ReadFileBytes(fileName));
}

// All that can fail comes before the set changes.
void TClientDataSet::SetXMLData(std::string_view packet) {
  data::Packet read = data::ReadPacket(packet);
  auto shape = std::make_unique<data::PacketShape>(std::move(read.shape));
  TFieldDefs fieldDefs;
  for (const TFieldDef& def : read.fields) fieldDefs.Add(def);
  std::unique_ptr<data::ClientRecords> records = NewRecords(read.fields);
  records->Table() = std::move(read.table);
  Arrange(*records, read.fields, read.primaryKey, read.defaultOrder);
  Close();
  fieldDefs_ = std::move(fieldDefs);
  primaryKey_ = std::move(read.primaryKey);
  defaultOrder_ = std::move(read.defaultOrder);
  shape_ = std::move(shape);
  loaded_ = std::move(records);
  Open();
}

void TClientDataSet::SaveToFile(std::string_view fileName) const {
  WriteFileBytes(fileName, XMLData());
}

std::string TClientDataSet::XMLData() const {
  CheckActive();
  CheckNames(stored_);
  const data::PacketShape none;
  return data::WritePacket({.fields = stored_,
                            .table = records_->Table(),
                            .shape = shape_ ? *shape_ : none,
                            .primaryKey = ColumnsOf(primaryKey_),
                            .defaultOrder = ColumnsOf(defaultOrder_)});
}

}  // namespace kvshare
