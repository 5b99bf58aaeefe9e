// NuConvertDemo: the library's main job on a picture built in code. It converts a test picture
// (colour gradients, a grey ramp, a mosaic of tiles) through a chain of formats, writes every
// result as a PPM or PGM file that an ordinary image viewer opens, and prints a table of the
// steps with format, bytes and time.
//
//   NuConvertDemo [output directory]      (default: the current directory)
#include <Nu.Core.Ex/NuCoreEx.h>

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <stdexcept>
#include <string>

using Nu::CNuImage;
using Nu::EDataType;
using Nu::EPixelType;

namespace {

constexpr int Width = 320;
constexpr int Height = 240;

char const* PixelName(EPixelType::ID id) {
  switch (id) {
    case EPixelType::RGB: return "RGB";
    case EPixelType::RGBA: return "RGBA";
    case EPixelType::BGR: return "BGR";
    case EPixelType::BGRA: return "BGRA";
    case EPixelType::Lum: return "Lum";
    case EPixelType::LumA: return "LumA";
    case EPixelType::Bayer1: return "Bayer1";
    case EPixelType::Bayer2: return "Bayer2";
    case EPixelType::Bayer3: return "Bayer3";
    case EPixelType::Bayer4: return "Bayer4";
    default: return "?";
  }
}

std::string FormatName(CNuImage const& image) {
  EPixelType::ID pixelType;
  EDataType::ID dataType;
  image.GetType(pixelType, dataType);
  return std::string(PixelName(pixelType)) + "/" + Nu::CNuImageFormat::DataType2String(dataType).ToCString();
}

bool IsGrey(EPixelType::ID id) {
  return id == EPixelType::Lum || id == EPixelType::LumA ||
         (id >= EPixelType::Bayer1 && id <= EPixelType::Bayer4);
}

// Writes raw 8-bit memory as binary PPM (3 channels) or PGM (1 channel).
void WriteNetpbm(std::string const& path, void const* bytes, int channels) {
  std::ofstream file(path, std::ios::binary);
  file << (channels == 3 ? "P6\n" : "P5\n") << Width << ' ' << Height << "\n255\n";
  file.write(static_cast<char const*>(bytes), static_cast<std::streamsize>(Width) * Height * channels);
}

// Saves any image for a viewer: the library itself turns it into RGB or Lum of UByte.
std::string Save(CNuImage const& image, std::string const& directory, std::string const& stem) {
  EPixelType::ID pixelType;
  EDataType::ID dataType;
  image.GetType(pixelType, dataType);
  bool const grey = IsGrey(pixelType);
  CNuImage view;
  image.ConvertType(view, grey ? EPixelType::Lum : EPixelType::RGB, EDataType::UByte);
  std::string const name = stem + (grey ? ".pgm" : ".ppm");
  WriteNetpbm(directory + "/" + name, view.GetDataPtr(), grey ? 1 : 3);
  return name;
}

// The test picture, RGB of UByte: the upper half holds colour gradients (red across, green
// down, blue on the diagonal), then a band with a grey ramp, then a mosaic of coloured tiles.
void Paint(CNuImage& picture) {
  picture.Create(Width, Height, EPixelType::RGB, EDataType::UByte);
  auto* p = static_cast<std::uint8_t*>(picture.GetDataPtr());
  std::uint8_t const tiles[6][3] = {{230, 40, 40}, {40, 200, 60}, {40, 80, 230},
                                    {240, 220, 40}, {200, 60, 220}, {250, 250, 250}};
  for (int y = 0; y < Height; ++y) {
    for (int x = 0; x < Width; ++x, p += 3) {
      if (y < Height / 2) {
        p[0] = static_cast<std::uint8_t>(x * 255 / (Width - 1));
        p[1] = static_cast<std::uint8_t>(y * 255 / (Height / 2 - 1));
        p[2] = static_cast<std::uint8_t>((x + y) * 255 / (Width + Height / 2 - 2));
      } else if (y < Height / 2 + 40) {
        std::uint8_t const grey = static_cast<std::uint8_t>(x * 255 / (Width - 1));
        p[0] = p[1] = p[2] = grey;
      } else {
        std::uint8_t const* tile = tiles[(x / 20 + (y / 20) * 5) % 6];
        std::memcpy(p, tile, 3);
      }
    }
  }
}

struct SRow {
  std::string Step, From, To, File;
  unsigned int Bytes;
  double Microseconds;
};

void PrintRow(SRow const& row) {
  std::printf("%-34s %-22s %-13s %9u %10.1f  %s\n", row.Step.c_str(), row.From.c_str(), row.To.c_str(), row.Bytes,
              row.Microseconds, row.File.c_str());
}

template <class TCall>
double Time(TCall&& call) {
  auto const start = std::chrono::steady_clock::now();
  call();
  return std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - start).count();
}

}  // namespace

