// The back end with windows.
#pragma once

#include "desktop/paper.h"

namespace kvshare::desktop {

class WindowsInterface : public PaperInterface {
 public:
  int ShowMessage(const TMessageBox& message) override;
  void PrepareForm(TForm& form) override;
  int ShowModalForm(TForm& form) override;
  void ProcessMessages() override;
  void RunUntilHidden(TForm& form) override;

  TSize ScreenSize() override;
  TBounds WorkArea() override;
  int TextHeight(std::string_view text) override;
  TPicture CaptureScreen() override;
};

}  // namespace kvshare::desktop
