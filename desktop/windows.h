// The back end with windows, which prints with the library of paper.
#pragma once

#include "kvshare/ui/paper.h"

namespace kvshare::desktop {

class WindowsInterface : public TPaperInterface {
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
