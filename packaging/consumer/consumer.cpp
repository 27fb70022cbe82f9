#include <kvshare/kvshare.h>

#include <cstdio>

int main() {
  kvshare::Initialize();
  const std::string amount = kvshare::Format("%12.2n", {kvshare::StrToCurr("-1234567.895")});
  const std::string cash = kvshare::Cp874ToUtf8(kvshare::LoadStr(kvshare::rstrCash));
  std::printf("%s %s\n", cash.c_str(), amount.c_str());
  kvshare::Finalize();
}
