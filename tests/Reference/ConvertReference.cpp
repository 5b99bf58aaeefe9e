#include "ConvertReference.h"

#include <cmath>
#include <cstddef>
#include <cstring>

namespace NuRef {

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

SLayoutRow const Layouts[LayoutCount] = {
    {6408, "RGBA", 3, 1, 0, 1, 2, 3},    {6407, "RGB", 3, 0, 0, 1, 2, -1},
    {32993, "BGRA", 3, 1, 2, 1, 0, 3},   {32992, "BGR", 3, 0, 2, 1, 0, -1},
    {6409, "Lum", 1, 0, 0, 0, 0, -1},    {6410, "LumA", 1, 1, 0, 0, 0, 1},
    {8193, "Bayer1", 1, 0, 0, 0, 0, -1}, {8194, "Bayer2", 1, 0, 0, 0, 0, -1},
    {8195, "Bayer3", 1, 0, 0, 0, 0, -1}, {8196, "Bayer4", 1, 0, 0, 0, 0, -1},
};

// The multipliers of the source step as the table prints them.
static_assert(0.0078125 == 1.0 / 128.0 && 3.0517578125e-05 == 1.0 / 32768.0 &&
              4.656612873077393e-10 == 1.0 / 2147483648.0);

template <class TRow, std::size_t N>
TRow const* Find(TRow const (&rows)[N], int id) {
  for (TRow const& row : rows)
    if (row.Id == id) return &row;
  return nullptr;
}
SDataRow const* FindDataType(int id) { return Find(DataTypes, id); }
SLayoutRow const* FindLayout(int id) { return Find(Layouts, id); }
bool IsBayer(int pixelType) { return pixelType >= 8193 && pixelType <= 8196; }

unsigned int PixelBytes(int pixelType, int dataType) {
  SLayoutRow const* layout = FindLayout(pixelType);
  return (layout->Colours + layout->Alphas) * FindDataType(dataType)->Bytes;
}

namespace {

double SourceStep(SDataRow const& row, void const* src) {
  if (!row.Integer) {
    float f = 0.0f;
    double d = 0.0;
    std::memcpy(row.Bytes == 8 ? static_cast<void*>(&d) : &f, src, row.Bytes);
    return row.Bytes == 8 ? d : static_cast<double>(f);
  }
  std::uint64_t bits = 0;
  std::memcpy(&bits, src, row.Bytes);  // little-endian machine
  unsigned int const shift = 64 - 8 * row.Bytes;
  std::int64_t const x = row.Signed ? static_cast<std::int64_t>(bits << shift) >> shift : static_cast<std::int64_t>(bits);
  double const negativeScale = row.Id == 5120 ? 0.0078125 : row.Id == 5122 ? 3.0517578125e-05 : 4.656612873077393e-10;
  if (row.Signed && x < 1) return static_cast<double>(x) * negativeScale;
  return static_cast<double>(x) / row.Largest;
}

void TargetStep(SDataRow const& row, double v, void* trg) {
  if (!row.Integer) {
    float const f = static_cast<float>(v);  // round to nearest even; inf beyond the range
    std::memcpy(trg, row.Bytes == 8 ? static_cast<void const*>(&v) : &f, row.Bytes);
    return;
  }
  double const w = row.Signed && !(v > 0.0) ? v * -row.Smallest : v * row.Largest;
  std::int64_t stored;
  if (w > row.Largest)
    stored = static_cast<std::int64_t>(row.Largest);
  else if (row.Smallest > w)
    stored = static_cast<std::int64_t>(row.Smallest);
  else if (std::isnan(w))  // the processor's indefinite integer, INT64_MIN for UInt; low bits kept
    stored = row.Id == 5125 ? INT64_MIN : static_cast<std::int64_t>(INT32_MIN);
  else
    stored = static_cast<std::int64_t>(std::trunc(w));
  std::memcpy(trg, &stored, row.Bytes);
}

}  // namespace

void ConvertValue(int trgType, void* trg, int srcType, void const* src) {
  SDataRow const& row = *FindDataType(trgType);
  if (trgType == srcType) {
    unsigned char bytes[8];
    std::memcpy(bytes, src, row.Bytes);
    std::memcpy(trg, bytes, row.Bytes);
  } else {
    TargetStep(row, SourceStep(*FindDataType(srcType), src), trg);
  }
}

void ConvertRun(int trgPixelType, int trgDataType, void* trg, int srcPixelType, int srcDataType, void const* src,
                unsigned int count) {
  SLayoutRow const& t = *FindLayout(trgPixelType);
  SLayoutRow const& s = *FindLayout(srcPixelType);
  std::size_t const tb = FindDataType(trgDataType)->Bytes, sb = FindDataType(srcDataType)->Bytes;
  std::size_t const tn = t.Colours + t.Alphas, sn = s.Colours + s.Alphas;
  auto target = [&](std::size_t p, int k) { return static_cast<unsigned char*>(trg) + (p * tn + k) * tb; };
  auto source = [&](std::size_t p, int k) { return static_cast<unsigned char const*>(src) + (p * sn + k) * sb; };
  for (std::size_t p = 0; p < count; ++p) {
    ConvertValue(trgDataType, target(p, t.Red), srcDataType, source(p, s.Red));
    if (t.Colours == 3) {
      ConvertValue(trgDataType, target(p, t.Green), srcDataType, source(p, s.Green));
      ConvertValue(trgDataType, target(p, t.Blue), srcDataType, source(p, s.Blue));
    }
  }
  if (t.Alphas == 0) return;
  // LumA target of another data type: the alpha pass goes on at pixel count of both runs.
  std::size_t const first = (trgPixelType == 6410 && trgDataType != srcDataType) ? count : 0;
  for (std::size_t p = first; p < first + count; ++p) {
    if (s.Alphas != 0)
      ConvertValue(trgDataType, target(p, t.Alpha), srcDataType, source(p, s.Alpha));
    else  // the target maximum: the largest value of an integer type, 1.0 of a floating one
      TargetStep(*FindDataType(trgDataType), 1.0, target(p, t.Alpha));
  }
}

std::uint16_t WidenCustom(int dataType, std::uint16_t word) {
  double const divisor = dataType == 10 ? 1023.0 : 4095.0;
  // A single operation equals the double one rounded to single: double has more than twice
  // single's precision.
  auto const quotient = static_cast<float>(static_cast<double>(word) / divisor);
  auto const product = static_cast<float>(static_cast<double>(quotient) * 65535.0);
  return static_cast<std::uint16_t>(static_cast<std::int64_t>(std::trunc(static_cast<double>(product))));
}

}  // namespace NuRef
