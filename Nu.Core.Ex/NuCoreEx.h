#pragma once
/// @file
/// The umbrella header: everything a caller of the imaging runtime needs, from all three folders.
#include <Nu.Core/ExceptionSafePointer.h>
#include <Nu.Core/Guid.h>
#include <Nu.Core/IException.h>
#include <Nu.Core/NuException.h>
#include <Nu.Core/NuString.h>

#include <Nu.Core.Ex/EDataType.h>
#include <Nu.Core.Ex/EPixelType.h>
#include <Nu.Core.Ex/IImage.h>
#include <Nu.Core.Ex/IMemory.h>
#include <Nu.Core.Ex/IMemory2D.h>
#include <Nu.Core.Ex/IMemory2DAccess.h>
#include <Nu.Core.Ex/IMemoryAccess.h>
#include <Nu.Core.Ex/NuArray2DBase.h>
#include <Nu.Core.Ex/NuArray2DDouble.h>
#include <Nu.Core.Ex/NuArray2DInt.h>
#include <Nu.Core.Ex/NuArrayBase.h>
#include <Nu.Core.Ex/NuArrayDouble.h>
#include <Nu.Core.Ex/NuArrayInt.h>
#include <Nu.Core.Ex/NuArrayString.h>
#include <Nu.Core.Ex/NuArrayUChar.h>
#include <Nu.Core.Ex/NuArrayUInt.h>
#include <Nu.Core.Ex/NuArrayUShort.h>
#include <Nu.Core.Ex/NuImage.h>
#include <Nu.Core.Ex/NuImageFormat.h>
#include <Nu.Core.Ex/NuImageMoniker.h>
#include <Nu.Core.Ex/NuMapping3D.h>
#include <Nu.Core.Ex/NuMetricCalibAddImageResult.h>
#include <Nu.Core.Ex/NuMetricCalibAddTargetImageResult.h>
#include <Nu.Core.Ex/NuMetricCalibResult.h>
#include <Nu.Core.Ex/NuOutOfMemoryException.h>
#include <Nu.Core.Ex/NuValuePrecision.h>
#include <Nu.Core.Ex/TPixel.h>

#include <Nu.Core.Math/NuMatrix.h>
