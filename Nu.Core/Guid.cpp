#include <Nu.Core/Guid.h>
#include <Nu.Core/NuException.h>

#include <cstring>

namespace Nu::Interop::Runtime30 {
namespace {

constexpr char FileText[] = "Nu.Core/Guid.cpp";

int HexValue(char c) noexcept {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return -1;
}

// Reads `digits` hex digits from text[pos...]; false on any other character.
bool ReadHex(char const* text, std::size_t pos, int digits, std::uint64_t& value) noexcept {
  value = 0;
  for (int i = 0; i < digits; ++i) {
    int const v = HexValue(text[pos + static_cast<std::size_t>(i)]);
    if (v < 0) return false;
    value = (value << 4) | static_cast<std::uint64_t>(v);
  }
  return true;
}

}  // namespace

CGuid::CGuid(char const* text) : CGuid() {
  // {8-4-4-4-12}: 38 characters with the braces.
  bool ok = text != nullptr && std::strlen(text) == 38 && text[0] == '{' && text[37] == '}' &&
            text[9] == '-' && text[14] == '-' && text[19] == '-' && text[24] == '-';
  std::uint64_t v1 = 0, v2 = 0, v3 = 0, v4 = 0, v5 = 0;
  ok = ok && ReadHex(text, 1, 8, v1) && ReadHex(text, 10, 4, v2) && ReadHex(text, 15, 4, v3) &&
       ReadHex(text, 20, 4, v4) && ReadHex(text, 25, 12, v5);
  if (!ok) NU_RAISE(FileText, "Invalid GUID text");
  Data1 = static_cast<std::uint32_t>(v1);
  Data2 = static_cast<std::uint16_t>(v2);
  Data3 = static_cast<std::uint16_t>(v3);
  Data4[0] = static_cast<std::uint8_t>(v4 >> 8);
  Data4[1] = static_cast<std::uint8_t>(v4);
  for (int i = 0; i < 6; ++i) Data4[2 + i] = static_cast<std::uint8_t>(v5 >> (40 - 8 * i));
}

Nu::CNuString CGuid::ToString() const {
  static constexpr char Digits[] = "0123456789ABCDEF";
  char text[39];
  std::size_t pos = 0;
  auto put = [&](std::uint64_t value, int digits) {
    for (int i = digits - 1; i >= 0; --i) text[pos++] = Digits[(value >> (4 * i)) & 0xF];
  };
  text[pos++] = '{';
  put(Data1, 8);
  text[pos++] = '-';
  put(Data2, 4);
  text[pos++] = '-';
  put(Data3, 4);
  text[pos++] = '-';
  put(Data4[0], 2);
  put(Data4[1], 2);
  text[pos++] = '-';
  for (int i = 2; i < 8; ++i) put(Data4[i], 2);
  text[pos++] = '}';
  text[pos] = '\0';
  return Nu::CNuString(text);
}

bool CGuid::operator==(CGuid const& other) const noexcept {
  return std::memcmp(this, &other, sizeof(CGuid)) == 0;
}

}  // namespace Nu::Interop::Runtime30
