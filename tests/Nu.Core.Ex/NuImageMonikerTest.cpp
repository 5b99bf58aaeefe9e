#include <Nu.Core.Ex/NuImage.h>
#include <Nu.Core.Ex/NuImageMoniker.h>

#include <Support/ExceptionCheck.h>
#include <Support/ImageCheck.h>

#include <gtest/gtest.h>

#include <utility>
#include <vector>

using namespace Nu;
using namespace NuTest;

TEST(NuImageMoniker, ViewsWithoutCopyingRefusesWithFalseOrARaiseAndLetsFormatRaisesPassBare) {
  std::vector<unsigned char> memory(48);
  Chain const raised = {{"Error creating image moniker", "Create", MonikerFile}};
  for (CNuImageFormat const& f : {Format(0, 4, EPixelType::RGB, EDataType::UByte),
                                  Format(4, 4, EPixelType::RGB, EDataType::Void),
                                  Format(4, 4, EPixelType::Void, EDataType::UByte)}) {
    CMoniker moniker(Format(4, 4, EPixelType::RGB, EDataType::UByte), memory.data());
    EXPECT_FALSE(moniker.Create(f.Width, f.Height, f.PixelType, f.DataType, memory.data()));
    EXPECT_TRUE(moniker.IsEmpty());
    ExpectRaises([&] { moniker.Create(f.Width, f.Height, int{f.PixelType}, int{f.DataType}, memory.data()); }, raised);
    ExpectRaises([&] { moniker.Create(f, memory.data()); }, raised);
  }
  CNuImage image, copy;
  ASSERT_TRUE(image.Create(4, 4, EPixelType::RGB, EDataType::UByte));
  CMoniker moniker;
  EXPECT_TRUE(moniker.Create(image));  // a view, no copy
  ASSERT_TRUE(copy.Create(static_cast<IImage const*>(&moniker)));
  EXPECT_TRUE(moniker.RawData() == image.GetDataPtr() && copy.GetByteCount() == 48u);
  CNuImage const empty;
  EXPECT_FALSE(moniker.Create(static_cast<IImage const*>(&empty)));  // refused before anything changes
  ExpectRaises([&] { moniker.Create(empty); }, raised);
  CMoniker moved(std::move(moniker));
  EXPECT_TRUE(moniker.IsEmpty() && moved.RawData() == image.GetDataPtr() && moved.GetByteCount() == 48u);
  moniker = moved;
  moved.Destroy();
  EXPECT_TRUE(moved.IsEmpty() && moniker.RawData() == image.GetDataPtr() && image.IsValid());
  // Unlike the image, the moniker lets the format's raise out bare and keeps the rejected format.
  Chain const integral = {
      {"Unable to determine bytes per pixel from integral data formats", "GetBytesPerPixel", FormatFile}};
  ExpectRaises([&] { moved.Create(8, 1, EPixelType::Lum, EDataType::Integral_5per4, memory.data()); }, integral);
  EXPECT_EQ(moved.RawData(), nullptr);
  ExpectRaises([&] { moved.GetBytesPerPixel(); }, integral);
}
