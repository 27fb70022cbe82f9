// Types any lines at a form: the talk ends, what may not be changed is as it was, and no byte that
// steers a terminal is in a cell or is written.
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>

#include "kvshare/ui/consoleform.h"
#include "tests/ui/sampleform.h"

namespace {

using namespace kvshare;

void Expect(bool holds) {
  if (!holds) std::abort();
}

bool IsControl(char c) {
  return (static_cast<unsigned char>(c) < 0x20 && c != '\n') || c == 0x7F;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const int in = memfd_create("typed", MFD_CLOEXEC);
  static const int out = memfd_create("shown", MFD_CLOEXEC);
  Expect(ftruncate(in, 0) == 0 && ftruncate(out, 0) == 0);
  Expect(pwrite(in, data, size, 0) == static_cast<ssize_t>(size));
  lseek(in, 0, SEEK_SET);
  lseek(out, 0, SEEK_SET);

  SampleForm form;
  Expect(TalkAboutForm(form, os::Console(in, out)) != mrNone);
  Expect(form.ModalResult == mrOk || form.ModalResult == mrCancel);
  const SampleForm untouched;
  Expect(form.message.Text() == untouched.message.Text());
  for (int row = 0; row < 3; ++row) {
    for (const int col : {0, 2})
      Expect(form.grid.Cells(col, row) == untouched.grid.Cells(col, row));
    Expect(std::ranges::none_of(form.grid.Cells(1, row), IsControl));
  }
  const std::string shown = ShownForm(form);
  Expect(std::ranges::none_of(shown, IsControl));
  return 0;
}
