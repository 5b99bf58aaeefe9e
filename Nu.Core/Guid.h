#pragma once
#include <Nu.Core/NuCoreExport.h>
#include <Nu.Core/NuString.h>

#include <cstdint>

namespace Nu::Interop::Runtime30 {

/// A 128-bit identifier, a plain 16-byte value once built.
///
/// Its text form is "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}" with upper-case hexadecimal digits.
class NU_CORE_EXPORT CGuid {
public:
  /// The nil GUID, all bits zero.
  constexpr CGuid() noexcept : Data1(0), Data2(0), Data3(0), Data4{} {}
  /// Parses the brace form (hex digits of either case).
  ///
  /// Raises a Nu::CNuException "Invalid GUID text" for anything else, a null pointer included.
  explicit CGuid(char const* text);

  /// The brace form in upper case.
  Nu::CNuString ToString() const;

  /// True when all 16 bytes are equal.
  bool operator==(CGuid const& other) const noexcept;
  /// True when any of the 16 bytes differs.
  bool operator!=(CGuid const& other) const noexcept { return !(*this == other); }

  /// The first group of the text form (8 digits).
  std::uint32_t Data1;
  /// The second group of the text form (4 digits).
  std::uint16_t Data2;
  /// The third group of the text form (4 digits).
  std::uint16_t Data3;
  /// The fourth group (bytes 0 and 1) and the fifth (bytes 2 to 7) of the text form.
  std::uint8_t Data4[8];
};

static_assert(sizeof(CGuid) == 16);

}  // namespace Nu::Interop::Runtime30

namespace Nu {
using Interop::Runtime30::CGuid;
}
