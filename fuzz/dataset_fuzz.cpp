// Tables of any bytes, and lists of fields: what is read is written and reads back the same. The
// first byte chooses what it is.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>

#include "apps/kvshare/data/datasetfile.h"
#include "apps/kvshare/data/fieldspecs.h"
#include "apps/kvshare/data/rowwriter.h"
#include "kvshare/rtl/exceptions.h"
#include "tests/apps/tempfile.h"

namespace {

using namespace kvshare::app;

void Require(bool holds) {
  if (!holds) std::abort();
}

// The rows as text in the same format; nothing for what is no table.
std::optional<std::string> Reread(std::string_view text, DataFormat format) {
  const TempFile input(text);
  kvshare::TClientDataSet set;
  try {
    LoadDataset(set, "-", format, {}, {input.Fd(), 1, 2});
  } catch (const StreamError& e) {
    Require(std::string_view(e.what()).starts_with("-: "));
    return std::nullopt;
  }
  set.First();
  return TextOfRows(set, format == DataFormat::Csv ? RowForm::Csv : RowForm::Json);
}

void CheckTable(std::string_view text, DataFormat format) {
  const auto written = Reread(text, format);
  if (!written) return;
  const auto again = Reread(*written, format);
  // Of a list without records JSON keeps no fields.
  Require(written->empty() || (again && *again == *written));
}

void CheckSpecs(std::string_view text) {
  try {
    std::string specs;
    for (const auto& field : kvshare::app::ParseFieldSpecs(text)) {
      specs += kvshare::app::FieldSpec(field) + ",";
    }
    std::string again;
    for (const auto& field : kvshare::app::ParseFieldSpecs(specs)) {
      again += kvshare::app::FieldSpec(field) + ",";
    }
    Require(again == specs);
  } catch (const kvshare::EConvertError& e) {
    Require(!e.Message().empty());
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::string_view text(reinterpret_cast<const char*>(data) + 1, size - 1);
  switch (data[0] % 3) {
    case 0:
      CheckTable(text, DataFormat::Csv);
      break;
    case 1:
      CheckTable(text, DataFormat::Json);
      break;
    default:
      CheckSpecs(text);
  }
  return 0;
}
