// The splitting constructor of CNuArrayString against a direct model of its token rules:
// the text ends at its first NUL, inner and leading empty tokens stay, a trailing delimiter
// gives no empty last token.
#include <Nu.Core.Ex/NuArrayString.h>

#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

std::vector<std::string> Model(std::string const& text, char delimiter) {
  std::vector<std::string> tokens;
  if (text.empty()) return tokens;
  std::string token;
  for (char c : text) {
    if (c == delimiter) {
      tokens.push_back(token);
      token.clear();
    } else {
      token += c;
    }
  }
  if (!token.empty()) tokens.push_back(token);
  return tokens;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  if (size == 0) return 0;
  char const delimiter = static_cast<char>(data[0]);
  std::string const raw(reinterpret_cast<char const*>(data + 1), size - 1);
  std::string const text = raw.substr(0, raw.find('\0'));
  Nu::CNuArrayString const array(Nu::CNuString(raw.c_str()), delimiter);
  std::vector<std::string> const expected = Model(text, delimiter);
  if (array.Length() != expected.size()) std::abort();
  for (unsigned long i = 0; i < expected.size(); ++i)
    if (expected[i] != array[i].ToCString()) std::abort();
  return 0;
}