int main(int argc, char** argv) {
  std::string const directory = argc > 1 ? argv[1] : ".";
  try {
    std::printf("Nu.Core.Ex conversion demo: %dx%d test picture, files in %s\n\n", Width, Height, directory.c_str());
    std::printf("%-34s %-22s %-13s %9s %10s  %s\n", "step", "from", "to", "bytes", "time [us]", "file");
    int stepNumber = 0;
    auto stem = [&](char const* name) {
      char prefix[16];
      std::snprintf(prefix, sizeof prefix, "%02d_", ++stepNumber);
      return std::string(prefix) + name;
    };

    CNuImage picture;
    double const paint = Time([&] { Paint(picture); });
    PrintRow({"build the test picture", "-", FormatName(picture), Save(picture, directory, stem("picture")),
              picture.GetByteCount(), paint});

    // One conversion step of the chain: time it, save it, print it.
    auto step = [&](char const* what, CNuImage const& src, CNuImage& trg, EPixelType::ID pixelType,
                    EDataType::ID dataType, char const* name) {
      // The first call creates the target; the timed second one reuses its block.
      bool ok = src.ConvertType(trg, pixelType, dataType);
      double const us = Time([&] { ok = ok && src.ConvertType(trg, pixelType, dataType); });
      if (!ok) throw std::runtime_error(std::string("conversion refused: ") + what);
      PrintRow({what, FormatName(src), FormatName(trg), Save(trg, directory, stem(name)), trg.GetByteCount(), us});
    };

    CNuImage rgbaFloat, bgraUShort, bgrByte, greyRed, lumAlpha, back;
    step("UByte to Float, alpha filled 1.0", picture, rgbaFloat, EPixelType::RGBA, EDataType::Float, "rgba_float");
    step("reorder to BGRA, Float to UShort", rgbaFloat, bgraUShort, EPixelType::BGRA, EDataType::UShort, "bgra_ushort");
    step("drop alpha, UShort to UByte", bgraUShort, bgrByte, EPixelType::BGR, EDataType::UByte, "bgr_ubyte");
    {
      // The BGR memory written as if it were RGB: red and blue change places.
      std::string const name = stem("bgr_memory_as_rgb") + ".ppm";
      WriteNetpbm(directory + "/" + name, bgrByte.GetDataPtr(), 3);
      PrintRow({"BGR memory shown as RGB", FormatName(bgrByte), "(raw bytes)", name, bgrByte.GetByteCount(), 0.0});
    }
    step("grey is the red channel (BGR: s2)", bgrByte, greyRed, EPixelType::Lum, EDataType::UByte, "grey_from_red");
    step("Lum to LumA, alpha filled 255", greyRed, lumAlpha, EPixelType::LumA, EDataType::UByte, "luma");
    step("Lum to RGB of Double, grey in 3", greyRed, back, EPixelType::RGB, EDataType::Double, "rgb_double");

    // A mosaic as a camera delivers it (RGGB sampling is done here: the library attaches no
    // pattern to a Bayer id and does no demosaicing).
    CNuImage bayer;
    bayer.Create(Width, Height, EPixelType::Bayer1, EDataType::UByte);
    {
      auto const* rgb = static_cast<std::uint8_t const*>(picture.GetDataPtr());
      auto* raw = static_cast<std::uint8_t*>(bayer.GetDataPtr());
      for (int y = 0; y < Height; ++y)
        for (int x = 0; x < Width; ++x) {
          int const channel = (y % 2 == 0) ? (x % 2 == 0 ? 0 : 1) : (x % 2 == 0 ? 1 : 2);
          raw[y * Width + x] = rgb[(y * Width + x) * 3 + channel];
        }
    }
    PrintRow({"sample an RGGB mosaic", FormatName(picture), FormatName(bayer), Save(bayer, directory, stem("bayer")),
              bayer.GetByteCount(), 0.0});
    CNuImage bayerFloat, bayerGrey, bayerColour;
    step("Bayer data type change", bayer, bayerFloat, EPixelType::Bayer1, EDataType::Float, "bayer_float");
    step("Bayer read out as grey", bayerFloat, bayerGrey, EPixelType::Lum, EDataType::UShort, "bayer_grey");
    step("Bayer into RGBA: mosaic as grey", bayer, bayerColour, EPixelType::RGBA, EDataType::UByte, "bayer_rgba");

    // A 12-bit camera image, 12 significant bits in the low bits of each word.
    CNuImage custom;
    custom.Create(Width, Height, EPixelType::Lum, EDataType::Custom_12in16_LSB);
    {
      auto const* grey = static_cast<std::uint8_t const*>(greyRed.GetDataPtr());
      auto* words = static_cast<std::uint16_t*>(custom.GetDataPtr());
      for (int i = 0; i < Width * Height; ++i) words[i] = static_cast<std::uint16_t>(grey[i] * 4095 / 255);
    }
    CNuImage widened, widenedByte;
    custom.ConvertCustomType(widened);
    double const widen = Time([&] { custom.ConvertCustomType(widened); });
    PrintRow({"12-bit custom widened to 16 bits", FormatName(custom), FormatName(widened),
              Save(widened, directory, stem("custom12_widened")), widened.GetByteCount(), widen});
    step("then UShort to UByte (x / 257)", widened, widenedByte, EPixelType::Lum, EDataType::UByte, "custom12_ubyte");

    // The same format takes the shortcut: one block copy.
    CNuImage copy;
    step("same format: one block copy", picture, copy, EPixelType::RGB, EDataType::UByte, "copy");
    std::printf("\nAll conversions are exact to the bit as the value rule defines them.\n");
    return 0;
  } catch (Nu::CNuException const& e) {
    std::fprintf(stderr, "NuConvertDemo: %s\n", e.ToString().ToCString());
  } catch (std::exception const& e) {
    std::fprintf(stderr, "NuConvertDemo: %s\n", e.what());
  }
  return 1;
}
