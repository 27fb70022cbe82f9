#include "paper/pagecanvas.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "kvshare/rtl/cp874.h"
#include "kvshare/ui/printer.h"
#include "paper/pictures.h"

namespace kvshare::paper {

namespace {

constexpr std::size_t kMostFonts = 64;
constexpr std::size_t kMostTexts = 400;  // a font

bool IsEmpty(const TRect& area) {
  return area.Right <= area.Left || area.Bottom <= area.Top;
}

bool Overlap(const TRect& a, const TRect& b) {
  return a.Left < b.Right && b.Left < a.Right && a.Top < b.Bottom && b.Top < a.Bottom;
}

bool Contains(const TRect& outer, const TRect& inner) {
  return outer.Left <= inner.Left && inner.Right <= outer.Right && outer.Top <= inner.Top &&
         inner.Bottom <= outer.Bottom;
}

bool HasThaiLetter(std::string_view text) {
  return std::ranges::any_of(text, [](char c) { return static_cast<unsigned char>(c) > 0xA0; });
}

Owned<PangoFontDescription> FontOf(const TFont& asked, double pixels) {
  Owned<PangoFontDescription> font(pango_font_description_new());
  pango_font_description_set_family(font.get(), Cp874ToUtf8Lossy(asked.Name).c_str());
  pango_font_description_set_absolute_size(font.get(), pixels * PANGO_SCALE);
  if (asked.Bold) pango_font_description_set_weight(font.get(), PANGO_WEIGHT_BOLD);
  return font;
}

struct Heights {
  double ascent;
  double descent;
  double Cell() const { return ascent + descent; }
};

// Of the font itself, not of those that stand in for letters that it lacks.
Heights HeightsOf(PangoContext* context, const PangoFontDescription* font) {
  const Owned<PangoFontMetrics> metrics(
      pango_context_get_metrics(context, font, pango_language_from_string("en")));
  return {static_cast<double>(pango_font_metrics_get_ascent(metrics.get())) / PANGO_SCALE,
          static_cast<double>(pango_font_metrics_get_descent(metrics.get())) / PANGO_SCALE};
}

// The letters' height for a line of that height, to which it is proportional.
double PixelsForCell(PangoContext* context, const TFont& asked, int cell) {
  constexpr int kSample = 1000;
  return cell * kSample / HeightsOf(context, FontOf(asked, kSample).get()).Cell();
}

// Letters as they are designed, at every size: lines are as long as the sums of their letters.
Owned<PangoContext> MakeContext(double scale) {
  Owned<PangoContext> context(pango_font_map_create_context(pango_cairo_font_map_get_default()));
  const Owned<cairo_font_options_t> options(cairo_font_options_create());
  cairo_font_options_set_hint_style(options.get(), CAIRO_HINT_STYLE_NONE);
  cairo_font_options_set_hint_metrics(options.get(), CAIRO_HINT_METRICS_OFF);
  cairo_font_options_set_antialias(options.get(), CAIRO_ANTIALIAS_GRAY);
  pango_cairo_context_set_font_options(context.get(), options.get());
  pango_context_set_round_glyph_positions(context.get(), FALSE);
  pango_context_set_language(context.get(), pango_language_from_string("th"));
  const PangoMatrix matrix{scale, 0, 0, scale, 0, 0};
  pango_context_set_matrix(context.get(), &matrix);
  return context;
}

// Without kerning and ligatures a text is as wide as its letters, and digits stand below digits.
Owned<PangoAttrList> PlainLetters() {
  Owned<PangoAttrList> attributes(pango_attr_list_new());
  pango_attr_list_insert(attributes.get(), pango_attr_font_features_new("kern=0, liga=0"));
  return attributes;
}

void SetColour(cairo_t* page, TPixel colour) {
  constexpr double kFull = 255;
  cairo_set_source_rgb(page, colour.red / kFull, colour.green / kFull, colour.blue / kFull);
}

}  // namespace

PageCanvas::PageCanvas(int pixelsPerInch, double scale, Inks inks)
    : pixelsPerInch_(pixelsPerInch),
      inks_(inks),
      context_(MakeContext(scale)),
      features_(PlainLetters()),
      unscaled_(MakeContext(1)) {}

void PageCanvas::DrawOn(cairo_t* page, TSize size) {
  page_ = page;
  size_ = size;
  marks_.clear();
}

PageCanvas::KnownFont PageCanvas::LookUp() const {
  constexpr double kUsualPoints = 10;
  constexpr double kPointsAnInch = 72;
  constexpr int kHighest = 1 << 16;  // higher ones are no letters on any paper
  const int height = std::clamp(Font.Height, -kHighest, kHighest);
  const double pixels = height > 0   ? PixelsForCell(unscaled_.get(), Font, height)
                        : height < 0 ? -height
                                     : kUsualPoints * pixelsPerInch_ / kPointsAnInch;
  Owned<PangoFontDescription> font = FontOf(Font, pixels);
  const Heights heights = HeightsOf(unscaled_.get(), font.get());
  const int cell = height > 0 ? height : static_cast<int>(std::lround(heights.Cell()));
  return {Font, std::move(font), heights.ascent, cell, {}};
}

PageCanvas::KnownFont& PageCanvas::CurrentFont() {
  const auto known =
      std::ranges::find_if(fonts_, [this](const KnownFont& font) { return font.asked == Font; });
  if (known != fonts_.end()) {
    fonts_.splice(fonts_.begin(), fonts_, known);
  } else {
    fonts_.push_front(LookUp());
    if (fonts_.size() > kMostFonts) fonts_.pop_back();
  }
  return fonts_.front();
}

PageCanvas::SetText PageCanvas::Lay(std::string_view text, const PangoFontDescription* font) const {
  Owned<PangoLayout> layout(pango_layout_new(context_.get()));
  const std::string utf8 = Cp874ToUtf8Lossy(text);
  pango_layout_set_font_description(layout.get(), font);
  pango_layout_set_attributes(layout.get(), features_.get());
  pango_layout_set_single_paragraph_mode(layout.get(), TRUE);
  pango_layout_set_text(layout.get(), utf8.data(), static_cast<int>(utf8.size()));
  int width = 0;
  pango_layout_get_size(layout.get(), &width, nullptr);
  return {std::move(layout),
          static_cast<int>(std::lround(static_cast<double>(width) / PANGO_SCALE))};
}

const PageCanvas::SetText& PageCanvas::Set(std::string_view text) {
  KnownFont& font = CurrentFont();
  std::string key(text);
  const auto known = font.texts.find(key);
  if (known != font.texts.end()) return known->second;
  if (font.texts.size() >= kMostTexts) font.texts.clear();
  return font.texts.emplace(std::move(key), Lay(text, font.font.get())).first->second;
}

TSize PageCanvas::TextExtent(std::string_view text) {
  const int width = text.empty() ? 0 : Set(text).width;
  return {width, CurrentFont().cell};
}

std::vector<std::size_t> PageCanvas::LineBreaks(std::string_view text) {
  const std::string utf8 = Cp874ToUtf8Lossy(text);
  // A byte of the code page is a letter, so that both count alike.
  std::vector<PangoLogAttr> letters(text.size() + 1);
  pango_get_log_attrs(utf8.data(), static_cast<int>(utf8.size()), -1,
                      pango_language_from_string("th"), letters.data(),
                      static_cast<int>(letters.size()));
  std::vector<std::size_t> breaks;
  for (std::size_t i = 1; i < text.size(); ++i) {
    if (letters[i].is_line_break != 0) breaks.push_back(i);
  }
  return breaks;
}

void PageCanvas::TextOut(int x, int y, std::string_view text) {
  if (text.empty()) return;
  const SetText& set = Set(text);
  if (HasThaiLetter(text) && pango_layout_get_unknown_glyphs_count(set.layout.get()) > 0) {
    throw EPrinter("No installed font has Thai letters");
  }
  if (page_ == nullptr) return;
  const KnownFont& font = CurrentFont();
  const TRect cell{x, y, x + set.width, y + font.cell};
  // A fill that changes nothing is left out: they would be a third of a page's bytes.
  if (!StandsOn(cell, Brush)) Paint(cell, Brush);
  marks_.push_back({cell, std::nullopt});
  SetColour(page_, clBlack);
  cairo_move_to(page_, x, y + font.ascent);
  pango_cairo_show_layout_line(page_, pango_layout_get_line_readonly(set.layout.get(), 0));
}

// Whether all of the area has that colour already.
bool PageCanvas::StandsOn(const TRect& area, TPixel colour) const {
  constexpr std::size_t kMostLooked = 2000;
  if (marks_.size() > kMostLooked) return false;
  const auto below = std::find_if(marks_.rbegin(), marks_.rend(),
                                  [&area](const Mark& mark) { return Overlap(area, mark.area); });
  if (below == marks_.rend()) return colour == clWhite;
  return below->fill == colour && Contains(below->area, area);
}

void PageCanvas::Paint(const TRect& area, TPixel colour) {
  SetColour(page_, colour);
  cairo_rectangle(page_, area.Left, area.Top, static_cast<double>(area.Right) - area.Left,
                  static_cast<double>(area.Bottom) - area.Top);
  cairo_fill(page_);
}

void PageCanvas::FillRect(const TRect& target) {
  if (page_ == nullptr || IsEmpty(target)) return;
  Paint(target, Brush);
  marks_.push_back({target, Brush});
}

void PageCanvas::StretchDraw(const TRect& target, const TPicture& picture) {
  if (page_ == nullptr || IsEmpty(target) || picture.pixels.empty()) return;
  marks_.push_back({target, std::nullopt});
  if (inks_ == Inks::All) return DrawPicture(page_, target, picture);
  const TRect seen{std::max(target.Left, 0), std::max(target.Top, 0),
                   std::min(target.Right, size_.Width), std::min(target.Bottom, size_.Height)};
  if (!IsEmpty(seen)) DrawDithered(page_, target, seen, picture);
}

}  // namespace kvshare::paper
