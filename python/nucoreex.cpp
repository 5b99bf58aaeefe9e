// nucoreex: the library's exact conversion over numpy arrays.
#include <Nu.Core.Ex/NuImage.h>
#include <Nu.Core/NuException.h>

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace py = pybind11;
using Nu::CNuImage;
using Nu::CNuImageFormat;
using Nu::EDataType;
using Nu::EPixelType;

namespace {

struct PixelInfo {
  char const* Name;
  EPixelType::ID Id;
  unsigned Elements;
  bool HasAlpha;
};
#define NU_PY_PIXEL_(L, C, A, ...) {#L, EPixelType::L, C + A, A != 0},
constexpr PixelInfo Pixels[] = {NU_PIXEL_LAYOUTS(NU_PY_PIXEL_, ~)};
#undef NU_PY_PIXEL_

// The data types a numpy array can hold: the eight numeric ones and the custom 16-bit words.
struct DataInfo {
  EDataType::ID Id;
  char const* DType;
};
constexpr DataInfo Datas[] = {
    {EDataType::Byte, "int8"},      {EDataType::UByte, "uint8"},
    {EDataType::Short, "int16"},    {EDataType::UShort, "uint16"},
    {EDataType::Int, "int32"},      {EDataType::UInt, "uint32"},
    {EDataType::Float, "float32"},  {EDataType::Double, "float64"},
    {EDataType::Custom_10in16_LSB, "uint16"}, {EDataType::Custom_10in16_MSB, "uint16"},
    {EDataType::Custom_12in16_LSB, "uint16"}, {EDataType::Custom_12in16_MSB, "uint16"},
};

std::string DataName(EDataType::ID id) { return CNuImageFormat::DataType2String(id).ToCString(); }

struct Format {
  PixelInfo const* Pixel;
  DataInfo const* Data;
  std::string Name() const { return std::string(Pixel->Name) + "/" + DataName(Data->Id); }
  py::dtype DType() const { return py::dtype(Data->DType); }
};

DataInfo const* FindData(int id) {
  for (auto const& d : Datas)
    if (d.Id == id) return &d;
  return nullptr;
}

DataInfo const* ParseData(py::handle given) {
  if (py::isinstance<py::str>(given)) {
    auto const name = given.cast<std::string>();
    for (auto const& d : Datas)
      if (DataName(d.Id) == name) return &d;
    throw py::value_error("unknown data type '" + name + "'");
  }
  auto const* data = FindData(py::int_(py::reinterpret_borrow<py::object>(given)).cast<int>());
  if (!data) throw py::value_error("data type " + py::repr(given).cast<std::string>() + " has no array form");
  return data;
}

// A format is "RGB/UByte" or a (PixelType, DataType) pair of the module's enums or their ids.
Format ParseFormat(py::handle given) {
  py::object pixelPart, dataPart;
  if (py::isinstance<py::str>(given)) {
    auto const text = given.cast<std::string>();
    auto const slash = text.find('/');
    if (slash == std::string::npos) throw py::value_error("format '" + text + "' is not 'Pixel/Data'");
    pixelPart = py::str(text.substr(0, slash));
    dataPart = py::str(text.substr(slash + 1));
  } else if (py::isinstance<py::tuple>(given) && py::len(given) == 2) {
    pixelPart = given[py::int_(0)];
    dataPart = given[py::int_(1)];
  } else {
    throw py::type_error("a format is 'Pixel/Data' or a (PixelType, DataType) pair");
  }
  PixelInfo const* pixel = nullptr;
  bool const byName = py::isinstance<py::str>(pixelPart);
  int const id = byName ? 0 : py::int_(pixelPart).cast<int>();
  for (auto const& p : Pixels)
    if (byName ? pixelPart.cast<std::string>() == p.Name : id == p.Id) pixel = &p;
  if (!pixel) throw py::value_error("pixel type " + py::repr(pixelPart).cast<std::string>() + " is not carried");
  return {pixel, ParseData(dataPart)};
}

// The library's sizes are 32-bit: refuse what they cannot express rather than let them wrap.
void CheckSize(py::ssize_t height, py::ssize_t width, std::uint64_t bytes) {
  constexpr auto intMax = std::numeric_limits<int>::max();
  if (height > intMax || width > intMax || bytes > std::numeric_limits<unsigned>::max())
    throw py::value_error("image too large for the library's 32-bit sizes");
}

std::string Text(py::handle h) { return py::str(h).cast<std::string>(); }

void CheckArray(py::array const& a, py::dtype const& expected, char const* what, std::string const& format) {
  if (!a.dtype().equal(expected))
    throw py::type_error(std::string(what) + " must be " + Text(expected) + " for " + format + ", not " +
                         Text(a.dtype()));
  if (!(a.flags() & py::array::c_style)) throw py::value_error(std::string(what) + " must be C-contiguous");
}

// (h, w) for one element per pixel, (h, w, c) otherwise; (h, w, 1) is taken for (h, w).
bool ShapeFits(py::array const& a, py::ssize_t h, py::ssize_t w, unsigned elements) {
  if (a.ndim() == 2) return elements == 1 && a.shape(0) == h && a.shape(1) == w;
  return a.ndim() == 3 && a.shape(0) == h && a.shape(1) == w && a.shape(2) == py::ssize_t(elements);
}

bool Overlap(py::array const& a, py::array const& b) {
  auto const* a0 = static_cast<char const*>(a.data());
  auto const* b0 = static_cast<char const*>(b.data());
  return a0 < b0 + b.nbytes() && b0 < a0 + a.nbytes();
}

PyObject* ErrorType = nullptr;

// nucoreex.Error for one exception of the chain: message, function, file, line, name, inner.
py::object MakeError(Nu::IException const& e) {
  auto const* nu = dynamic_cast<Nu::CNuException const*>(&e);
  py::object err = py::reinterpret_borrow<py::object>(ErrorType)(
      nu ? nu->ToString().ToCString() : e.GetMessageText());
  err.attr("message") = e.GetMessageText();
  err.attr("function") = e.GetFunction();
  err.attr("file") = e.GetFile();
  err.attr("line") = e.GetLine();
  err.attr("name") = e.GetName();
  err.attr("inner") = e.GetInnerException() ? MakeError(*e.GetInnerException()) : py::none();
  return err;
}

[[noreturn]] void RaiseError(Nu::CNuException const& e) {
  PyErr_SetObject(ErrorType, MakeError(e).ptr());
  throw py::error_already_set();
}

py::array NewArray(py::dtype const& dtype, py::ssize_t h, py::ssize_t w, unsigned elements) {
  std::vector<py::ssize_t> shape{h, w};
  if (elements != 1) shape.push_back(elements);
  py::array result(dtype, shape);
  std::memset(result.mutable_data(), 0, result.nbytes());
  return result;
}

py::array Convert(py::array const& src, py::handle srcSpec, py::handle dstSpec, py::object const& outArg) {
  Format const srcFormat = ParseFormat(srcSpec), dstFormat = ParseFormat(dstSpec);
  CheckArray(src, srcFormat.DType(), "array", srcFormat.Name());
  if (src.ndim() < 2 || !ShapeFits(src, src.shape(0), src.shape(1), srcFormat.Pixel->Elements))
    throw py::value_error("array of shape " + Text(src.attr("shape")) + " does not hold " + srcFormat.Name() +
                          " pixels");
  py::ssize_t const h = src.shape(0), w = src.shape(1);
  auto const count = std::uint64_t(h) * std::uint64_t(w);
  unsigned const srcPixelBytes = srcFormat.Pixel->Elements * py::ssize_t(src.itemsize());
  unsigned const dstPixelBytes = dstFormat.Pixel->Elements * dstFormat.DType().itemsize();
  bool const sameFormat = srcFormat.Pixel == dstFormat.Pixel && srcFormat.Data == dstFormat.Data;
  // The LumA target of another data type writes its alpha one run further on and reads an
  // alpha-bearing source there too; both runs are doubled in scratch memory.
  bool const shifted = dstFormat.Pixel->Id == EPixelType::LumA && srcFormat.Data != dstFormat.Data;
  CheckSize(h, w, (shifted ? 2 : 1) * count * std::max(srcPixelBytes, dstPixelBytes));

  py::array out;
  if (outArg.is_none()) {
    out = NewArray(dstFormat.DType(), h, w, dstFormat.Pixel->Elements);
  } else {
    if (!py::isinstance<py::array>(outArg)) throw py::type_error("out must be a numpy array");
    out = py::reinterpret_borrow<py::array>(outArg);
    CheckArray(out, dstFormat.DType(), "out", dstFormat.Name());
    if (!ShapeFits(out, h, w, dstFormat.Pixel->Elements))
      throw py::value_error("out does not have the shape of " + std::to_string(h) + " x " + std::to_string(w) +
                            " " + dstFormat.Name() + " pixels");
    if (!out.writeable()) throw py::value_error("out is read-only");
  }

  std::size_t const srcBytes = count * srcPixelBytes, dstBytes = count * dstPixelBytes;
  bool const srcScratch = Overlap(src, out) || (shifted && srcFormat.Pixel->HasAlpha);
  CNuImageFormat const trgFmt(int(w), int(h), dstFormat.Pixel->Id, dstFormat.Data->Id);
  CNuImageFormat const srcFmt(int(w), int(h), srcFormat.Pixel->Id, srcFormat.Data->Id);
  bool done = false;
  std::optional<Nu::CNuException> failure;
  void* const outData = out.mutable_data();
  {
    py::gil_scoped_release release;
    std::vector<char> srcCopy, dstCopy;
    void const* srcData = src.data();
    void* dstData = outData;
    if (srcScratch) {
      srcCopy.assign(shifted ? 2 * srcBytes : srcBytes, 0);
      std::memcpy(srcCopy.data(), srcData, srcBytes);
      srcData = srcCopy.data();
    }
    if (shifted) {
      dstCopy.assign(2 * dstBytes, 0);
      std::memcpy(dstCopy.data(), dstData, dstBytes);
      dstData = dstCopy.data();
    }
    try {
      done = CNuImage::ConvertMemory(dstData, srcData, trgFmt, srcFmt);
      if (done && shifted) std::memcpy(outData, dstCopy.data(), dstBytes);
    } catch (Nu::CNuException const& e) {
      failure.emplace(e);
    }
  }
  std::string const pair = srcFormat.Name() + " -> " + dstFormat.Name();
  if (failure) {
    // The library refuses a Bayer target from another pixel type by raising: still a pair
    // that is not carried, with the library's account as the cause.
    if (!sameFormat) {
      PyErr_SetObject(ErrorType, MakeError(*failure).ptr());
      py::raise_from(PyExc_ValueError, (pair + " is not carried").c_str());
      throw py::error_already_set();
    }
    RaiseError(*failure);
  }
  if (!done) throw py::value_error(pair + " is not carried" +
                                   (srcFormat.Data->Id < EDataType::Byte ? " (widen custom data with widen_custom)" : ""));
  return out;
}

py::array WidenCustom(py::array const& src, py::handle dataPart, py::object const& outArg) {
  auto const dataType = ParseData(dataPart)->Id;
  py::dtype const u16("uint16");
  CheckArray(src, u16, "array", DataName(dataType));
  if (src.ndim() != 2 && src.ndim() != 3) throw py::value_error("array must be shaped (h, w) or (h, w, c)");
  py::ssize_t const h = src.shape(0), row = src.ndim() == 2 ? src.shape(1) : src.shape(1) * src.shape(2);
  CheckSize(h, row, std::uint64_t(h) * std::uint64_t(row) * 2);
  py::array out;
  if (outArg.is_none()) {
    out = py::array(u16, std::vector<py::ssize_t>(src.shape(), src.shape() + src.ndim()));
  } else {
    if (!py::isinstance<py::array>(outArg)) throw py::type_error("out must be a numpy array");
    out = py::reinterpret_borrow<py::array>(outArg);
    CheckArray(out, u16, "out", "UShort");
    if (out.ndim() != src.ndim() || !std::equal(src.shape(), src.shape() + src.ndim(), out.shape()))
      throw py::value_error("out must have the array's shape");
    if (!out.writeable()) throw py::value_error("out is read-only");
  }
  if (src.size() == 0) return out;

  bool const inPlace = src.data() == out.data();
  bool const overlap = Overlap(src, out);
  void* const outData = out.mutable_data();
  std::optional<Nu::CNuException> failure;
  {
    py::gil_scoped_release release;
    std::vector<char> srcCopy;
    void const* srcData = src.data();
    if (!inPlace && overlap) {
      srcCopy.assign(static_cast<char const*>(srcData), static_cast<char const*>(srcData) + 2 * src.size());
      srcData = srcCopy.data();
    }
    // The library widens width x height words whatever the pixel type: every word of the array
    // is widened by showing it as one row of h x (w * c) one-element pixels.
    CNuImage source, target;
    source.CreateMoniker(CNuImageFormat(int(row), int(h), EPixelType::Lum, dataType),
                         const_cast<void*>(srcData), 0.0, 0);
    target.CreateMoniker(CNuImageFormat(int(row), int(h), EPixelType::Lum, EDataType::UShort),
                         outData, 0.0, 0);
    try {
      source.ConvertCustomType(target);
    } catch (Nu::CNuException const& e) {
      failure.emplace(e);
    }
  }
  if (failure) RaiseError(*failure);
  return out;
}

}  // namespace

