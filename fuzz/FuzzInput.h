#pragma once
// Reads typed values off the front of a fuzzer's input; past the end everything reads as zero.
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace NuFuzz {

class CInput {
public:
  CInput(std::uint8_t const* data, std::size_t size) : Data(data), Size(size) {}

  template <class T>
  T Take() {
    T value{};
    std::size_t const n = Size < sizeof(T) ? Size : sizeof(T);
    if (n != 0) std::memcpy(&value, Data, n);
    Data += n;
    Size -= n;
    return value;
  }
  // A value in [0, bound).
  unsigned int Below(unsigned int bound) { return bound == 0 ? 0 : Take<std::uint16_t>() % bound; }
  bool Empty() const { return Size == 0; }

private:
  std::uint8_t const* Data;
  std::size_t Size;
};

}  // namespace NuFuzz
