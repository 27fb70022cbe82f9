#include "kvshare/start/package.h"

#include <array>
#include <cstddef>
#include <memory>
#include <string>
#include <utility>

#include "kvshare/database/sqlfunc.h"
#include "kvshare/dates/date.h"
#include "kvshare/money/money.h"
#include "kvshare/platform/fileinfo.h"
#include "kvshare/platform/verinfo.h"
#include "kvshare/settings/globals.h"

namespace kvshare {

namespace {

void NothingToDo() {}

// An object that lives from its module's start to its stop, known to all by a global pointer.
template <auto& Global, auto Make>
struct Service {
  static inline decltype(Make()) owner;

  static void Create() {
    owner = Make();
    Global = owner.get();
  }
  static void Free() {
    Global = nullptr;
    owner.reset();
  }
};

template <typename T, T*& Global>
using ServiceOf = Service<Global, std::make_unique<T>>;

using NamedInfo = Service<NamedInfoList, MakeNamedInfoList>;
using Registry = ServiceOf<TKovraRegistry, MyKovraRegistry>;
using Dates = ServiceOf<TKovraDate, KovraDate>;
using Money = ServiceOf<TKovraMoney, KovraMoney>;

// Gives the memory back as well, which clear() would keep.
void ReleaseTexts() {
  for (std::string* text : TextGlobals()) std::string().swap(*text);
}

void ReleaseSQLMessage() {
  std::string().swap(KovraSQLEMessage);
}

struct Module {
  const char* name;
  void (*start)();
  void (*stop)();
};

constexpr Module kModules[] = {
    {"message catalogue", NothingToDo, NothingToDo},
    {"windows helpers", NothingToDo, NothingToDo},
    {"bitmap printing", NothingToDo, NothingToDo},
    {"version information", NamedInfo::Create, NamedInfo::Free},
    {"settings store", Registry::Create, Registry::Free},
    {"string utilities", NothingToDo, NothingToDo},
    {"connection configuration", NothingToDo, NothingToDo},
    {"identifiers", NothingToDo, NothingToDo},
    {"shared settings", NothingToDo, ReleaseTexts},
    {"dates", Dates::Create, Dates::Free},
    {"date field handlers", NothingToDo, NothingToDo},
    {"dialog bridge", NothingToDo, NothingToDo},
    {"money", Money::Create, Money::Free},
    {"log", NothingToDo, NothingToDo},
    {"SQL helpers", NothingToDo, ReleaseSQLMessage},
    {"string lists", NothingToDo, NothingToDo},
    {"reconcile error dialog", NothingToDo, NothingToDo},
    {"post error dialog", NothingToDo, NothingToDo},
    {"client dataset helpers", NothingToDo, NothingToDo},
    {"file helpers", NothingToDo, NothingToDo},
    {"value encoding", NothingToDo, NothingToDo},
};
constexpr std::size_t kModuleCount = std::size(kModules);
static_assert(kModuleCount == 21);

constinit std::array<unsigned, kModuleCount> starts{};

// A start that throws leaves the counter as it was.
template <std::size_t I>
void Start() {
  if (starts[I] == 0) kModules[I].start();
  ++starts[I];
}

template <std::size_t I>
void Stop() {
  if (starts[I] > 0 && --starts[I] == 0) kModules[I].stop();
}

constexpr auto kUnits = []<std::size_t... I>(std::index_sequence<I...>) {
  return std::array{TPackageUnit{Start<I>, Stop<I>}...};
}
(std::make_index_sequence<kModuleCount>());

constexpr TPackageInfoTable kTable{kModuleCount, kUnits.data()};

}  // namespace

const char* PackageUnitName(std::int32_t index) {
  return index >= 0 && index < kTable.UnitCount ? kModules[index].name : "";
}

void Initialize() {
  for (const TPackageUnit& unit : kUnits) unit.Start();
}

void Finalize() {
  for (std::size_t i = kModuleCount; i-- > 0;) kUnits.at(i).Stop();
}

const TPackageInfoTable* GetPackageInfoTable() {
  return &kTable;
}

}  // namespace kvshare

extern "C" {

KVSHARE_API void Initialize();
void Initialize() {
  kvshare::Initialize();
}

KVSHARE_API void Finalize();
void Finalize() {
  kvshare::Finalize();
}

KVSHARE_API const kvshare::TPackageInfoTable* GetPackageInfoTable();
const kvshare::TPackageInfoTable* GetPackageInfoTable() {
  return kvshare::GetPackageInfoTable();
}

}  // extern "C"
