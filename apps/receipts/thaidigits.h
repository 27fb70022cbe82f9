// The digits that Thai spreadsheets write.
#pragma once

namespace kvshare::receipts {

constexpr bool IsThaiDigit(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return byte >= 0xF0 && byte <= 0xF9;
}

// The Latin digit of a Thai one; other letters stay.
constexpr char LatinDigit(char c) {
  return IsThaiDigit(c) ? static_cast<char>('0' + (static_cast<unsigned char>(c) - 0xF0)) : c;
}

}  // namespace kvshare::receipts
