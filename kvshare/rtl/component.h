// A named part of a program: a form's control, a connection, a dataset.
#pragma once

#include <string>
#include <string_view>

#include "kvshare/export.h"
#include "kvshare/rtl/stringlist.h"

namespace kvshare {

// An owner outlives what it owns.
class KVSHARE_API TComponent : public TObject {
 public:
  explicit TComponent(TComponent* owner, std::string_view name = "") : owner_(owner), name_(name) {}
  ~TComponent() override = default;

  TComponent* Owner() const { return owner_; }  // nullptr for none
  const std::string& Name() const { return name_; }
  void SetName(std::string_view name) { name_ = name; }

 private:
  TComponent* owner_;
  std::string name_;
};

}  // namespace kvshare
