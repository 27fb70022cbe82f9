#include "companion/aboutform.h"

#include "kvshare/os/folders.h"
#include "kvshare/platform/fileinfo.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/filenames.h"
#include "kvshare/ui/application.h"

namespace kvshare::companion {

namespace {

constexpr TSize kClient{460, 160};

std::string ProductName() {
  std::string product = GetNamedInfo("ProductName");
  if (!product.empty()) return product;
  if (!Application.Title.empty()) return Application.Title;
  const std::string file = os::ProgramFile();
  return std::string(ExtractFileName(file));
}

std::string VersionText() {
  const std::string version = GetThisResourceFileVersion(os::ProgramFile());
  constexpr std::string_view kVersion = "รุ่น "_th;
  return version.empty() ? version : std::string(kVersion).append(version);
}

}  // namespace

AboutForm::AboutForm() : DialogForm("AboutForm", "เกี่ยวกับโปรแกรม"_th, kClient) {
  struct Line {
    TLabel& label;
    std::string text;
  };
  const Line lines[] = {{Product, ProductName()},
                        {Version, VersionText()},
                        {Company, GetNamedInfo("CompanyName")},
                        {Copyright, GetNamedInfo("LegalCopyright")}};
  int top = kMargin;
  for (const Line& line : lines) {
    Place(line.label, line.text, {kMargin, top, kClient.Width - 2 * kMargin, 13});
    top += 25;
  }
  PlaceButtons();
  CancelBtn.SetVisible(false);
  CancelBtn.Cancel = false;
  OKBtn.SetBounds(CancelBtn.Bounds());
  OKBtn.Cancel = true;
}

}  // namespace kvshare::companion
