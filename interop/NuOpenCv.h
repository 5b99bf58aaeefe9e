#pragma once
// Zero-copy bridges between cv::Mat and the library's images, header only. The library itself
// never links OpenCV: whoever includes this header links opencv_core.
#include <Nu.Core.Ex/IImage.h>
#include <Nu.Core.Ex/NuImageFormat.h>
#include <Nu.Core.Ex/NuImageMoniker.h>

#include <opencv2/core.hpp>

#include <cstdint>
#include <limits>

namespace Nu::OpenCv {

/// The data type of an OpenCV depth; EDataType::Void for a depth without a partner (CV_16F).
/// CV_16U gives UShort, although the four custom types are stored in the same 16-bit elements.
constexpr EDataType::ID DataTypeOf(int depth) noexcept {
  switch (depth) {
    case CV_8S: return EDataType::Byte;
    case CV_8U: return EDataType::UByte;
    case CV_16S: return EDataType::Short;
    case CV_16U: return EDataType::UShort;
    case CV_32S: return EDataType::Int;
    case CV_32F: return EDataType::Float;
    case CV_64F: return EDataType::Double;
    default: return EDataType::Void;
  }
}

/// The OpenCV depth that stores a data type's elements exactly, custom types as CV_16U; -1 for
/// UInt (OpenCV has no unsigned 32-bit depth), the integral packings, Void and unknown ids.
constexpr int DepthOf(EDataType::ID dataType) noexcept {
  switch (dataType) {
    case EDataType::Byte: return CV_8S;
    case EDataType::UByte: return CV_8U;
    case EDataType::Short: return CV_16S;
    case EDataType::UShort:
    case EDataType::Custom_10in16_LSB:
    case EDataType::Custom_10in16_MSB:
    case EDataType::Custom_12in16_LSB:
    case EDataType::Custom_12in16_MSB: return CV_16U;
    case EDataType::Int: return CV_32S;
    case EDataType::Float: return CV_32F;
    case EDataType::Double: return CV_64F;
    default: return -1;
  }
}

/// The Mat channels of one pixel of a pixel type; 0 for Void and unknown ids. A Bayer pixel is
/// one channel; YCbCr is two, which the library carries without reading them.
constexpr int ChannelsOf(EPixelType::ID pixelType) noexcept {
  // The library's own count, which ships with this header; Void (0) and unknown ids (-1) give 0.
  int const components = Detail::ComponentCountOf(pixelType);
  return components > 0 ? components : 0;
}

/// The pixel type that OpenCV's own convention gives a channel count: Lum, LumA, BGR, BGRA;
/// EPixelType::Void for any other count.
constexpr EPixelType::ID ConventionalPixelTypeOf(int channels) noexcept {
  switch (channels) {
    case 1: return EPixelType::Lum;
    case 2: return EPixelType::LumA;
    case 3: return EPixelType::BGR;
    case 4: return EPixelType::BGRA;
    default: return EPixelType::Void;
  }
}

/// Points `moniker` at the pixels of `mat` without copying: width is cols, height rows.
/// `dataType` must be stored in `mat`'s depth (DepthOf) and `pixelType` must have `mat`'s
/// channel count: the channels alone cannot tell RGB from BGR, and OpenCV's own order is BGR.
/// Returns false, with `moniker` untouched, for an empty, non-2-D or non-continuous Mat (a ROI),
/// a disagreeing or unmapped type, or more than 2^32 - 1 bytes. The Mat keeps ownership: the
/// moniker dangles once the Mat's buffer is released or reallocated.
inline bool WrapMat(CNuImageMoniker& moniker, cv::Mat const& mat, EPixelType::ID pixelType,
                    EDataType::ID dataType) {
  if (mat.empty() || mat.dims != 2 || !mat.isContinuous()) return false;
  int const channels = ChannelsOf(pixelType);
  if (channels == 0 || channels != mat.channels() || DepthOf(dataType) != mat.depth()) return false;
  // The library's sizes are 32-bit and wrap: a larger view would report a false byte count.
  if (mat.total() * mat.elemSize() > std::numeric_limits<std::uint32_t>::max()) return false;
  return moniker.Create(mat.cols, mat.rows, pixelType, dataType, mat.data);
}

/// WrapMat with the data type that `mat`'s depth maps to (DataTypeOf).
inline bool WrapMat(CNuImageMoniker& moniker, cv::Mat const& mat, EPixelType::ID pixelType) {
  return WrapMat(moniker, mat, pixelType, DataTypeOf(mat.depth()));
}

/// WrapMat with the types of OpenCV's convention: CV_8UC3 is BGR/UByte, CV_16UC1 Lum/UShort,
/// CV_32FC4 BGRA/Float (ConventionalPixelTypeOf, DataTypeOf). Returns false as WrapMat does.
inline bool WrapMat(CNuImageMoniker& moniker, cv::Mat const& mat) {
  return WrapMat(moniker, mat, ConventionalPixelTypeOf(mat.channels()), DataTypeOf(mat.depth()));
}

// A temporary Mat may hold the only reference to its buffer, which would die with it.
bool WrapMat(CNuImageMoniker&, cv::Mat&&, EPixelType::ID, EDataType::ID) = delete;
bool WrapMat(CNuImageMoniker&, cv::Mat&&, EPixelType::ID) = delete;
bool WrapMat(CNuImageMoniker&, cv::Mat&&) = delete;

/// Makes `mat` a header over the pixels of `image` without copying: rows are the height, cols
/// the width, the type from DepthOf and ChannelsOf. The Mat borrows the image's memory and
/// counts no reference: it must not outlive the image, nor a Create that reallocates it.
/// Returns false, with `mat` untouched, for an invalid image, for a data type or pixel type that
/// has no exact Mat (UInt, the integral packings, Void, unknown ids), and for a size whose byte
/// count has wrapped at 2^32, where the image's memory is smaller than the Mat would claim.
inline bool WrapImage(cv::Mat& mat, IImage& image) {
  if (!image.IsValid()) return false;
  EPixelType::ID pixelType;
  EDataType::ID dataType;
  image.GetType(pixelType, dataType);
  int const depth = DepthOf(dataType);
  int const channels = ChannelsOf(pixelType);
  if (depth < 0 || channels == 0) return false;
  int width = 0;
  int height = 0;
  image.GetSize(width, height);
  if (width <= 0 || height <= 0) return false;
  std::uint64_t const bytes = std::uint64_t(width) * std::uint64_t(height) *
                              std::uint64_t(channels) * std::uint64_t(CV_ELEM_SIZE1(depth));
  if (bytes > std::numeric_limits<std::uint32_t>::max()) return false;
  mat = cv::Mat(height, width, CV_MAKETYPE(depth, channels), image.GetDataPtr());
  return true;
}

}  // namespace Nu::OpenCv
