// Pictures on a page.
#pragma once

#include "kvshare/ui/canvas.h"
#include "paper/handles.h"

namespace kvshare::paper {

// The whole picture stretched into the rectangle. Throws EPrinter for one that is too large.
void DrawPicture(cairo_t* page, const TRect& target, const TPicture& picture);

// The same in black dots on white, by error diffusion (Floyd and Steinberg, 1976), of which only
// the part `seen` is computed. A unit of the page is a dot.
void DrawDithered(cairo_t* page, const TRect& target, const TRect& seen, const TPicture& picture);

}  // namespace kvshare::paper
