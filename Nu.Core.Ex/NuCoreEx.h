#pragma once
// Everything a caller of the imaging runtime needs, from all three folders.
#include <Nu.Core/ExceptionSafePointer.h>
#include <Nu.Core/Guid.h>
#include <Nu.Core/IException.h>
#include <Nu.Core/NuException.h>
#include <Nu.Core/NuString.h>

#include <Nu.Core.Ex/EDataType.h>
#include <Nu.Core.Ex/EPixelType.h>
#include <Nu.Core.Ex/IImage.h>
#include <Nu.Core.Ex/NuImage.h>
#include <Nu.Core.Ex/NuImageFormat.h>
#include <Nu.Core.Ex/NuImageMoniker.h>
#include <Nu.Core.Ex/NuOutOfMemoryException.h>
#include <Nu.Core.Ex/TPixel.h>
