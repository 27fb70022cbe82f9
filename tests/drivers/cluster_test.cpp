// Three nodes that replicate to each other. Run by scripts/check-cluster, which starts them.
#include <gmock/gmock.h>
#include <signal.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <thread>

#include "kvshare/data/sql/sqlconnection.h"
#include "kvshare/database/sqlreplication.h"
#include "tests/drivers/server.h"
#include "tests/os/childprocess.h"
#include "tests/servers/serverprocess.h"

namespace kvshare {
namespace {

using data::Isolation;
using Kind = data::DriverError::Kind;
using testing::ElementsAre;

std::string NodeFile(int node) {
  const char* folder = std::getenv("KVSHARE_CLUSTER");
  if (folder == nullptr) throw std::runtime_error("run this by scripts/check-cluster");
  return std::string(folder) + "/node" + std::to_string(node);
}

ConnectionPointer ConnectedTo(int node) {
  ConnectionPointer connection = MakeConnection();
  connection->Connect(ParametersOfFile(NodeFile(node)));
  // Reads wait for what the other nodes have committed.
  connection->Execute("SET SESSION wsrep_sync_wait = 1");
  return connection;
}

TEST(Cluster, OfTwoWhoWriteOneRowTheSecondGetsAConflict) {
  const auto first = ConnectedTo(1);
  const auto second = ConnectedTo(2);
  CreateTable(*first, "kv_balance", "k INTEGER NOT NULL PRIMARY KEY, v INTEGER");
  first->Execute("INSERT INTO kv_balance VALUES (1, 10)");
  ASSERT_THAT(RowsOf(*second, "SELECT v FROM kv_balance"), ElementsAre(ElementsAre("10")));

  first->Begin(Isolation::ReadCommitted);
  second->Begin(Isolation::ReadCommitted);
  first->Execute("UPDATE kv_balance SET v = 11");
  second->Execute("UPDATE kv_balance SET v = 12");
  first->Commit();
  EXPECT_EQ(KindOfFailure([&second] { second->Commit(); }), Kind::Conflict);
  second->Rollback();
  EXPECT_THAT(RowsOf(*second, "SELECT v FROM kv_balance"), ElementsAre(ElementsAre("11")));
}

// Each node has its own copy of the counter: of two who take a number at once one learns of it at
// its commit, and takes another one.
TEST(Cluster, NoSendNumberIsGivenTwice) {
  constexpr int kTakes = 100;
  constexpr int kNodes[] = {1, 2, 3, 1};
  CreateTable(*ConnectedTo(1), "KOVRASYNC",
              "SYN_KEY INTEGER NOT NULL PRIMARY KEY, SYN_TABLENAME VARCHAR(20),"
              " SYN_LASTSEND VARCHAR(17), SYN_LASTUPD VARCHAR(17)");
  RowsOf(*ConnectedTo(2), "SELECT COUNT(*) FROM KOVRASYNC");
  RowsOf(*ConnectedTo(3), "SELECT COUNT(*) FROM KOVRASYNC");
  Pipe taken;
  std::vector<ChildProcess> children;
  for (const int node : kNodes) {
    children.emplace_back([node, &taken] {
      TSQLConnection own;
      own.SetDriverName("MYSQL");
      own.LibraryName = KVSHARE_DRIVERS "/" + std::string(CurrentDialect().library);
      own.GetDriverFunc = CurrentDialect().entry;
      for (const auto& [key, value] : ParametersOfFile(NodeFile(node))) {
        own.Params.SetValue(key, value);
      }
      for (int i = 0; i < kTakes; ++i) {
        if (!taken.Write(std::stol(TakeNextRpl(own)))) return false;
      }
      return true;
    });
  }
  taken.CloseWriter();  // the end comes when the last child is gone
  std::vector<long> numbers;
  for (std::size_t i = 0; i < std::size(kNodes) * kTakes; ++i) {
    long number = 0;
    if (!taken.Read(number)) break;
    numbers.push_back(number);
  }
  for (ChildProcess& child : children) EXPECT_TRUE(child.Held());
  std::ranges::sort(numbers);
  ASSERT_EQ(numbers.size(), std::size(kNodes) * kTakes);
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    ASSERT_EQ(numbers[i], static_cast<long>(i) + 1);
  }
}

// A program that posts documents, each of several lines in one transaction, through any node that
// answers.
class Poster {
 public:
  static constexpr int kLines = 10;

  // After a failure nobody knows whether the document is in: it is looked for before it is posted
  // again.
  void Post(int document) {
    for (int attempt = 0; attempt < 200; ++attempt) {
      try {
        if (!connection_) connection_ = ConnectedTo(node_);
        if (attempt > 0 && IsPosted(document)) return;
        Insert(document);
        return;
      } catch (const data::DriverError& e) {
        Recover(e.What());
      }
    }
    throw std::runtime_error("document " + std::to_string(document) + " cannot be posted");
  }
  int Lost() const { return lost_; }

 private:
  bool IsPosted(int document) {
    return RowsOf(*connection_, "SELECT COUNT(*) FROM kv_lines WHERE document = " +
                                    std::to_string(document))[0][0] != "0";
  }

  void Insert(int document) {
    connection_->Begin(Isolation::ReadCommitted);
    for (int line = 1; line <= kLines; ++line) {
      const std::vector<data::ParameterValue> row = {std::int64_t{document}, std::int64_t{line},
                                                     "เงินสด"};
      connection_->Query(WithPlaces("INSERT INTO kv_lines (document, line, t) VALUES (?, ?, ?)"),
                         row);
    }
    connection_->Commit();
  }

  void Recover(Kind kind) {
    if (kind == Kind::Other) throw;
    lost_ += kind == Kind::ConnectionLost ? 1 : 0;
    connection_.reset();  // rolls back
    if (kind == Kind::ConnectionLost) node_ = node_ % 3 + 1;
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
  }

  int node_ = 1;
  int lost_ = 0;
  ConnectionPointer connection_;
};

TEST(Cluster, WhenANodeDiesNothingIsLostAndNothingDoubled) {
  CreateTable(
      *ConnectedTo(2), "kv_lines",
      "id BIGINT AUTO_INCREMENT PRIMARY KEY, document INTEGER, line INTEGER, t VARCHAR(20)");
  constexpr int kDocuments = 400;
  std::atomic<int> posted = 0;
  std::thread killer([&posted] {
    while (posted < 100) std::this_thread::sleep_for(std::chrono::milliseconds(1));
    kill(PidOfFile(NodeFile(1)), SIGKILL);
  });
  Poster poster;
  for (int document = 1; document <= kDocuments; ++document) {
    poster.Post(document);
    posted = document;
  }
  killer.join();
  EXPECT_GE(poster.Lost(), 1) << "the node that was written to died";

  for (const int node : {2, 3}) {
    const auto connection = ConnectedTo(node);
    EXPECT_THAT(RowsOf(*connection, "SELECT COUNT(DISTINCT document), COUNT(*) FROM kv_lines"),
                ElementsAre(ElementsAre(std::to_string(kDocuments),
                                        std::to_string(kDocuments * Poster::kLines))));
    EXPECT_THAT(RowsOf(*connection,
                       "SELECT document FROM kv_lines GROUP BY document HAVING COUNT(*) <> 10"
                       " OR COUNT(DISTINCT line) <> 10"),
                ElementsAre());
  }
}

}  // namespace
}  // namespace kvshare
