// Data packets of any bytes: what is read is written, and reads back the same, with its log.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "kvshare/data/client/clientdataset.h"
#include "kvshare/rtl/exceptions.h"

namespace {

void Require(bool holds) {
  if (!holds) std::abort();
}

// Walks the set, so that each value is looked at.
std::size_t SizeOfValues(kvshare::TClientDataSet& set) {
  std::size_t size = 0;
  for (set.First(); !set.Eof(); set.Next()) {
    for (int i = 0; i < set.FieldCount(); ++i) {
      size += set.Fields(i).AsString().size();
      Require(set.Fields(i).OldValue().IsNull() || !set.Fields(i).OldValue().IsEmpty());
    }
  }
  return size;
}

// False where records of before their changes have a key in common.
bool TakesChangesBack(kvshare::TClientDataSet& set) {
  try {
    set.CancelUpdates();
  } catch (const kvshare::EDBClient& e) {
    Require(e.Message() == "Key violation.");
    return false;
  }
  return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view packet(reinterpret_cast<const char*>(data), size);
  kvshare::TClientDataSet set;
  try {
    set.SetXMLData(packet);
  } catch (const kvshare::EDBClient& e) {
    const std::string_view message = e.Message();
    Require(message.starts_with("Mismatch in datapacket. ") || message == "Key violation.");
    Require(!set.Active());
    return 0;
  }
  const std::size_t values = SizeOfValues(set);
  const std::string saved = set.XMLData();
  kvshare::TClientDataSet again;
  again.SetXMLData(saved);
  Require(again.RecordCount() == set.RecordCount() && again.ChangeCount() == set.ChangeCount());
  Require(again.FieldCount() == set.FieldCount() && SizeOfValues(again) == values);
  Require(again.XMLData() == saved);
  Require(TakesChangesBack(set) == TakesChangesBack(again));
  Require(again.RecordCount() == set.RecordCount() && SizeOfValues(again) == SizeOfValues(set));
  return 0;
}
