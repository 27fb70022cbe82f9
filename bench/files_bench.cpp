// A tree of 100,000 small files: listed, counted and copied by the library, and by hand.
#include <benchmark/benchmark.h>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "kvshare/os/paths.h"
#include "kvshare/platform/filehelpers.h"
#include "kvshare/rtl/filebytes.h"

namespace kvshare {
namespace {

namespace fs = std::filesystem;

constexpr int kFolders = 1000;
constexpr int kFilesInEach = 100;

// Made once, removed at the end.
class Tree {
 public:
  Tree() {
    std::string name = (fs::temp_directory_path() / "kvshare-bench-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) std::abort();
    top_ = name;
    for (int i = 0; i < kFolders; ++i) {
      const fs::path folder = top_ / "from" / std::to_string(i / 10) / std::to_string(i);
      fs::create_directories(folder);
      for (int k = 0; k < kFilesInEach; ++k) {
        std::ofstream(folder / ("invoice" + std::to_string(k) + ".txt"))
            << "document " << k << "\n";
      }
    }
  }
  ~Tree() { fs::remove_all(top_); }
  Tree(const Tree&) = delete;
  Tree& operator=(const Tree&) = delete;

  std::string From() const { return (top_ / "from").string(); }
  // Another one each time: some file systems take long to use again what was just removed.
  std::string NewTarget() const {
    static int last = 0;
    return (top_ / ("to" + std::to_string(++last))).string();
  }

 private:
  fs::path top_;
};

const Tree& TheTree() {
  static const Tree tree;
  return tree;
}

// Calls `file` with the folder and the name of each file below `path`.
template <typename File>
void WalkByHand(const std::string& path, const File& file) {
  DIR* folder = opendir(path.c_str());
  if (folder == nullptr) std::abort();
  while (const dirent* entry = readdir(folder)) {
    if (entry->d_name[0] == '.') continue;
    if (entry->d_type == DT_DIR) {
      WalkByHand(path + "/" + entry->d_name, file);
    } else {
      file(path, entry->d_name);
    }
  }
  closedir(folder);
}

void CountFiles(benchmark::State& state) {
  state.SetItemsProcessed(state.iterations() * kFolders * kFilesInEach);
}

void BM_Count_ByHand(benchmark::State& state) {
  const std::string from = TheTree().From();
  for (auto _ : state) {
    int count = 0;
    WalkByHand(from, [&](const std::string&, const char*) { ++count; });
    if (count != kFolders * kFilesInEach) state.SkipWithError("files are missing");
  }
  CountFiles(state);
}
BENCHMARK(BM_Count_ByHand)->Unit(benchmark::kMillisecond);

void BM_CountFileName(benchmark::State& state) {
  const std::string from = os::WindowsPath(TheTree().From() + "/");
  for (auto _ : state) {
    const int count = CountFileName(from, "*.*", true);
    if (count != kFolders * kFilesInEach) state.SkipWithError("files are missing");
  }
  CountFiles(state);
}
BENCHMARK(BM_CountFileName)->Unit(benchmark::kMillisecond);

void BM_List_ByHand(benchmark::State& state) {
  const std::string from = TheTree().From();
  for (auto _ : state) {
    TStringList list;
    WalkByHand(from,
               [&](const std::string& folder, const char* name) { list.Add(folder + "/" + name); });
    benchmark::DoNotOptimize(list.Count());
  }
  CountFiles(state);
}
BENCHMARK(BM_List_ByHand)->Unit(benchmark::kMillisecond);

void BM_GetFileNames(benchmark::State& state) {
  const std::string from = os::WindowsPath(TheTree().From() + "/");
  for (auto _ : state) {
    TStringList list;
    GetFileNames(from, list, "*.*", true);
    benchmark::DoNotOptimize(list.Count());
  }
  CountFiles(state);
}
BENCHMARK(BM_GetFileNames)->Unit(benchmark::kMillisecond);

void CopyByHand(const std::string& from, const std::string& to) {
  mkdir(to.c_str(), 0777);
  std::string made;
  WalkByHand(from, [&](const std::string& folder, const char* name) {
    const std::string target = to + folder.substr(from.size());
    if (target != made) fs::create_directories(made = target);
    const int source = open((folder + "/" + name).c_str(), O_RDONLY);
    const int copy = open((target + "/" + name).c_str(), O_WRONLY | O_CREAT | O_EXCL, 0666);
    std::array<char, 4096> block;
    ssize_t n = 0;
    while ((n = read(source, block.data(), block.size())) > 0) {
      if (write(copy, block.data(), static_cast<std::size_t>(n)) != n) std::abort();
    }
    close(source);
    close(copy);
  });
}

template <typename Copy>
void CopyTrees(benchmark::State& state, Copy copy) {
  for (auto _ : state) copy(TheTree().NewTarget());
  CountFiles(state);
}

void BM_Copy_ByHand(benchmark::State& state) {
  CopyTrees(state, [](const std::string& to) { CopyByHand(TheTree().From(), to); });
}
BENCHMARK(BM_Copy_ByHand)->Unit(benchmark::kMillisecond)->Iterations(3)->UseRealTime();

void BM_CopyDir(benchmark::State& state) {
  const std::string from = os::WindowsPath(TheTree().From() + "/");
  CopyTrees(state,
            [&](const std::string& to) { CopyDir(from, os::WindowsPath(to + "/"), "*.*", true); });
}
BENCHMARK(BM_CopyDir)->Unit(benchmark::kMillisecond)->Iterations(3)->UseRealTime();

// Each name is new, so that each is looked for in another case.
void BM_NamesOfNewFiles(benchmark::State& state) {
  for (auto _ : state) {
    const std::string target = TheTree().NewTarget();
    const std::string to = os::WindowsPath(target + "/");
    fs::create_directory(target);
    for (int i = 0; i < kFolders * kFilesInEach; ++i) {
      const std::string name = os::NativePath(to + "New" + std::to_string(i));
      close(open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL, 0666));
    }
  }
  CountFiles(state);
}
BENCHMARK(BM_NamesOfNewFiles)->Unit(benchmark::kMillisecond)->Iterations(1)->UseRealTime();

}  // namespace
}  // namespace kvshare
