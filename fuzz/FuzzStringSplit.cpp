// The splitting constructor of CNuArrayString against a direct model of its token rules: the text
// ends at its first NUL, inner and leading empty tokens stay, a trailing delimiter gives no empty
// last token.
#include <Nu.Core.Ex/NuArrayString.h>

#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  if (size == 0) return 0;
  char const delimiter = static_cast<char>(data[0]);
  std::string const raw(reinterpret_cast<char const*>(data + 1), size - 1);
  std::string const text = raw.substr(0, raw.find('\0'));
  std::vector<std::string> expected(text.empty() ? 0 : 1);
  for (char c : text) c == delimiter ? (void)expected.emplace_back() : expected.back().push_back(c);
  if (!text.empty() && text.back() == delimiter) expected.pop_back();
  Nu::CNuArrayString const array(Nu::CNuString(raw.c_str()), delimiter);
  if (array.Length() != expected.size()) std::abort();
  for (unsigned long i = 0; i < expected.size(); ++i)
    if (expected[i] != array[i].ToCString()) std::abort();
  return 0;
}
