#pragma once
#include <Nu.Core/NuCoreExport.h>

#include <cstddef>

namespace Nu {

/// A value string of char that owns its own NUL-terminated copy of the text.
///
/// Never null: a default string is the empty text. Allocation failures surface as
/// std::bad_alloc and leave the string as it was.
class NU_CORE_EXPORT CNuString {
public:
  /// The empty text; allocates nothing.
  CNuString();
  /// Copies `text`; null is taken as the empty text.
  CNuString(char const* text);
  /// Copies the text of `other`.
  CNuString(CNuString const& other);
  /// Takes over the text of `other`, which is left empty.
  CNuString(CNuString&& other) noexcept;
  /// Releases the text.
  ~CNuString();

  /// Replaces the text by a copy of `text` (null: the empty text); returns `*this`.
  CNuString& operator=(char const* text);
  /// Replaces the text by a copy of the text of `other`; returns `*this`.
  CNuString& operator=(CNuString const& other);
  /// Swaps the texts: `other` takes this string's old text with it. Returns `*this`.
  CNuString& operator=(CNuString&& other) noexcept;

  /// Appends `text` and returns `*this`, so that calls chain: `CNuString("") << "a" << b`.
  ///
  /// A null text appends nothing.
  CNuString& operator<<(char const* text);
  /// Appends the text of `other` and returns `*this`.
  CNuString& operator<<(CNuString const& other);

  /// The text, valid while the string is unchanged.
  char const* ToCString() const noexcept { return Text; }
  /// The number of chars, without the terminating NUL.
  std::size_t Length() const noexcept { return Size; }

  /// True when both texts are equal.
  bool operator==(CNuString const& other) const noexcept;
  /// True when the text equals `text`; null compares as the empty text.
  bool operator==(char const* text) const noexcept;

protected:
  /// Replaces the text by `size` chars of `text`, which may point into this string.
  ///
  /// The new copy is made before the old text goes, so a failed allocation changes nothing.
  void Assign(char const* text, std::size_t size);
  /// Appends `size` chars of `text`, which may point into this string; a failed allocation
  /// changes nothing.
  void Append(char const* text, std::size_t size);

  /// The owned text, or a shared empty text that is never freed.
  char* Text;
  /// The number of chars of Text, without the terminating NUL.
  std::size_t Size;
};

}  // namespace Nu
