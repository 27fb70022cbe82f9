// Programs that die while they write, and programs that read meanwhile.
#include <gtest/gtest.h>
#include <poll.h>

#include <cstdlib>
#include <map>
#include <random>
#include <vector>

#include "kvshare/os/registry/registry.h"
#include "tests/os/childprocess.h"
#include "tests/support.h"

namespace kvshare::os {
namespace {

constexpr int kWriters = 8;

struct Acknowledgement {
  int writer, write;
};

std::string NameOf(int writer, int write) {
  return std::to_string(writer) + "/" + std::to_string(write);
}

// A text whose every part tells which write it belongs to.
std::string TextOf(int writer, int write) {
  std::string text;
  for (int i = 0; i < 40 + write % 60; ++i) text += NameOf(writer, write) + ";";
  return text;
}

// Every third write is a pair that belongs together.
bool WriteForever(const Pipe& pipe, int writer, int first) {
  TRegistry registry;
  if (!registry.OpenKey("Software\\Writers", true)) return false;
  for (int write = first;; ++write) {
    if (write % 3 == 0) {
      InOneRegistryTransaction([&] {
        registry.WriteString(NameOf(writer, write), TextOf(writer, write));
        registry.WriteString(NameOf(writer, write) + "twin", TextOf(writer, write));
      });
    } else {
      registry.WriteString(NameOf(writer, write), TextOf(writer, write));
    }
    registry.WriteInteger("last of " + std::to_string(writer), write);
    if (!pipe.Write(Acknowledgement{writer, write})) return false;
  }
}

class Crowd {
 public:
  void KillAndReplaceOne(std::size_t place) {
    if (place < writers_.size()) writers_[place].Kill();
    Drain(0);
    const int writer = static_cast<int>(place);
    // What was written but not confirmed is written again over itself.
    ChildProcess child(
        [&, first = last_[writer] + 1] { return WriteForever(pipe_, writer, first); });
    if (place < writers_.size()) {
      std::swap(writers_[place], child);
    } else {
      writers_.push_back(std::move(child));
    }
  }

  // Takes what is confirmed by now, and waits until it is `atLeast` so many.
  void Drain(unsigned atLeast) {
    for (unsigned taken = 0;; ++taken) {
      pollfd request{pipe_.Reader(), POLLIN, 0};
      constexpr int kPatience = 30'000;  // milliseconds: a writer that has failed tells nothing
      if (::poll(&request, 1, taken < atLeast ? kPatience : 0) != 1) return;
      Acknowledgement told{};
      if (!pipe_.Read(told)) return;
      last_[told.writer] = told.write;
      ++told_;
    }
  }

  void KillAll() {
    writers_.clear();
    Drain(0);
  }

  const std::map<int, int>& Last() const { return last_; }
  int Told() const { return told_; }

 private:
  Pipe pipe_;
  std::vector<ChildProcess> writers_;
  std::map<int, int> last_;
  int told_ = 0;
};

TEST(RegistryCrash, KilledWritersLoseNothing) {
  const TemporaryFolder home;
  ::setenv("KVSHARE_HOME", home.File("home").c_str(), 1);
  Crowd crowd;
  std::mt19937 random(std::random_device{}());
  for (std::size_t i = 0; i < kWriters; ++i) crowd.KillAndReplaceOne(i);  // no store is there yet
  constexpr int kKills = 40;
  for (int i = 0; i < kKills; ++i) {
    crowd.Drain(static_cast<unsigned>(random() % 12));
    crowd.KillAndReplaceOne(random() % kWriters);
  }
  crowd.Drain(100);
  crowd.KillAll();
  RecordProperty("acknowledged", crowd.Told());

  EXPECT_EQ(RegistryTrouble(), "");
  TRegistry registry;
  ASSERT_TRUE(registry.OpenKeyReadOnly("Software\\Writers"));
  for (const auto& [writer, last] : crowd.Last()) {
    if (last == 0) continue;  // it was killed each time before it could tell anything
    EXPECT_GE(registry.ReadInteger("last of " + std::to_string(writer)), last);
    for (int write = 1; write <= last; ++write) {
      ASSERT_EQ(registry.ReadString(NameOf(writer, write)), TextOf(writer, write));
    }
    // What was not confirmed is there whole or not at all.
    for (int write = 1; write <= last + 1; ++write) {
      const std::string text = registry.ReadString(NameOf(writer, write));
      ASSERT_TRUE(text.empty() || text == TextOf(writer, write));
      const std::string twin = registry.ReadString(NameOf(writer, write) + "twin");
      ASSERT_EQ(twin, write % 3 == 0 ? text : "") << "half a transaction";
    }
  }
}

TEST(RegistryCrash, ReadersSeeWritesAtOnce) {
  const TemporaryFolder home;
  ::setenv("KVSHARE_HOME", home.File("home").c_str(), 1);
  const Pipe told;
  const Pipe seen;
  ChildProcess writer([&] {
    TRegistry registry;
    for (int i = 1; i <= 300; ++i) {
      registry.WriteInteger("n", i);
      int answer = 0;
      if (!told.Write(i) || !seen.Read(answer) || answer != i) return false;
    }
    return true;
  });
  const TRegistry registry;
  for (int i = 0; i < 300; ++i) {
    int value = 0;
    if (!told.Read(value)) break;
    ASSERT_TRUE(seen.Write(registry.ReadInteger("n")));
  }
  EXPECT_TRUE(writer.Held());
}

TEST(RegistryCrash, ReadersNeverWaitOrSeeHalf) {
  const TemporaryFolder home;
  ::setenv("KVSHARE_HOME", home.File("home").c_str(), 1);
  TRegistry().WriteString("a", "0");
  TRegistry().WriteString("b", "0");
  std::vector<ChildProcess> readers;
  for (int r = 0; r < 3; ++r) {
    readers.emplace_back([] {
      int last = 0;
      for (int i = 0; i < 3000; ++i) {
        int a = 0;
        int b = 0;
        for (const RegistryValue& value : TRegistry().ReadValues()) {
          (value.name == "a" ? a : b) = std::atoi(value.data.c_str());
        }
        if (a != b || a < last) return false;
        last = a;
      }
      return true;
    });
  }
  for (int i = 1; i <= 200; ++i) {
    InOneRegistryTransaction([&] {
      TRegistry().WriteString("a", std::to_string(i));
      TRegistry().WriteString("b", std::to_string(i));
    });
  }
  for (ChildProcess& reader : readers) EXPECT_TRUE(reader.Held());
}

}  // namespace
}  // namespace kvshare::os
