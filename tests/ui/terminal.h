// A terminal without anybody in front of it.
#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <pty.h>
#include <termios.h>
#include <unistd.h>

#include <string>
#include <string_view>

namespace kvshare {

// A terminal at which somebody has typed.
class Terminal {
 public:
  explicit Terminal(std::string_view typed) {
    termios settings{};
    cfmakeraw(&settings);
    settings.c_lflag |= ICANON;
    settings.c_cc[VEOF] = 4;
    EXPECT_EQ(openpty(&master_, &slave_, nullptr, &settings, nullptr), 0);
    fcntl(master_, F_SETFL, O_NONBLOCK);
    Type(typed);
  }
  ~Terminal() {
    close(slave_);
    close(master_);
  }
  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;

  int Fd() const { return slave_; }
  void Type(std::string_view text) const {
    EXPECT_EQ(write(master_, text.data(), text.size()), static_cast<ssize_t>(text.size()));
  }
  std::string Shown() const {
    std::string shown(1 << 16, '\0');
    std::size_t size = 0;
    for (ssize_t n = 0; (n = read(master_, &shown[size], shown.size() - size)) > 0;) {
      size += static_cast<std::size_t>(n);
    }
    return shown.substr(0, size);
  }

 private:
  int master_ = -1, slave_ = -1;
};

}  // namespace kvshare
