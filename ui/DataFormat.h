#pragma once

#include "zuCore/ZuCoreGlobal.h"

class QComboBox;

/// The data format in which a camera delivers, parameter "imgdataformat".
namespace dataFormat {

/// A box without a parent with the camera's formats, the present one selected.
/// Empty for a camera without that parameter.
QComboBox *makeBox(ZUCORE_HANDLE camera);

} // namespace dataFormat
