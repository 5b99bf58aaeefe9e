#pragma once
#include <Nu.Core/NuCoreExport.h>
#include <Nu.Core/NuString.h>

#include <cstdint>

namespace Nu::Interop::Runtime30 {

// A 128-bit identifier, a plain 16-byte value once built. Its text form is
// "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}" with upper-case hexadecimal digits.
class NU_CORE_EXPORT CGuid {
public:
  // The nil GUID, all bits zero.
  constexpr CGuid() noexcept : Data1(0), Data2(0), Data3(0), Data4{} {}
  // Parses the brace form (hex digits of either case). Raises a Nu::CNuException
  // "Invalid GUID text" for anything else, a null pointer included.
  explicit CGuid(char const* text);

  // The brace form in upper case.
  Nu::CNuString ToString() const;

  bool operator==(CGuid const& other) const noexcept;
  bool operator!=(CGuid const& other) const noexcept { return !(*this == other); }

  std::uint32_t Data1;
  std::uint16_t Data2;
  std::uint16_t Data3;
  std::uint8_t Data4[8];
};

static_assert(sizeof(CGuid) == 16);

}  // namespace Nu::Interop::Runtime30

namespace Nu {
using Interop::Runtime30::CGuid;
}
