// Two people at one table: what every connection has to fulfil for changes that are applied.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "kvshare/data/client/provider.h"
#include "tests/data/driver_suite.h"

namespace kvshare {

class Screen;

class UpdatesSuite : public DriverSuite {
 protected:
  UpdatesSuite();
  ~UpdatesSuite() override;
  void SetUp() override;
  void TearDown() override;

  // A data-entry screen with a connection of its own, on KV_TEST.
  Screen& MakeScreen(TUpdateMode mode = TUpdateMode::upWhereAll);
  // What a screen that is opened now shows.
  std::string OnServer() const;

 private:
  std::vector<std::unique_ptr<Screen>> screens_;
};

}  // namespace kvshare
