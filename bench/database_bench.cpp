// The connection file, SQL fragments and the event log, beside the bare work that they cannot do
// without.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>

#include "kvshare/database/dblog.h"
#include "kvshare/database/dbxconf.h"
#include "kvshare/database/sqldialect.h"
#include "kvshare/os/appendfile.h"
#include "kvshare/os/files.h"
#include "kvshare/os/paths.h"
#include "kvshare/platform/verinfo.h"
#include "kvshare/platform/win32.h"
#include "kvshare/rtl/filebytes.h"
#include "kvshare/rtl/formatdatetime.h"
#include "kvshare/start/package.h"
#include "tests/support.h"

namespace kvshare {
namespace {

// --- Goal: an answer within 4 times a bare open, read and close of the file.

constexpr int kAliases = 20;

std::string TwentyAliases() {
  std::string list = "[dbConnect]\r\n";
  std::string sections;
  for (int i = 0; i < kAliases; ++i) {
    const std::string alias = "Company" + std::to_string(i);
    list += alias + "=FIREBIRD\r\n";
    sections += "[" + alias +
                "]\r\nDriverName=FIREBIRD\r\nGetDriverFunc=getSQLDriverINTERBASE\r\n"
                "LibraryName=kvshare-firebird\r\nVendorLib=libfbclient.so\r\nDatabase=127.0.0.1:"
                "ledger\r\nUser_Name=SYSDBA\r\nPassword=change-me\r\nKeyGenEnable=TRUE\r\n"
                "KeyGenServer=10.0.0.1\r\nKeyGenPort=10023\r\n";
  }
  return list + sections;
}

class ConnectionFile : public benchmark::Fixture {
 public:
  void SetUp(const benchmark::State&) override {
    home_ = std::make_unique<TemporaryHome>();
    os::ForceDirectories(GetKovraShareDataPath());
    WriteFileBytes(GetDbxConnectFileName(), TwentyAliases());
  }
  void TearDown(const benchmark::State&) override { home_.reset(); }

 private:
  std::unique_ptr<TemporaryHome> home_;
};

BENCHMARK_DEFINE_F(ConnectionFile, Bare)(benchmark::State& state) {
  const std::string path = os::NativePath(GetDbxConnectFileName());
  char buffer[1 << 14];
  for (auto _ : state) {
    const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    benchmark::DoNotOptimize(::read(file, buffer, sizeof buffer));
    ::close(file);
  }
}
BENCHMARK_REGISTER_F(ConnectionFile, Bare);

BENCHMARK_DEFINE_F(ConnectionFile, TradeName)(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(GetdbxTradeName("Company19"));
}
BENCHMARK_REGISTER_F(ConnectionFile, TradeName);

BENCHMARK_DEFINE_F(ConnectionFile, FileName)(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(GetdbxFileName("Company19"));
}
BENCHMARK_REGISTER_F(ConnectionFile, FileName);

BENCHMARK_DEFINE_F(ConnectionFile, Password)(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(GetdbxPassword("Company19"));
}
BENCHMARK_REGISTER_F(ConnectionFile, Password);

BENCHMARK_DEFINE_F(ConnectionFile, ConnectNames)(benchmark::State& state) {
  TStringList names;
  for (auto _ : state) GetConnectNames(names);
}
BENCHMARK_REGISTER_F(ConnectionFile, ConnectNames);

// --- Goal: a builder below 300 ns.

void LoadDialect() {
  SQLNotMatchCaseFormat = "UPPER(%s)";
  SQLCompareBegining = "%s LIKE '%s<WILDCARD>'";
  SQLCompareNumEqual = "(CAST(%s AS NUMERIC(18,4)) = CAST(%s AS NUMERIC(18,4)))";
  SQLDateFormat = "DD-?-YYYY";
  SQLDateTimeFormat = "YYYY-MM-DD HH\":\"NN\":\"SS";
  SQLDateDelimiter = "'";
  SQLMonthNameFormat = 1;
}

void BuildField(benchmark::State& state) {
  LoadDialect();
  for (auto _ : state) benchmark::DoNotOptimize(SQLFieldFormat("CUSTOMER.NAME", false));
}
BENCHMARK(BuildField);

void BuildCompare(benchmark::State& state) {
  LoadDialect();
  for (auto _ : state) {
    benchmark::DoNotOptimize(SQLCompareCmd("CUSTOMER.NAME", " somchai ", false, 0));
  }
}
BENCHMARK(BuildCompare);

void BuildNumEqual(benchmark::State& state) {
  LoadDialect();
  for (auto _ : state) benchmark::DoNotOptimize(SQLNumEqual("ITEM.AMOUNT", "1234.50"));
}
BENCHMARK(BuildNumEqual);

void BuildDate(benchmark::State& state) {
  LoadDialect();
  const TDateTime moment = EncodeDate(2004, 3, 5) + 0.38;
  for (auto _ : state) benchmark::DoNotOptimize(DateTimeToSQLDate(moment));
}
BENCHMARK(BuildDate);

void BuildDateTime(benchmark::State& state) {
  LoadDialect();
  const TDateTime moment = EncodeDate(2004, 3, 5) + 0.38;
  for (auto _ : state) benchmark::DoNotOptimize(DateTimeToSQLDateTime(moment));
}
BENCHMARK(BuildDateTime);

// --- Goal: a log line within its settings read and 1.3 times a bare open, append and close.

class EventLog : public benchmark::Fixture {
 public:
  void SetUp(const benchmark::State&) override {
    home_ = std::make_unique<TemporaryHome>();
    Initialize();
    KovraAliasName = "LEDGER";
    KovraLogDatabaseName = R"(C:\Logs\)";
    KovraLogTableName = "events.log";
    TKovraDbLog::WriteLogFile(nullptr, "a", "b", "c", "d");
  }
  void TearDown(const benchmark::State&) override {
    Finalize();
    home_.reset();
  }

