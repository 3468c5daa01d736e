#include "zuCore/CxValue.h"

CxValue::CxValue(int value)
    : m_value(value)
{
}

int CxValue::toInt() const
{
    return m_value;
}
