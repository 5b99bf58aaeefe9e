// First, so that this unit proves the header compiles on its own.
#include <interop/NuOpenCv.h>

#include <Nu.Core.Ex/NuImage.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

using Nu::CNuImage;
using Nu::CNuImageMoniker;
using Nu::EDataType;
using Nu::EPixelType;
namespace OpenCv = Nu::OpenCv;

namespace {

// Written from the id tables and OpenCV's depths, not from the header's switches.
std::pair<int, EDataType::ID> const Depths[] = {{CV_8S, EDataType::Byte},   {CV_8U, EDataType::UByte},
                                                {CV_16S, EDataType::Short}, {CV_16U, EDataType::UShort},
                                                {CV_32S, EDataType::Int},   {CV_32F, EDataType::Float},
                                                {CV_64F, EDataType::Double}};
std::pair<EPixelType::ID, int> const Pixels[] = {
    {EPixelType::Lum, 1},  {EPixelType::Bayer1, 1}, {EPixelType::Bayer2, 1}, {EPixelType::Bayer3, 1},
    {EPixelType::Bayer4, 1}, {EPixelType::LumA, 2}, {EPixelType::YCbCr, 2},  {EPixelType::RGB, 3},
    {EPixelType::BGR, 3},  {EPixelType::RGBA, 4},   {EPixelType::BGRA, 4}};

// A temporary Mat may own the only reference to its pixels: the bridge must not take one.
template <class TMat, class... TIds>
concept Wrappable = requires(CNuImageMoniker& moniker, TMat&& mat, TIds... ids) {
  OpenCv::WrapMat(moniker, std::forward<TMat>(mat), ids...);
};
static_assert(Wrappable<cv::Mat const&> && !Wrappable<cv::Mat> && Wrappable<cv::Mat&, EPixelType::ID> &&
              !Wrappable<cv::Mat, EPixelType::ID>);

// Memory, width, height and type, as the moniker or the Mat tells them.
std::tuple<void const*, int, int, int, int> State(CNuImageMoniker const& moniker) {
  int width = 0, height = 0, pixelType = 0, dataType = 0;
  moniker.GetSize(width, height);
  moniker.GetType(pixelType, dataType);
  return {moniker.GetDataPtr(), width, height, pixelType, dataType};
}
std::tuple<void const*, int, int, int> State(cv::Mat const& mat) { return {mat.data, mat.cols, mat.rows, mat.type()}; }

// The overload that the ids ask for: Void leaves the data type to the depth, and with it the pixel
// type to OpenCV's convention.
bool Wrap(CNuImageMoniker& moniker, cv::Mat const& mat, EPixelType::ID pixelType, EDataType::ID dataType) {
  if (dataType != EDataType::Void) return OpenCv::WrapMat(moniker, mat, pixelType, dataType);
  return pixelType != EPixelType::Void ? OpenCv::WrapMat(moniker, mat, pixelType) : OpenCv::WrapMat(moniker, mat);
}

// Headers over it only describe memory: nothing reads or writes it.
unsigned char Untouched;

// A refusal is a plain false that leaves the target as it was.
template <class TState>
testing::AssertionResult Refusal(bool wrapped, TState const& before, TState const& after) {
  if (!wrapped && before == after) return testing::AssertionSuccess();
  return testing::AssertionFailure() << (wrapped ? "wrapped, " : "refused, ") << testing::PrintToString(before)
                                     << " became " << testing::PrintToString(after);
}
testing::AssertionResult RefusesMat(cv::Mat const& mat, EPixelType::ID pixelType,
                                    EDataType::ID dataType = EDataType::Void) {
  unsigned char memory[4];
  CNuImageMoniker moniker;
  moniker.Create(2, 2, EPixelType::Lum, EDataType::UByte, memory);
  auto const before = State(moniker);
  bool const wrapped = Wrap(moniker, mat, pixelType, dataType);
  return Refusal(wrapped, before, State(moniker));
}
testing::AssertionResult RefusesImage(int width, int height, int pixelType, int dataType, void* data = &Untouched) {
  CNuImage image;
  image.CreateMoniker({width, height, static_cast<EPixelType::ID>(pixelType), static_cast<EDataType::ID>(dataType)},
                      data, 0.0, 0);
  cv::Mat const before(1, 1, CV_16SC2);
  cv::Mat mat = before;
  bool const wrapped = OpenCv::WrapImage(mat, image);
  return Refusal(wrapped, State(before), State(mat));
}

}  // namespace

