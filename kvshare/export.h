// What the shared library shows to the programs that link it; all else stays hidden.
#pragma once

#if __cplusplus < 202002L
#error "KvShare needs C++20: compile with -std=c++20 or newer"
#endif

#define KVSHARE_API __attribute__((visibility("default")))
