#pragma once

#include "zuCore/ZuCoreGlobal.h"

/// The host's value of a camera parameter.
class ZUCORE_EXPORT CxValue
{
public:
    explicit CxValue(int value);

    int toInt() const;

private:
    int m_value;
};
