#include "ConvertReference.h"

#include <cmath>
#include <cstring>

namespace NuRef {

// The table of data types.
SDataRow const DataTypes[DataTypeCount] = {
    {5120, "Byte", 1, true, true, 127.0, -128.0},
    {5121, "UByte", 1, true, false, 255.0, 0.0},
    {5122, "Short", 2, true, true, 32767.0, -32768.0},
    {5123, "UShort", 2, true, false, 65535.0, 0.0},
    {5124, "Int", 4, true, true, 2147483647.0, -2147483648.0},
    {5125, "UInt", 4, true, false, 4294967295.0, 0.0},
    {5126, "Float", 4, false, true, 0.0, 0.0},
    {5130, "Double", 8, false, true, 0.0, 0.0},
};

// The table of layouts, Bayer rows included.
SLayoutRow const Layouts[LayoutCount] = {
    {6408, "RGBA", 3, 1, 0, 1, 2, 3},   {6407, "RGB", 3, 0, 0, 1, 2, -1},
    {32993, "BGRA", 3, 1, 2, 1, 0, 3},  {32992, "BGR", 3, 0, 2, 1, 0, -1},
    {6409, "Lum", 1, 0, 0, 0, 0, -1},   {6410, "LumA", 1, 1, 0, 0, 0, 1},
    {8193, "Bayer1", 1, 0, 0, 0, 0, -1}, {8194, "Bayer2", 1, 0, 0, 0, 0, -1},
    {8195, "Bayer3", 1, 0, 0, 0, 0, -1}, {8196, "Bayer4", 1, 0, 0, 0, 0, -1},
};

// The multipliers of the source step as the table prints them.
static_assert(0.0078125 == 1.0 / 128.0);
static_assert(3.0517578125e-05 == 1.0 / 32768.0);
static_assert(4.656612873077393e-10 == 1.0 / 2147483648.0);

SDataRow const* FindDataType(int id) {
  for (SDataRow const& row : DataTypes)
    if (row.Id == id) return &row;
  return nullptr;
}

SLayoutRow const* FindLayout(int id) {
  for (SLayoutRow const& row : Layouts)
    if (row.Id == id) return &row;
  return nullptr;
}

bool IsBayer(int pixelType) { return pixelType >= 8193 && pixelType <= 8196; }

unsigned int PixelBytes(int pixelType, int dataType) {
  SLayoutRow const* layout = FindLayout(pixelType);
  return (layout->Colours + layout->Alphas) * FindDataType(dataType)->Bytes;
}

namespace {

// An integer element of `bytes` bytes, sign-extended or not, as a 64-bit integer.
std::int64_t ReadInteger(SDataRow const& row, void const* src) {
  std::uint64_t bits = 0;
  std::memcpy(&bits, src, row.Bytes);  // little-endian machine
  if (row.Signed) {
    unsigned int const shift = 64 - 8 * row.Bytes;
    return static_cast<std::int64_t>(bits << shift) >> shift;
  }
  return static_cast<std::int64_t>(bits);
}

void WriteLowBytes(SDataRow const& row, std::int64_t value, void* trg) {
  auto const bits = static_cast<std::uint64_t>(value);
  std::memcpy(trg, &bits, row.Bytes);
}

double NegativeMultiplier(int id) {
  switch (id) {
    case 5120: return 0.0078125;
    case 5122: return 3.0517578125e-05;
    case 5124: return 4.656612873077393e-10;
    default: return 0.0;
  }
}

}  // namespace

double SourceStep(int srcType, void const* src) {
  SDataRow const& row = *FindDataType(srcType);
  if (!row.Integer) {
    if (row.Bytes == 4) {
      float f;
      std::memcpy(&f, src, 4);
      return static_cast<double>(f);
    }
    double d;
    std::memcpy(&d, src, 8);
    return d;
  }
  std::int64_t const x = ReadInteger(row, src);
  double const xd = static_cast<double>(x);  // exact: at most 32 bits
  if (row.Signed && x < 1) return xd * NegativeMultiplier(row.Id);
  return xd / row.Largest;
}

void TargetStep(int trgType, double v, void* trg) {
  SDataRow const& row = *FindDataType(trgType);
  if (!row.Integer) {
    if (row.Bytes == 4) {
      float const f = static_cast<float>(v);  // round to nearest even; inf beyond the range
      std::memcpy(trg, &f, 4);
    } else {
      std::memcpy(trg, &v, 8);
    }
    return;
  }
  double w;
  if (row.Signed)
    w = v > 0.0 ? v * row.Largest : v * -row.Smallest;
  else
    w = v * row.Largest;
  std::int64_t stored;
  if (w > row.Largest)
    stored = static_cast<std::int64_t>(row.Largest);
  else if (row.Smallest > w)
    stored = static_cast<std::int64_t>(row.Smallest);
  else if (std::isnan(w))
    // The indefinite integer of the processor: INT32_MIN, INT64_MIN for UInt; low bits kept.
    stored = row.Id == 5125 ? INT64_MIN : static_cast<std::int64_t>(INT32_MIN);
  else
    stored = static_cast<std::int64_t>(std::trunc(w));
  WriteLowBytes(row, stored, trg);
}

void ConvertValue(int trgType, void* trg, int srcType, void const* src) {
  if (trgType == srcType) {
    unsigned char bytes[8];
    std::memcpy(bytes, src, FindDataType(srcType)->Bytes);
    std::memcpy(trg, bytes, FindDataType(trgType)->Bytes);
    return;
  }
  TargetStep(trgType, SourceStep(srcType, src), trg);
}

void StoreTargetMaximum(int trgType, void* trg) {
  SDataRow const& row = *FindDataType(trgType);
  if (row.Integer)
    WriteLowBytes(row, static_cast<std::int64_t>(row.Largest), trg);
  else
    TargetStep(trgType, 1.0, trg);
}

void ConvertRun(int trgPixelType, int trgDataType, void* trg, int srcPixelType, int srcDataType,
                void const* src, unsigned int count) {
  SLayoutRow const& t = *FindLayout(trgPixelType);
  SLayoutRow const& s = *FindLayout(srcPixelType);
  unsigned int const tb = FindDataType(trgDataType)->Bytes;
  unsigned int const sb = FindDataType(srcDataType)->Bytes;
  std::size_t const tn = t.Colours + t.Alphas;
  std::size_t const sn = s.Colours + s.Alphas;
  auto* trgBytes = static_cast<unsigned char*>(trg);
  auto const* srcBytes = static_cast<unsigned char const*>(src);
  auto element = [&](std::size_t pixel, int index) { return trgBytes + (pixel * tn + index) * tb; };
  auto source = [&](std::size_t pixel, int index) { return srcBytes + (pixel * sn + index) * sb; };
  if (count == 0) return;
  for (std::size_t p = 0; p < count; ++p) {
    if (t.Colours == 3) {
      ConvertValue(trgDataType, element(p, t.Red), srcDataType, source(p, s.Red));
      ConvertValue(trgDataType, element(p, t.Green), srcDataType, source(p, s.Green));
      ConvertValue(trgDataType, element(p, t.Blue), srcDataType, source(p, s.Blue));
    } else {
      ConvertValue(trgDataType, element(p, 0), srcDataType, source(p, s.Red));
    }
  }
  if (t.Alphas == 0) return;
  // LumA target of another data type: the alpha pass goes on at pixel count of both runs.
  std::size_t const first = (trgPixelType == 6410 && trgDataType != srcDataType) ? count : 0;
  for (std::size_t p = first; p < first + count; ++p) {
    if (s.Alphas != 0)
      ConvertValue(trgDataType, element(p, t.Alpha), srcDataType, source(p, s.Alpha));
    else
      StoreTargetMaximum(trgDataType, element(p, t.Alpha));
  }
}

unsigned int TargetPixelsTouched(int trgPixelType, int trgDataType, int srcDataType, unsigned int count) {
  return (trgPixelType == 6410 && trgDataType != srcDataType) ? 2 * count : count;
}

unsigned int SourcePixelsTouched(int trgPixelType, int trgDataType, int srcPixelType, int srcDataType,
                                 unsigned int count) {
  bool const shifted = trgPixelType == 6410 && trgDataType != srcDataType;
  return (shifted && FindLayout(srcPixelType)->Alphas != 0) ? 2 * count : count;
}

std::uint16_t WidenCustom(int dataType, std::uint16_t word) {
  double const divisor = dataType == 10 ? 1023.0 : 4095.0;
  // A single-precision operation equals the double operation rounded to single, since double
  // has more than twice single's precision (innocuous double rounding).
  float const quotient = static_cast<float>(static_cast<double>(word) / divisor);
  float const product = static_cast<float>(static_cast<double>(quotient) * 65535.0);
  auto const truncated = static_cast<std::int64_t>(std::trunc(static_cast<double>(product)));
  return static_cast<std::uint16_t>(static_cast<std::uint64_t>(truncated) & 0xFFFFu);
}

}  // namespace NuRef
