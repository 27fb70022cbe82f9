#include "kvshare/start/package.h"

#include <gtest/gtest.h>

#include "kvshare/dates/date.h"
#include "kvshare/money/money.h"
#include "kvshare/platform/fileinfo.h"
#include "kvshare/platform/verinfo.h"
#include "kvshare/rtl/modules.h"
#include "kvshare/settings/globals.h"
#include "kvshare/text/strings.h"
#include "kvshare/text/strlist.h"

namespace {
int stopsOfTheProgram = 0;
}

// A routine of the program that happens to have such a name.
extern "C" __attribute__((visibility("default"))) void Finalize();
extern "C" void Finalize() {
  ++stopsOfTheProgram;
}

namespace kvshare {
namespace {

bool Started() {
  const bool all = MyKovraRegistry && KovraDate && KovraMoney && NamedInfoList;
  const bool any = MyKovraRegistry || KovraDate || KovraMoney || NamedInfoList;
  EXPECT_EQ(all, any) << "all together or none";
  return all;
}

TEST(Package, CreatesEachServiceOnceAndFreesItLast) {
  EXPECT_FALSE(Started());
  Initialize();
  ASSERT_TRUE(Started());
  const auto* date = KovraDate;
  KovraAliasName = "an alias too long to lie within the string object itself";
  Initialize();
  EXPECT_EQ(KovraDate, date) << "the second start creates nothing";
  Finalize();
  EXPECT_TRUE(Started()) << "one start is still open";
  EXPECT_NE(KovraAliasName, "");
  Finalize();
  EXPECT_FALSE(Started());
  EXPECT_EQ(KovraAliasName, "");
  EXPECT_LT(KovraAliasName.capacity(), 20U) << "memory given back";
  Finalize();
  Initialize();
  EXPECT_TRUE(Started()) << "a stop too many does not count against the next start";
  Finalize();
  EXPECT_FALSE(Started());
}

TEST(Package, AProgramMayHaveARoutineOfThatName) {
  Initialize();
  kvshare::Finalize();
  EXPECT_FALSE(Started());
  EXPECT_EQ(stopsOfTheProgram, 0);
}

TEST(Package, StartsModulesInOrder) {
  const TPackageInfoTable& table = *GetPackageInfoTable();
  ASSERT_EQ(table.UnitCount, 21);
  EXPECT_STREQ(PackageUnitName(-1), "");
  EXPECT_STREQ(PackageUnitName(21), "");
  struct Case {
    int number;  // in the order of the start, from 1
    const char* name;
    const void* (*created)();
  };
  constexpr Case kCases[] = {
      {4, "version information", [] { return static_cast<const void*>(NamedInfoList); }},
      {5, "settings store", [] { return static_cast<const void*>(MyKovraRegistry); }},
      {10, "dates", [] { return static_cast<const void*>(KovraDate); }},
      {13, "money", [] { return static_cast<const void*>(KovraMoney); }},
  };
  for (int i = 0; i < table.UnitCount; ++i) {
    for (const Case& c : kCases) EXPECT_EQ(c.created() != nullptr, c.number <= i) << c.name << i;
    table.Units[i].Start();
  }
  for (const Case& c : kCases) EXPECT_STREQ(PackageUnitName(c.number - 1), c.name);
  Finalize();
  EXPECT_FALSE(Started());
}

TEST(Package, WhatTheServicesHold) {
  Initialize();
  EXPECT_EQ(NamedInfoList->Text(), "CompanyName=\r\n");
  EXPECT_EQ(MyKovraRegistry->RootKey(),
            "Software\\Undefined CompanyName\\Undefined ProductName v0.0");
  EXPECT_EQ(KovraDate->Year(), 0);
  KovraDate->SetKovraDate(EncodeDate(2004, 2, 29));
  EXPECT_EQ(KovraDate->Year(), 2004);
  EXPECT_EQ(KovraDate->Month(), 2);
  EXPECT_EQ(KovraDate->Day(), 29);
  Finalize();
  EXPECT_EQ(KovraString, nullptr);
  EXPECT_EQ(KovraStrList, nullptr);
}

TEST(Registry, TakesTheProgramsVersionInformation) {
  TStringList info;
  info.SetText("CompanyName=Acme\r\nProductName= \r\nProductVersion=5.2");
  NamedInfoList = &info;
  EXPECT_EQ(TKovraRegistry().RootKey(), "Software\\Acme\\Undefined ProductName v5.2");
  NamedInfoList = nullptr;
}

TEST(Modules, TheLibraryIsListedFromItsLoadOn) {
  const TLibModule* library = LibModuleList();
  ASSERT_NE(library, nullptr);
  EXPECT_NE(library->Name.find("libkvshare"), std::string::npos) << library->Name;
  EXPECT_NE(library->Instance, nullptr);

  TLibModule own{.Name = "own"};
  TLibModule other{.Name = "other"};
  RegisterModule(own);
  RegisterModule(other);
  UnregisterModule(own);
  EXPECT_EQ(LibModuleList(), &other);
  EXPECT_EQ(other.Next, library);
  UnregisterModule(own);
  UnregisterModule(other);
  EXPECT_EQ(LibModuleList(), library);
}

}  // namespace
}  // namespace kvshare
