#pragma once
#include <Nu.Core/NuCoreExport.h>

#include <cstddef>

namespace Nu {

// A value string of char that owns its own NUL-terminated copy of the text.
// Never null: a default string is the empty text. Allocation failures surface as std::bad_alloc.
class NU_CORE_EXPORT CNuString {
public:
  CNuString();
  CNuString(char const* text);  // null is taken as the empty text
  CNuString(CNuString const& other);
  CNuString(CNuString&& other) noexcept;
  ~CNuString();

  CNuString& operator=(char const* text);
  CNuString& operator=(CNuString const& other);
  CNuString& operator=(CNuString&& other) noexcept;

  // Appends and returns *this, so that calls chain: CNuString("") << "a" << b.
  CNuString& operator<<(char const* text);
  CNuString& operator<<(CNuString const& other);

  // The text, valid while the string is unchanged.
  char const* ToCString() const noexcept { return Text; }
  std::size_t Length() const noexcept { return Size; }

  bool operator==(CNuString const& other) const noexcept;
  bool operator==(char const* text) const noexcept;

protected:
  void Assign(char const* text, std::size_t size);
  void Append(char const* text, std::size_t size);

  char* Text;
  std::size_t Size;
};

}  // namespace Nu
