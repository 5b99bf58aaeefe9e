#pragma once
// The oracle of the conversion tests: a slow, run-time, table-driven model of the value rule,
// the layout rule (Bayer types included) and the custom widening, written from the documented
// tables. It works on numeric ids, raw bytes and doubles and includes no library header.
#include <cstdint>

namespace NuRef {

struct SDataRow {
  int Id;
  char const* Name;
  unsigned int Bytes;
  bool Integer, Signed;
  double Largest, Smallest;  // integer types only
};

// A Bayer row is a Lum row with its own id.
struct SLayoutRow {
  int Id;
  char const* Name;
  unsigned int Colours, Alphas;
  int Red, Green, Blue, Alpha;  // element indices; Alpha only where Alphas is 1
};

inline constexpr int DataTypeCount = 8, LayoutCount = 10;
extern SDataRow const DataTypes[DataTypeCount];
extern SLayoutRow const Layouts[LayoutCount];

// The row of an id, or null for an id outside the tables.
SDataRow const* FindDataType(int id);
SLayoutRow const* FindLayout(int id);
bool IsBayer(int pixelType);
unsigned int PixelBytes(int pixelType, int dataType);

// One element (raw bytes of srcType) through the value rule into raw bytes of trgType.
void ConvertValue(int trgType, void* trg, int srcType, void const* src);

// The layout rule over count pixels on raw memory, element by element in the documented order
// (colours red, green, blue, then the alpha pass, the LumA-target rule included), so that it
// also gives the plain forward result of overlapping runs.
void ConvertRun(int trgPixelType, int trgDataType, void* trg, int srcPixelType, int srcDataType, void const* src,
                unsigned int count);

// One word of Custom_10in16_LSB (10) or Custom_12in16_LSB (12) widened to UShort: double
// operations rounded to single after each step, which equals single arithmetic.
std::uint16_t WidenCustom(int dataType, std::uint16_t word);

}  // namespace NuRef