PYBIND11_MODULE(nucoreex, m) {
  m.doc() = "The exact conversion of Nu.Core.Ex between its 80 pixel formats, over numpy arrays.";

  py::enum_<EPixelType::ID> pixelType(m, "PixelType", "Pixel type ids of the carried layouts.");
  for (auto const& p : Pixels) pixelType.value(p.Name, p.Id);
  py::enum_<EDataType::ID> dataType(m, "DataType", "Data type ids that a numpy array can hold.");
  for (auto const& d : Datas) dataType.value(DataName(d.Id).c_str(), d.Id);

  ErrorType = PyErr_NewExceptionWithDoc(
      "nucoreex.Error",
      "A failure raised by the library. str() is its full text with the inner chain; the attributes "
      "message, function, file, line and name describe this exception, inner the one it wraps (an "
      "Error, or None).",
      PyExc_RuntimeError, nullptr);
  m.attr("Error") = py::handle(ErrorType);

  m.def(
      "formats",
      [] {
        py::list names;
        for (auto const& p : Pixels)
          for (auto const& d : Datas)
            if (d.Id >= EDataType::Byte) names.append(std::string(p.Name) + "/" + DataName(d.Id));
        return names;
      },
      "The names of the 80 carried formats, 'Pixel/Data', in the library's order.");

  m.def("convert", &Convert, py::arg("array"), py::arg("src_format"), py::arg("dst_format"),
        py::arg("out") = py::none(),
        R"doc(Convert an image between two formats by the library's exact rule.

array: C-contiguous, shaped (h, w) for one element per pixel (Lum, Bayer1..4) or (h, w, c),
of the source format's dtype: Byte int8, UByte uint8, Short int16, UShort uint16, Int int32,
UInt uint32, Float float32, Double float64 (custom types uint16).
src_format, dst_format: 'RGB/UByte', or a (PixelType, DataType) pair.
out: a writable C-contiguous array of the result's dtype and shape, written and returned; it
may share memory with array (the source is then read from a copy).
Returns a new array shaped (h, w) or (h, w, c) unless out is given.

A LumA target of a data type other than the source's keeps the library's rule: its alpha pass
writes the alphas one run further on (pixels h*w..2*h*w-1), reading an alpha-bearing source
there too. The module runs it through doubled scratch buffers (the source padded with zeros)
and returns only the image's own run: luminance converted, alpha left as the array held it
(0 in a new array, out's values with out=). The shifted alpha run is discarded; convert to
LumA of the source's data type first to keep the alpha.

Raises TypeError for a wrong dtype, ValueError for a wrong shape, strides, a read-only out,
an unknown name or a pair that is not carried (a Bayer target from another pixel type: the
library's Error as __cause__), nucoreex.Error for other failures of the library. Nothing is
written on any error. The GIL is released while converting.)doc");

  m.def("widen_custom", &WidenCustom, py::arg("array"), py::arg("data_type"), py::arg("out") = py::none(),
        R"doc(Widen 10- or 12-bit samples stored in uint16 words to the full UShort range.

data_type: 'Custom_10in16_LSB' or 'Custom_12in16_LSB' (or the DataType value). Each word w
becomes trunc(float32(w) / 1023 (or 4095) * 65535) modulo 2^16, in single precision; words above
the sample range wrap. Every word of the (h, w) or (h, w, c) array is widened. out may be the
array itself (in place). Other custom or data types raise nucoreex.Error from the library.)doc");
}
