// The store of the suite's settings in the registry.
#pragma once

#include <string>

#include "kvshare/export.h"

namespace kvshare {

// So far it knows only where its settings lie.
class KVSHARE_API TKovraRegistry {
 public:
  // Takes company, product and version from the running program's version information (see
  // fileinfo.h); where one is empty it stands as "Undefined CompanyName", "Undefined ProductName"
  // and "0.0".
  TKovraRegistry();

  // `Software\Acme\Ledger v5.2`, without a hive; it never changes.
  const std::string& RootKey() const { return rootKey_; }

 private:
  std::string rootKey_;
};

// Created by Initialize, freed by Finalize.
extern KVSHARE_API TKovraRegistry* MyKovraRegistry;

}  // namespace kvshare
