// `kvshare shop`.
#include <memory>
#include <string>
#include <vector>

#include "apps/kvshare/commands/commands.h"
#include "apps/kvshare/day/shopsettings.h"
#include "apps/kvshare/terminal/inputfile.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare::app {

namespace {

using receipts::Seller;

constexpr std::string_view kSetExamples =
    "  kvshare shop set --name 'ร้านบ้านสวน' --address '9 ถนนสุขุมวิท' --address 'กรุงเทพฯ 10110' \\\n"
    "      --tax-id 0-1055-61000-00-3 --branch 00000 --phone 02-123-4567\n"
    "  kvshare shop set --logo logo.png          at the head of every page\n"
    "  kvshare shop set --phone ''               takes the phone number away\n";
constexpr std::string_view kShowExamples =
    "  kvshare shop show                         what receipts name as the seller\n";

struct Options {
  std::string name, taxId, branch, phone, logo;
  std::vector<std::string> address;
};

// Of one line, since it is one line of the paper.
std::string UsageLine(std::string_view option, const std::string& utf8) {
  std::string text = UsageText(option, utf8);
  for (const char c : text) {
    if (static_cast<unsigned char>(c) < 32) RefuseUsage(option, "is one line of text");
  }
  return std::string(Trim(text));
}

std::string Checked(std::string_view option, const std::string& utf8,
                    std::string (*parse)(std::string_view)) {
  const std::string text = UsageLine(option, utf8);
  if (text.empty()) return {};
  try {
    return parse(text);
  } catch (const EConvertError& e) {
    RefuseUsage(option, Cp874ToUtf8Lossy(e.Message()));
  }
}

void KeepLogo(const std::string& file) {
  if (file.empty()) return StoreLogo("");
  const std::string name = UsageText("--logo", file);
  NamingFile(file, [&name] { StoreLogo(name); });
}

int Set(const Options& options, const Command& command) {
  const auto given = [&command](const char* option) { return command.Named(option).IsGiven(); };
  Seller seller = StoredSeller();
  if (given("--name")) seller.name = UsageLine("--name", options.name);
  if (given("--tax-id")) seller.taxId = Checked("--tax-id", options.taxId, receipts::ParseTaxId);
  if (given("--branch")) seller.branch = Checked("--branch", options.branch, receipts::ParseBranch);
  if (given("--phone")) seller.phone = UsageLine("--phone", options.phone);
  if (given("--address")) {
    seller.address.clear();
    for (const std::string& line : options.address) {
      if (std::string text = UsageLine("--address", line); !text.empty()) {
        seller.address.push_back(std::move(text));
      }
    }
  }
  if (seller.name.empty()) RefuseUsage("--name", "is needed: a shop has a name");
  // The logo first: a picture that is refused leaves the shop as it was.
  if (given("--logo")) KeepLogo(options.logo);
  StoreSeller(seller);
  return kDone;
}

void Show(const std::function<void(const Row&)>& print, Row& row) {
  const Seller seller = StoredSeller();
  const auto show = [&](std::string_view name, std::string_view text) {
    if (text.empty()) return;
    row.Clear();
    row.Cell("name") = name;
    row.Cell("value") = text;
    print(row);
  };
  show("name", seller.name);
  for (const std::string& line : seller.address) show("address", line);
  show("tax-id", receipts::ShownTaxId(seller.taxId));
  show("branch", seller.branch);
  show("phone", seller.phone);
  show("logo", StoredLogoFile());
}

void DeclareSet(Command shop, Plan& plan) {
  const auto options = std::make_shared<Options>();
  const Command command =
      AddQuietCommand(shop, "set", "Change what receipts name as the seller", kSetExamples);
  command.AddOption("--name", options->name, "The shop's name").TypeName("TEXT");
  command.AddOption("--address", options->address, "A line of its address, in their order")
      .Repeats()
      .TypeName("LINE");
  command.AddOption("--tax-id", options->taxId, "13 digits; their check digit is verified")
      .TypeName("NUMBER");
  command.AddOption("--branch", options->branch, "5 digits, 00000 is the head office")
      .TypeName("NUMBER");
  command.AddOption("--phone", options->phone, "Its phone number").TypeName("TEXT");
  command.AddOption("--logo", options->logo, "Its picture, a copy of a BMP or PNG file")
      .TypeName("FILE");
  command.OnParsed([options, command, &plan] {
    plan.action = [options, command](const Stdio&) { return Set(*options, command); };
  });
}

}  // namespace

void DeclareShop(Command parent, Plan& plan) {
  const Command shop = parent.AddCommand("shop", "The shop that receipts name as the seller");
  shop.RequireCommand();
  DeclareSet(shop, plan);
  const Command show =
      AddCommand(shop, plan, "show", "What receipts name as the seller", kShowExamples);
  show.OnParsed([&plan] { plan.action = PrintRows(plan, Show); });
}

}  // namespace kvshare::app