// The moniker views the Mat's own bytes with the expected ids, and a Mat made back over it is
// the same header.
TEST(NuOpenCv, WrapsEveryMappedTypeBothWaysWithoutCopying) {
  struct SCase {
    int MatType;
    EPixelType::ID Asked, PixelType;
    EDataType::ID AskedData, DataType;
  };
  std::vector<SCase> cases;
  EPixelType::ID const conventional[] = {EPixelType::Lum, EPixelType::LumA, EPixelType::BGR, EPixelType::BGRA};
  for (auto [depth, dataType] : Depths) {
    for (auto [pixelType, channels] : Pixels)
      cases.push_back({CV_MAKETYPE(depth, channels), pixelType, pixelType, EDataType::Void, dataType});
    for (int channels = 1; channels <= 4; ++channels)
      cases.push_back({CV_MAKETYPE(depth, channels), EPixelType::Void, conventional[channels - 1], EDataType::Void,
                       dataType});
  }
  // The custom types are stored in 16-bit elements; named, they view a CV_16U Mat.
  for (EDataType::ID custom : {EDataType::Custom_10in16_LSB, EDataType::Custom_10in16_MSB,
                               EDataType::Custom_12in16_LSB, EDataType::Custom_12in16_MSB})
    cases.push_back({CV_16UC1, EPixelType::Bayer3, EPixelType::Bayer3, custom, custom});
  for (SCase const& c : cases) {
    SCOPED_TRACE(std::to_string(c.Asked) + "/" + std::to_string(c.AskedData) + " over " + std::to_string(c.MatType));
    cv::Mat const mat(3, 5, c.MatType);
    CNuImageMoniker moniker;
    ASSERT_TRUE(Wrap(moniker, mat, c.Asked, c.AskedData));
    EXPECT_EQ(State(moniker), std::tuple(static_cast<void const*>(mat.data), 5, 3, int(c.PixelType), int(c.DataType)));
    EXPECT_EQ(moniker.GetByteCount(), mat.total() * mat.elemSize());
    cv::Mat back;
    ASSERT_TRUE(OpenCv::WrapImage(back, moniker));
    EXPECT_EQ(State(back), State(mat));
    EXPECT_EQ(back.step[0], mat.step[0]);
  }
}

// The bridge changes no byte and no order: through two monikers a BGR Mat converts as the same
// bytes do in a CNuImage.
TEST(NuOpenCv, ConvertsAsTheImageOfTheSameBytes) {
  cv::Mat bgr(6, 7, CV_8UC3);
  cv::theRNG().state = 20261124;
  cv::randu(bgr, 0, 256);
  cv::Mat rgb(bgr.size(), CV_32FC3);
  CNuImageMoniker src, trg;
  ASSERT_TRUE(OpenCv::WrapMat(src, bgr) && OpenCv::WrapMat(trg, rgb, EPixelType::RGB));
  ASSERT_TRUE(CNuImage::ConvertType(&trg, &src, EPixelType::RGB, EDataType::Float, false));

  CNuImage image, expected;
  image.Create(7, 6, EPixelType::BGR, EDataType::UByte, bgr.data);
  ASSERT_TRUE(image.ConvertType(expected, EPixelType::RGB, EDataType::Float));
  ASSERT_EQ(expected.GetByteCount(), rgb.total() * rgb.elemSize());
  EXPECT_EQ(std::memcmp(expected.GetDataPtr(), rgb.data, expected.GetByteCount()), 0);
}

// A Mat is refused where the moniker could not view it exactly, an image where no Mat could.
TEST(NuOpenCv, RefusesWhatItCannotViewExactly) {
  cv::Mat const base(4, 6, CV_8UC3);
  int const cube[] = {2, 3, 4};
  std::pair<char const*, testing::AssertionResult> const cases[] = {
      {"non-continuous ROI", RefusesMat(base(cv::Rect(1, 1, 3, 2)), EPixelType::BGR)},
      {"no rows", RefusesMat(cv::Mat(0, 3, CV_8UC1), EPixelType::Lum)},
      {"three dimensions", RefusesMat(cv::Mat(3, cube, CV_8UC1), EPixelType::Lum)},
      {"half float, no partner", RefusesMat(cv::Mat(2, 2, CV_16FC1), EPixelType::Lum)},
      {"3 channels as RGBA", RefusesMat(cv::Mat(2, 2, CV_8UC3), EPixelType::RGBA)},
      {"5 channels by convention", RefusesMat(cv::Mat(2, 2, CV_8UC(5)), EPixelType::Void)},
      {"unknown pixel type", RefusesMat(cv::Mat(2, 2, CV_8UC1), static_cast<EPixelType::ID>(12345))},
      {"UInt is not CV_32S", RefusesMat(cv::Mat(2, 2, CV_32SC1), EPixelType::Lum, EDataType::UInt)},
      {"Float is not CV_16U", RefusesMat(cv::Mat(2, 2, CV_16UC1), EPixelType::Lum, EDataType::Float)},
      {"integral packing", RefusesMat(cv::Mat(2, 2, CV_8UC1), EPixelType::Lum, EDataType::Integral_5per4)},
      // OpenCV calls a Mat continuous up to 2^31 - 1 elements, not bytes.
      {"8 GiB", RefusesMat(cv::Mat(32768, 32768, CV_64FC1, &Untouched), EPixelType::Lum)},
      {"image without memory", RefusesImage(2, 2, EPixelType::Lum, EDataType::UByte, nullptr)},
      {"UInt image", RefusesImage(2, 2, EPixelType::Lum, EDataType::UInt)},
      {"integral image", RefusesImage(8, 1, EPixelType::Lum, EDataType::Integral_5per4)},
      {"image of an unknown pixel type", RefusesImage(2, 2, 12345, EDataType::UByte)},
      {"image byte count wrapped at 32 bits", RefusesImage(65536, 65537, EPixelType::Lum, EDataType::UByte)},
  };
  for (auto const& [name, refused] : cases) EXPECT_TRUE(refused) << name;
}
