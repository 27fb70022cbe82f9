// Prints the kilobytes of memory that loading and starting a library adds: resident LIBRARY.
#include <dlfcn.h>

#include <cstdio>
#include <memory>

namespace {

// From the kernel's exact sum over all mappings, -1 where the kernel gives none.
long ResidentKilobytes() {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(
      std::fopen("/proc/self/smaps_rollup", "r"), std::fclose);
  char line[256];
  long kilobytes = -1;
  while (file && std::fgets(line, sizeof line, file.get())) {
    if (std::sscanf(line, "Rss: %ld kB", &kilobytes) == 1) break;
  }
  return kilobytes;
}

}  // namespace

int main(int argc, char** argv) {
  ResidentKilobytes();  // what the measuring itself brings in
  const long before = ResidentKilobytes();
  void* library = argc == 2 ? dlopen(argv[1], RTLD_NOW) : nullptr;
  void* initialize = library != nullptr ? dlsym(library, "Initialize") : nullptr;
  if (initialize == nullptr || before < 0) return 1;
  reinterpret_cast<void (*)()>(initialize)();
  std::printf("%ld\n", ResidentKilobytes() - before);
}
