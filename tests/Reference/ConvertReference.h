#pragma once
// The oracle of the conversion tests: a slow, run-time, table-driven model of the value rule,
// the layout rule (Bayer types included) and the custom widening, written from the documented
// tables. It works on numeric ids, raw bytes and doubles and shares no code
// with the library: it includes no library header.
#include <cstdint>

namespace NuRef {

// One row of the table of data types.
struct SDataRow {
  int Id;
  char const* Name;
  unsigned int Bytes;
  bool Integer;
  bool Signed;
  double Largest;   // integer types only
  double Smallest;  // integer types only
};

// One row of the table of layouts (a Bayer row is a Lum row with its own id).
struct SLayoutRow {
  int Id;
  char const* Name;
  unsigned int Colours;
  unsigned int Alphas;
  int Red, Green, Blue, Alpha;  // element indices; Alpha only where Alphas is 1
};

inline constexpr int DataTypeCount = 8;
inline constexpr int LayoutCount = 10;
extern SDataRow const DataTypes[DataTypeCount];
extern SLayoutRow const Layouts[LayoutCount];

// The row of an id, or null for an id outside the tables.
SDataRow const* FindDataType(int id);
SLayoutRow const* FindLayout(int id);
bool IsBayer(int pixelType);

// Bytes per pixel of a carried format.
unsigned int PixelBytes(int pixelType, int dataType);

// Source step of the value rule: the element at `src` (raw bytes of type srcType) as a double.
double SourceStep(int srcType, void const* src);
// Target step of the value rule: stores the element for v at `trg` (raw bytes of type trgType).
void TargetStep(int trgType, double v, void* trg);
// The whole value rule, element to element; equal types copy the bytes.
void ConvertValue(int trgType, void* trg, int srcType, void const* src);
// The alpha written where the source has none, stored at `trg`.
void StoreTargetMaximum(int trgType, void* trg);

// The layout rule over `count` pixels on raw memory, element by element in the
// documented order (colour pass red, green, blue; then the alpha pass), so that it also gives
// the plain forward result of overlapping runs. Includes the LumA-target rule.
void ConvertRun(int trgPixelType, int trgDataType, void* trg, int srcPixelType, int srcDataType,
                void const* src, unsigned int count);

// Pixels a run of `count` touches in the target and source (2 * count for the LumA rule).
unsigned int TargetPixelsTouched(int trgPixelType, int trgDataType, int srcDataType, unsigned int count);
unsigned int SourcePixelsTouched(int trgPixelType, int trgDataType, int srcPixelType, int srcDataType,
                                 unsigned int count);

// The custom widening: one word of Custom_10in16_LSB (10) or Custom_12in16_LSB (12) widened to UShort,
// modelled with double operations rounded to single after each step (exact for one operation
// on single operands), not with single arithmetic.
std::uint16_t WidenCustom(int dataType, std::uint16_t word);

}  // namespace NuRef
