// First, so that this unit proves the header compiles on its own.
#include <interop/NuOpenCv.h>

#include <Nu.Core.Ex/NuImage.h>

#include <gtest/gtest.h>

#include <cstring>
#include <optional>
#include <string>
#include <tuple>
#include <utility>

using Nu::CNuImage;
using Nu::CNuImageMoniker;
using Nu::EDataType;
using Nu::EPixelType;
namespace OpenCv = Nu::OpenCv;

namespace {

// Written from the id tables and OpenCV's depths, not from the header's switches.
struct SDepth { int Depth; EDataType::ID DataType; };
constexpr SDepth Depths[] = {{CV_8S, EDataType::Byte},   {CV_8U, EDataType::UByte},
                             {CV_16S, EDataType::Short}, {CV_16U, EDataType::UShort},
                             {CV_32S, EDataType::Int},   {CV_32F, EDataType::Float},
                             {CV_64F, EDataType::Double}};
struct SPixel { EPixelType::ID PixelType; int Channels; };
constexpr SPixel Pixels[] = {{EPixelType::Lum, 1},    {EPixelType::Bayer1, 1}, {EPixelType::Bayer2, 1},
                             {EPixelType::Bayer3, 1}, {EPixelType::Bayer4, 1}, {EPixelType::LumA, 2},
                             {EPixelType::YCbCr, 2},  {EPixelType::RGB, 3},    {EPixelType::BGR, 3},
                             {EPixelType::RGBA, 4},   {EPixelType::BGRA, 4}};

// A temporary Mat may own the only reference to its pixels: the bridge must not take one.
template <class TMat>
concept Wrappable = requires(CNuImageMoniker& moniker, TMat&& mat) {
  OpenCv::WrapMat(moniker, std::forward<TMat>(mat), EPixelType::Lum);
};
static_assert(Wrappable<cv::Mat&> && Wrappable<cv::Mat const&> && !Wrappable<cv::Mat>);
template <class TMat>
concept WrappableByConvention = requires(CNuImageMoniker& moniker, TMat&& mat) {
  OpenCv::WrapMat(moniker, std::forward<TMat>(mat));
};
static_assert(WrappableByConvention<cv::Mat const&> && !WrappableByConvention<cv::Mat>);

// Memory, width, height and type, as the moniker or the Mat tells them.
std::tuple<void const*, int, int, int, int> State(CNuImageMoniker const& moniker) {
  int width = 0, height = 0, pixelType = 0, dataType = 0;
  moniker.GetSize(width, height);
  moniker.GetType(pixelType, dataType);
  return {moniker.GetDataPtr(), width, height, pixelType, dataType};
}
std::tuple<void const*, int, int, int> State(cv::Mat const& mat) {
  return {mat.data, mat.cols, mat.rows, mat.type()};
}

// The moniker views the Mat's own bytes with the matching ids, and a Mat made back over it is
// the same header.
void ExpectSameMemory(cv::Mat const& mat, EPixelType::ID pixelType, EDataType::ID dataType,
                      std::optional<EDataType::ID> named = std::nullopt) {
  CNuImageMoniker moniker;
  ASSERT_TRUE(named ? OpenCv::WrapMat(moniker, mat, pixelType, *named) : OpenCv::WrapMat(moniker, mat, pixelType));
  EXPECT_EQ(State(moniker), std::tuple(static_cast<void const*>(mat.data), mat.cols, mat.rows, int(pixelType),
                                       int(dataType)));
  EXPECT_EQ(moniker.GetByteCount(), mat.cols * mat.elemSize() * mat.rows);
  cv::Mat back;
  ASSERT_TRUE(OpenCv::WrapImage(back, moniker));
  EXPECT_EQ(State(back), State(mat));
  EXPECT_EQ(back.step[0], mat.cols * mat.elemSize());
}

TEST(NuOpenCv, WrapsEveryMappedTypeWithoutCopying) {
  for (SDepth const& d : Depths)
    for (SPixel const& p : Pixels) {
      SCOPED_TRACE(std::to_string(p.PixelType) + " over depth " + std::to_string(d.Depth));
      ExpectSameMemory(cv::Mat(3, 5, CV_MAKETYPE(d.Depth, p.Channels)), p.PixelType, d.DataType);
    }
  // The custom types are stored in 16-bit elements; named, they view a CV_16U Mat.
  for (EDataType::ID custom : {EDataType::Custom_10in16_LSB, EDataType::Custom_10in16_MSB,
                               EDataType::Custom_12in16_LSB, EDataType::Custom_12in16_MSB}) {
    SCOPED_TRACE(custom);
    ExpectSameMemory(cv::Mat(2, 3, CV_16UC1), EPixelType::Bayer3, custom, custom);
  }
  // Without a named pixel type, OpenCV's own order: CV_8UC3 is BGR.
  EPixelType::ID const conventional[] = {EPixelType::Lum, EPixelType::LumA, EPixelType::BGR, EPixelType::BGRA};
  for (SDepth const& d : Depths)
    for (int channels = 1; channels <= 4; ++channels) {
      cv::Mat const mat(2, 3, CV_MAKETYPE(d.Depth, channels));
      CNuImageMoniker moniker;
      ASSERT_TRUE(OpenCv::WrapMat(moniker, mat));
      EXPECT_EQ(State(moniker), std::tuple(static_cast<void const*>(mat.data), 3, 2,
                                           int(conventional[channels - 1]), int(d.DataType)));
    }
  SCOPED_TRACE("one row of a wider Mat is still gapless");
  cv::Mat wide(4, 6, CV_8UC3);
  ExpectSameMemory(wide.row(2), EPixelType::BGR, EDataType::UByte);
}

// The bridge changes no byte and no order: through two monikers a BGR Mat converts as the same
// bytes do in a CNuImage.
TEST(NuOpenCv, ConvertsAsTheImageOfTheSameBytes) {
  cv::Mat bgr(6, 7, CV_8UC3);
  cv::theRNG().state = 20261124;
  cv::randu(bgr, 0, 256);
  cv::Mat rgb(bgr.size(), CV_32FC3);
  CNuImageMoniker src, trg;
  ASSERT_TRUE(OpenCv::WrapMat(src, bgr, EPixelType::BGR));
  ASSERT_TRUE(OpenCv::WrapMat(trg, rgb, EPixelType::RGB));
  ASSERT_TRUE(CNuImage::ConvertType(&trg, &src, EPixelType::RGB, EDataType::Float, false));

  CNuImage image, expected;
  image.Create(7, 6, EPixelType::BGR, EDataType::UByte, bgr.data);
  ASSERT_TRUE(image.ConvertType(expected, EPixelType::RGB, EDataType::Float));
  ASSERT_EQ(expected.GetByteCount(), rgb.total() * rgb.elemSize());
  EXPECT_EQ(std::memcmp(expected.GetDataPtr(), rgb.data, expected.GetByteCount()), 0);
}

// Headers over it only describe memory: nothing reads or writes it.
unsigned char Untouched;

// Every refusal is a plain false that leaves the target as it was.
TEST(NuOpenCv, RefusesWhatItCannotViewExactly) {
  cv::Mat const base(4, 6, CV_8UC3);
  int const cube[] = {2, 3, 4};
  struct SMatCase {
    char const* Name;
    cv::Mat Mat;
    EPixelType::ID PixelType;
    std::optional<EDataType::ID> DataType;
  } const matCases[] = {
      {"non-continuous ROI", base(cv::Rect(1, 1, 3, 2)), EPixelType::BGR, {}},
      {"empty", cv::Mat(), EPixelType::Lum, {}},
      {"no rows", cv::Mat(0, 3, CV_8UC1), EPixelType::Lum, {}},
      {"three dimensions", cv::Mat(3, cube, CV_8UC1), EPixelType::Lum, {}},
      {"half float, no partner", cv::Mat(2, 2, CV_16FC1), EPixelType::Lum, {}},
      {"3 channels as RGBA", cv::Mat(2, 2, CV_8UC3), EPixelType::RGBA, {}},
      {"4 channels as Lum", cv::Mat(2, 2, CV_8UC4), EPixelType::Lum, {}},
      {"void pixel type", cv::Mat(2, 2, CV_8UC1), EPixelType::Void, {}},
      {"unknown pixel type", cv::Mat(2, 2, CV_8UC1), static_cast<EPixelType::ID>(12345), {}},
      {"UInt is not CV_32S", cv::Mat(2, 2, CV_32SC1), EPixelType::Lum, EDataType::UInt},
      {"Float is not CV_16U", cv::Mat(2, 2, CV_16UC1), EPixelType::Lum, EDataType::Float},
      {"integral packing", cv::Mat(2, 2, CV_8UC1), EPixelType::Lum, EDataType::Integral_5per4},
      // OpenCV calls a Mat continuous up to 2^31 - 1 elements, not bytes.
      {"8 GiB", cv::Mat(32768, 32768, CV_64FC1, &Untouched), EPixelType::Lum, {}},
  };
  for (SMatCase const& c : matCases) {
    SCOPED_TRACE(c.Name);
    unsigned char before[4];
    CNuImageMoniker moniker;
    moniker.Create(2, 2, EPixelType::Lum, EDataType::UByte, before);
    auto const was = State(moniker);
    EXPECT_FALSE(c.DataType ? OpenCv::WrapMat(moniker, c.Mat, c.PixelType, *c.DataType)
                            : OpenCv::WrapMat(moniker, c.Mat, c.PixelType));
    EXPECT_EQ(State(moniker), was);
  }
  CNuImageMoniker moniker;
  cv::Mat const fiveChannels(2, 2, CV_8UC(5));
  EXPECT_FALSE(OpenCv::WrapMat(moniker, fiveChannels));
  EXPECT_FALSE(moniker.IsValid());

  auto borrowed = [&](int width, int height, int pixelType, int dataType, void* data = &Untouched) {
    CNuImage image;
    image.CreateMoniker({width, height, static_cast<EPixelType::ID>(pixelType), static_cast<EDataType::ID>(dataType)},
                        data, 0.0, 0);
    return image;
  };
  struct SImageCase { char const* Name; CNuImage Image; } imageCases[] = {
      {"no memory", borrowed(2, 2, EPixelType::Lum, EDataType::UByte, nullptr)},
      {"UInt", borrowed(2, 2, EPixelType::Lum, EDataType::UInt)},
      {"integral packing", borrowed(8, 1, EPixelType::Lum, EDataType::Integral_5per4)},
      {"void data type", borrowed(2, 2, EPixelType::Lum, EDataType::Void)},
      {"unknown pixel type", borrowed(2, 2, 12345, EDataType::UByte)},
      {"byte count wrapped at 32 bits", borrowed(65536, 65537, EPixelType::Lum, EDataType::UByte)},
  };
  for (SImageCase& c : imageCases) {
    SCOPED_TRACE(c.Name);
    cv::Mat const before(1, 1, CV_16SC2);
    cv::Mat mat = before;
    EXPECT_FALSE(OpenCv::WrapImage(mat, c.Image));
    EXPECT_EQ(State(mat), State(before));
  }
}

}  // namespace
