#include "companion/sqlform.h"

#include "kvshare/rtl/cp874.h"

namespace kvshare::companion {

namespace {

constexpr TSize kClient{560, 360};

}  // namespace

SqlForm::SqlForm(std::string_view sql) : DialogForm("SqlForm", "คำสั่ง SQL"_th, kClient) {
  Place(Sql, "", {kMargin, kMargin, kClient.Width - 2 * kMargin, kClient.Height - 61});
  Sql.SetText(sql);
  PlaceButtons();
}

}  // namespace kvshare::companion
