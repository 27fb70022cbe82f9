#include "kvshare/data/sql/secrets.h"

#include <gtest/gtest.h>

#include "kvshare/rtl/cp874.h"

namespace kvshare::data {
namespace {

TEST(Secrets, NamesOfThem) {
  for (const char* name : {"Password", "pwd", "Jet OLEDB:Database Password", "Client_Secret",
                           "DBPASS", "user_pass", "Pass1", "DbPw", "Key", "API-Key", "PrivateKey",
                           "Encryption Key", "PIN", "PassCode", "Credentials", "AccessToken"}) {
    EXPECT_TRUE(NamesSecret(name)) << name;
  }
  for (const char* name : {"KeepAlive",    "Keyspace",
                           "PrimaryKey",   "ForeignKey",
                           "KeyGenEnable", "KeyGenServer",
                           "KeyGenPort",   "PublicKey",
                           "SslKey",       "KeyFile",
                           "Monkey",       "Keyboard",
                           "Compass",      "ProxyBypass",
                           "PassThrough",  "Passive",
                           "Ping",         "Spin",
                           "User_Name",    "EncryptUser",
                           "Database",     ""}) {
    EXPECT_FALSE(NamesSecret(name)) << name;
  }
}

TEST(Secrets, InsideOtherValues) {
  const struct {
    std::string_view value, shown;
    const char* why;
  } cases[] = {
      {"File=a.db;Key=x;Keyspace=y;KeepAlive=1", "File=a.db;Key=***;Keyspace=y;KeepAlive=1",
       "a name is taken whole"},
      {"db://h/x?user=ann&key=s3cret", "db://h/x?user=ann&key=***", "in the query of an address"},
      {"db://h/x?primarykey=id", "db://h/x?primarykey=id", "no secret there"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(WithoutSecrets("Database", c.value), c.shown) << c.why;
  }
}

TEST(Secrets, AreHiddenAsWholeWords) {
  const struct {
    const char* line;  // of the connection file
    std::string_view text, shown;
    const char* why;
  } cases[] = {
      {"Password=a", "localhost: a bad 'a'", "localhost: *** bad '***'", "a short one"},
      {"Password=a", "a", "***", "the whole text"},
      {"Password=kv", "user kv1, kv_x, xkv, kv.x", "user kv1, kv_x, xkv, ***.x", "words"},
      {"Password=1", "port 3310, row 1", "port 3310, row ***", "a digit"},
      {"Password=a!", "(a!) a!b a! !", "(***) a!b *** !", "a sign at its end"},
      {"Password=-", "host-name 'x - y' -", "host-name 'x *** y' ***", "a sign alone"},
      {"Password=*", "SELECT * , 2*3", "SELECT *** , 2*3", "the mask is not masked again"},
      {"Password=กข", "รหัส กข ผิด กขค", "รหัส *** ผิด กขค", "Thai letters"},
      {"Password=abc", "รหัสabcผิด", "รหัส***ผิด", "no blanks around, as Thai is written"},
      {"Password=กข", "xกข฿ “กข”", "x***฿ “***”", "signs of the Thai code page"},
      {"Password=it's", "x 'it''s' \"it's\"", "x '***' \"***\"", "as SQL repeats it"},
      {"Database=PWD={a}}b}", "PWD={a}}b};  a}b!", "PWD=***;  ***!", "as ODBC repeats it"},
      {"Database=PWD={a;b}", "'a;b' {a;b} a", "'***' *** a", "with and without its braces"},
      {"Password=", "a text", "a text", "none"},
  };
  for (const auto& c : cases) {
    TStringList params;
    params.Add(Utf8ToCp874(c.line));
    EXPECT_EQ(Cp874ToUtf8(HideSecrets(Utf8ToCp874(c.text), SecretsOf(params))), c.shown) << c.why;
  }
  TStringList two;
  two.Add("Password=long word");
  two.Add("EncryptPwd=word");
  EXPECT_EQ(HideSecrets("long word, word, longer word", SecretsOf(two)), "***, ***, longer ***");
}

}  // namespace
}  // namespace kvshare::data
