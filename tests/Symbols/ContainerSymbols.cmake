# Checks the dynamic symbols of libNu.Core.Ex for the containers: every explicit instantiation is
# exported, and none of the helpers behind them is. Run with -DLIBRARY=<path> [-DSTRICT=ON].
# STRICT also refuses any exported standard-library instantiation; unoptimised builds emit those
# as weak symbols of the templates that use them, so it is set for optimised builds only.
execute_process(COMMAND nm -D -C --defined-only ${LIBRARY} OUTPUT_VARIABLE symbols
                RESULT_VARIABLE result)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "nm failed on ${LIBRARY}")
endif()

set(required
    "Nu::CNuArrayBase<double>::Resize(unsigned long)"
    "Nu::CNuArrayBase<int>::CopyFrom("
    "Nu::CNuArrayBase<unsigned char>::operator[](unsigned long) const"
    "Nu::CNuArrayBase<unsigned int>::New(unsigned long)"
    "Nu::CNuArrayBase<unsigned short>::Reset()"
    "Nu::CNuArrayBase<Nu::CNuString>::Delete()"
    "Nu::CNuArray2DBase<double>::operator()(unsigned long, unsigned long)"
    "Nu::CNuArray2DBase<int>::GetSize(unsigned long&, unsigned long&) const"
    "Nu::CNuMatrix<double>::SetDimensions(unsigned long, unsigned long)"
    "Nu::CNuMatrix<int>::Resize(unsigned long, unsigned long)"
    "Nu::CNuMatrixBase<double>::~CNuMatrixBase()"
    "Nu::CNuMatrixBase<int>::CNuMatrixBase()"
    "Nu::CNuValuePrecision<float>::DefaultPrecision()"
    "Nu::CNuValuePrecision<double>::DefaultPrecision()"
    "Nu::CNuValuePrecision<int>::DefaultPrecision()"
    "Nu::CNuValuePrecision<unsigned int>::DefaultPrecision()"
    "Nu::CNuValuePrecision<unsigned long>::DefaultPrecision()"
    "Nu::CNuArrayString::CNuArrayString(Nu::CNuString const&, char)"
    "Nu::CNuArray2DInt::operator=(Nu::CNuArray2DInt const&)"
    "Nu::CNuMapping3D::Map(float&, float&, float&)"
    "Nu::CNuMetricCalibAddImageResult::CNuMetricCalibAddImageResult()"
    "Nu::CNuMetricCalibResult::~CNuMetricCalibResult()")
foreach(symbol IN LISTS required)
  string(FIND "${symbols}" "${symbol}" at)
  if(at EQUAL -1)
    message(SEND_ERROR "not exported: ${symbol}")
  endif()
endforeach()

string(REGEX MATCHALL "[^\n]*(Nu::Detail::|GrowContainer|TruncateToIndex)[^\n]*" helpers
       "${symbols}")
if(helpers)
  message(SEND_ERROR "helpers exported: ${helpers}")
endif()
if(STRICT)
  string(REGEX MATCHALL "\n[0-9a-f]+ [TW] [^\n]*std::[^\n]*" standard "${symbols}")
  if(standard)
    message(SEND_ERROR "standard-library instantiations exported: ${standard}")
  endif()
endif()
