#include <Nu.Core/NuString.h>

#include <cstdlib>
#include <cstring>
#include <new>
#include <utility>

namespace Nu {
namespace {

// One shared empty text, so that a default string costs no allocation and is never null.
char EmptyText[1] = {'\0'};

char* Allocate(std::size_t size) {
  auto* text = static_cast<char*>(std::malloc(size + 1));
  if (text == nullptr) throw std::bad_alloc();
  return text;
}

void Release(char* text) noexcept {
  if (text != EmptyText) std::free(text);
}

}  // namespace

CNuString::CNuString() : Text(EmptyText), Size(0) {}

CNuString::CNuString(char const* text) : CNuString() {
  if (text != nullptr) Assign(text, std::strlen(text));
}

CNuString::CNuString(CNuString const& other) : CNuString() { Assign(other.Text, other.Size); }

CNuString::CNuString(CNuString&& other) noexcept : Text(other.Text), Size(other.Size) {
  other.Text = EmptyText;
  other.Size = 0;
}

CNuString::~CNuString() { Release(Text); }

CNuString& CNuString::operator=(char const* text) {
  Assign(text == nullptr ? "" : text, text == nullptr ? 0 : std::strlen(text));
  return *this;
}

CNuString& CNuString::operator=(CNuString const& other) {
  if (this != &other) Assign(other.Text, other.Size);
  return *this;
}

CNuString& CNuString::operator=(CNuString&& other) noexcept {
  std::swap(Text, other.Text);
  std::swap(Size, other.Size);
  return *this;
}

CNuString& CNuString::operator<<(char const* text) {
  if (text != nullptr) Append(text, std::strlen(text));
  return *this;
}

CNuString& CNuString::operator<<(CNuString const& other) {
  Append(other.Text, other.Size);
  return *this;
}

bool CNuString::operator==(CNuString const& other) const noexcept {
  return Size == other.Size && std::memcmp(Text, other.Text, Size) == 0;
}

bool CNuString::operator==(char const* text) const noexcept {
  return std::strcmp(Text, text == nullptr ? "" : text) == 0;
}

// Builds the new text before releasing the old one, so that a failed allocation
// leaves the string as it was and self-referencing arguments stay readable.
void CNuString::Assign(char const* text, std::size_t size) {
  char* fresh = EmptyText;
  if (size != 0) {
    fresh = Allocate(size);
    std::memcpy(fresh, text, size);
    fresh[size] = '\0';
  }
  Release(Text);
  Text = fresh;
  Size = size;
}

void CNuString::Append(char const* text, std::size_t size) {
  if (size == 0) return;
  char* fresh = Allocate(Size + size);
  std::memcpy(fresh, Text, Size);
  std::memcpy(fresh + Size, text, size);
  fresh[Size + size] = '\0';
  Release(Text);
  Text = fresh;
  Size += size;
}

}  // namespace Nu
