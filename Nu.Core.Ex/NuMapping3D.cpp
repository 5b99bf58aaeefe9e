#include <Nu.Core.Ex/NuMapping3D.h>

#include <Nu.Core/NuException.h>

#include <climits>
#include <cstring>
#include <utility>

namespace Nu {
namespace {

constexpr char FileText[] = "Nu.Core.Ex/NuMapping3D.cpp";

// Truncation toward zero, as the processor's conversion does it, without its undefined cases:
// a quotient outside int's range or a NaN gives INT_MIN, which is what x86-64 yields and what
// the lower index test then refuses.
int TruncateToIndex(float quotient) {
  if (quotient >= -2147483648.0f && quotient < 2147483648.0f) return static_cast<int>(quotient);
  return INT_MIN;
}

}  // namespace

CNuMapping3D::CNuMapping3D() : Data(nullptr) { CNuMapping3D::Destroy(); }

CNuMapping3D::CNuMapping3D(CNuMapping3D const& mapping) : CNuMapping3D() { Create(mapping); }

CNuMapping3D::CNuMapping3D(CNuMapping3D&& mapping) : CNuMapping3D() { Create(std::move(mapping)); }

CNuMapping3D& CNuMapping3D::operator=(CNuMapping3D const& mapping) {
  Create(mapping);
  return *this;
}

CNuMapping3D& CNuMapping3D::operator=(CNuMapping3D&& mapping) {
  Create(std::move(mapping));
  return *this;
}

CNuMapping3D::~CNuMapping3D() { CNuMapping3D::Destroy(); }

bool CNuMapping3D::Destroy() {
  delete[] reinterpret_cast<unsigned char*>(Data);
  Data = nullptr;
  MinX = MinY = MinZ = 0.0f;
  MaxX = MaxY = MaxZ = 0.0f;
  CountX = CountY = CountZ = 0;
  StepX = StepY = StepZ = 0.0f;
  return true;
}

bool CNuMapping3D::IsValid() const { return Data != nullptr; }

unsigned int CNuMapping3D::GetByteCount() const {
  // Wraps modulo 2^32 by design; 32768 x 32768 x 1 nodes give 0.
  return static_cast<unsigned int>(CountX) * static_cast<unsigned int>(CountY) * 4u *
         static_cast<unsigned int>(CountZ);
}

float* CNuMapping3D::GetDataPtr() { return Data; }

float const* CNuMapping3D::GetDataPtr() const { return Data; }

bool CNuMapping3D::Create(float minX, float minY, float minZ, float maxX, float maxY, float maxZ,
                          int countX, int countY, int countZ, float const* data) {
  if (countX <= 0 || countY <= 0 || countZ <= 0) {
    Destroy();
    return false;
  }
  try {
    unsigned int const byteCount = static_cast<unsigned int>(countZ) * 4u *
                                   static_cast<unsigned int>(countY) *
                                   static_cast<unsigned int>(countX);
    // Only the wrapping byte count decides: other counts of the same size keep the block and
    // its values, and a count that wraps to the current one allocates nothing at all.
    if (byteCount != GetByteCount()) {
      Destroy();
      Data = reinterpret_cast<float*>(new unsigned char[byteCount]);
    }
    CountX = countX;
    CountY = countY;
    CountZ = countZ;
    MinX = minX;
    MinY = minY;
    MinZ = minZ;
    MaxX = maxX;
    MaxY = maxY;
    MaxZ = maxZ;
    // One node on an axis divides by zero: an infinite step (NaN for min == max), not an error.
    StepX = (maxX - minX) / static_cast<float>(countX - 1);
    StepY = (maxY - minY) / static_cast<float>(countY - 1);
    StepZ = (maxZ - minZ) / static_cast<float>(countZ - 1);
    unsigned int const tableBytes = GetByteCount();
    // memmove: a copy from itself passes its own table.
    if (data != nullptr && tableBytes != 0) std::memmove(Data, data, tableBytes);
  } catch (CNuException& cause) {
    NU_RAISE_WRAPPED(FileText, "Error creating mapping", cause);
  }
  return true;
}

bool CNuMapping3D::Create(CNuMapping3D const& mapping) {
  return Create(mapping.MinX, mapping.MinY, mapping.MinZ, mapping.MaxX, mapping.MaxY, mapping.MaxZ,
                mapping.CountX, mapping.CountY, mapping.CountZ, mapping.Data);
}

bool CNuMapping3D::Create(CNuMapping3D&& mapping) {
  // No self-move test: the target is destroyed first, so a self-move ends empty.
  Destroy();
  MinX = mapping.MinX;
  MinY = mapping.MinY;
  MinZ = mapping.MinZ;
  MaxX = mapping.MaxX;
  MaxY = mapping.MaxY;
  MaxZ = mapping.MaxZ;
  CountX = mapping.CountX;
  CountY = mapping.CountY;
  CountZ = mapping.CountZ;
  StepX = mapping.StepX;
  StepY = mapping.StepY;
  StepZ = mapping.StepZ;
  Data = mapping.Data;
  mapping.Data = nullptr;
  return mapping.Destroy();
}

bool CNuMapping3D::Set(float const* data) {
  if (IsValid()) {
    unsigned int const byteCount = GetByteCount();
    if (byteCount != 0) std::memmove(Data, data, byteCount);
  }
  // False on every path, also after writing: callers must not read it as a failure.
  return false;
}

void CNuMapping3D::SetZero() {
  bool valid = false;
  unsigned int byteCount = 0;
  try {
    valid = IsValid();
    if (valid) byteCount = GetByteCount();
  } catch (CNuException& cause) {
    // The image's wording on purpose, although this is no image: callers match on it.
    NU_RAISE_WRAPPED(FileText, "Error setting image to zero", cause);
  }
  if (valid && byteCount != 0) std::memset(Data, 0, byteCount);
}

bool CNuMapping3D::Contains(float x, float y, float z) {
  // All strict: points on faces, edges and corners are outside, so are NaNs.
  return MinX < x && x < MaxX && MinY < y && y < MaxY && MinZ < z && z < MaxZ;
}

bool CNuMapping3D::Map(float& x, float& y, float& z) {
  if (!IsValid()) return false;
  if (!Contains(x, y, z)) return false;
  // True divisions and truncation, no rounding to the nearest node.
  int const ix = TruncateToIndex((x - MinX) / StepX);
  int const iy = TruncateToIndex((y - MinY) / StepY);
  int const iz = TruncateToIndex((z - MinZ) / StepZ);
  // The upper tests stay although an inside point reaches Count - 1 only by float rounding:
  // the nodes on the upper faces are stored but not otherwise read.
  if (ix >= CountX || ix < 0) return false;
  if (iy >= CountY || iy < 0) return false;
  if (iz >= CountZ || iz < 0) return false;
  // The index is a signed 32-bit value; it is formed in unsigned arithmetic so that a wrap is
  // the two's complement one rather than undefined behaviour.
  auto const index =
      static_cast<int>(static_cast<unsigned int>(iz) *
                           (static_cast<unsigned int>(CountX) * static_cast<unsigned int>(CountY)) +
                       static_cast<unsigned int>(ix) * static_cast<unsigned int>(CountY) +
                       static_cast<unsigned int>(iy));
  float const value = Data[index];
  if (value == 0.0f) return false;
  z = z + value;
  return true;
}

}  // namespace Nu
