// Owners of what the drawing libraries count.
#pragma once

#include <cairo.h>
#include <pango/pangocairo.h>

#include <memory>

namespace kvshare::paper {

struct Release {
  void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
  void operator()(cairo_t* context) const { cairo_destroy(context); }
  void operator()(cairo_font_options_t* options) const { cairo_font_options_destroy(options); }
  void operator()(PangoContext* context) const { g_object_unref(context); }
  void operator()(PangoLayout* layout) const { g_object_unref(layout); }
  void operator()(PangoAttrList* attributes) const { pango_attr_list_unref(attributes); }
  void operator()(PangoFontDescription* font) const { pango_font_description_free(font); }
  void operator()(PangoFontMetrics* metrics) const { pango_font_metrics_unref(metrics); }
};

template <typename T>
using Owned = std::unique_ptr<T, Release>;

using Surface = Owned<cairo_surface_t>;
using Context = Owned<cairo_t>;

}  // namespace kvshare::paper
