// NuOpenCvConvert: a BGR cv::Mat of bytes turned into RGB floats in 0..1, where one would
// otherwise write the loop over rows, pixels and channels by hand. Neither Mat is copied: the
// monikers view their memory, and the conversion writes straight into the target Mat.
#include <interop/NuOpenCv.h>

#include <Nu.Core.Ex/NuImage.h>

#include <cstdio>

int main() {
  using Nu::EDataType;
  using Nu::EPixelType;

  cv::Mat bgr(240, 320, CV_8UC3);
  cv::randu(bgr, 0, 256);
  cv::Mat rgb(bgr.size(), CV_32FC3);

  // CV_8UC3 is BGR by OpenCV's convention; RGB must be named: three channels cannot tell.
  Nu::CNuImageMoniker src, trg;
  if (!Nu::OpenCv::WrapMat(src, bgr) || !Nu::OpenCv::WrapMat(trg, rgb, EPixelType::RGB) ||
      !Nu::CNuImage::ConvertType(&trg, &src, EPixelType::RGB, EDataType::Float, false)) {
    std::puts("conversion refused");
    return 1;
  }
  cv::Vec3b const in = bgr.at<cv::Vec3b>(200, 100);
  cv::Vec3f const out = rgb.at<cv::Vec3f>(200, 100);
  std::printf("BGR/UByte (%d, %d, %d) -> RGB/Float (%.4f, %.4f, %.4f)\n", in[0], in[1], in[2], out[0], out[1],
              out[2]);
  cv::Scalar const mean = cv::mean(rgb);
  std::printf("mean of the RGB floats: %.4f %.4f %.4f\n", mean[0], mean[1], mean[2]);
  return 0;
}
