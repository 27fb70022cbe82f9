// A grid of the library as a table on the screen.
#pragma once

#include <memory>

#include "desktop/controlparts.h"
#include "kvshare/ui/stringgrid.h"

namespace kvshare::desktop {

// The first fixed row and column are headings that stay in sight; others that are fixed are cells
// which nobody can select. Only the cells in sight are asked for.
class GridPart : public ControlPart {
 public:
  GridPart(TStringGrid& grid, QWidget& window, FormEvents& events);
  ~GridPart() override;

  QWidget& Widget() const override;
  void Commit() override;
  TSize Frame() const override;

 protected:
  void RefreshContent() override;

 private:
  class Model;
  class View;
  class Editing;

  bool NeedsScrollBar() const;
  void RefreshSizes();

  TStringGrid& grid_;
  std::unique_ptr<Model> model_;
  std::unique_ptr<Editing> editing_;
  WidgetPtr<View> view_;
};

}  // namespace kvshare::desktop
