// What the shared library shows to the programs that link it; all else stays hidden.
#pragma once

#define KVSHARE_API __attribute__((visibility("default")))