 private:
  std::unique_ptr<TemporaryHome> home_;
};

constexpr std::string_view kLine =
    "25/11/2026 01:34 Ledger Post TILL1 somchai IV6911-0001 Posted by the cashier of the day\r\n";

BENCHMARK_DEFINE_F(EventLog, BareAppend)(benchmark::State& state) {
  const std::string path = os::NativePath(R"(C:\Logs\events.log)");
  for (auto _ : state) {
    const int file = ::open(path.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC);
    benchmark::DoNotOptimize(::write(file, kLine.data(), kLine.size()));
    ::close(file);
  }
}
BENCHMARK_REGISTER_F(EventLog, BareAppend);

BENCHMARK_DEFINE_F(EventLog, AppendToFile)(benchmark::State& state) {
  for (auto _ : state) os::AppendToFile(R"(C:\Logs\events.log)", kLine);
}
BENCHMARK_REGISTER_F(EventLog, AppendToFile);

BENCHMARK_DEFINE_F(EventLog, SettingsRead)(benchmark::State& state) {
  for (auto _ : state) {
    benchmark::DoNotOptimize(
        MyKovraRegistry->ReadRegistryString("", R"(LogFile\LEDGER)", "CurrentLog", "000000"));
  }
}
BENCHMARK_REGISTER_F(EventLog, SettingsRead);

BENCHMARK_DEFINE_F(EventLog, WhoAndWhere)(benchmark::State& state) {
  for (auto _ : state) {
    benchmark::DoNotOptimize(TKovraWin32::MyComputerName());
    benchmark::DoNotOptimize(TKovraWin32::MyLoginName());
  }
}
BENCHMARK_REGISTER_F(EventLog, WhoAndWhere);

BENCHMARK_DEFINE_F(EventLog, WriteLogFile)(benchmark::State& state) {
  for (auto _ : state) {
    TKovraDbLog::WriteLogFile(nullptr, "Ledger", "Post", "IV6911-0001",
                              "Posted by the cashier of the day");
  }
}
BENCHMARK_REGISTER_F(EventLog, WriteLogFile);

}  // namespace
}  // namespace kvshare
