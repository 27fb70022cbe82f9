// The language of receipt printers, as far as pictures need it.
#pragma once

#include <string>

#include "kvshare/ui/paper.h"
#include "paper/dotpicture.h"

namespace kvshare::paper {

// ESC @ makes the printer ready; ESC p opens the drawer.
void AppendRollBegin(std::string& bytes, const TRollWork& work);

// GS v 0 for each band of kBandRows rows, which is what small printers can hold, then GS V feeds
// the paper to the knife and cuts it. Without a cut ESC d feeds it out to be torn off.
inline constexpr int kBandRows = 128;
void AppendRollPage(std::string& bytes, const DotPicture& page, const TRollWork& work);

}  // namespace kvshare::paper
