// Texts that lie in the object which they are given to.
#include <gtest/gtest.h>

#include "kvshare/data/client/clientdataset.h"
#include "kvshare/data/sql/sqlconnection.h"

namespace kvshare {
namespace {

constexpr const char* kCode = "A_CODE_WITH_A_LONG_NAME";
constexpr const char* kName = "A_NAME_THAT_IS_NOT_SHORT";

TEST(OwnArgument, OfADataSet) {
  const struct {
    const char* routine;
    std::string (*give)(TClientDataSet& set);
    std::string want;
  } cases[] = {
      {"SetIndexFieldNames, a field's name",
       [](TClientDataSet& set) {
         set.SetIndexFieldNames(set.Fields(0).FieldName());
         return set.IndexFieldNames();
       },
       kCode},
      {"SetIndexFieldNames, a part of the earlier ones",
       [](TClientDataSet& set) {
         set.SetIndexFieldNames(std::string(kCode) + ";" + kName);
         set.SetIndexFieldNames(
             std::string_view{set.IndexFieldNames()}.substr(std::string_view{kCode}.size() + 1));
         return set.IndexFieldNames();
       },
       kName},
      {"SetPrimaryKey, the present one",
       [](TClientDataSet& set) {
         set.SetPrimaryKey(set.Fields(0).FieldName());
         set.SetPrimaryKey(set.PrimaryKey());
         return set.PrimaryKey();
       },
       kCode},
      {"SetDisplayLabel, a part of the present one",
       [](TClientDataSet& set) {
         TField& field = set.Fields(1);
         field.SetDisplayLabel(std::string_view{field.DisplayLabel()}.substr(2));
         field.SetDisplayLabel(std::string_view{field.DisplayLabel()}.substr(5));
         return field.DisplayLabel();
       },
       kName + 7},
  };
  for (const auto& c : cases) {
    TClientDataSet set;
    for (const char* name : {kCode, kName}) set.FieldDefs().Add(name, TFieldType::ftString, 10);
    set.CreateDataSet();
    EXPECT_EQ(c.give(set), c.want) << c.routine;
  }
}

TEST(OwnArgument, OfAConnection) {
  TSQLConnection connection;
  connection.SetConnectionName("THE WORKSHOP OF A COMPANY");
  connection.SetConnectionName(std::string_view{connection.ConnectionName()}.substr(4));
  EXPECT_EQ(connection.ConnectionName(), "WORKSHOP OF A COMPANY");
  connection.LibraryName = "a driver's name that is long";
  connection.SetDriverName(connection.LibraryName);
  EXPECT_EQ(connection.DriverName() + connection.LibraryName, "a driver's name that is long");
}

}  // namespace
}  // namespace kvshare
