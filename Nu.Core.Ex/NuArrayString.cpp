#include <Nu.Core.Ex/NuArrayString.h>
#include <Nu.Core.Ex/NuNamedArrayImpl.h>

#include <cstddef>
#include <sstream>
#include <string>
#include <vector>

namespace Nu {

NU_DEFINE_NAMED_ARRAY(CNuArrayString, CNuString)

CNuArrayString::CNuArrayString(CNuString const& text, char delimiter) {
  // Through a C string on purpose: the text ends at its first NUL.
  char const* const whole = text.ToCString();
  std::stringstream stream(std::string(whole == nullptr ? "" : whole),
                           std::ios_base::in | std::ios_base::out);
  // getline fails only when it extracts nothing at all, which is what drops the empty token
  // after a trailing delimiter while keeping leading and inner ones.
  std::vector<std::string> tokens;
  std::string token;
  while (std::getline(stream, token, delimiter)) tokens.push_back(token);
  Impl = std::make_unique<CNuArrayBase<CNuString>>(tokens.size());
  for (std::size_t i = 0; i < tokens.size(); ++i) (*Impl)[i] = tokens[i].c_str();
}

}  // namespace Nu
