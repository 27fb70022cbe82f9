// What a program finds by name in the library of paper.
#include "kvshare/rtl/exceptions.h"
#include "paper/systempaper.h"

extern "C" __attribute__((visibility("default"))) kvshare::TPaper* kvshare_paper(int contract) {
  if (contract != kvshare::kPaperContract) {
    throw kvshare::EOSError("The library kvshare-paper is of another version");
  }
  static kvshare::paper::SystemPaper paper;
  return &paper;
}
